#include "RandomDocument.h"

#include "DocumentWriter.h"

#include <QRandomGenerator>
#include <QStringList>

namespace tresktest {

namespace {

/// Makes choices.
class Dice {
public:
    explicit Dice(QRandomGenerator& random)
        : m_random(random)
    {
    }

    /// From @p from to @p to, both included.
    int number(int from, int to) { return m_random.bounded(from, to + 1); }
    bool oneIn(int count) { return m_random.bounded(count) == 0; }

    template <typename List>
    typename List::value_type from(const List& list)
    {
        return list.at(number(0, static_cast<int>(list.size()) - 1));
    }

    QRandomGenerator& generator() { return m_random; }

private:
    QRandomGenerator& m_random;
};

const QList<QByteArray>& fragments()
{
    static const QList<QByteArray> list = {
        "\n",
        "\r\n",
        "\r",
        QByteArray(1, '\0'),
        "\xef\xbb\xbf", // a byte order mark
        "\xf0\x9f\x98\x80", // a character of two UTF-16 code units
        "\xc3\xa4",
        "\xe2\x82", // a character cut off
        "\xff",
        "\xed\xa0\x80", // a surrogate, which UTF-8 does not have
        "]",
        "\\",
        "\\]",
        "[",
        "0",
        "-1",
        "-->",
        "%<--! $TRESK_SECTION",
        "%<--! $TRESK_EMBEDDEDFILE_BEGIN",
        "%<--! $TRESK_PDF [version:1.0]",
        "[md5section:]",
    };
    return list;
}

QString randomText(Dice& dice)
{
    static const QStringList parts = {
        QStringLiteral("a"),      QStringLiteral("report"),
        QStringLiteral(" "),      QStringLiteral("]"),
        QStringLiteral("["),      QStringLiteral("\\"),
        QStringLiteral("\n"),     QStringLiteral("n"),
        QStringLiteral("-->"),    QStringLiteral("\u00e4"),
        QStringLiteral("\u20ac"), QStringLiteral("\U0001f600"),
        QStringLiteral("\r"),     QStringLiteral("[md5section:]"),
    };
    QString text;
    for (int i = dice.number(0, 6); i > 0; --i)
        text += dice.from(parts);
    return text;
}

/// A text value that may be malformed.
QByteArray randomRawText(Dice& dice)
{
    QByteArray text;
    for (int i = dice.number(0, 3); i > 0; --i)
        text += dice.from(fragments());
    return text;
}

QByteArray randomNumber(Dice& dice)
{
    static const QList<QByteArray> numbers = {
        "", "0", "1", "007", "-5", "12a", "300", "2147483647", "2147483648", "99999999999999"};
    return dice.from(numbers);
}

/// A few lines of host text.
QByteArray randomLines(Dice& dice)
{
    QByteArray lines;
    for (int i = dice.number(0, 8); i > 0; --i) {
        lines += dice.oneIn(10) ? dice.from(fragments()) : QByteArray(dice.number(0, 30), 'h');
        lines += '\n';
    }
    return lines;
}

FileSpec randomFile(Dice& dice)
{
    FileSpec file;
    file.filename = randomText(dice);
    if (dice.oneIn(3))
        file.comment = randomText(dice);
    file.content = randomBytes(dice.generator(), dice.number(0, dice.oneIn(5) ? 900 : 60));
    if (dice.oneIn(2))
        file.compression = "flate";
    else if (dice.oneIn(8))
        file.compression = "gzip";
    if (dice.oneIn(8))
        file.gap = randomLines(dice);
    if (dice.oneIn(8))
        file.afterMarker = dice.from(fragments());
    if (dice.oneIn(8))
        file.trailing = dice.from(fragments());
    if (dice.oneIn(12))
        file.stored = randomBytes(dice.generator(), dice.number(0, 40));
    static const QList<QByteArray> keys = {"filesize", "cfilesize", "blocksize", "offset"};
    if (dice.oneIn(8))
        file.with(dice.from(keys), randomNumber(dice));
    if (dice.oneIn(10))
        file.with("desc", randomRawText(dice));
    return file;
}

QVector<FileSpec> randomFiles(Dice& dice, int most)
{
    QVector<FileSpec> files;
    for (int i = dice.number(0, most); i > 0; --i)
        files.append(randomFile(dice));
    return files;
}

SectionSpec randomSection(Dice& dice, int position)
{
    SectionSpec section;
    section.title = randomText(dice);
    section.files = randomFiles(dice, 3);
    if (dice.oneIn(4))
        section.filesBehind = randomFiles(dice, 2);
    if (dice.oneIn(4))
        section.gap = randomLines(dice);
    if (dice.oneIn(5))
        section.beforeMarker = dice.oneIn(2) ? QByteArray("%%EOF") : dice.from(fragments());
    if (dice.oneIn(8))
        section.afterMarker = dice.from(fragments());
    if (dice.oneIn(4))
        section.trailing = randomLines(dice);
    if (dice.oneIn(8))
        section.regionStart = dice.number(0, position);
    if (dice.oneIn(8))
        section.regionSize = dice.number(0, 400);
    if (dice.oneIn(3))
        section.previousShift = dice.oneIn(2) ? dice.number(-12, 12) : dice.number(-700, 700);
    if (dice.oneIn(12))
        section.chainStart = true;
    static const QList<QByteArray> keys = {"left", "size", "index", "previousmarker"};
    if (dice.oneIn(10))
        section.with(dice.from(keys), randomNumber(dice));
    if (dice.oneIn(10))
        section.with("creator", randomRawText(dice));
    if (dice.oneIn(10))
        section.with("md5section", "");
    return section;
}

} // namespace

QByteArray randomBytes(QRandomGenerator& random, int size)
{
    static const QByteArray frequent("\n\0\r%a\xff\n", 7);
    QByteArray bytes;
    bytes.reserve(size);
    for (int i = 0; i < size; ++i) {
        const bool isFrequent = random.bounded(4) == 0;
        bytes += isFrequent ? frequent.at(random.bounded(static_cast<int>(frequent.size())))
                            : static_cast<char>(random.bounded(256));
    }
    return bytes;
}

QByteArray randomDocument(QRandomGenerator& random)
{
    Dice dice(random);
    DocumentWriter doc;
    if (dice.oneIn(4))
        doc.setTerminator("\r\n");
    for (int i = dice.oneIn(8) ? dice.number(8, 11) : dice.number(0, 3); i > 0; --i)
        doc.write("%\xe2\xe3\n");
    if (!dice.oneIn(20))
        doc.writeHeader(dice.oneIn(4) ? dice.from(fragments()) : QByteArray());
    doc.write(randomLines(dice));
    for (int i = dice.number(0, 5); i > 0; --i) {
        if (dice.oneIn(6))
            doc.writeFile(randomFile(dice));
        if (dice.oneIn(4))
            doc.write(randomLines(dice));
        doc.writeSection(randomSection(dice, doc.position()));
    }
    if (dice.oneIn(4))
        doc.write(randomLines(dice));
    return doc.bytes();
}

void mutate(QByteArray& document, QRandomGenerator& random)
{
    Dice dice(random);
    for (int i = dice.number(1, 3); i > 0 && !document.isEmpty(); --i) {
        const auto size = static_cast<int>(document.size());
        const int position = dice.number(0, size - 1);
        const int length = dice.oneIn(2) ? 1 : dice.number(1, 60);
        switch (dice.number(0, 6)) {
        case 0:
            document.remove(position, length);
            break;
        case 1:
            document.insert(position, document.mid(position, length));
            break;
        case 2:
            document.insert(position, dice.from(fragments()));
            break;
        case 3:
            document.insert(document.lastIndexOf('\n', position) + 1, dice.from(fragments()));
            break;
        case 4:
            document[position] = static_cast<char>(dice.number(0, 255));
            break;
        case 5: {
            int digit = position;
            while (digit < size && (document.at(digit) < '0' || document.at(digit) > '9'))
                ++digit;
            if (digit < size)
                document[digit] = static_cast<char>('0' + dice.number(0, 9));
            break;
        }
        default:
            document.truncate(position);
            break;
        }
    }
}

} // namespace tresktest
