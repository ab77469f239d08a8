#ifndef TRESK_TESTS_APPS_COMMAND_H
#define TRESK_TESTS_APPS_COMMAND_H

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <functional>

namespace tresktest {

/// How a run of the command ended.
struct Outcome {
    int exitCode = -1; ///< -1 if it crashed or did not end
    QByteArray output; ///< what it wrote to standard output
    QByteArray errors; ///< what it wrote to standard error; behind that why it has no exit code
};

/// A run of the tresk command.
class Command {
public:
    explicit Command(const QStringList& arguments);

    Command& inDirectory(const QString& path);
    Command& with(const QString& variable, const QString& value);
    Command& without(const QString& variable);
    /// Has the shell run @p script, in which "$@" stands for the command and its arguments.
    Command& inShell(const QString& script);

    /// Has the shell do what @p before says, and then a user run it for whom permissions count,
    /// also if the one who runs the tests is root. False if there is none to be had.
    bool asOrdinaryUser(const QString& before = QString());

    Outcome run();
    /// Runs it and calls @p act, which may send it signals, as soon as it has started; not if
    /// it has ended by then.
    Outcome runWhile(const std::function<void(qint64 processId)>& act);

    /// Runs it with standard output, standard error or both connected to a terminal, what
    /// appears on which is returned in the place of the (first) stream.
    Outcome runOnTerminal(bool output, bool errors);

private:
    void start(QProcess& process) const;

    QStringList m_arguments;
    QString m_directory;
    QString m_script;
    QProcessEnvironment m_environment;
};

/// Waits until the process has read so many bytes, or has ended.
void waitUntilRead(qint64 processId, qint64 bytes);

/// The text that these bytes of UTF-8 are.
QString text(const char* utf8);

/// Makes paths and arguments UTF-8, whatever locale the tests run in. For tests that write
/// files with other names than ASCII ones; runs of the command do it themselves.
void useUtf8Paths();

/// Runs the command with @p arguments.
Outcome runTresk(const QStringList& arguments);

/// The object that @p json is; empty, and a failure of the test, if it is none.
QJsonObject jsonObject(const QByteArray& json);

} // namespace tresktest

#endif
