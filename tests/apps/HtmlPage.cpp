#include "HtmlPage.h"

#include <QXmlStreamReader>

namespace tresktest {

namespace {

/// Takes what stands between the only tags of that name out of @p html. Null if there are others.
QByteArray takeOut(QByteArray& html, const QByteArray& name)
{
    const QByteArray begin = '<' + name + '>';
    const QByteArray end = "</" + name + '>';
    const auto from = html.indexOf(begin) + begin.size();
    const auto to = html.indexOf(end);
    if (html.count(begin) != 1 || html.count(end) != 1 || to < from)
        return {};
    const QByteArray content = html.mid(from, to - from);
    html.remove(from, to - from);
    return content;
}

} // namespace

HtmlPage::HtmlPage(const QByteArray& html)
{
    QByteArray rest = html;
    m_style = takeOut(rest, "style");
    m_script = takeOut(rest, "script");
    if (m_style.isNull() || m_script.isNull())
        m_error = QStringLiteral("there is not one style and one script");
    else
        read(rest);
}

void HtmlPage::read(const QByteArray& html)
{
    QXmlStreamReader reader(html);
    QVector<int> open;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            HtmlElement element;
            element.name = reader.name().toString();
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                element.attributes.insert(attribute.name().toString(),
                                          attribute.value().toString());
            element.parent = open.isEmpty() ? -1 : open.last();
            open.append(int(m_elements.size()));
            m_elements.append(element);
        } else if (reader.isEndElement()) {
            open.removeLast();
        } else if (reader.isCharacters()) {
            for (const int i : open)
                m_elements[i].text += reader.text();
        }
    }
    if (reader.hasError())
        m_error = QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
}

QVector<HtmlElement> HtmlPage::named(const char* name) const
{
    QVector<HtmlElement> found;
    for (const HtmlElement& element : m_elements) {
        if (element.name == QLatin1String(name))
            found += element;
    }
    return found;
}

HtmlElement HtmlPage::withId(const QString& id) const
{
    for (const HtmlElement& element : m_elements) {
        if (element.attributes.value(QStringLiteral("id")) == id)
            return element;
    }
    return {};
}

QStringList HtmlPage::texts(const char* name) const
{
    QStringList texts;
    for (const HtmlElement& element : named(name))
        texts += element.text;
    return texts;
}

QStringList HtmlPage::textsIn(const QString& id, const char* name) const
{
    QStringList texts;
    for (const HtmlElement& element : named(name)) {
        for (int outer = element.parent; outer >= 0; outer = m_elements[outer].parent) {
            if (m_elements[outer].attributes.value(QStringLiteral("id")) == id)
                texts += element.text;
        }
    }
    return texts;
}

QString HtmlPage::text() const
{
    return m_elements.isEmpty() ? QString() : m_elements.first().text;
}

} // namespace tresktest
