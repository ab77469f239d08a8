#ifndef TRESK_TRESKRUNNER_H
#define TRESK_TRESKRUNNER_H

#include <tresk/LogSource.h>

#include <QString>
#include <QStringList>

class QByteArray;

namespace tresk {

/// Starts an external tool as a child process and relays what it prints, line by line, into the
/// log. Needs a QCoreApplication.
///
/// The tool is looked for in directories relative to that of the running application, never in
/// the environment's path. It is an executable called like the tool (with ".exe" on Windows), or
/// a script (".py") that is run by "python3" ("python.exe").
///
/// A line that begins with "***ERROR" is logged without that as an error (type 2), one that begins
/// with "***WARNING" likewise as a warning (type 1), others as they are (type 0), each with a line
/// feed at its end. A line that grows beyond 2^28 characters is logged in pieces.
class TRESK_EXPORT TreskRunner : public LogSource {
    Q_OBJECT

public:
    /// For the tool @p toolName, an executable beside the application. A @p listener that is not
    /// null is connected to the log.
    TreskRunner(const QString& toolName, QObject* listener);
    ~TreskRunner() override;

    /// Starts the tool with @p input, waits until it has ended and returns its exit code; for a
    /// tool that a signal ended, the number of the signal.
    ///
    /// Where there is no tool it returns -1000, and where it cannot be started -1001, after logging
    /// an error. The tool's output and its errors are one stream, taken as UTF-8. Waiting is for
    /// the tool alone, not for processes that it leaves behind with its output. The calling thread
    /// is blocked meanwhile; only the log and intercept() are emitted, and the runner must live on.
    /// Slots of these must not run it again; another runner may be run.
    ///
    /// The exit code is the child's, which can be asked for only once. Where the host does so
    /// itself for whatever child has ended, say with waitpid(-1) in a handler of SIGCHLD, it is
    /// lost, and what is returned and logged means nothing.
    ///
    /// The signal handling of the process is as before when it returns. (QProcess has SIGPIPE
    /// ignored from its first use in a process on; where this is the first, that is taken back, and
    /// a program that writes to processes of its own has to ignore the signal itself.)
    virtual int runProcess(const QString& input) = 0;

    /// @{
    /// Whether the tool is an executable of its own (the default) or a script.
    bool getUsePy2Exe() const { return m_usePy2Exe; }
    void setUsePy2Exe(bool packaged);
    /// @}
    /// Replaces the directories in which the tool is looked for, first match wins. They are
    /// relative to the application's directory, also where they begin with "/". By default ".".
    void setSearchPaths(const QStringList& paths) { m_searchPaths = paths; }

    /// The interpreter of a script; empty for an executable.
    QString findPython();
    /// The path of the executable or script; empty if there is none.
    QString findTreskrun();

    /// Takes @p text, the next piece of the tool's output, and logs the lines that it ends. A line
    /// ends with CR LF, LF or CR; a CR at the end of a piece ends its line, and an LF that begins
    /// the next piece ends an empty one. With @p flush, what is left is logged as a line too, and
    /// kept until clearOutputRest().
    void processOutput(const QString& text, bool flush);
    /// Logs one line, which includes its line feed, as the kind that it says it is.
    void processOutputLine(const QString& line);
    /// Forgets what waits for its end of line.
    void clearOutputRest();

Q_SIGNALS:
    /// A piece of output was logged: the caller's chance to keep its user interface alive.
    void intercept();

protected:
    /// runProcess() with @p arguments behind the tool's name and @p input on its standard input.
    int runTool(const QStringList& arguments, const QByteArray& input);

private:
    static QString searchInPath(const QString& dir, const QString& file);

    QString m_executableName;
    QString m_toolName;
    QString m_outputRest;
    bool m_usePy2Exe = true;
    QStringList m_searchPaths;
};

} // namespace tresk

#endif
