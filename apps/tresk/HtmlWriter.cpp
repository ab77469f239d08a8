#include "HtmlWriter.h"

#include "Text.h"

#include <QCryptographicHash>
#include <QFile>

#include <utility>

/// Files that are part of a static library are left out of a program that does not ask for them.
/// Qt wants this outside of namespaces.
static void initPageResources()
{
    Q_INIT_RESOURCE(page);
}

namespace tresk::cli {

namespace {

/// A file that is part of the program.
QByteArray asset(const char* name)
{
    initPageResources();
    QFile file(QStringLiteral(":/page/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What a content security policy calls the inline script or style @p content.
QByteArray policyHash(const QByteArray& content)
{
    return "'sha256-" + QCryptographicHash::hash(content, QCryptographicHash::Sha256).toBase64()
        + "'";
}

bool isPartOfText(const QByteArray& name)
{
    return name == "a" || name == "mark" || name == "span" || name == "strong";
}

} // namespace

QString htmlText(const QString& text)
{
    return printable(text).toHtmlEscaped().replace(QLatin1Char('\''), QStringLiteral("&#39;"));
}

HtmlWriter::HtmlWriter(Sink sink)
    : m_sink(std::move(sink))
{
}

void HtmlWriter::begin(const QString& title)
{
    const QByteArray style = asset("page.css");
    const QByteArray script = asset("page.js");
    raw("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src "
        + policyHash(script) + "; style-src " + policyHash(style)
        + "; img-src data:; base-uri 'none'; form-action 'none'\"/>\n"
          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
          "<meta name=\"color-scheme\" content=\"light dark\"/>\n"
          "<meta name=\"referrer\" content=\"no-referrer\"/>\n<title>"
        + htmlText(title).toUtf8() + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n");
    // At the end the whole page is there for it to work on.
    m_open = {"html", "body"};
}

void HtmlWriter::end()
{
    while (m_open.size() > 2)
        close();
    raw("<script>" + asset("page.js") + "</script>\n</body>\n</html>\n");
    m_open.clear();
}

void HtmlWriter::open(const char* name, const Attributes& attributes)
{
    tag(name, attributes, ">");
    m_open.push_back(name);
}

void HtmlWriter::close()
{
    const QByteArray name = m_open.back();
    // A line break would show as a blank behind a part of a text.
    raw("</" + name + (isPartOfText(name) ? ">" : ">\n"));
    m_open.pop_back();
}

void HtmlWriter::element(const char* name, const QString& text, const Attributes& attributes)
{
    open(name, attributes);
    this->text(text);
    close();
}

void HtmlWriter::single(const char* name, const Attributes& attributes)
{
    tag(name, attributes, "/>");
}

void HtmlWriter::text(const QString& text)
{
    raw(htmlText(text).toUtf8());
}

void HtmlWriter::tools(const QString& label)
{
    open("div",
         {{"class", QStringLiteral("tools")},
          {"role", QStringLiteral("search")},
          {"hidden", QString()}});
    element("label", label, {{"for", QStringLiteral("search")}});
    single("input",
           {{"id", QStringLiteral("search")},
            {"type", QStringLiteral("search")},
            {"autocomplete", QStringLiteral("off")}});
    element("output", QString(),
            {{"id", QStringLiteral("found")}, {"for", QStringLiteral("search")}});
    element("button", QStringLiteral("Fold all"),
            {{"id", QStringLiteral("fold")}, {"type", QStringLiteral("button")}});
    close();
}

void HtmlWriter::tag(const char* name, const Attributes& attributes, const char* end)
{
    QByteArray markup = "<" + QByteArray(name);
    for (const auto& attribute : attributes)
        markup += " " + QByteArray(attribute.first) + "=\"" + htmlText(attribute.second).toUtf8()
            + "\"";
    raw(markup + end);
}

void HtmlWriter::raw(const QByteArray& markup)
{
    m_sink(markup);
}

} // namespace tresk::cli
