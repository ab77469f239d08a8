#include "Messages.h"

#include "Output.h"
#include "Text.h"

#include <QMessageLogContext>

#include <unistd.h>

namespace tresk::cli {

namespace {

Verbosity currentVerbosity = Verbosity::Normal;

void say(const QString& text)
{
    // In one piece, so that lines of several processes do not mix. Where nobody can be told,
    // the exit code has to do.
    const QByteArray line = "tresk: " + printable(text).toUtf8() + '\n';
    writeFully(STDERR_FILENO, line.constData(), line.size());
}

QString about(const QString& subject, const QString& text)
{
    const QString name = subject.isEmpty() ? QStringLiteral("''") : subject;
    return name + QStringLiteral(": ") + text;
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

void reportError(const QString& subject, const QString& text)
{
    say(about(subject, text));
}

void reportWarning(const QString& subject, const QString& text)
{
    if (currentVerbosity != Verbosity::Quiet)
        say(about(subject, QStringLiteral("warning: ") + text));
}

void reportNote(const QString& subject, const QString& text)
{
    if (currentVerbosity != Verbosity::Quiet)
        say(about(subject, QStringLiteral("note: ") + text));
}

void relayLogLine(const QString& text)
{
    if (currentVerbosity == Verbosity::Verbose)
        say(text.trimmed());
}

} // namespace tresk::cli
