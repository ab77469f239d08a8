#include "DocumentScript.h"

#include "DocumentWriter.h"

#include <algorithm>

using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::SectionSpec;

namespace tresk_fuzz {

namespace {

constexpr int mostBytes = 80 * 1000;
constexpr int mostElements = 300;
constexpr int mostDigits = 20;
constexpr int mostShift = 30 * 1000;

QByteArray wordAt(const QList<QByteArray>& words, int index)
{
    return index < words.size() ? words.at(index) : QByteArray("r");
}

bool isDigits(const QByteArray& word)
{
    return std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// What @p sum, "+N" or "-N", adds.
int shiftIn(const QByteArray& sum)
{
    const int number = numberIn(sum.mid(1), mostShift);
    return sum.startsWith('-') ? -number : number;
}

/// Whether @p word gives a field outright; otherwise it is about the right number.
bool isWritten(const QByteArray& word)
{
    return word == "-" || isDigits(word);
}

QByteArray written(const QByteArray& word)
{
    return word == "-" ? QByteArray() : word.left(mostDigits);
}

QByteArray field(const QByteArray& word, qint64 right)
{
    if (isWritten(word))
        return written(word);
    return QByteArray::number(std::max<qint64>(0, right + shiftIn(word.mid(1))));
}

/// Bytes with line feeds among them, other ones for each @p seed.
QByteArray contentOf(int length, int seed)
{
    QByteArray content;
    content.reserve(length);
    for (int i = 0; i < length; ++i)
        content += i % 31 == 30 ? '\n' : static_cast<char>('a' + (i / 7 + seed * 5) % 26);
    return content;
}

class Builder {
public:
    Builder()
        : m_document("%PDF-1.4\n")
    {
        m_document.writeHeader();
        m_headerSize = m_document.position();
        m_regionStart = m_headerSize;
    }

    void addLine(const QByteArray& line);
    QByteArray finished() const;

private:
    void addSection(const QList<QByteArray>& fields);
    void addFile(const QList<QByteArray>& fields);
    QByteArray previousMarker(const QByteArray& word) const;
    int lineStart() const { return int(m_document.bytes().lastIndexOf('\n')) + 1; }

    DocumentWriter m_document;
    int m_headerSize;
    int m_regionStart;
    QList<QPair<int, char>> m_damage;
};

void Builder::addLine(const QByteArray& line)
{
    if (m_document.position() > mostBytes)
        return;
    const char element = line.isEmpty() ? '\n' : line.at(0);
    if (line.size() > 1 && line.at(1) != ' ') {
        m_document.write(line + m_document.terminator());
        return;
    }
    const QList<QByteArray> fields = words(line).mid(1);
    switch (element) {
    case 's':
        addSection(fields);
        break;
    case 'f':
        addFile(fields);
        break;
    case 'w':
        m_document.write(QByteArray(numberIn(wordAt(fields, 0), 12000), 'w')
                         + m_document.terminator());
        break;
    case 'j':
        m_document.write(line.mid(2));
        break;
    case '0':
        m_document.write(QByteArray(1, '\0'));
        break;
    case 'c':
        m_document.setTerminator("\r\n");
        break;
    case 'x':
        m_damage.append({numberIn(wordAt(fields, 0), 2 * mostBytes),
                         static_cast<char>(numberIn(wordAt(fields, 1), 255))});
        break;
    default:
        m_document.write(line + m_document.terminator());
        break;
    }
}

void Builder::addSection(const QList<QByteArray>& fields)
{
    const QByteArray left = wordAt(fields, 0);
    const QByteArray size = wordAt(fields, 1);
    const QByteArray digest = wordAt(fields, 3);
    SectionSpec section;
    section.title = QString::number(m_document.sections().size());
    const int start = m_regionStart - (isWritten(left) ? 0 : shiftIn(left.mid(1)));
    section.regionStart = std::max(0, std::min(start, m_document.position()));
    if (isWritten(left))
        section.with("left", written(left));
    if (isWritten(size)) {
        section.with("size", written(size));
    } else if (size.size() > 1) {
        // To the end of the marker, but for a few bytes: its length is not known before.
        constexpr int markerSize = 220;
        const int right = m_document.position() + markerSize - *section.regionStart;
        section.regionSize = std::max(0, right + shiftIn(size.mid(1)));
    }
    section.with("previousmarker", previousMarker(wordAt(fields, 2)));
    if (digest != "r")
        section.with("md5section", digest == "-" ? QByteArray() : QByteArray(32, 'a'));
    m_document.writeSection(section);
    m_regionStart = m_document.position();
}

QByteArray Builder::previousMarker(const QByteArray& word) const
{
    const int count = int(m_document.sections().size());
    if (isWritten(word) || (count == 0 && !word.startsWith('k')))
        return isWritten(word) ? written(word) : QByteArray();
    int back = 1;
    int signAt = 1;
    if (word.startsWith('k')) {
        while (signAt < word.size() && word.at(signAt) != '+' && word.at(signAt) != '-')
            ++signAt;
        back = numberIn(word.mid(1, signAt - 1), count);
    }
    const int target = back == 0 || count == 0 ? lineStart()
                                               : m_document.sections().at(count - back).lineStart;
    return QByteArray::number(std::max(0, lineStart() - target + shiftIn(word.mid(signAt))));
}

void Builder::addFile(const QList<QByteArray>& fields)
{
    const QByteArray method = wordAt(fields, 0);
    const int number = int(m_document.files().size());
    FileSpec file = FileSpec::plain(QStringLiteral("file ") + QString::number(number),
                                    contentOf(numberIn(wordAt(fields, 1), 20000), number));
    QByteArray stored = file.content;
    if (method != "n" && method != "g") {
        file.compression = "flate";
        stored = tresktest::deflated(stored);
        if (method == "t")
            stored.chop(5);
        if (method == "d")
            stored[stored.size() / 2] = static_cast<char>(~stored.at(stored.size() / 2));
        file.stored = stored;
    } else if (method == "g") {
        file.compression = "gzip";
    }
    const auto terminator = m_document.terminator().size();
    file.with("filesize", field(wordAt(fields, 2), file.content.size()))
        .with("cfilesize", field(wordAt(fields, 3), stored.size()))
        .with("blocksize", field(wordAt(fields, 4), stored.size() + 2 * terminator))
        .with("offset", field(wordAt(fields, 5), terminator));
    const QByteArray digest = wordAt(fields, 6);
    if (digest != "r") {
        const QByteArray value = digest == "-" ? QByteArray() : QByteArray(32, 'a');
        if (digest != "c")
            file.with("md5cfile", value);
        if (digest != "s")
            file.with("md5file", value);
    }
    m_document.writeFile(file);
}

QByteArray Builder::finished() const
{
    QByteArray document = m_document.bytes();
    for (const QPair<int, char>& damage : m_damage) {
        const int place = m_headerSize + damage.first;
        if (place < document.size())
            document[place] = damage.second;
    }
    return document;
}

} // namespace

QByteArray scriptedDocument(const QByteArray& script)
{
    Builder builder;
    const QList<QByteArray> lines = script.split('\n');
    for (const QByteArray& line : lines.mid(0, mostElements))
        builder.addLine(line);
    return builder.finished();
}

QList<QByteArray> words(const QByteArray& line)
{
    QList<QByteArray> result;
    const QList<QByteArray> parts = line.split(' ');
    for (const QByteArray& part : parts) {
        if (!part.isEmpty())
            result.append(part);
    }
    return result;
}

int numberIn(const QByteArray& word, int most)
{
    int number = 0;
    for (const char c : word) {
        if (c < '0' || c > '9')
            return 0;
        number = std::min(number * 10 + (c - '0'), most);
    }
    return number;
}

} // namespace tresk_fuzz
