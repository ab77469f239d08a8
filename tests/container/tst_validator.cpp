#include "DocumentWriter.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>
#include <tresk/Validator.h>

#include <QTest>

using tresk::FileTag;
using tresk::SectionTag;
using tresk::TreskParser;
using tresk::Validator;
using tresktest::deflated;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::SectionSpec;
using tresktest::TestDir;

namespace {

const QByteArray text = "The content of a file, the content of a file, and its end.\n";

QString md5(const QByteArray& bytes)
{
    return QString::fromLatin1(tresktest::md5Hex(bytes));
}

/// Checks @p stored in pieces of @p size bytes.
bool isValid(Validator& validator, const QByteArray& stored, int size)
{
    for (int from = 0; from < stored.size(); from += size)
        validator.update(stored.mid(from, size));
    return validator.isValid();
}

/// Checks a section of the document that @p parser has open: its region, with the validation
/// tag in the place of the marker line behind its first byte.
bool isSectionValid(TreskParser& parser, const SectionTag& section)
{
    const int start = section.pos - section.left;
    const int end = start + section.size;
    const int behindTag = section.pos + int(section.validationTag.size());
    Validator validator(section.md5section, QString());
    validator.update(parser.getBytes(start, section.left));
    validator.update(section.validationTag);
    validator.update(parser.getBytes(behindTag, end - behindTag));
    return validator.isValid();
}

bool isFileValid(TreskParser& parser, const FileTag& file)
{
    Validator validator(file.md5file, file.md5cfile);
    validator.update(parser.getBytes(file.pos + file.tagLength + file.offset, file.cfilesize));
    return validator.isValid();
}

} // namespace

class TestValidator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void plainContent_data();
    void plainContent();
    void compressedContent_data();
    void compressedContent();
    void pieces_data();
    void pieces();
    void emptyDigestIsNeverRight();
    void capitalsAreWrong();
    void streamNotFinished();
    void streamDamaged();
    void bytesBehindTheStream();
    void compressedWithoutItsDigest();
    void askedInTheMiddle();
    void askedInTheMiddleOfAStream();
    void reinit();
    void reinitAfterDamage();
    void sectionsAndFiles_data();
    void sectionsAndFiles();
    void changedSection();
    void sectionWithoutDigest();

private:
    TestDir m_dir;
};

void TestValidator::metaObject()
{
    const QMetaObject& meta = Validator::staticMetaObject;
    QCOMPARE(meta.className(), "tresk::Validator");
    QCOMPARE(meta.superClass()->className(), "QObject");
    QCOMPARE(meta.methodCount(), meta.superClass()->methodCount());
}

void TestValidator::plainContent_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("valid");
    QTest::newRow("right") << text << md5(text) << true;
    QTest::newRow("nothing") << QByteArray() << md5("") << true;
    QTest::newRow("one byte more") << QByteArray(text + 'x') << md5(text) << false;
    QTest::newRow("one byte less") << text.chopped(1) << md5(text) << false;
    QTest::newRow("other digest") << text << md5("other") << false;
    QTest::newRow("short digest") << text << md5(text).chopped(1) << false;
}

void TestValidator::plainContent()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    QFETCH(bool, valid);
    Validator validator(expected, QString());
    validator.update(content);
    QCOMPARE(validator.isValid(), valid);
    QCOMPARE(validator.isValid(), valid);
}

void TestValidator::compressedContent_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("compressed");
    QTest::addColumn<bool>("valid");
    const QByteArray stream = deflated(text);
    const QByteArray plainStream = deflated(text, 0);
    QTest::newRow("right") << stream << md5(text) << md5(stream) << true;
    QTest::newRow("nothing") << deflated("") << md5("") << md5(deflated("")) << true;
    QTest::newRow("other content") << stream << md5("other") << md5(stream) << false;
    QTest::newRow("other stored bytes") << stream << md5(text) << md5(plainStream) << false;
    QTest::newRow("both other") << stream << md5("other") << md5("other") << false;
    QTest::newRow("swapped") << stream << md5(stream) << md5(text) << false;
    QTest::newRow("not compressed") << text << md5(text) << md5(text) << false;
    QTest::newRow("nothing stored") << QByteArray() << md5("") << md5("") << false;
}

void TestValidator::compressedContent()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, content);
    QFETCH(QString, compressed);
    QFETCH(bool, valid);
    Validator validator(content, compressed);
    validator.update(stored);
    QCOMPARE(validator.isValid(), valid);
    QCOMPARE(validator.isValid(), valid);
}

void TestValidator::pieces_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {1, 2, 7, 64, 1000})
        QTest::addRow("%d", size) << size;
}

void TestValidator::pieces()
{
    QFETCH(int, size);
    const QByteArray content = text.repeated(20);
    const QByteArray stream = deflated(content);
    Validator plain(md5(content), QString());
    QVERIFY(isValid(plain, content, size));
    Validator compressed(md5(content), md5(stream));
    QVERIFY(isValid(compressed, stream, size));
}

void TestValidator::emptyDigestIsNeverRight()
{
    Validator plain{QString(), QString()};
    QVERIFY(!plain.isValid());
    plain.update(text);
    QVERIFY(!plain.isValid());
    Validator compressed(QString(), md5(deflated(text)));
    compressed.update(deflated(text));
    QVERIFY(!compressed.isValid());
}

void TestValidator::capitalsAreWrong()
{
    Validator plain(md5(text).toUpper(), QString());
    plain.update(text);
    QVERIFY(!plain.isValid());
    const QByteArray stream = deflated(text);
    Validator compressed(md5(text), md5(stream).toUpper());
    compressed.update(stream);
    QVERIFY(!compressed.isValid());
}

void TestValidator::streamNotFinished()
{
    // The content is complete and both digests are right, but the stream has no end.
    const QByteArray stream = deflated(text).chopped(1);
    Validator validator(md5(text), md5(stream));
    validator.update(stream);
    QVERIFY(!validator.isValid());
}

void TestValidator::streamDamaged()
{
    QByteArray stream = deflated(text);
    stream[stream.size() - 1] = static_cast<char>(stream.at(stream.size() - 1) ^ 1);
    for (const QByteArray& content : {text, QByteArray()}) {
        Validator validator(md5(content), md5(stream));
        validator.update(stream);
        QVERIFY(!validator.isValid());
    }
}

void TestValidator::bytesBehindTheStream()
{
    // They count as stored bytes, not as content.
    const QByteArray stored = deflated(text) + "rest";
    Validator validator(md5(text), md5(stored));
    validator.update(stored);
    QVERIFY(validator.isValid());
    Validator other(md5(text), md5(deflated(text)));
    other.update(stored);
    QVERIFY(!other.isValid());
}

void TestValidator::compressedWithoutItsDigest()
{
    // Without a digest of the stored bytes they are taken for the content.
    const QByteArray stream = deflated(text);
    Validator validator(md5(text), QString());
    validator.update(stream);
    QVERIFY(!validator.isValid());
    Validator stored(md5(stream), QString());
    stored.update(stream);
    QVERIFY(stored.isValid());
}

void TestValidator::askedInTheMiddle()
{
    // The digest stays what it was when it was first asked for.
    Validator early(md5(text), QString());
    early.update(text.left(10));
    QVERIFY(!early.isValid());
    early.update(text.mid(10));
    QVERIFY(!early.isValid());
    Validator part(md5(text.left(10)), QString());
    part.update(text.left(10));
    QVERIFY(part.isValid());
    part.update(text.mid(10));
    QVERIFY(part.isValid());
}

void TestValidator::askedInTheMiddleOfAStream()
{
    // Before the end of a stream no digest is asked for.
    const QByteArray stream = deflated(text);
    Validator validator(md5(text), md5(stream));
    for (int i = 0; i < stream.size(); ++i) {
        QVERIFY(!validator.isValid());
        validator.update(stream.mid(i, 1));
    }
    QVERIFY(validator.isValid());
}

void TestValidator::reinit()
{
    const QByteArray stream = deflated(text);
    Validator validator(md5("abc"), QString());
    validator.update("abc");
    QVERIFY(validator.isValid());
    validator.reinit(md5(text), md5(stream));
    QVERIFY(!validator.isValid());
    validator.update(stream);
    QVERIFY(validator.isValid());
    validator.reinit(md5("abc"), QString());
    validator.update("a");
    validator.update("bc");
    QVERIFY(validator.isValid());
    validator.reinit(md5(""), QString());
    QVERIFY(validator.isValid());
}

void TestValidator::reinitAfterDamage()
{
    const QByteArray stream = deflated(text);
    Validator validator(md5(text), md5(stream));
    validator.update("garbage");
    QVERIFY(!validator.isValid());
    validator.reinit(md5(text), md5(stream));
    validator.update(stream);
    QVERIFY(validator.isValid());
}

void TestValidator::sectionsAndFiles_data()
{
    QTest::addColumn<QByteArray>("terminator");
    QTest::addColumn<QByteArray>("beforeMarker");
    QTest::addColumn<QByteArray>("afterMarker");
    QTest::newRow("usual") << QByteArray("\n") << QByteArray() << QByteArray();
    QTest::newRow("carriage returns") << QByteArray("\r\n") << QByteArray() << QByteArray();
    QTest::newRow("text before the marker")
        << QByteArray("\n") << QByteArray("%%EOF") << QByteArray();
    QTest::newRow("text behind the marker")
        << QByteArray("\n") << QByteArray() << QByteArray(" \xc3\xa4\xff text");
}

void TestValidator::sectionsAndFiles()
{
    QFETCH(QByteArray, terminator);
    QFETCH(QByteArray, beforeMarker);
    QFETCH(QByteArray, afterMarker);
    DocumentWriter doc;
    doc.setTerminator(terminator);
    doc.writeHeader();
    SectionSpec section;
    section.title = QStringLiteral("\u00e4\U0001f600]");
    section.gap = "a line of the region\n";
    section.beforeMarker = beforeMarker;
    section.afterMarker = afterMarker;
    section.files = {FileSpec::plain(QStringLiteral("\u00fc"), text),
                     FileSpec::flate(QStringLiteral("\U0001f680"), text)};
    doc.writeSection(section);
    section.filesBehind = section.files; // the marker in the middle of its region
    section.trailing = "the region's last line\n";
    doc.writeSection(section);

    TreskParser parser;
    QVERIFY(parser.open(m_dir.write(QStringLiteral("document"), doc.bytes())));
    QCOMPARE(parser.getNumSections(), 2);
    QCOMPARE(parser.getNumFiles(), 6);
    for (int id = 0; id < 2; ++id)
        QVERIFY(isSectionValid(parser, *parser.getSection(id)));
    for (int id = 0; id < 6; ++id)
        QVERIFY(isFileValid(parser, *parser.getFile(id)));
}

void TestValidator::changedSection()
{
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section;
    section.title = QStringLiteral("title");
    section.files = {FileSpec::plain(QStringLiteral("name"), text)};
    doc.writeSection(section);
    const auto isValidWith = [this, &doc](const char* before, const char* after) {
        TreskParser parser;
        QByteArray bytes = doc.bytes();
        return parser.open(m_dir.write(QStringLiteral("document"), bytes.replace(before, after)))
            && isSectionValid(parser, *parser.getSection(0));
    };
    QVERIFY(isValidWith("", ""));
    QVERIFY(!isValidWith("[title:title]", "[title:Title]"));
    QVERIFY(!isValidWith("[filename:name]", "[filename:Name]"));
    QVERIFY(!isValidWith("The content", "the content"));
    QVERIFY(!isValidWith("[previousmd5:]", "[previousmd5:00000000000000000000000000000000]"));
    QVERIFY(isValidWith("TRESK_PDF [version:1.0]", "TRESK_PDF [version:1.0]more"));
}

void TestValidator::sectionWithoutDigest()
{
    DocumentWriter doc;
    doc.writeHeader();
    doc.writeSection(SectionSpec().with("md5section", ""));
    TreskParser parser;
    QVERIFY(parser.open(m_dir.write(QStringLiteral("document"), doc.bytes())));
    QCOMPARE(parser.getNumSections(), 1);
    QVERIFY(!isSectionValid(parser, *parser.getSection(0)));
}

QTEST_GUILESS_MAIN(TestValidator)

#include "tst_validator.moc"
