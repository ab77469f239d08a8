#include "Tools.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace tresktest {

void ToolTest::makeFolder()
{
    useUtf8Paths();
    m_dir = std::make_unique<TestDir>();
    QVERIFY(QDir(path("")).mkdir(text("tools")));
    m_dir->write(text("some.args"), "-O some.pdf");
}

void ToolTest::writeTool(const char* name, const QByteArray& script) const
{
    QFile file(m_dir->write(text(name), "#!/bin/sh\n" + script));
    QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
}

Command ToolTest::command(const char* name, const QStringList& options) const
{
    const QStringList arguments = {text(name), text("--search-path"), text("tools"),
                                   text("some.args")};
    return Command(arguments + options).inDirectory(path(""));
}

Outcome ToolTest::add(const QByteArray& script, const QStringList& options) const
{
    writeTool("tools/treskadd", script);
    return command("add", options).run();
}

} // namespace tresktest
