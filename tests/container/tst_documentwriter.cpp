#include "DocumentRepair.h"
#include "DocumentWriter.h"

#include <QTest>

using namespace tresktest;

namespace {

const QByteArray zeros(32, '0');

/// The document that writer and test agree on, without its digests.
QByteArray withoutDigests(QByteArray bytes)
{
    for (auto key = bytes.indexOf("md5"); key >= 0; key = bytes.indexOf("md5", key + 1)) {
        const auto digest = bytes.indexOf(':', key) + 1;
        if (bytes.at(digest) != ']')
            bytes.replace(digest, 32, zeros);
    }
    return bytes;
}

QByteArray withFile(const FileSpec& file)
{
    DocumentWriter doc;
    doc.writeHeader();
    doc.writeFile(file);
    return doc.bytes();
}

QByteArray withSection(const FileSpec& file)
{
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section;
    section.files = {file};
    doc.writeSection(section);
    return doc.bytes();
}

/// Two sections without files, and what is between them.
QByteArray withSections(const QByteArray& between)
{
    DocumentWriter doc;
    doc.writeHeader();
    doc.writeSection({});
    doc.write(between);
    doc.writeSection({});
    return doc.bytes();
}

/// Stored in a stream in which every byte of it can be seen.
FileSpec visible(const QByteArray& content)
{
    FileSpec file = FileSpec::flate(QStringLiteral("file"), content);
    file.stored = deflated(content, 0);
    return file;
}

} // namespace

/// The writer's output, byte by byte, so that no test relies on a writer that is wrong; and that a
/// document which was changed and repaired is the one that the writer would have written.
class TestDocumentWriter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void header();
    void endLine();
    void file();
    void fileWithOtherCharacters();
    void section();
    void secondSection();
    void carriageReturns();
    void digestOfTheRegion();
    void sizeCountsItsOwnDigits();
    void continuedDocument();
    void rawFields();
    void escapes();
    void repair_data();
    void repair();
};

void TestDocumentWriter::header()
{
    DocumentWriter doc("%PDF-1.4\n");
    doc.writeHeader("[more]");
    QCOMPARE(doc.bytes(), QByteArray("%PDF-1.4\n%<--! $TRESK_PDF [version:1.0][more]\n"));
}

void TestDocumentWriter::endLine()
{
    DocumentWriter doc;
    doc.endLine();
    QCOMPARE(doc.bytes(), QByteArray());
    doc.write("x");
    doc.endLine();
    doc.endLine();
    QCOMPARE(doc.bytes(), QByteArray("x\n"));
}

void TestDocumentWriter::file()
{
    DocumentWriter doc("x\n");
    const WrittenFile written = doc.writeFile(FileSpec::plain(QStringLiteral("a]"), "abc"));
    const QByteArray marker =
        "%<--! $TRESK_EMBEDDEDFILE_BEGIN [filetype:data][filename:a\\]][desc:][comment:]"
        "[compression:none][filesize:3][cfilesize:3][blocksize:5][offset:1]"
        "[md5file:900150983cd24fb0d6963f7d28e17f72][md5cfile:]-->";
    QCOMPARE(doc.bytes(), QByteArray("x\n" + marker + "\nabc\n"));
    QCOMPARE(written.marker, marker);
    QCOMPARE(written.lineStart, 2);
    QCOMPARE(written.tagLength, int(marker.size()) - 1);
    QCOMPARE(written.dataStart, 2 + int(marker.size()) + 1);
    QCOMPARE(written.blockEnd, doc.position());
}

void TestDocumentWriter::fileWithOtherCharacters()
{
    DocumentWriter doc;
    doc.setTerminator("\r\n");
    FileSpec spec = FileSpec::plain(QStringLiteral("\u00e4\U0001f600"), "abc");
    spec.afterMarker = " text";
    const WrittenFile written = doc.writeFile(spec);
    // The first character has one byte more than it has units, the second has two.
    QCOMPARE(written.tagLength, int(written.marker.size()) - 3 - 1);
    QCOMPARE(written.offset, 3 + 5 + 2);
    QCOMPARE(written.blocksize, 3 + 5 + 2 + 3 + 2);
    QVERIFY(written.marker.contains("[filename:\xc3\xa4\xf0\x9f\x98\x80]"));
    QVERIFY(written.marker.contains("[blocksize:15][offset:10]"));
    QCOMPARE(1 + written.tagLength + written.offset, written.dataStart);
    QCOMPARE(1 + written.tagLength + written.blocksize, written.blockEnd);
    QCOMPARE(doc.bytes().mid(written.dataStart), QByteArray("abc\r\n"));
}

void TestDocumentWriter::section()
{
    DocumentWriter doc("x\n");
    SectionSpec spec;
    spec.title = QStringLiteral("a\nb\\");
    const WrittenSection written = doc.writeSection(spec);
    QCOMPARE(withoutDigests(doc.bytes()),
             QByteArray("x\n%<--! $TRESK_SECTION [version:1.0][creator:writer][title:a\\nb\\\\]"
                        "[left:1][size:171][index:0][md5section:"
                        + zeros + "][previousmd5:][previousmarker:]-->\n"));
    QCOMPARE(written.lineStart, 2);
    QCOMPARE(written.regionStart, 2);
    QCOMPARE(written.regionEnd, doc.position());
    QCOMPARE(written.line, doc.bytes().mid(2));
    QCOMPARE(written.marker + '\n', written.line);
    QCOMPARE(written.validationTag, withoutDigests(written.line).mid(1));
}

void TestDocumentWriter::secondSection()
{
    DocumentWriter doc("x\n");
    const WrittenSection first = doc.writeSection(SectionSpec());
    SectionSpec spec;
    spec.files = {FileSpec::plain(QStringLiteral("f"), "1")};
    spec.filesBehind = {FileSpec::plain(QStringLiteral("g"), "2")};
    spec.gap = "gap\n";
    spec.beforeMarker = "%%EOF";
    spec.trailing = "end\n";
    const WrittenSection second = doc.writeSection(spec);
    QCOMPARE(second.regionStart, first.regionEnd);
    QCOMPARE(second.files.size(), 2);
    QCOMPARE(second.files.at(0).lineStart, first.regionEnd + 4);
    QCOMPARE(second.lineStart, second.files.at(0).blockEnd);
    QVERIFY(second.line.startsWith("%%EOF%<--! $TRESK_SECTION "));
    QCOMPARE(second.files.at(1).lineStart, second.lineStart + int(second.line.size()));
    QCOMPARE(doc.bytes().mid(second.files.at(1).dataStart), QByteArray("2\nend\n"));
    QCOMPARE(second.regionEnd, doc.position());
    QVERIFY(second.marker.contains(
        "[left:" + QByteArray::number(second.lineStart + 1 - second.regionStart) + "]"));
    QVERIFY(second.marker.contains("[previousmd5:" + first.md5section + "]"));
    QVERIFY(second.marker.endsWith("[previousmarker:" + QByteArray::number(second.lineStart - 2)
                                   + "]-->"));
}

void TestDocumentWriter::carriageReturns()
{
    DocumentWriter doc;
    doc.setTerminator("\r\n");
    doc.writeHeader();
    doc.writeSection(SectionSpec());
    doc.writeFile(FileSpec::plain(QStringLiteral("f"), "1"));
    QCOMPARE(doc.bytes().count("\r\n"), doc.bytes().count('\n'));
    QCOMPARE(int(doc.bytes().count('\n')), 4);
    QVERIFY(doc.bytes().contains("[blocksize:5][offset:2]"));
}

void TestDocumentWriter::digestOfTheRegion()
{
    DocumentWriter doc("before\n");
    SectionSpec spec;
    spec.files = {FileSpec::flate(QStringLiteral("f"), "content")};
    spec.trailing = "rest\n";
    const WrittenSection written = doc.writeSection(spec);
    doc.write("behind\n");
    QByteArray region = doc.bytes().mid(7, written.regionEnd - 7);
    QVERIFY(region.endsWith("rest\n"));
    const QByteArray digest = "[md5section:" + written.md5section + ']';
    QCOMPARE(int(region.count(digest)), 1);
    region.replace(digest, "[md5section:" + zeros + ']');
    QCOMPARE(written.md5section, md5Hex(region));
}

void TestDocumentWriter::sizeCountsItsOwnDigits()
{
    for (int length = 0; length < 1200; ++length) {
        DocumentWriter doc;
        SectionSpec spec;
        spec.trailing = QByteArray(length, 'x');
        const WrittenSection written = doc.writeSection(spec);
        QCOMPARE(written.regionEnd, doc.position());
        QVERIFY(written.marker.contains("[size:" + QByteArray::number(doc.position()) + "]"));
    }
}

void TestDocumentWriter::continuedDocument()
{
    DocumentWriter whole("x\n");
    SectionSpec spec;
    spec.title = QStringLiteral("a][index:5][md5section:");
    whole.writeSection(spec);
    DocumentWriter continued(whole.bytes());
    whole.writeSection(spec);
    continued.writeSection(spec);
    QCOMPARE(continued.bytes(), whole.bytes());
    QVERIFY(continued.sections().at(0).marker.contains("][index:1]"));
}

void TestDocumentWriter::rawFields()
{
    DocumentWriter doc;
    const WrittenSection section = doc.writeSection(
        SectionSpec().with("left", "-5").with("title", "a]b").with("md5section", ""));
    QVERIFY(section.marker.contains("[title:a]b][left:-5]"));
    QVERIFY(section.marker.contains("[md5section:][previousmd5:]"));
    QVERIFY(section.validationTag.contains("[md5section:" + zeros + "]"));
    const WrittenFile file = doc.writeFile(FileSpec().with("filename", "\xff").with("offset", ""));
    QVERIFY(file.marker.contains("[filename:\xff]"));
    QVERIFY(file.marker.contains("[offset:]"));
}

void TestDocumentWriter::escapes()
{
    QCOMPARE(escaped(QStringLiteral("\\]\n[")), QByteArray("\\\\\\]\\n["));
    QCOMPARE(escaped(QStringLiteral("\\n")), QByteArray("\\\\n"));
}

void TestDocumentWriter::repair_data()
{
    QTest::addColumn<QByteArray>("changed");
    QTest::addColumn<QByteArray>("repaired");
    const FileSpec abc = FileSpec::plain(QStringLiteral("file"), "abcdefghij");
    const FileSpec abx = FileSpec::plain(QStringLiteral("file"), "abxdefghij");
    const QByteArray sound = withSection(FileSpec::flate(QStringLiteral("file"), "abc"));
    QTest::newRow("nothing") << sound << sound;
    QTest::newRow("content") << withSection(abc).replace("abcdef", "abxdef") << withSection(abx);
    QTest::newRow("stream") << withSection(visible("abcdefghij")).replace("abcdef", "abxdef")
                            << withSection(visible("abxdefghij"));
    FileSpec otherHeader = visible("abc");
    otherHeader.stored->replace(0, 2, "\x78\x9c");
    QTest::newRow("header of a stream")
        << withFile(otherHeader).replace("\x78\x9c", "\x70\x9c") << withFile(otherHeader);
    QTest::newRow("lines between")
        << withSections("%\n").replace("-->\n%\n", "-->\n%\n%\n%\n") << withSections("%\n%\n%\n");

    FileSpec six = FileSpec::plain(QStringLiteral("file"), "abcdef");
    six.with("filesize", "06").with("cfilesize", "06").with("blocksize", "12");
    QTest::newRow("end") << withFile(abc).chopped(5) << withFile(six).chopped(1);
    FileSpec unsignedFile = abc;
    unsignedFile.with("md5file", "");
    QTest::newRow("no digest") << withFile(unsignedFile) << withFile(unsignedFile);
}

void TestDocumentWriter::repair()
{
    QFETCH(QByteArray, changed);
    QFETCH(QByteArray, repaired);
    QCOMPARE(repairedDocument(changed), repaired);
}

QTEST_APPLESS_MAIN(TestDocumentWriter)

#include "tst_documentwriter.moc"
