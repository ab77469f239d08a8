#ifndef TRESK_TESTS_APPS_HTMLPAGE_H
#define TRESK_TESTS_APPS_HTMLPAGE_H

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

namespace tresktest {

/// An element of a page.
struct HtmlElement {
    QString name;
    QHash<QString, QString> attributes;
    QString text; ///< with that of the elements in it, without the style and the script
    int parent = -1; ///< its place in the list
};

/// A page that a command has made, taken apart by a reader of XML, which is stricter than browsers.
class HtmlPage {
public:
    explicit HtmlPage(const QByteArray& html);

    /// Why it cannot be read; empty if it can.
    const QString& error() const { return m_error; }
    const QVector<HtmlElement>& elements() const { return m_elements; }
    const QByteArray& style() const { return m_style; }
    const QByteArray& script() const { return m_script; }

    QVector<HtmlElement> named(const char* name) const;
    /// The element that has this id; one without a name if there is none.
    HtmlElement withId(const QString& id) const;
    /// The texts of all elements of that name.
    QStringList texts(const char* name) const;
    /// The texts of all elements of that name within the element that has the id @p id.
    QStringList textsIn(const QString& id, const char* name) const;
    /// Everything that is to be read.
    QString text() const;

private:
    void read(const QByteArray& html);

    QString m_error;
    QVector<HtmlElement> m_elements;
    QByteArray m_style;
    QByteArray m_script;
};

} // namespace tresktest

#endif
