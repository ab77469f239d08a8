#include "TestFiles.h"

#include <tresk/BinaryDir.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <cstdio>

using tresk::getBinaryDir;
using tresktest::TestDir;

namespace {

const QString printOption = QStringLiteral("--print-binary-dir");

/// What getBinaryDir() says in a process started from @p program in @p workingDirectory.
QString binaryDirOf(const QString& program, const QString& workingDirectory = QString())
{
    QProcess process;
    process.setWorkingDirectory(workingDirectory);
    process.start(program, {printOption});
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return QStringLiteral("the program could not be run");
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString ownDir()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).canonicalPath();
}

} // namespace

class TestBinaryDir : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isThatOfTheExecutable();
    void hasNoSeparatorAtItsEnd();
    void linkToTheExecutable();
    void linkToTheDirectory();
    void doesNotDependOnTheCurrentDirectory();
};

void TestBinaryDir::isThatOfTheExecutable()
{
    QCOMPARE(getBinaryDir(), ownDir());
    QVERIFY(
        QDir(getBinaryDir()).exists(QFileInfo(QCoreApplication::applicationFilePath()).fileName()));
}

void TestBinaryDir::hasNoSeparatorAtItsEnd()
{
    QVERIFY(!getBinaryDir().endsWith(QLatin1Char('/')));
    QVERIFY(QDir::isAbsolutePath(getBinaryDir()));
}

void TestBinaryDir::linkToTheExecutable()
{
    const TestDir dir;
    const QString link = dir.path(QStringLiteral("link"));
    QVERIFY(QFile::link(QCoreApplication::applicationFilePath(), link));
    QCOMPARE(binaryDirOf(link), ownDir());
}

void TestBinaryDir::linkToTheDirectory()
{
    const TestDir dir;
    const QString real = dir.path(QStringLiteral("real"));
    QVERIFY(QDir().mkdir(real));
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), real + QStringLiteral("/copy")));
    const QString link = dir.path(QStringLiteral("link"));
    QVERIFY(QFile::link(real, link));
    QCOMPARE(binaryDirOf(link + QStringLiteral("/copy")), QFileInfo(real).canonicalFilePath());
}

void TestBinaryDir::doesNotDependOnTheCurrentDirectory()
{
    const TestDir dir;
    QCOMPARE(binaryDirOf(QCoreApplication::applicationFilePath(), dir.path(QString())), ownDir());
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (app.arguments().value(1) == printOption) {
        std::fputs(getBinaryDir().toUtf8().constData(), stdout);
        return 0;
    }
    TestBinaryDir test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_binarydir.moc"
