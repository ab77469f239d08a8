#include "DocumentWriter.h"
#include "ParserModel.h"
#include "RecordText.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>

#include <QFile>
#include <QLoggingCategory>
#include <QTest>

using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::ParserModel;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::textOf;
using tresktest::WrittenFile;
using tresktest::WrittenSection;

namespace {

/// A small document of three steps with files of both kinds.
DocumentWriter smallDocument()
{
    DocumentWriter doc("%PDF-1.4\n");
    doc.writeHeader();
    doc.write("%%EOF\n");
    SectionSpec first;
    first.title = QStringLiteral("a");
    first.files = {FileSpec::plain(QStringLiteral("\u00e4"), "in\nput")};
    doc.writeSection(first);
    SectionSpec second;
    second.title = QStringLiteral("b]");
    second.files = {FileSpec::flate(QStringLiteral("o"), "output output output")};
    doc.writeSection(second);
    doc.writeSection(SectionSpec());
    doc.write("startxref\n9\n%%EOF\n");
    return doc;
}

/// Uses every way to read the document that @p parser has open.
void readAll(TreskParser& parser, const QString& target)
{
    for (int id = 0; id < parser.getNumSections(); ++id)
        parser.getFilesInSection(id);
    parser.getSectionlessFiles();
    for (int id = 0; id < parser.getNumFiles(); ++id) {
        const int size = parser.getFile(id)->filesize;
        if (size < 1000000)
            parser.getFileContent(id);
        parser.calcChecksumsForFile(id);
        parser.writeFileToDisk(id, target);
    }
}

} // namespace

/// Small damage anywhere in a document is survived, and does not reach farther than it must.
class TestDamage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void truncated();
    void truncatedKeepsOlderSteps();
    void everyBitFlipped();
    void everyByteRemoved();

private:
    void compareWithModel(const QByteArray& document);

    TestDir m_dir;
    TreskParser m_strict{tresk::ParseStrict};
    TreskParser m_tolerant{tresk::ParseTolerant};
    ParserModel m_strictModel{tresk::ParseStrict};
    ParserModel m_tolerantModel{tresk::ParseTolerant};
};

void TestDamage::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
}

void TestDamage::compareWithModel(const QByteArray& document)
{
    const QString path = m_dir.write(QStringLiteral("document"), document);
    QCOMPARE(m_strict.open(path), m_strictModel.open(document));
    QCOMPARE(textOf(m_strict.getSections()), textOf(m_strictModel.sections()));
    QCOMPARE(m_tolerant.open(path), m_tolerantModel.open(document));
    QCOMPARE(textOf(m_tolerant.getSections()), textOf(m_tolerantModel.sections()));
    QCOMPARE(textOf(m_tolerant.getFiles()), textOf(m_tolerantModel.files()));
    QCOMPARE(textOf(m_tolerant.getSectionlessFiles()), textOf(m_tolerantModel.sectionlessFiles()));
}

void TestDamage::truncated()
{
    const QByteArray document = smallDocument().bytes();
    for (int length = 0; length <= document.size(); ++length) {
        compareWithModel(document.left(length));
        if (QTest::currentTestFailed())
            return;
        readAll(m_tolerant, m_dir.path(QStringLiteral("target")));
    }
}

void TestDamage::truncatedKeepsOlderSteps()
{
    const DocumentWriter doc = smallDocument();
    const QVector<WrittenSection>& steps = doc.sections();
    for (int length = steps.at(0).regionEnd; length <= doc.position(); ++length) {
        int whole = 0;
        while (whole < steps.size() && steps.at(whole).regionEnd <= length)
            ++whole;
        QVERIFY(m_tolerant.open(m_dir.write(QStringLiteral("document"), doc.bytes().left(length))));
        const int sections = m_tolerant.getNumSections();
        QVERIFY(sections >= whole);
        for (int i = 0; i < whole; ++i)
            QCOMPARE(m_tolerant.getSection(sections - 1 - i)->pos, steps.at(i).lineStart + 1);

        for (int id = 0; id < doc.files().size(); ++id) {
            const WrittenFile& written = doc.files().at(id);
            if (written.blockEnd > length)
                break;
            QVERIFY(m_tolerant.getFileContent(id));
            QCOMPARE(tresktest::md5Hex(*m_tolerant.getFileContent(id)), written.md5file);
        }
    }
}

void TestDamage::everyBitFlipped()
{
    const QByteArray document = smallDocument().bytes();
    const QString path = m_dir.write(QStringLiteral("document"), document);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    const auto put = [&file](int position, int byte) {
        return file.seek(position) && file.putChar(static_cast<char>(byte));
    };
    for (int position = 0; position < document.size(); ++position) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray flipped = document;
            flipped[position] = static_cast<char>(document.at(position) ^ (1 << bit));
            QVERIFY(put(position, flipped.at(position)));
            QCOMPARE(m_tolerant.open(path), m_tolerantModel.open(flipped));
            QCOMPARE(textOf(m_tolerant.getSections()), textOf(m_tolerantModel.sections()));
            QCOMPARE(textOf(m_tolerant.getFiles()), textOf(m_tolerantModel.files()));
            if (bit == 0)
                readAll(m_tolerant, m_dir.path(QStringLiteral("target")));
        }
        QVERIFY(put(position, document.at(position)));
    }
    QVERIFY(m_tolerant.open(path));
    QCOMPARE(m_tolerant.getNumSections(), 3);
}

void TestDamage::everyByteRemoved()
{
    const QByteArray document = smallDocument().bytes();
    for (int position = 0; position < document.size(); ++position) {
        compareWithModel(document.left(position) + document.mid(position + 1));
        if (QTest::currentTestFailed())
            return;
    }
}

QTEST_GUILESS_MAIN(TestDamage)

#include "tst_damage.moc"
