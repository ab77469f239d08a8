#ifndef TRESK_APPS_HTMLWRITER_H
#define TRESK_APPS_HTMLWRITER_H

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

#include <functional>
#include <vector>

namespace tresk::cli {

/// @p text as it stands in HTML, between tags and in quoted attributes: printable, and with
/// references for the characters that HTML gives a meaning.
QString htmlText(const QString& text);

/// Writes a page of HTML that needs nothing but itself. But for the style and the script, it is
/// well-formed XML, too.
///
/// The page forbids itself everything but its own style, its own script and pictures that stand in
/// it, by a content security policy. All texts are escaped; names of elements and attributes are
/// those of the program.
class HtmlWriter {
public:
    using Sink = std::function<void(const QByteArray&)>;
    using Attributes = QList<QPair<const char*, QString>>;

    /// @p sink gets the page piece by piece.
    explicit HtmlWriter(Sink sink);

    /// Writes all that comes in front of the body's content, with the style and the script.
    void begin(const QString& title);
    /// Closes what is open, and the page.
    void end();

    /// Opens an element, around what is written until its close().
    void open(const char* name, const Attributes& attributes = {});
    /// Closes the innermost open element.
    void close();
    /// Writes a whole element with @p text in it.
    void element(const char* name, const QString& text, const Attributes& attributes = {});
    /// Writes an element that has no content and no end, such as an input.
    void single(const char* name, const Attributes& attributes);
    void text(const QString& text);
    /// Writes a field to search in the elements with the attribute data-item, called @p label, and
    /// a button to fold the page. Both are hidden until the script, without which they are of no
    /// use, shows them.
    void tools(const QString& label);

private:
    void tag(const char* name, const Attributes& attributes, const char* end);
    void raw(const QByteArray& markup);

    Sink m_sink;
    std::vector<const char*> m_open; ///< outermost first
};

} // namespace tresk::cli

#endif
