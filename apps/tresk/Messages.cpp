#include "Messages.h"

#include "Output.h"
#include "Text.h"

#include <QMessageLogContext>

#include <unistd.h>

namespace tresk::cli {

namespace {

Verbosity currentVerbosity = Verbosity::Normal;

void say(QStringView text, const QString& prefix = QString())
{
    // In one piece, so that lines of several processes do not mix, but for very long ones. Where
    // nobody can be told, the exit code has to do.
    const auto longest = 64 * 1024;
    QByteArray line = "tresk: " + printable(prefix).toUtf8();
    if (text.isEmpty())
        line.chop(2); // the colon and the blank in front of it
    forPrintable(text, [&line](const QString& piece) {
        if (line.size() > longest) {
            writeFully(STDERR_FILENO, line.constData(), line.size());
            line.clear();
        }
        line += piece.toUtf8();
    });
    line += '\n';
    writeFully(STDERR_FILENO, line.constData(), line.size());
}

/// What stands in front of a text about @p subject.
QString about(const QString& subject, const char* kind = "")
{
    const QString name = subject.isEmpty() ? QStringLiteral("''") : subject;
    return name + QStringLiteral(": ") + QLatin1String(kind);
}

void handleQtMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    relayLogLine(text);
}

} // namespace

void setVerbosity(Verbosity verbosity)
{
    currentVerbosity = verbosity;
}

Verbosity verbosity()
{
    return currentVerbosity;
}

void catchLogLines()
{
    qInstallMessageHandler(handleQtMessage);
}

void reportError(const QString& text)
{
    say(text);
}

void reportError(const QString& subject, QStringView text)
{
    say(text, about(subject));
}

void reportWarning(const QString& subject, QStringView text)
{
    if (currentVerbosity != Verbosity::Quiet)
        say(text, about(subject, "warning: "));
}

void reportNote(const QString& subject, QStringView text)
{
    if (currentVerbosity != Verbosity::Quiet)
        say(text, about(subject, "note: "));
}

void relayLogLine(const QString& text)
{
    if (currentVerbosity == Verbosity::Verbose)
        say(text.trimmed());
}

} // namespace tresk::cli
