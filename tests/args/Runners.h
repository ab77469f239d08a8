#ifndef TRESK_TESTS_RUNNERS_H
#define TRESK_TESTS_RUNNERS_H

#include "TestFiles.h"
#include "Text.h"

#include <tresk/TreskRunner.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

#include <csignal>

namespace tresktest {

/// A folder with the stand-in for each of the tools.
class ToolFolder : public TestDir {
public:
    ToolFolder();

    /// The path of @p name in the folder, as a runner takes it: from the application's directory.
    QString relative(const QString& name = QString()) const;
    /// The path of @p name in the folder, as a runner finds it.
    QString found(const QString& name) const;
    /// Makes the folder @p name in this one.
    void makeFolder(const QString& name) const;
    /// Puts the stand-in there under @p name.
    void addTool(const QString& name) const;
};

/// A runner's messages in their order, each as its type, a blank and the text.
class RunnerLog {
public:
    explicit RunnerLog(tresk::TreskRunner& runner);

    QStringList messages;
    QStringList events; ///< the same, with "intercept" wherever that was emitted

private:
    Q_DISABLE_COPY(RunnerLog)

    QObject m_context; // ends the connections
};

/// What a runner says at the end.
QString exitMessage(int code);

/// Sets what the stand-in does from now on: steps, one a line, or what the next ones return.
void standIn(const QByteArray& steps);
/// The step to print @p bytes.
QByteArray out(const QByteArray& bytes);
/// The step to print @p bytes to standard error.
QByteArray err(const QByteArray& bytes);
/// The steps to print @p pieces such that each is read by itself.
QByteArray inPieces(const QList<QByteArray>& pieces);

/// An environment variable's value, set as long as it lives.
class Variable {
public:
    Variable(const char* name, const QByteArray& value);
    ~Variable();

private:
    Q_DISABLE_COPY(Variable)

    const char* m_name;
    QByteArray m_before;
};

/// Those of its flags that a program sets: the C library adds one when it restores an action.
int flagsOf(const struct sigaction& action);

/// Makes the locale's encoding UTF-8, whatever locale the tests run in.
void useUtf8();

} // namespace tresktest

#endif
