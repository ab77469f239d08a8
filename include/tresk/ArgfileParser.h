#ifndef TRESK_ARGFILEPARSER_H
#define TRESK_ARGFILEPARSER_H

#include <tresk/Export.h>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace tresk {

/// A piece of an argument file's text: a word, a quoted string, white space or a comment.
class TRESK_EXPORT ArgfileToken {
public:
    /// Selects the constructor of separators.
    enum TokenSeparator { Separator };

    /// A word or string.
    ArgfileToken(const QString& text, int position, const QString& originalText);
    /// The same with a text in Latin-1.
    ArgfileToken(const char* text, int position, const QString& originalText);
    /// White space or a comment; its text is empty.
    ArgfileToken(TokenSeparator separator, int position, const QString& originalText);

    /// What the token stands for.
    QString str() const { return m_text; }
    /// Whether it is white space or a comment.
    bool isSeparator() const { return m_separator; }
    /// Where it begins in the text, in UTF-16 code units from 0; -1 if it stands nowhere.
    int position() const { return m_position; }
    /// What it covers there, as written.
    QString originalText() const { return m_originalText; }
    /// The length of that in UTF-16 code units.
    int originalLength() const { return int(m_originalText.size()); }

private:
    QString m_text;
    bool m_separator;
    int m_position;
    QString m_originalText;
};

/// Takes the text of an argument file apart: words between white space and comments, strings in
/// single and double quotes, backslashes, variables. Keeps nothing between calls.
///
/// Text that cannot be taken apart, where a quote is not closed or a backslash is the last
/// character, gives nothing at all. Time and memory are proportional to the text's length and to
/// that of the values inserted.
class TRESK_EXPORT ArgfileParser {
public:
    /// The arguments that @p text stands for.
    ///
    /// `$NAME` and `${NAME}`, of ASCII letters and digits, are replaced outside single quotes by
    /// their values in @p variables, literally and without being split; what is not in the table
    /// becomes empty. Text in front of the first variable of a word or string hides it unless its
    /// length is a multiple of the variable's: `ab$X` is replaced, `abc$X` is not. For that is how
    /// much is cut off the front until the dollar sign is reached, or passed; the count for the
    /// next variable goes on from there. So in `a$X-$Y`, only `$Y` is replaced, which has `X-` in
    /// front of it by then. Backslashes in front belong to the variable's length, and a cut between
    /// them changes whether they protect it. Other text may be taken for an unknown variable where
    /// it begins with a dollar sign; `$` alone becomes empty. With null, everything stays as
    /// written.
    ///
    /// In the result "$$" is a dollar sign that stands for itself (from single quotes, after a
    /// backslash, in a value) and "$" is one that a consumer may expand.
    QStringList parseArgfile(const QString& text, const QHash<QString, QString>* variables);
    /// The tokens of @p text, which they cover without gaps; quotes and backslashes are taken off
    /// their str(), variables are not replaced.
    QList<ArgfileToken> getHighlighterList(const QString& text);
};

} // namespace tresk

#endif
