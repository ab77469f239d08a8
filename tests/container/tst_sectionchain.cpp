#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>

#include <QTest>

using tresk::SectionTag;
using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::newDocument;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::WrittenSection;

namespace {

SectionSpec titled(const char* title)
{
    SectionSpec section;
    section.title = QString::fromLatin1(title);
    return section;
}

/// @p count lines of ten bytes.
QByteArray lines(int count)
{
    return QByteArray("% a line.\n").repeated(count);
}

const int lineLength = 10;

} // namespace

/// How the newest section is found, and from it the older ones.
class TestSectionChain : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lastMarkerIsTheNewest();
    void markersOutsideTheChain();
    void markerBehindLongTail();
    void malformedMarkersAreSkipped();
    void markerWithNulByteIsSkipped();
    void textBeforeMarker_data();
    void textBeforeMarker();
    void textBeforeOlderMarker();
    void strictFindsOlderMarker();
    void firstOccurrenceOnALine_data();
    void firstOccurrenceOnALine();
    void shiftedByBytes_data();
    void shiftedByBytes();
    void shiftedByLines_data();
    void shiftedByLines();
    void neighbourhoodTakesFirstFromTheTop();
    void neighbourhoodFindsMarkerBehindText();
    void neighbourhoodSkipsNulBytes();
    void neighbourhoodAtTheStart();
    void neighbourhoodMayFindAnotherStep();
    void targetLineWithNulByte();
    void malformedTarget();
    void chainEndsWithoutPrevious();
    void chainEndsAtCycle_data();
    void chainEndsAtCycle();
    void chainThatFindsItselfNearby();
    void pointerOutsideFromBehindText_data();
    void pointerOutsideFromBehindText();
    void onlyThePlaceOfThePreviousCounts();

private:
    /// The titles of the sections that a parser of @p mode lists, newest first.
    QStringList titles(const DocumentWriter& doc, tresk::ParseMode mode = tresk::ParseTolerant)
    {
        return titles(doc.bytes(), mode);
    }
    QStringList titles(const QByteArray& bytes, tresk::ParseMode mode = tresk::ParseTolerant)
    {
        TreskParser parser(mode);
        if (!parser.open(m_dir.write(QStringLiteral("document"), bytes)))
            return {QStringLiteral("(could not be opened)")};
        QStringList list;
        const QList<SectionTag> sections = parser.getSections();
        for (const SectionTag& section : sections)
            list.append(section.title);
        return list;
    }

    static QStringList list(std::initializer_list<const char*> titles)
    {
        QStringList result;
        for (const char* title : titles)
            result.append(QString::fromLatin1(title));
        return result;
    }

    TestDir m_dir;
};

void TestSectionChain::lastMarkerIsTheNewest()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    doc.write(lines(20));
    doc.writeSection(titled("b"));
    doc.writeSection(titled("c"));
    doc.write("startxref\n0\n%%EOF\n");
    QCOMPARE(titles(doc), list({"c", "b", "a"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"c", "b", "a"}));
}

void TestSectionChain::markersOutsideTheChain()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("lost"));
    SectionSpec first = titled("first");
    first.chainStart = true;
    doc.writeSection(first);
    doc.writeSection(titled("second"));
    QCOMPARE(titles(doc), list({"second", "first"}));
}

void TestSectionChain::markerBehindLongTail()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    doc.writeSection(titled("b"));
    doc.write(QByteArray(700000, 'x') + '\n' + lines(20000) + QByteArray(30000, '\0'));
    QCOMPARE(titles(doc), list({"b", "a"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"b", "a"}));
}

void TestSectionChain::malformedMarkersAreSkipped()
{
    DocumentWriter doc = newDocument();
    const SectionSpec sound = titled("a");
    doc.writeSection(sound);
    DocumentWriter continued = doc;
    continued.writeSection(titled("b").with("left", "-5"));
    continued.writeSection(titled("c").with("md5section", "123"));
    continued.writeSection(titled("d").with("title", "x]y"));
    QCOMPARE(titles(continued), list({"a"}));
    QCOMPARE(titles(continued, tresk::ParseStrict), list({"a"}));
}

void TestSectionChain::markerWithNulByteIsSkipped()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    SectionSpec nul = titled("b");
    nul.afterMarker = QByteArray(1, '\0');
    doc.writeSection(nul);
    QCOMPARE(titles(doc), list({"a"}));
}

void TestSectionChain::textBeforeMarker_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("tolerant");
    QTest::newRow("end of a PDF") << QByteArray("%%EOF") << 1;
    QTest::newRow("blank") << QByteArray(" ") << 1;
    QTest::newRow("carriage return") << QByteArray("%%EOF\r") << 1;
    QTest::newRow("not UTF-8") << QByteArray("\xff\xc3") << 1;
    QTest::newRow("two-unit characters") << QByteArray("\xf0\x9f\x98\x80") << 1;
    QTest::newRow("long") << QByteArray(100000, 'x') << 1;
    QTest::newRow("NUL byte") << QByteArray(1, '\0') << 0;
}

void TestSectionChain::textBeforeMarker()
{
    QFETCH(QByteArray, text);
    QFETCH(int, tolerant);
    DocumentWriter doc = newDocument();
    SectionSpec section = titled("a");
    section.beforeMarker = text;
    const WrittenSection written = doc.writeSection(section);
    QCOMPARE(titles(doc, tresk::ParseStrict), QStringList());

    TreskParser parser;
    QVERIFY(parser.open(m_dir.write(QStringLiteral("document"), doc.bytes())));
    QCOMPARE(parser.getNumSections(), tolerant);
    if (tolerant == 1) {
        // The position is that of the line; the length that of the marker alone.
        QCOMPARE(parser.getSection(0)->pos, written.lineStart + 1);
        QCOMPARE(parser.getSection(0)->tagLength, int(written.marker.size()) - 1);
        QCOMPARE(parser.getSection(0)->validationTag, written.validationTag);
    }
}

void TestSectionChain::textBeforeOlderMarker()
{
    DocumentWriter doc = newDocument();
    SectionSpec glued = titled("a");
    glued.beforeMarker = "%%EOF";
    doc.writeSection(glued);
    doc.writeSection(titled("b"));
    QCOMPARE(titles(doc), list({"b", "a"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"b"}));
}

void TestSectionChain::strictFindsOlderMarker()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    SectionSpec glued = titled("b");
    glued.beforeMarker = "%%EOF";
    doc.writeSection(glued);
    QCOMPARE(titles(doc), list({"b", "a"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"a"}));
}

void TestSectionChain::firstOccurrenceOnALine_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<int>("count");
    QTest::newRow("nothing") << QByteArray() << 1;
    QTest::newRow("broken marker at the start") << QByteArray("%<--! $TRESK_SECTION broken") << 0;
    QTest::newRow("broken marker behind text") << QByteArray("x%<--! $TRESK_SECTION broken") << 0;
    QTest::newRow("other marker") << QByteArray("%<--! $TRESK_EMBEDDEDFILE_BEGIN ") << 1;
}

void TestSectionChain::firstOccurrenceOnALine()
{
    QFETCH(QByteArray, before);
    QFETCH(int, count);
    DocumentWriter doc = newDocument();
    SectionSpec section = titled("a");
    section.beforeMarker = before;
    doc.writeSection(section);
    QCOMPARE(titles(doc).size(), count);
}

void TestSectionChain::shiftedByBytes_data()
{
    QTest::addColumn<int>("shift");
    for (const int shift : {-15, -9, -1, 0, 1, 9, 10, 15, 40})
        QTest::addRow("%d bytes", shift) << shift;
}

void TestSectionChain::shiftedByBytes()
{
    QFETCH(int, shift);
    DocumentWriter doc = newDocument();
    doc.write(lines(12));
    doc.writeSection(titled("a"));
    doc.write(lines(12));
    SectionSpec section = titled("b");
    section.previousShift = shift;
    doc.writeSection(section);
    QCOMPARE(titles(doc), list({"b", "a"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), shift == 0 ? list({"b", "a"}) : list({"b"}));
}

void TestSectionChain::shiftedByLines_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<bool>("found");
    for (int count = -6; count <= 6; ++count)
        QTest::addRow("%d lines", count) << count << (count >= -4 && count <= 4);
}

void TestSectionChain::shiftedByLines()
{
    // The line that previousmarker leads to is that many lines before the marker.
    QFETCH(int, lines);
    QFETCH(bool, found);
    DocumentWriter doc = newDocument();
    doc.write(::lines(12));
    const WrittenSection first = doc.writeSection(titled("a"));
    doc.write(::lines(12));
    SectionSpec section = titled("b");
    section.previousShift = lines * lineLength;
    if (lines < 0)
        section.previousShift -= int(first.line.size()) - lineLength;
    const WrittenSection second = doc.writeSection(section);

    const int target = second.lineStart - second.previousmarker;
    QCOMPARE(doc.bytes().at(target - 1), '\n');
    const QStringList expected = found ? list({"b", "a"}) : list({"b"});
    QCOMPARE(titles(doc), expected);
    QCOMPARE(titles(doc, tresk::ParseStrict), lines == 0 ? list({"b", "a"}) : list({"b"}));
}

void TestSectionChain::neighbourhoodTakesFirstFromTheTop()
{
    DocumentWriter doc = newDocument();
    doc.write(lines(10));
    doc.writeSection(titled("above"));
    doc.write(lines(1));
    const int target = doc.position();
    doc.write(lines(1));
    SectionSpec below = titled("below");
    below.chainStart = true;
    const WrittenSection nearest = doc.writeSection(below);
    doc.write(lines(10));
    SectionSpec section = titled("last");
    section.previousShift = nearest.lineStart - target;
    doc.writeSection(section);
    QCOMPARE(titles(doc), list({"last", "above"}));
}

void TestSectionChain::neighbourhoodFindsMarkerBehindText()
{
    DocumentWriter doc = newDocument();
    doc.write(lines(10));
    SectionSpec glued = titled("a");
    glued.beforeMarker = "%%EOF";
    const WrittenSection first = doc.writeSection(glued);
    doc.write(lines(10));
    SectionSpec section = titled("b");
    section.previousShift = 2 * lineLength;
    doc.writeSection(section);

    TreskParser parser;
    QVERIFY(parser.open(m_dir.write(QStringLiteral("document"), doc.bytes())));
    QCOMPARE(parser.getNumSections(), 2);
    QCOMPARE(parser.getSection(1)->title, QStringLiteral("a"));
    QCOMPARE(parser.getSection(1)->pos, first.lineStart + 1);
    QCOMPARE(parser.getSection(1)->validationTag, first.validationTag);
}

void TestSectionChain::neighbourhoodSkipsNulBytes()
{
    DocumentWriter doc = newDocument();
    doc.write(lines(10));
    SectionSpec nul = titled("unreadable");
    nul.beforeMarker = QByteArray("a\0b", 3);
    doc.writeSection(nul);
    SectionSpec readable = titled("a");
    readable.chainStart = true;
    doc.writeSection(readable);
    doc.write(lines(10));
    SectionSpec section = titled("b");
    section.previousShift = -1;
    doc.writeSection(section);
    QCOMPARE(titles(doc), list({"b", "a"}));
}

void TestSectionChain::neighbourhoodAtTheStart()
{
    // Fewer than four lines before the target: the search begins at the first line.
    DocumentWriter doc;
    doc.writeHeader();
    doc.writeSection(titled("a"));
    doc.write(lines(10));
    SectionSpec section = titled("b");
    section.previousShift = 1;
    doc.writeSection(section);
    QCOMPARE(titles(doc), list({"b", "a"}));
}

void TestSectionChain::neighbourhoodMayFindAnotherStep()
{
    // The nearest marker wins, whatever step it belongs to.
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    doc.write(lines(10));
    const int betweenSections = doc.position();
    doc.write(lines(1));
    doc.writeSection(titled("b"));
    doc.write(lines(10));
    SectionSpec section = titled("c");
    section.previousShift = doc.sections().at(1).lineStart - betweenSections;
    doc.writeSection(section);
    QCOMPARE(titles(doc), list({"c", "b", "a"}));
}

void TestSectionChain::targetLineWithNulByte()
{
    DocumentWriter doc = newDocument();
    doc.write(lines(10));
    const WrittenSection first = doc.writeSection(titled("a"));
    const int target = doc.position();
    doc.write(QByteArray("a\0b\n", 4) + lines(10));
    SectionSpec section = titled("b");
    section.previousShift = first.lineStart - target;
    doc.writeSection(section);
    QCOMPARE(titles(doc), list({"b", "a"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"b"}));
}

void TestSectionChain::malformedTarget()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    doc.write(lines(10));
    doc.writeSection(titled("broken").with("size", "x"));
    doc.write(lines(10));
    doc.writeSection(titled("b"));
    QCOMPARE(titles(doc), list({"b"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"b"}));
}

void TestSectionChain::chainEndsWithoutPrevious()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    doc.writeSection(titled("b").with("previousmarker", ""));
    doc.writeSection(titled("c"));
    QCOMPARE(titles(doc), list({"c", "b"}));
}

void TestSectionChain::chainEndsAtCycle_data()
{
    QTest::addColumn<QByteArray>("previous");
    QTest::newRow("itself") << QByteArray("0");
    QTest::newRow("zeros") << QByteArray("000");
    QTest::newRow("before the document") << QByteArray("1000000");
    QTest::newRow("far before the document") << QByteArray("2147483647");
    QTest::newRow("number that does not fit") << QByteArray("2147483648");
    QTest::newRow("huge number") << QByteArray(1000, '9');
}

void TestSectionChain::chainEndsAtCycle()
{
    QFETCH(QByteArray, previous);
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    doc.write(lines(10));
    doc.writeSection(titled("b").with("previousmarker", previous));
    doc.writeSection(titled("c"));
    QCOMPARE(titles(doc), list({"c", "b"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"c", "b"}));
}

void TestSectionChain::chainThatFindsItselfNearby()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a"));
    doc.write(lines(20));
    doc.writeSection(titled("b").with("previousmarker", QByteArray::number(2 * lineLength)));
    QCOMPARE(titles(doc), list({"b"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"b"}));
}

void TestSectionChain::pointerOutsideFromBehindText_data()
{
    QTest::addColumn<int>("linesBefore");
    QTest::addColumn<bool>("found");
    QTest::newRow("1 line before") << 1 << true;
    QTest::newRow("5 lines before") << 5 << true;
    QTest::newRow("6 lines before") << 6 << false;
}

/// Nothing was read at a target then: the search begins where the newest marker was found, from
/// behind, and so a line further up than otherwise.
void TestSectionChain::pointerOutsideFromBehindText()
{
    QFETCH(int, linesBefore);
    QFETCH(bool, found);
    DocumentWriter doc = newDocument();
    doc.write(lines(10));
    doc.writeSection(titled("a"));
    doc.write(lines(linesBefore - 1));
    SectionSpec section = titled("b").with("previousmarker", "1000000");
    section.beforeMarker = "%%EOF";
    doc.writeSection(section);
    QCOMPARE(titles(doc), found ? list({"b", "a"}) : list({"b"}));
}

void TestSectionChain::onlyThePlaceOfThePreviousCounts()
{
    DocumentWriter doc = newDocument();
    doc.writeSection(titled("a").with("index", "7"));
    doc.write(lines(20));
    doc.writeSection(titled("b").with("index", "7").with("previousmd5", QByteArray(32, 'f')));
    QCOMPARE(titles(doc), list({"b", "a"}));
    QCOMPARE(titles(doc, tresk::ParseStrict), list({"b", "a"}));
}

QTEST_GUILESS_MAIN(TestSectionChain)

#include "tst_sectionchain.moc"
