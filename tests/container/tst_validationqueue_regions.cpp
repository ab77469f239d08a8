#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "QueueEvents.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QTest>

#include <limits>

using tresk::TreskParser;
using tresk::ValidationQueue;
using tresktest::DocumentWriter;
using tresktest::finish;
using tresktest::flate;
using tresktest::md5Hex;
using tresktest::plain;
using tresktest::QueueEvents;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::twoLines;
using tresktest::verdicts;
using tresktest::WrittenSection;

namespace {

const int largest = std::numeric_limits<int>::max();

QByteArray number(qint64 value)
{
    return QByteArray::number(value);
}

SectionSpec section()
{
    SectionSpec spec;
    spec.title = QStringLiteral("step");
    return spec;
}

/// A section with something on both sides of its marker.
SectionSpec aroundMarker()
{
    SectionSpec spec = section();
    spec.files = {plain(twoLines)};
    spec.filesBehind = {flate(twoLines)};
    spec.trailing = "%behind\n";
    return spec;
}

} // namespace

Q_DECLARE_METATYPE(tresktest::SectionSpec)

/// Which sections are found to be valid, and which are not.
class TestValidationQueueRegions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void validSections_data();
    void validSections();
    void invalidSections_data();
    void invalidSections();
    void changedByte();
    void regionsThatOverlap();
    void regionInFrontOfItsMarker();
    void regionOutsideTheDocument_data();
    void regionOutsideTheDocument();
    void regionReachesBeyondTheDocument();
    void regionEndsAtThePlaceOfItsTag_data();
    void regionEndsAtThePlaceOfItsTag();
    void regionEndsInsideItsMarkerLine();

private:
    /// Opens @p document and checks all that is in it with blocks of @p blockSize.
    QString check(const QByteArray& document, int blockSize)
    {
        TreskParser parser;
        if (!parser.open(m_dir.write(QStringLiteral("document"), document)))
            return QStringLiteral("not opened");
        ValidationQueue queue(&parser, blockSize);
        QueueEvents events(queue);
        QList<int> sections;
        for (int i = 0; i < parser.getNumSections(); ++i)
            sections.append(i);
        QList<int> files;
        for (int i = 0; i < parser.getNumFiles(); ++i)
            files.append(i);
        queue.addValidatees(files, sections);
        return verdicts(finish(queue, events)).join(QStringLiteral(", "));
    }

    TestDir m_dir;
};

void TestValidationQueueRegions::validSections_data()
{
    QTest::addColumn<SectionSpec>("spec");
    QTest::addColumn<QByteArray>("terminator");
    const auto row = [](const char* name, const SectionSpec& spec) {
        QTest::addRow("%s", name) << spec << QByteArray("\n");
        QTest::addRow("%s, carriage returns", name) << spec << QByteArray("\r\n");
    };
    row("marker alone", section());
    row("marker in the middle", aroundMarker());
    SectionSpec spec = section();
    spec.files = {plain(twoLines), flate(twoLines)};
    row("marker at the end", spec);
    spec = section();
    spec.filesBehind = {plain(twoLines), flate(twoLines)};
    row("marker at the start", spec);
    spec = aroundMarker();
    spec.afterMarker = "text behind the marker";
    row("text behind the marker", spec);
    spec.beforeMarker = "%%EOF";
    row("text in front of the marker", spec);
    spec = aroundMarker();
    spec.title = QStringLiteral("\u00e4\u6587\U0001f600");
    row("text that is not ASCII", spec);
    spec = aroundMarker();
    spec.title = QStringLiteral("[md5section:] \\ ]\n");
    row("text that is escaped", spec);
    spec = aroundMarker();
    spec.trailing += QByteArray("\0\n\xff", 3);
    row("binary data", spec);
}

void TestValidationQueueRegions::validSections()
{
    QFETCH(SectionSpec, spec);
    QFETCH(QByteArray, terminator);
    DocumentWriter doc;
    doc.setTerminator(terminator);
    doc.writeHeader();
    doc.writeSection(spec);
    for (const int blockSize : {1, 2, 3, 64, 100000, largest}) {
        const QString result = check(doc.bytes(), blockSize);
        QVERIFY2(result.startsWith(QStringLiteral("section 0 valid")), qPrintable(result));
    }
}

void TestValidationQueueRegions::invalidSections_data()
{
    QTest::addColumn<SectionSpec>("spec");
    const auto row = [](const char* name, const char* key, const QByteArray& value) {
        QTest::newRow(name) << aroundMarker().with(key, value);
    };
    row("no digest", "md5section", "");
    row("wrong digest", "md5section", QByteArray(32, 'a'));
    row("digest of nothing", "md5section", md5Hex(""));
    row("no size", "size", "");
    row("size 0", "size", "0");
    row("size 1", "size", "1");
    row("size larger than the document", "size", "100000");
    row("largest size", "size", number(largest));
    row("size that does not fit", "size", "2147483648");
    row("no left", "left", "");
    row("left 0", "left", "0");
    row("left 1", "left", "1");
    row("left beyond the start of the document", "left", "100000");
    row("largest left", "left", number(largest));
    row("left that does not fit", "left", "2147483648");
    QTest::newRow("neither left nor size") << aroundMarker().with("left", "").with("size", "");
    QTest::newRow("left 0 and size 0") << aroundMarker().with("left", "0").with("size", "0");
    QTest::newRow("largest left and size")
        << aroundMarker().with("left", number(largest)).with("size", number(largest));
}

void TestValidationQueueRegions::invalidSections()
{
    QFETCH(SectionSpec, spec);
    DocumentWriter doc;
    doc.writeHeader();
    doc.writeSection(spec);
    const int blockSize = 1 << 20; // some sizes are very large
    QCOMPARE(check(doc.bytes(), blockSize),
             QStringLiteral("section 0 invalid, file 0 valid, file 1 valid"));
}

void TestValidationQueueRegions::changedByte()
{
    DocumentWriter doc;
    doc.writeHeader();
    const WrittenSection written = doc.writeSection(aroundMarker());
    const QByteArray valid = QByteArray("section 0 valid");
    QVERIFY(check(doc.bytes(), 50).startsWith(QString::fromLatin1(valid)));
    const auto digest = static_cast<int>(doc.bytes().indexOf(written.md5section));
    const auto title = static_cast<int>(doc.bytes().indexOf("step", written.lineStart));
    const int lineEnd = written.lineStart + static_cast<int>(written.line.size()) - 1;
    const int inFront = static_cast<int>(doc.bytes().indexOf(twoLines));
    for (const int position : {inFront, title, digest, written.regionEnd - 2}) {
        QByteArray damaged = doc.bytes();
        damaged[position] = damaged.at(position) == 'a' ? 'b' : 'a';
        const QString result = check(damaged, 50);
        QVERIFY2(result.startsWith(QStringLiteral("section 0 invalid")), qPrintable(result));
    }
    QByteArray damaged = doc.bytes();
    damaged.insert(lineEnd, ' ');
    QVERIFY(check(damaged, 50).startsWith(QStringLiteral("section 0 invalid")));
    // Outside the region nothing matters.
    QVERIFY(check(doc.bytes() + "behind", 50).startsWith(QString::fromLatin1(valid)));
}

void TestValidationQueueRegions::regionsThatOverlap()
{
    DocumentWriter doc;
    doc.writeHeader();
    doc.writeSection(aroundMarker());
    SectionSpec whole = section();
    whole.regionStart = 0;
    doc.writeSection(whole);
    QCOMPARE(check(doc.bytes(), 30),
             QStringLiteral("section 1 valid, section 0 valid, file 0 valid, file 1 valid"));
}

void TestValidationQueueRegions::regionInFrontOfItsMarker()
{
    // A region that does not reach its marker is hashed without the tag.
    DocumentWriter doc;
    doc.writeHeader();
    const QByteArray start = doc.bytes().left(10);
    SectionSpec spec = section();
    spec.regionStart = 0;
    spec.regionSize = 10;
    doc.writeSection(spec.with("md5section", md5Hex(start)));
    for (const int blockSize : {3, 10, 100})
        QCOMPARE(check(doc.bytes(), blockSize), QStringLiteral("section 0 valid"));
}

void TestValidationQueueRegions::regionOutsideTheDocument_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("in front") << number(largest) << QByteArray("20");
    QTest::newRow("behind") << QByteArray() << number(largest);
}

void TestValidationQueueRegions::regionOutsideTheDocument()
{
    // Reads as nothing, but the digest of nothing is none of the region.
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, size);
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec spec = section().with("left", left).with("size", size);
    doc.writeSection(spec.with("md5section", md5Hex("")));
    QCOMPARE(check(doc.bytes(), 1 << 30), QStringLiteral("section 0 invalid"));
}

void TestValidationQueueRegions::regionReachesBeyondTheDocument()
{
    // The digest is that of all there is of the region.
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec spec = section();
    spec.regionStart = 0;
    spec.regionSize = 5000;
    doc.writeSection(spec);
    for (const int blockSize : {1, 100, 100000})
        QCOMPARE(check(doc.bytes(), blockSize), QStringLiteral("section 0 invalid"));
}

void TestValidationQueueRegions::regionEndsAtThePlaceOfItsTag_data()
{
    QTest::addColumn<int>("regionStart");
    QTest::addColumn<int>("size");
    QTest::newRow("something in front") << 0 << -1;
    QTest::newRow("nothing in front") << -1 << 1;
}

void TestValidationQueueRegions::regionEndsAtThePlaceOfItsTag()
{
    // The digest would fit: it is that of the region's bytes and the tag.
    QFETCH(int, regionStart);
    QFETCH(int, size);
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec spec = section();
    spec.regionStart = regionStart < 0 ? doc.position() : regionStart;
    spec.regionSize = size < 0 ? doc.position() + 1 : size;
    doc.writeSection(spec);
    for (const int blockSize : {1, 7, 100000})
        QCOMPARE(check(doc.bytes(), blockSize), QStringLiteral("section 0 invalid"));
}

void TestValidationQueueRegions::regionEndsInsideItsMarkerLine()
{
    // The tag counts as a whole.
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec spec = section();
    spec.regionStart = 0;
    spec.regionSize = doc.position() + 40;
    doc.writeSection(spec);
    for (const int blockSize : {1, 7, 100000})
        QCOMPARE(check(doc.bytes(), blockSize), QStringLiteral("section 0 valid"));
}

QTEST_GUILESS_MAIN(TestValidationQueueRegions)

#include "tst_validationqueue_regions.moc"
