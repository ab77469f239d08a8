#include "Search.h"

#include "Documents.h"

#include <QDir>
#include <QFileInfo>
#include <QtTest>

namespace tresktest {

void write(const TestDir& dir, const char* name, const char* title)
{
    useUtf8Paths();
    QVERIFY(QDir().mkpath(QFileInfo(dir.path(text(name))).path()));
    dir.write(text(name), documentWith(QVector<SectionSpec>{step(text(title))}));
}

Command find(const TestDir& dir, const QStringList& arguments)
{
    return Command(QStringList{text("find")} + arguments).inDirectory(dir.path(QString()));
}

void compare(const Outcome& outcome, const QByteArray& output, const QByteArray& errors,
             int exitCode)
{
    QCOMPARE(outcome.output, output);
    QCOMPARE(outcome.errors, errors);
    QCOMPARE(outcome.exitCode, exitCode);
}

} // namespace tresktest
