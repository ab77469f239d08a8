#include "Roff.h"

#include <QRegularExpression>
#include <QStringList>

namespace tresk::cli::roff {

namespace {

/// An option in running text, with what stands around it.
const QRegularExpression& optionPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral("^([('\"]*)(--?[A-Za-z0-9][\\w-]*)(.*)$"));
    return pattern;
}

bool isLetter(const QString& text, int position)
{
    return position >= 0 && position < text.size() && text[position].isLetterOrNumber();
}

/// One character of running text.
QString proseCharacter(const QString& word, int position)
{
    const QString character = word.mid(position, 1);
    const bool isInside = isLetter(word, position - 1) && isLetter(word, position + 1);
    const bool isHyphenOrApostrophe = character == QLatin1String("-")
        || character == QLatin1String("'");
    return isHyphenOrApostrophe && isInside ? character : literal(character);
}

QString proseWord(const QString& word)
{
    const QRegularExpressionMatch option = optionPattern().match(word);
    if (option.hasMatch())
        return literal(option.captured(1)) + bold(option.captured(2)) + prose(option.captured(3));
    QString text;
    for (int i = 0; i < word.size(); ++i)
        text += proseCharacter(word, i);
    return text;
}

/// A line of input that starts with something else than a request.
QString guarded(const QString& text)
{
    const bool isRequest = text.startsWith(QLatin1Char('.')) || text.startsWith(QLatin1Char('\''));
    return (isRequest ? QStringLiteral("\\&") : QString()) + text;
}

/// @p text in lines of input of moderate length, with @p joint where one goes on in the next.
QString wrapped(const QString& text, const QString& joint)
{
    const int most = 76;
    QString lines;
    QString line;
    for (const QString& word : text.split(QLatin1Char(' '))) {
        if (!line.isEmpty() && line.size() + 1 + word.size() > most) {
            lines += guarded(line) + joint;
            line = word;
        } else {
            line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
        }
    }
    return lines + guarded(line) + QLatin1Char('\n');
}

} // namespace

QString literal(const QString& text)
{
    QString escaped;
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '\\':
            escaped += QStringLiteral("\\e");
            break;
        case '-':
            escaped += QStringLiteral("\\-");
            break;
        case '\'':
            escaped += QStringLiteral("\\(aq");
            break;
        case '"':
            escaped += QStringLiteral("\\(dq");
            break;
        case '`':
            escaped += QStringLiteral("\\(ga");
            break;
        case '^':
            escaped += QStringLiteral("\\(ha");
            break;
        case '~':
            escaped += QStringLiteral("\\(ti");
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

QString prose(const QString& text)
{
    QStringList words = text.split(QLatin1Char(' '));
    for (QString& word : words)
        word = proseWord(word);
    return words.join(QLatin1Char(' '));
}

QString bold(const QString& text)
{
    return QStringLiteral("\\fB%1\\fR").arg(literal(text));
}

QString italic(const QString& text)
{
    return QStringLiteral("\\fI%1\\fR").arg(literal(text));
}

QString line(const QString& text)
{
    return wrapped(text, QStringLiteral("\n"));
}

QString paragraphs(const QString& text)
{
    QString page;
    for (QString paragraph : text.split(QStringLiteral("\n\n"), Qt::SkipEmptyParts)) {
        if (!page.isEmpty())
            page += QStringLiteral(".PP\n");
        paragraph.replace(QLatin1Char('\n'), QLatin1Char(' '));
        page += line(prose(paragraph.trimmed()));
    }
    return page;
}

QString example(const QString& text)
{
    QString block = QStringLiteral(".RS 4\n.nf\n");
    for (const QString& words : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        block += wrapped(literal(words), QStringLiteral(" \\\n"));
    return block + QStringLiteral(".fi\n.RE\n");
}

} // namespace tresk::cli::roff
