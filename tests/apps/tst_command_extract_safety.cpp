#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace tresktest;

namespace {

/// What is in a directory and under it: for each path kind, permissions, number of names, and
/// content or target.
using Snapshot = QMap<QByteArray, QByteArray>;

struct stat statusOf(const QByteArray& path)
{
    struct stat status = {};
    if (lstat(path.constData(), &status) != 0)
        qFatal("no status of %s", path.constData());
    return status;
}

QByteArray linkTarget(const QByteArray& path)
{
    QByteArray target(4096, '\0');
    const ssize_t size = readlink(path.constData(), target.data(), size_t(target.size()));
    return target.left(int(size));
}

/// Adds the directory at @p path. What lies there under @p skipped is left out.
void addTo(Snapshot& snapshot, const QByteArray& path, const QByteArray& skipped)
{
    const QStringList names = entriesOf(QFile::decodeName(path));
    for (const QString& name : names) {
        const QByteArray entry = path + '/' + QFile::encodeName(name);
        if (entry == skipped)
            continue;
        const struct stat status = statusOf(entry);
        QByteArray description = QByteArray::number(status.st_mode, 8) + ' '
            + QByteArray::number(qint64(status.st_ino)) + ' ';
        if (S_ISREG(status.st_mode)) {
            description += QByteArray::number(qint64(status.st_nlink)) + ' '
                + readFile(QFile::decodeName(entry));
        } else if (S_ISLNK(status.st_mode)) {
            description += linkTarget(entry);
        }
        snapshot.insert(entry, description);
        if (S_ISDIR(status.st_mode))
            addTo(snapshot, entry, skipped);
    }
}

Snapshot snapshotOf(const QString& path, const QString& skipped = QString())
{
    Snapshot snapshot;
    addTo(snapshot, QFile::encodeName(path), QFile::encodeName(skipped));
    return snapshot;
}

/// Names that are meant to reach something else than a new file in the target.
QVector<QByteArray> hostileNames()
{
    QVector<QByteArray> names;
    for (const char* name : {"plain.txt",
                             "../x",
                             "../../../x",
                             "..\\x2",
                             "../outside/file",
                             "./here",
                             "a/b/c",
                             "/etc/passwd1",
                             "//server/share/f1",
                             "\\\\host\\share\\f2",
                             "C:\\x3",
                             "C:x4",
                             "c:/x5",
                             "x6\\..\\..\\y6",
                             "a/../../y7",
                             "..",
                             ".",
                             "...",
                             "",
                             "/",
                             "//",
                             "\\",
                             "../",
                             "..\\",
                             " ",
                             "   ",
                             ". .",
                             " . ",
                             "dot.",
                             "dots...",
                             "blank ",
                             "blanks and dots . .",
                             " front",
                             "\u00a0",
                             "CON",
                             "con.txt",
                             "PRN",
                             "AUX.c",
                             "NUL",
                             "NUL.tar.gz",
                             "COM1",
                             "COM1.txt",
                             "LPT9",
                             "CONIN$",
                             "com\u00b9",
                             "aux .txt",
                             "line\nbreak",
                             "line\r\nbreak2",
                             "tab\tin",
                             "\x1b[2J\x1b]0;title\x07",
                             "\x1b[31mred",
                             "bell\x07",
                             "back\x08\x08\x08space",
                             "\x7f",
                             "c1\u009b31m",
                             "bidi\u202etxt.exe",
                             "isolate\u2066x\u2069",
                             "mark\u200fx",
                             "zero\u200bwidth",
                             "\ufeffmark",
                             "separator\u2028x",
                             "Case",
                             "cASE",
                             "CASE",
                             "compos\u00e9d",
                             "compose\u0301d",
                             "stra\u00dfe",
                             "STRASSE",
                             "\ufb01n",
                             "FIN",
                             ".tresk-0.part",
                             ".tresk-1y2p0ij32e8e7.part",
                             ".part",
                             "~",
                             "~root",
                             "~/x8",
                             "-rf",
                             "--",
                             "--force",
                             "-C",
                             "file:///../x9",
                             "http://host/x10",
                             "%2e%2e%2fx11",
                             "..%2fx12",
                             "%00",
                             "%s%n",
                             "$(touch x13)",
                             "`x14`",
                             "; rm -rf x15",
                             "x16|y",
                             "*",
                             "?",
                             "a:b",
                             "x:$DATA",
                             "equal",
                             "equal",
                             "equal-94",
                             "outside",
                             "target",
                             ".profile",
                             ".."
                             "hidden",
                             "\u2024\u2024/x17",
                             "\u2215etc\u2215x18",
                             "\uff0fx19"})
        names += name;
    names += "invalid\xff\xfe.txt";
    names += "overlong\xc0\xaf..\xc0\xafx21";
    names += "surrogate\xed\xa0\x80x";
    names += QByteArray(300, 'l');
    names += QByteArray(300, 'l') + ".txt";
    names += QByteArray("\xe2\x82\xac").repeated(100); // the limit lies inside of a character
    names += 'x' + QByteArray("\xf0\x9f\x94\xa9").repeated(80) + ".txt";
    names += QByteArray("../").repeated(2000) + "deep";
    names += QByteArray(254, 'm') + " ";
    return names;
}

/// @p name as a marker has it, where what is no UTF-8 stays as it is.
QByteArray inMarker(QByteArray name)
{
    return name.replace('\\', "\\\\").replace(']', "\\]").replace('\n', "\\n");
}

/// What a terminal acts on, or shows as nothing.
const QRegularExpression& unsafeCharacters()
{
    static const QRegularExpression characters(
        text("[\\x00-\\x1f\\x7f-\\x9f\\x{200b}\\x{200e}\\x{200f}\\x{2028}-\\x{202e}"
             "\\x{2060}-\\x{2069}\\x{feff}]"));
    return characters;
}

QByteArray contentOf(int id)
{
    return "content " + QByteArray::number(id);
}

QVector<FileSpec> hostileFiles()
{
    QVector<FileSpec> files;
    for (const QByteArray& name : hostileNames())
        files += FileSpec::plain(QString(), contentOf(int(files.size())))
                     .with("filename", inMarker(name));
    // With a zero byte in it, a marker is none.
    for (const QByteArray& name : {QByteArray("nul\0byte", 8), QByteArray("../nul\0/../x20", 14)})
        files += FileSpec::plain(QString(), "nothing").with("filename", name);
    return files;
}

} // namespace

/// What `tresk extract` writes where names of files and what is in the target are hostile.
class TestCommandExtractSafety : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void everyNameMeets_data();
    void everyNameMeets();
    void freshTarget();
    void targetThatCannotBeOne_data();
    void targetThatCannotBeOne();

private:
    QString path(const char* name) const { return m_dir->path(text(name)); }
    QByteArray systemPath(const char* name) const { return QFile::encodeName(path(name)); }
    Outcome extract(const QStringList& options);
    void readTargetNames();
    bool plant(const QByteArray& kind, const QByteArray& entry, int number) const;
    void checkTexts(const Outcome& outcome, int written) const;

    std::unique_ptr<TestDir> m_dir;
    QStringList m_names; ///< under which the files are written
};

void TestCommandExtractSafety::initTestCase()
{
    useUtf8Paths();
    init();
    readTargetNames();
    QCOMPARE(m_names.size(), hostileNames().size());
}

void TestCommandExtractSafety::init()
{
    m_dir = std::make_unique<TestDir>();
    QVERIFY(QDir(path("")).mkpath(text("outside/directory"))
            && QDir(path("")).mkpath(text("work")));
    m_dir->write(text("outside/file"), "precious");
    m_dir->write(text("outside/directory/file"), "precious, too");
    m_dir->write(text("work/a.pdf"), documentWith(hostileFiles()));
    m_dir->write(text("x"), "above the target");
}

/// Extracts everything to work/target, run in work.
Outcome TestCommandExtractSafety::extract(const QStringList& options)
{
    const QStringList arguments{text("extract"), text("a.pdf"), text("-C"), text("target")};
    return Command(arguments + options).inDirectory(path("work")).run();
}

void TestCommandExtractSafety::readTargetNames()
{
    const Outcome outcome = extract({text("--json")});
    const QJsonArray files = jsonObject(outcome.output).value(text("files")).toArray();
    for (const auto& value : files)
        m_names += value.toObject().value(text("path")).toString().mid(int(qstrlen("target/")));
}

/// Each name has its own line, also where there is a line break in it: @p written on standard
/// output, the others on standard error.
void TestCommandExtractSafety::checkTexts(const Outcome& outcome, int written) const
{
    const auto check = [](const QByteArray& bytes, int count, const char* prefix, int width) {
        QList<QByteArray> lines = bytes.split('\n');
        QCOMPARE(lines.takeLast(), QByteArray());
        QCOMPARE(int(lines.size()), count);
        for (int id = 0; id < count; ++id) {
            const QByteArray& line = lines.at(id);
            const QByteArray number = QByteArray::number(id).rightJustified(width);
            QVERIFY2(line.startsWith(prefix + number + ' '), line.constData());
            const QString shown = QString::fromUtf8(line);
            QCOMPARE(shown.toUtf8(), line);
            QVERIFY2(!shown.contains(unsafeCharacters()), line.constData());
        }
    };
    check(outcome.output, written, "", 3);
    check(outcome.errors, int(m_names.size()) - written, "tresk: a.pdf: file ", 0);
}

void TestCommandExtractSafety::freshTarget()
{
    const QString target = path("work/target");
    const Snapshot before = snapshotOf(m_dir->path(QString()), target);
    const Outcome outcome = extract({});
    checkTexts(outcome, int(m_names.size()));
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(snapshotOf(m_dir->path(QString()), target), before);

    // A file for each, all in the directory itself, regular and with names that are safe.
    const QStringList entries = entriesOf(target);
    QCOMPARE(entries.size(), hostileNames().size());
    QSet<QString> different;
    for (int id = 0; id < m_names.size(); ++id) {
        const QString& name = m_names.at(id);
        const QByteArray entry = QFile::encodeName(target + QLatin1Char('/') + name);
        QVERIFY2(S_ISREG(statusOf(entry).st_mode), entry.constData());
        QCOMPARE(readFile(QFile::decodeName(entry)), contentOf(id));
        QVERIFY(name.toUtf8().size() <= 255 && !name.contains(QLatin1Char('\\')));
        QVERIFY(!name.contains(unsafeCharacters()));
        QVERIFY(!name.endsWith(QLatin1Char('.')) && !name.endsWith(QLatin1Char(' ')));
        different.insert(name.normalized(QString::NormalizationForm_C).toCaseFolded());
    }
    QCOMPARE(different.size(), m_names.size());
}

/// Makes the thing of that kind at @p entry; false where the system has none.
bool TestCommandExtractSafety::plant(const QByteArray& kind, const QByteArray& entry,
                                     int number) const
{
    const auto link = [&](const QByteArray& to) {
        return symlink(to.constData(), entry.constData()) == 0;
    };
    if (kind == "file")
        return !m_dir->write(QFile::decodeName(entry.mid(systemPath("").size() + 1)), "old")
                    .isEmpty();
    if (kind == "link to a file")
        return link("../../outside/file");
    if (kind == "absolute link to a file")
        return link(systemPath("outside/file"));
    if (kind == "link to a directory")
        return link("../../outside/directory");
    if (kind == "dangling link")
        return link("../../outside/new-" + QByteArray::number(number));
    if (kind == "link to itself")
        return link(entry.mid(entry.lastIndexOf('/') + 1));
    if (kind == "link to the target")
        return link(".");
    if (kind == "hard link")
        return ::link(systemPath("outside/file").constData(), entry.constData()) == 0;
    if (kind == "directory")
        return mkdir(entry.constData(), 0777) == 0;
    return kind == "pipe" && mkfifo(entry.constData(), 0666) == 0;
}

void TestCommandExtractSafety::everyNameMeets_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<bool>("force");
    QTest::addColumn<bool>("isReplaced");
    for (const char* kind :
         {"file", "link to a file", "absolute link to a file", "link to a directory",
          "dangling link", "link to itself", "link to the target", "hard link"}) {
        QTest::newRow(kind) << QByteArray(kind) << false << false;
        QTest::newRow(QByteArray(kind + QByteArray(", with --force")).constData())
            << QByteArray(kind) << true << true;
    }
    for (const char* kind : {"directory", "pipe"}) {
        QTest::newRow(kind) << QByteArray(kind) << false << false;
        QTest::newRow(QByteArray(kind + QByteArray(", with --force")).constData())
            << QByteArray(kind) << true << false;
    }
}

void TestCommandExtractSafety::everyNameMeets()
{
    QFETCH(QByteArray, kind);
    QFETCH(bool, force);
    QFETCH(bool, isReplaced);
    const QString target = path("work/target");
    QVERIFY(QDir().mkpath(target));
    for (int id = 0; id < m_names.size(); ++id) {
        const QByteArray entry = QFile::encodeName(target + QLatin1Char('/') + m_names.at(id));
        QVERIFY2(plant(kind, entry, id), entry.constData());
    }
    Snapshot outsideBefore = snapshotOf(m_dir->path(QString()), target);
    const Snapshot before = snapshotOf(target);

    const Outcome outcome = extract(force ? QStringList{text("--force")} : QStringList());
    checkTexts(outcome, isReplaced ? int(m_names.size()) : 0);
    QCOMPARE(outcome.exitCode, isReplaced ? 0 : 2);
    QCOMPARE(outcome.errors.count("cannot write "), isReplaced ? 0 : int(m_names.size()));
    if (isReplaced && kind == "hard link") {
        // It loses names, nothing else.
        const QByteArray file = systemPath("outside/file");
        QCOMPARE(qint64(statusOf(file).st_nlink), qint64(1));
        QCOMPARE(readFile(path("outside/file")), QByteArray("precious"));
        outsideBefore.remove(file);
        Snapshot outsideAfter = snapshotOf(m_dir->path(QString()), target);
        outsideAfter.remove(file);
        QCOMPARE(outsideAfter, outsideBefore);
    } else {
        QCOMPARE(snapshotOf(m_dir->path(QString()), target), outsideBefore);
    }
    if (!isReplaced) {
        QCOMPARE(snapshotOf(target), before);
        return;
    }
    QCOMPARE(entriesOf(target).size(), m_names.size());
    for (int id = 0; id < m_names.size(); ++id) {
        const QString entry = target + QLatin1Char('/') + m_names.at(id);
        const struct stat status = statusOf(QFile::encodeName(entry));
        QVERIFY2(S_ISREG(status.st_mode) && status.st_nlink == 1, qPrintable(entry));
        QCOMPARE(readFile(entry), contentOf(id));
    }
}

void TestCommandExtractSafety::targetThatCannotBeOne_data()
{
    QTest::addColumn<QByteArray>("kind");
    for (const char* kind : {"file", "dangling link", "link to itself", "pipe"})
        QTest::newRow(kind) << QByteArray(kind);
}

void TestCommandExtractSafety::targetThatCannotBeOne()
{
    QFETCH(QByteArray, kind);
    QVERIFY(plant(kind, systemPath("work/target"), 0));
    const Snapshot before = snapshotOf(m_dir->path(QString()));
    for (const char* option : {"--force", "--quiet"}) {
        const Outcome outcome = extract({text(option)});
        QCOMPARE(outcome.exitCode, 2);
        QVERIFY2(outcome.errors.startsWith("tresk: target: "), outcome.errors.constData());
        QCOMPARE(snapshotOf(m_dir->path(QString())), before);
    }
}

QTEST_GUILESS_MAIN(TestCommandExtractSafety)
#include "tst_command_extract_safety.moc"
