#include "PdfHost.h"

#include "DocumentWriter.h"

namespace tresktest {

namespace {

const int entrySize = 20;
const int offsetDigits = 10;

/// A place in the file, moved forward while it is read.
class Scanner {
public:
    Scanner(const QByteArray& bytes, int position)
        : m_bytes(bytes)
        , m_position(position)
    {
    }

    int position() const { return m_position; }
    void skip(int count) { m_position += count; }

    void skipBlanks()
    {
        while (isOneOf(" \t\r\n\f"))
            ++m_position;
    }

    bool skipWord(const QByteArray& word)
    {
        if (m_bytes.mid(m_position, word.size()) != word)
            return false;
        m_position += static_cast<int>(word.size());
        return true;
    }

    std::optional<int> number()
    {
        const int start = m_position;
        while (isOneOf("0123456789"))
            ++m_position;
        bool ok = false;
        const int value = m_bytes.mid(start, m_position - start).toInt(&ok);
        return ok ? std::optional<int>(value) : std::nullopt;
    }

private:
    bool isOneOf(const QByteArray& characters) const
    {
        return m_position < m_bytes.size() && characters.contains(m_bytes.at(m_position));
    }

    const QByteArray& m_bytes;
    int m_position;
};

/// Where the number behind the last "startxref" begins and ends, and what it says.
struct StartXref {
    int keyword;
    int digits;
    int end;
    int value;
};

std::optional<StartXref> findStartXref(const QByteArray& pdf)
{
    const QByteArray word = "startxref";
    StartXref found{};
    found.keyword = static_cast<int>(pdf.lastIndexOf(word));
    if (found.keyword < 0)
        return std::nullopt;
    Scanner scanner(pdf, found.keyword + static_cast<int>(word.size()));
    scanner.skipBlanks();
    found.digits = scanner.position();
    const std::optional<int> value = scanner.number();
    if (!value)
        return std::nullopt;
    found.end = scanner.position();
    found.value = *value;
    return found;
}

/// The first byte behind the line that begins at @p start, whatever ends it.
int nextLine(const QByteArray& bytes, int start)
{
    int end = start;
    while (end < bytes.size() && bytes.at(end) != '\n' && bytes.at(end) != '\r')
        ++end;
    if (bytes.mid(end, 2) == "\r\n")
        return end + 2;
    return qMin(end + 1, static_cast<int>(bytes.size()));
}

int headerPlace(const QByteArray& pdf)
{
    const int second = nextLine(pdf, 0);
    return pdf.mid(second, 1) == "%" ? nextLine(pdf, second) : second;
}

/// Adds @p distance to the offsets of the table at @p start that are not below @p from.
/// Returns the place behind the table, or nothing if there is no table.
std::optional<int> moveTable(QByteArray& pdf, int start, int from, int distance)
{
    Scanner scanner(pdf, start);
    if (!scanner.skipWord("xref"))
        return std::nullopt;
    for (;;) {
        scanner.skipBlanks();
        const std::optional<int> first = scanner.number();
        if (!first)
            return scanner.position();
        scanner.skipBlanks();
        const std::optional<int> count = scanner.number();
        if (!count)
            return std::nullopt;
        scanner.skipBlanks();
        for (int i = 0; i < *count; ++i) {
            const int entry = scanner.position();
            const QByteArray text = pdf.mid(entry, entrySize);
            const qint64 offset = text.left(offsetDigits).toLongLong();
            if (text.size() == entrySize && text.at(17) == 'n' && offset >= from) {
                const QByteArray digits = QByteArray::number(offset + distance);
                pdf.replace(entry, offsetDigits, digits.rightJustified(offsetDigits, '0'));
            }
            scanner.skip(entrySize);
        }
    }
}

QString tr(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

std::optional<QByteArray> pdfWithHeader(const QByteArray& pdf, QString* error)
{
    const auto fail = [error](const char* reason) {
        if (error)
            *error = tr(reason);
        return std::nullopt;
    };
    if (!pdf.startsWith("%PDF-"))
        return fail("the file does not begin as a PDF does");
    const int place = headerPlace(pdf);
    if (pdf.left(place).contains('\0'))
        return fail("there is a NUL byte before the place of the header");
    const std::optional<StartXref> startXref = findStartXref(pdf);
    if (!startXref)
        return fail("there is no startxref");

    // A line feed in front of the header makes it the start of a line also where a carriage
    // return alone ends the line before.
    QByteArray header = headerLine() + '\n';
    if (pdf.at(place - 1) != '\n')
        header.prepend('\n');
    const auto distance = static_cast<int>(header.size());

    QByteArray moved = pdf;
    const std::optional<int> tableEnd = moveTable(moved, startXref->value, place, distance);
    if (!tableEnd)
        return fail("there is no classic cross-reference table");
    const QByteArray trailer = moved.mid(*tableEnd, startXref->keyword - *tableEnd);
    if (trailer.contains("/Prev") || trailer.contains("/XRefStm"))
        return fail("there is more than one cross-reference table");
    if (pdf.left(1024).contains("/Linearized"))
        return fail("the file is linearised");
    moved.replace(startXref->digits, startXref->end - startXref->digits,
                  QByteArray::number(startXref->value + distance));
    moved.insert(place, header);
    return moved;
}

QByteArray pdfTail(const QByteArray& pdf)
{
    const std::optional<StartXref> startXref = findStartXref(pdf);
    if (!startXref)
        return {};
    return "startxref\n" + QByteArray::number(startXref->value) + "\n%%EOF\n";
}

} // namespace tresktest
