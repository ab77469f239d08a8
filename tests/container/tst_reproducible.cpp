#include "DocumentWriter.h"
#include "RecordText.h"
#include "TestFiles.h"

#include <tresk/FileHash.h>
#include <tresk/TreskParser.h>

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

#include <cstdio>

using tresk::FileTag;
using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::textOf;

namespace {

const QString listOption = QStringLiteral("--list");

/// All that a parser says about the document at @p path.
QString listing(const QString& path)
{
    TreskParser parser;
    if (!parser.open(path))
        return QStringLiteral("(could not be opened)");
    QString text = textOf(parser.getSections()) + textOf(parser.getFiles());
    for (int id = 0; id < parser.getNumSections(); ++id) {
        const QList<FileTag> files = parser.getFilesInSection(id);
        for (const FileTag& file : files)
            text += makeFileHash(file, id) + QLatin1Char('\n');
    }
    text += textOf(parser.getSectionlessFiles());
    for (int id = 0; id < parser.getNumFiles(); ++id) {
        const QPair<QString, QString> checksums = parser.calcChecksumsForFile(id);
        text += checksums.first + checksums.second + QLatin1Char('\n');
    }
    return text;
}

} // namespace

/// A document is listed the same in whatever surroundings a process runs.
class TestReproducible : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void environment_data();
    void environment();
    void currentDirectory();

private:
    /// What a process of its own lists, with @p environment and in @p directory.
    QString listingOf(const QProcessEnvironment& environment, const QString& directory,
                      const QString& path) const;

    TestDir m_dir;
    QString m_path;
    QString m_expected;
};

void TestReproducible::initTestCase()
{
    DocumentWriter doc;
    doc.writeHeader();
    for (int i = 0; i < 20; ++i) {
        doc.writeFile(FileSpec::plain(QStringLiteral("loose %1").arg(i), "content"));
        SectionSpec section;
        section.title = QStringLiteral("Schritt \u00e4\U0001f600 %1").arg(i);
        section.files = {FileSpec::plain(QStringLiteral("\u0130i\u0131I.txt"), "1.5"),
                         FileSpec::flate(QStringLiteral("\u00df]\\\n"), QByteArray(i, 'x'))};
        doc.writeSection(section);
    }
    m_path = m_dir.write(QStringLiteral("\u00e4.pdf"), doc.bytes());
    m_expected = listing(m_path);
    QVERIFY(m_expected.count(QLatin1Char('\n')) > 20 + 60 + 40 + 20);
}

QString TestReproducible::listingOf(const QProcessEnvironment& environment,
                                    const QString& directory, const QString& path) const
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(directory);
    process.start(QCoreApplication::applicationFilePath(), {listOption, path});
    if (!process.waitForFinished() || process.exitCode() != 0)
        return QStringLiteral("(the process failed)");
    return QString::fromUtf8(process.readAllStandardOutput());
}

void TestReproducible::environment_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    for (const char* seed : {"0", "1", "2", "12345"})
        QTest::addRow("hash seed %s", seed)
            << QStringLiteral("QT_HASH_SEED") << QString::fromLatin1(seed);
    for (const char* locale : {"C", "C.UTF-8", "POSIX", "tr_TR.UTF-8", "de_DE.UTF-8"})
        QTest::addRow("locale %s", locale)
            << QStringLiteral("LC_ALL") << QString::fromLatin1(locale);
    for (const char* zone : {"UTC", "Asia/Kathmandu"})
        QTest::addRow("time zone %s", zone) << QStringLiteral("TZ") << QString::fromLatin1(zone);
}

void TestReproducible::environment()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    // A plain name, because locales differ in the names of files that they can say.
    const QString path = m_dir.write(QStringLiteral("plain.pdf"), tresktest::readFile(m_path));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(name, value);
    QCOMPARE(listingOf(environment, QString(), path), m_expected);
}

void TestReproducible::currentDirectory()
{
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString path = m_dir.write(QStringLiteral("plain.pdf"), tresktest::readFile(m_path));
    QCOMPARE(listingOf(environment, QStringLiteral("/"), path), m_expected);
    QCOMPARE(listingOf(environment, m_dir.path(QString()), QStringLiteral("plain.pdf")),
             m_expected);
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.value(1) == listOption) {
        std::fputs(listing(arguments.value(2)).toUtf8().constData(), stdout);
        return 0;
    }
    TestReproducible test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_reproducible.moc"
