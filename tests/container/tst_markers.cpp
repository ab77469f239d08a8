#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>

#include <QList>
#include <QMap>
#include <QTest>

using tresk::FileTag;
using tresk::SectionTag;
using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::newDocument;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::WrittenFile;
using tresktest::WrittenSection;

namespace {

const QList<QByteArray> sectionTexts = {"version", "creator", "title"};
const QList<QByteArray> sectionNumbers = {"left", "size", "index", "previousmarker"};
const QList<QByteArray> sectionDigests = {"md5section", "previousmd5"};
const QList<QByteArray> fileTexts = {"filetype", "filename", "desc", "comment", "compression"};
const QList<QByteArray> fileNumbers = {"filesize", "cfilesize", "blocksize", "offset"};
const QList<QByteArray> fileDigests = {"md5file", "md5cfile"};

QMap<QByteArray, QString> valuesOf(const SectionTag& section)
{
    return {{"version", section.version},
            {"creator", section.creator},
            {"title", section.title},
            {"left", QString::number(section.left)},
            {"size", QString::number(section.size)},
            {"index", QString::number(section.index)},
            {"md5section", section.md5section},
            {"previousmd5", section.previousmd5},
            {"previousmarker", QString::number(section.previousmarker)}};
}

QMap<QByteArray, QString> valuesOf(const FileTag& file)
{
    return {{"filetype", file.filetype},
            {"filename", file.filename},
            {"desc", file.desc},
            {"comment", file.comment},
            {"compression", file.compression},
            {"filesize", QString::number(file.filesize)},
            {"cfilesize", QString::number(file.cfilesize)},
            {"blocksize", QString::number(file.blocksize)},
            {"offset", QString::number(file.offset)},
            {"md5file", file.md5file},
            {"md5cfile", file.md5cfile}};
}

/// A document with one section and one file, to be damaged as text.
DocumentWriter plainDocument()
{
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.title = QStringLiteral("step");
    section.files = {FileSpec::plain(QStringLiteral("a.txt"), "abc")};
    doc.writeSection(section);
    return doc;
}

} // namespace

/// Which lines are markers, and what is read from them.
class TestMarkers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textValue_data();
    void textValue();
    void integerValue_data();
    void integerValue();
    void digestValue_data();
    void digestValue();
    void sectionForm_data();
    void sectionForm();
    void fileForm_data();
    void fileForm();
    void afterMarker_data();
    void afterMarker();
    void lengths_data();
    void lengths();
    void sectionBehindByteOrderMark();
    void fileBehindByteOrderMark();
    void validationTag_data();
    void validationTag();
    void hugeValue_data();
    void hugeValue();

private:
    bool open(const QByteArray& bytes)
    {
        return m_parser.open(m_dir.write(QStringLiteral("document"), bytes));
    }
    void checkSectionField(const QByteArray& key, const QByteArray& raw, bool matches,
                           const QString& value);
    void checkFileField(const QByteArray& key, const QByteArray& raw, bool matches,
                        const QString& value);

    TestDir m_dir;
    TreskParser m_parser;
};

void TestMarkers::checkSectionField(const QByteArray& key, const QByteArray& raw, bool matches,
                                    const QString& value)
{
    DocumentWriter doc = newDocument();
    const WrittenSection written = doc.writeSection(SectionSpec().with(key, raw));
    QVERIFY(open(doc.bytes()));
    QVERIFY2((m_parser.getNumSections() == 1) == matches, key.constData());
    if (matches) {
        QCOMPARE(valuesOf(m_parser.getSections().at(0)).value(key), value);
        QCOMPARE(m_parser.getSection(0)->tagLength, written.tagLength);
    }
}

void TestMarkers::checkFileField(const QByteArray& key, const QByteArray& raw, bool matches,
                                 const QString& value)
{
    DocumentWriter doc = newDocument();
    const WrittenFile written = doc.writeFile(FileSpec().with(key, raw));
    QVERIFY(open(doc.bytes()));
    QVERIFY2((m_parser.getNumFiles() == 1) == matches, key.constData());
    if (matches) {
        QCOMPARE(valuesOf(m_parser.getFiles().at(0)).value(key), value);
        QCOMPARE(m_parser.getFile(0)->tagLength, written.tagLength);
    }
}

void TestMarkers::textValue_data()
{
    QTest::addColumn<QByteArray>("raw");
    QTest::addColumn<bool>("matches");
    QTest::addColumn<QString>("value");
    const auto is = [](const QByteArray& name, const QByteArray& raw, const QString& value) {
        QTest::newRow(name.constData()) << raw << true << value;
    };
    const auto isNot = [](const char* name, const QByteArray& raw) {
        QTest::newRow(name) << raw << false << QString();
    };
    is("empty", "", QString());
    is("word", "word", QStringLiteral("word"));
    is("blanks", "  two  words ", QStringLiteral("  two  words "));
    is("opening bracket", "a[b", QStringLiteral("a[b"));
    is("escaped bracket", "a\\]b", QStringLiteral("a\\]b"));
    is("escaped backslash", "a\\\\b", QStringLiteral("a\\\\b"));
    is("escaped line break", "a\\nb", QStringLiteral("a\\nb"));
    is("escapes only", R"(\\\]\n)", QStringLiteral(R"(\\\]\n)"));
    is("backslash at the end", "a\\\\", QStringLiteral("a\\\\"));
    is("end of a marker", "a-->b", QStringLiteral("a-->b"));
    is("start of a marker", "%<--! $TRESK_SECTION [", QStringLiteral("%<--! $TRESK_SECTION ["));
    is("carriage return", "a\rb", QStringLiteral("a\rb"));
    is("control characters", "\x01\t\x1b\x7f", QStringLiteral("\x01\t\x1b\x7f"));
    is("two bytes", "\xc3\xa4", QStringLiteral("\u00e4"));
    is("three bytes", "\xe2\x82\xac", QStringLiteral("\u20ac"));
    is("four bytes", "\xf0\x9f\x98\x80", QStringLiteral("\U0001f600"));
    is("byte order mark", "a\xef\xbb\xbf", QStringLiteral("a\ufeff"));
    is("byte order mark first", "\xef\xbb\xbf", QStringLiteral("\ufeff"));
    is("not UTF-8", "a\xff", QStringLiteral("a\ufffd"));
    // Decoded with what follows, as the whole line is.
    for (const char* cut : {"\xc3", "\xe2\x82", "\xf0\x9f\x98", "a\xf0", "\x80\xe2"})
        is(QByteArray(cut).toHex(), cut, QString::fromUtf8(QByteArray(cut) + ']').chopped(1));
    isNot("bracket", "a]b");
    isNot("bracket alone", "]");
    isNot("unknown escape", "a\\tb");
    isNot("capital escape", "a\\N");
    isNot("escape of the closing bracket", "a\\");
    isNot("bracket behind escaped backslash", "a\\\\]");
    isNot("raw line break", "a\nb");
    isNot("NUL byte", QByteArray("a\0b", 3));
}

void TestMarkers::textValue()
{
    QFETCH(QByteArray, raw);
    QFETCH(bool, matches);
    QFETCH(QString, value);
    for (const QByteArray& key : sectionTexts)
        checkSectionField(key, raw, matches, value);
    for (const QByteArray& key : fileTexts)
        checkFileField(key, raw, matches, value);
}

void TestMarkers::integerValue_data()
{
    QTest::addColumn<QByteArray>("raw");
    QTest::addColumn<bool>("matches");
    QTest::addColumn<QString>("value");
    const auto is = [](const QByteArray& raw, int value) {
        QTest::newRow(('"' + raw + '"').constData()) << raw << true << QString::number(value);
    };
    const auto isNot = [](const QByteArray& raw) {
        QTest::newRow(('"' + raw + '"').constData()) << raw << false << QString();
    };
    is("", -1);
    is("0", 0);
    is("1", 1);
    is("007", 7);
    is("0000000000000000000000012", 12);
    is("2147483647", 2147483647);
    is("00002147483647", 2147483647);
    is("2147483648", 0);
    is("4294967296", 0);
    is("4294967297", 0);
    is("18446744073709551617", 0);
    is("99999999999999999999999999999999999999", 0);
    isNot("-5");
    isNot("-0");
    isNot("+5");
    isNot(" 5");
    isNot("5 ");
    isNot("5a");
    isNot("0x5");
    isNot("5.0");
    isNot("1,000");
    isNot("\xd9\xa3"); // a digit, but not one of ASCII
}

void TestMarkers::integerValue()
{
    QFETCH(QByteArray, raw);
    QFETCH(bool, matches);
    QFETCH(QString, value);
    for (const QByteArray& key : sectionNumbers)
        checkSectionField(key, raw, matches, value);
    for (const QByteArray& key : fileNumbers)
        checkFileField(key, raw, matches, value);
}

void TestMarkers::digestValue_data()
{
    QTest::addColumn<QByteArray>("raw");
    QTest::addColumn<bool>("matches");
    const QByteArray digest = "0123456789abcdef0123456789abcdef";
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("digest") << digest << true;
    QTest::newRow("zeros") << QByteArray(32, '0') << true;
    QTest::newRow("31 digits") << digest.chopped(1) << false;
    QTest::newRow("33 digits") << QByteArray(digest + '0') << false;
    QTest::newRow("64 digits") << QByteArray(digest + digest) << false;
    QTest::newRow("one digit") << QByteArray("0") << false;
    QTest::newRow("capitals") << digest.toUpper() << false;
    QTest::newRow("one capital") << QByteArray(digest.chopped(1) + 'F') << false;
    QTest::newRow("g") << QByteArray(digest.chopped(1) + 'g') << false;
    QTest::newRow("blank") << QByteArray(digest.chopped(1) + ' ') << false;
}

void TestMarkers::digestValue()
{
    QFETCH(QByteArray, raw);
    QFETCH(bool, matches);
    for (const QByteArray& key : sectionDigests)
        checkSectionField(key, raw, matches, QString::fromLatin1(raw));
    for (const QByteArray& key : fileDigests)
        checkFileField(key, raw, matches, QString::fromLatin1(raw));
}

void TestMarkers::sectionForm_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("wrong key") << QByteArray("[creator:") << QByteArray("[author:");
    QTest::newRow("capital in a key") << QByteArray("[title:") << QByteArray("[Title:");
    QTest::newRow("small keyword") << QByteArray("$TRESK_SECTION") << QByteArray("$tresk_section");
    QTest::newRow("longer keyword")
        << QByteArray("TRESK_SECTION ") << QByteArray("TRESK_SECTIONS ");
    QTest::newRow("two blanks") << QByteArray("TRESK_SECTION ") << QByteArray("TRESK_SECTION  ");
    QTest::newRow("no blank") << QByteArray("TRESK_SECTION ") << QByteArray("TRESK_SECTION");
    QTest::newRow("blank between fields") << QByteArray("][size:") << QByteArray("] [size:");
    QTest::newRow("blank behind a key") << QByteArray("[size:") << QByteArray("[size: ");
    QTest::newRow("no left") << QByteArray("[left:1][") << QByteArray("[");
    QTest::newRow("field twice") << QByteArray("[index:0]") << QByteArray("[index:0][index:0]");
    QTest::newRow("fields out of order")
        << QByteArray("[creator:writer][title:step]") << QByteArray("[title:step][creator:writer]");
    QTest::newRow("no end") << QByteArray("[previousmarker:]-->")
                            << QByteArray("[previousmarker:]");
    QTest::newRow("short end") << QByteArray("[previousmarker:]-->")
                               << QByteArray("[previousmarker:]->");
    QTest::newRow("blank before the end")
        << QByteArray("[previousmarker:]-->") << QByteArray("[previousmarker:] -->");
    QTest::newRow("short start") << QByteArray("%<--! $TRESK_SECTION")
                                 << QByteArray("%<-! $TRESK_SECTION");
}

void TestMarkers::sectionForm()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.title = QStringLiteral("step");
    doc.writeSection(section);
    QByteArray bytes = doc.bytes();
    QVERIFY(bytes.contains(before));
    QVERIFY(open(bytes));
    QCOMPARE(m_parser.getNumSections(), 1);
    QVERIFY(open(bytes.replace(before, after)));
    QCOMPARE(m_parser.getNumSections(), 0);
}

void TestMarkers::fileForm_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("wrong key") << QByteArray("[desc:") << QByteArray("[description:");
    QTest::newRow("capital in a key") << QByteArray("[filename:") << QByteArray("[fileName:");
    QTest::newRow("small keyword") << QByteArray("FILE_BEGIN") << QByteArray("FILE_begin");
    QTest::newRow("longer keyword") << QByteArray("FILE_BEGIN ") << QByteArray("FILE_BEGINS ");
    QTest::newRow("two blanks") << QByteArray("FILE_BEGIN ") << QByteArray("FILE_BEGIN  ");
    QTest::newRow("blank before the marker")
        << QByteArray("%<--! $TRESK_EMB") << QByteArray(" %<--! $TRESK_EMB");
    QTest::newRow("text before the marker")
        << QByteArray("%<--! $TRESK_EMB") << QByteArray("%%EOF%<--! $TRESK_EMB");
    QTest::newRow("no comment") << QByteArray("[comment:]") << QByteArray();
    QTest::newRow("fields out of order")
        << QByteArray("[filesize:3][cfilesize:3]") << QByteArray("[cfilesize:3][filesize:3]");
    QTest::newRow("no end") << QByteArray("[md5cfile:]-->") << QByteArray("[md5cfile:]");
}

void TestMarkers::fileForm()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QByteArray bytes = plainDocument().bytes();
    QVERIFY(bytes.contains(before));
    QVERIFY(open(bytes));
    QCOMPARE(m_parser.getNumFiles(), 1);
    QVERIFY(open(bytes.replace(before, after)));
    QCOMPARE(m_parser.getNumFiles(), 0);
    QCOMPARE(m_parser.getNumSections(), 1);
}

void TestMarkers::afterMarker_data()
{
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<QByteArray>("terminator");
    QTest::addColumn<bool>("matches");
    QTest::newRow("line feed") << QByteArray() << QByteArray("\n") << true;
    QTest::newRow("carriage return, line feed") << QByteArray() << QByteArray("\r\n") << true;
    QTest::newRow("end of the file") << QByteArray() << QByteArray() << true;
    QTest::newRow("text") << QByteArray(" more [of:it]") << QByteArray("\n") << true;
    QTest::newRow("another end") << QByteArray("-->") << QByteArray("\n") << true;
    QTest::newRow("not UTF-8") << QByteArray("\xff\xfe") << QByteArray("\n") << true;
    QTest::newRow("NUL byte") << QByteArray(1, '\0') << QByteArray("\n") << false;
}

void TestMarkers::afterMarker()
{
    QFETCH(QByteArray, rest);
    QFETCH(QByteArray, terminator);
    QFETCH(bool, matches);
    DocumentWriter doc = newDocument();
    doc.setTerminator(terminator);

    SectionSpec section;
    section.afterMarker = rest;
    DocumentWriter withSection = doc;
    const WrittenSection writtenSection = withSection.writeSection(section);
    QVERIFY(open(withSection.bytes()));
    QCOMPARE(m_parser.getNumSections(), matches ? 1 : 0);
    if (matches) {
        QCOMPARE(m_parser.getSection(0)->tagLength, int(writtenSection.marker.size()) - 1);
        QCOMPARE(m_parser.getSection(0)->validationTag, writtenSection.validationTag);
    }

    FileSpec file = FileSpec::plain(QStringLiteral("name"), "");
    file.afterMarker = rest;
    const WrittenFile writtenFile = doc.writeFile(file);
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumFiles(), matches ? 1 : 0);
    if (matches)
        QCOMPARE(m_parser.getFile(0)->tagLength, int(writtenFile.marker.size()) - 1);
}

void TestMarkers::lengths_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("ASCII") << QStringLiteral("name");
    QTest::newRow("escapes") << QStringLiteral("a]b\\c\nd");
    QTest::newRow("two bytes, one unit") << QStringLiteral("\u00e4\u00f6\u00fc");
    QTest::newRow("three bytes, one unit") << QStringLiteral("\u6587\u66f8");
    QTest::newRow("four bytes, two units") << QStringLiteral("\U0001f600\U0001f680");
    QTest::newRow("all") << QStringLiteral("a\u00e4\u6587\U0001f600]");
}

void TestMarkers::lengths()
{
    QFETCH(QString, name);
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.title = name;
    section.files = {FileSpec::plain(name, "content")};
    const WrittenSection written = doc.writeSection(section);
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumSections(), 1);
    QCOMPARE(m_parser.getNumFiles(), 1);

    const QString sectionMarker = QString::fromUtf8(written.marker);
    QCOMPARE(m_parser.getSection(0)->pos, written.lineStart + 1);
    QCOMPARE(m_parser.getSection(0)->tagLength, int(sectionMarker.size()) - 1);
    QCOMPARE(m_parser.getSection(0)->title, QString::fromUtf8(tresktest::escaped(name)));

    const FileTag file = *m_parser.getFile(0);
    const QString fileMarker = QString::fromUtf8(written.files.at(0).marker);
    QCOMPARE(file.pos, written.files.at(0).lineStart + 1);
    QCOMPARE(file.tagLength, int(fileMarker.size()) - 1);
    QCOMPARE(file.filename, QString::fromUtf8(tresktest::escaped(name)));
    QCOMPARE(file.pos + file.tagLength + file.offset, written.files.at(0).dataStart);
    QCOMPARE(file.pos + file.tagLength + file.blocksize, written.files.at(0).blockEnd);
    QCOMPARE(m_parser.getFilesInSection(0).size(), 1);
}

void TestMarkers::sectionBehindByteOrderMark()
{
    // Decoding drops a byte order mark in front of a line, so the marker begins its text.
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.beforeMarker = "\xef\xbb\xbf";
    const WrittenSection written = doc.writeSection(section);
    TreskParser strict(tresk::ParseStrict);
    QVERIFY(strict.open(m_dir.write(QStringLiteral("document"), doc.bytes())));
    QCOMPARE(strict.getNumSections(), 1);
    QCOMPARE(strict.getSection(0)->pos, written.lineStart + 1);
    QCOMPARE(strict.getSection(0)->tagLength, int(written.marker.size()) - 1);
    QCOMPARE(strict.getSection(0)->validationTag, written.validationTag);
}

void TestMarkers::fileBehindByteOrderMark()
{
    // For files the line's bytes count.
    DocumentWriter doc = newDocument();
    doc.write("\xef\xbb\xbf");
    doc.writeFile(FileSpec::plain(QStringLiteral("name"), "content"));
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumFiles(), 0);
}

void TestMarkers::validationTag_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("digest");
    QTest::addColumn<QByteArray>("after");
    const QByteArray digest = "0123456789abcdef0123456789abcdef";
    QTest::newRow("digest") << QByteArray() << digest << QByteArray();
    QTest::newRow("no digest") << QByteArray() << QByteArray() << QByteArray();
    QTest::newRow("text around") << QByteArray("%%EOF") << digest << QByteArray(" rest\r");
    QTest::newRow("digest elsewhere")
        << QByteArray("[md5section:" + digest + "]") << digest
        << QByteArray("[md5section:" + digest + "][md5section:" + digest + "]");
    QTest::newRow("no digest elsewhere") << QByteArray("[md5section:][md5section:]") << QByteArray()
                                         << QByteArray("[md5section:]x[md5section:]");
    QTest::newRow("another digest elsewhere")
        << QByteArray() << digest << QByteArray("[md5section:1123456789abcdef0123456789abcdef]");
    QTest::newRow("other field") << QByteArray() << digest
                                 << QByteArray("[md5file:" + digest + "]");
}

void TestMarkers::validationTag()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, digest);
    QFETCH(QByteArray, after);
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.beforeMarker = before;
    section.afterMarker = after;
    const WrittenSection written = doc.writeSection(section.with("md5section", digest));
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumSections(), 1);
    QByteArray line = written.line;
    QVERIFY(line.startsWith(before + "%<--!"));
    const QByteArray zeroed = "[md5section:00000000000000000000000000000000]";
    QCOMPARE(m_parser.getSection(0)->validationTag,
             line.replace("[md5section:" + digest + "]", zeroed).mid(1));
}

void TestMarkers::hugeValue_data()
{
    QTest::addColumn<QByteArray>("unit");
    QTest::newRow("plain") << QByteArray("x");
    QTest::newRow("escapes") << QByteArray("\\]");
    QTest::newRow("not ASCII") << QByteArray("\xc3\xa4");
    QTest::newRow("closing marks") << QByteArray("-->");
}

void TestMarkers::hugeValue()
{
    QFETCH(QByteArray, unit);
    const QByteArray value = unit.repeated(8 * 1024 * 1024 / int(unit.size()));
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.files = {FileSpec::plain(QString(), "content").with("comment", value)};
    doc.writeSection(section.with("title", value));
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumSections(), 1);
    QCOMPARE(m_parser.getNumFiles(), 1);
    const QString text = QString::fromUtf8(value);
    QVERIFY(m_parser.getSection(0)->title == text);
    QVERIFY(m_parser.getFile(0)->comment == text);
    QVERIFY(m_parser.getFileContent(0));
    QCOMPARE(*m_parser.getFileContent(0), QByteArray("content"));
}

QTEST_GUILESS_MAIN(TestMarkers)

#include "tst_markers.moc"
