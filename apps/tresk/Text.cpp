#include "Text.h"

#include "Characters.h"

#include <algorithm>

namespace tresk::cli {

namespace {

/// A backslash, @p letter and @p digits hexadecimal ones. There may be millions in a text.
QString escape(char letter, char32_t c, int digits)
{
    QChar characters[10] = {QLatin1Char('\\'), QLatin1Char(letter)};
    for (int i = digits + 1; i > 1; --i, c >>= 4)
        characters[i] = QLatin1Char("0123456789abcdef"[c & 0xF]);
    return QString(characters, digits + 2);
}

QString writtenOut(char32_t c)
{
    if (c == '\n')
        return QStringLiteral("\\n");
    if (c == '\r')
        return QStringLiteral("\\r");
    if (c == '\t')
        return QStringLiteral("\\t");
    // Lone surrogates of this range are the bytes of a file name that is not UTF-8.
    const bool byte = c >= 0xDC80 && c <= 0xDCFF;
    if (c < 0x100 || byte)
        return escape('x', c, 2);
    return c < 0x10000 ? escape('u', c, 4) : escape('U', c, 8);
}

} // namespace

QString unescaped(const QString& stored)
{
    QString text;
    text.reserve(stored.size());
    for (auto it = stored.begin(); it != stored.end(); ++it) {
        const bool escape = *it == QLatin1Char('\\') && it + 1 != stored.end();
        if (escape && it[1] == QLatin1Char('n')) {
            text += QLatin1Char('\n');
            ++it;
        } else if (escape && (it[1] == QLatin1Char('\\') || it[1] == QLatin1Char(']'))) {
            text += *++it;
        } else {
            text += *it;
        }
    }
    return text;
}

bool isUnprintable(char32_t c)
{
    if (c >= 0x20 && c < 0x7F)
        return false;
    const char32_t softHyphen = 0xAD;
    const char32_t nonJoiner = 0x200C;
    const char32_t joiner = 0x200D;
    if (c == softHyphen || c == nonJoiner || c == joiner)
        return false;
    if (QChar::isNonCharacter(c))
        return true;
    switch (QChar::category(c)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

QString printable(const QString& text)
{
    return replaceCharacters(text, isUnprintable, writtenOut);
}

void forPrintable(QStringView text, const std::function<void(const QString&)>& take)
{
    const decltype(text.size()) longest = 65536;
    for (decltype(text.size()) begin = 0, end = 0; begin < text.size(); begin = end) {
        end = std::min(begin + longest, text.size());
        if (end < text.size() && text[end - 1].isHighSurrogate())
            --end;
        take(printable(text.mid(begin, end - begin).toString()));
    }
}

QString shown(const QString& stored)
{
    return printable(unescaped(stored));
}

QString quoted(const QString& text)
{
    return QLatin1Char('"') + printable(text) + QLatin1Char('"');
}

QString shownQuoted(const QString& stored)
{
    return quoted(unescaped(stored));
}

int displayWidth(const QString& text)
{
    int columns = 0;
    for (Characters it(text); it.hasNext();)
        columns += columnsOf(it.next());
    return columns;
}

QString cutToWidth(const QString& text, int columns)
{
    for (Characters it(text); it.hasNext();) {
        columns -= columnsOf(it.next());
        if (columns < 0)
            return text.left(it.start());
    }
    return text;
}

QString humanSize(qint64 bytes)
{
    if (bytes < 0)
        return QStringLiteral("-");
    if (bytes < 1024)
        return counted(bytes, QStringLiteral("byte"));
    double size = double(bytes) / 1024;
    const char* unit = "KiB";
    // Compared with what rounds up to 1024.0, so that no size reads as "1024.0 KiB".
    for (const char* larger : {"MiB", "GiB"}) {
        if (size < 1023.95)
            break;
        size /= 1024;
        unit = larger;
    }
    return QString::number(size, 'f', 1) + QLatin1Char(' ') + QLatin1String(unit);
}

QString numberOrDash(qint64 number)
{
    return number < 0 ? QStringLiteral("-") : QString::number(number);
}

QString counted(qint64 count, const QString& singular)
{
    const QString text = QString::number(count) + QLatin1Char(' ') + singular;
    return count == 1 ? text : text + QLatin1Char('s');
}

} // namespace tresk::cli
