#ifndef TRESK_TESTS_APPS_TOOLS_H
#define TRESK_TESTS_APPS_TOOLS_H

#include "Command.h"

#include <TestFiles.h>

#include <QObject>

#include <memory>

namespace tresktest {

/// Base of tests of the commands that run tools. Each test has a folder of its own with an
/// argument file "some.args", and an empty one, "tools", for shell scripts in the place of tools.
class ToolTest : public QObject {
protected:
    void makeFolder();

    const TestDir& dir() const { return *m_dir; }
    QString path(const char* name) const { return m_dir->path(text(name)); }
    /// Writes an executable shell script.
    void writeTool(const char* name, const QByteArray& script) const;
    /// `tresk NAME --search-path tools some.args`, in the folder.
    Command command(const char* name, const QStringList& options = {}) const;
    /// Runs `add` with this script for a tool.
    Outcome add(const QByteArray& script, const QStringList& options = {}) const;

private:
    std::unique_ptr<TestDir> m_dir;
};

} // namespace tresktest

#endif
