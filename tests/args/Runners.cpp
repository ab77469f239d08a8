#include "Runners.h"

#include <tresk/BinaryDir.h>

#include <QDir>
#include <QFile>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

namespace tresktest {

ToolFolder::ToolFolder()
{
    addTool(QStringLiteral("treskadd"));
    addTool(QStringLiteral("treskdel"));
}

QString ToolFolder::relative(const QString& name) const
{
    // Not through links, such as that of a folder for temporary files.
    const QString folder = QDir(path(QStringLiteral("."))).canonicalPath();
    const QString way = QDir(tresk::getBinaryDir()).relativeFilePath(folder);
    return name.isEmpty() ? way : way + QLatin1Char('/') + name;
}

QString ToolFolder::found(const QString& name) const
{
    return tresk::getBinaryDir() + QLatin1Char('/') + relative(name);
}

void ToolFolder::makeFolder(const QString& name) const
{
    if (!QDir().mkpath(path(name)))
        qFatal("%s could not be made", qPrintable(path(name)));
}

void ToolFolder::addTool(const QString& name) const
{
    if (!QFile::link(QStringLiteral(TRESK_STANDIN), path(name)))
        qFatal("%s could not be made", qPrintable(path(name)));
}

RunnerLog::RunnerLog(tresk::TreskRunner& runner)
{
    QObject::connect(&runner, &tresk::LogSource::log, &m_context,
                     [this](const QString& text, int type) {
                         messages += QString::number(type) + QLatin1Char(' ') + text;
                         events += messages.constLast();
                     });
    QObject::connect(&runner, &tresk::TreskRunner::intercept, &m_context,
                     [this] { events += QStringLiteral("intercept"); });
}

QString exitMessage(int code)
{
    return QStringLiteral("0 Programm exited with error code: %1\n\n").arg(code);
}

void standIn(const QByteArray& steps)
{
    qputenv("TRESK_STANDIN", steps);
}

QByteArray out(const QByteArray& bytes)
{
    return "out " + bytes.toHex() + '\n';
}

QByteArray err(const QByteArray& bytes)
{
    return "err " + bytes.toHex() + '\n';
}

QByteArray inPieces(const QList<QByteArray>& pieces)
{
    QByteArray steps;
    for (const QByteArray& piece : pieces)
        steps += out(piece) + "taken\n";
    return steps;
}

Variable::Variable(const char* name, const QByteArray& value)
    : m_name(name)
    , m_before(qgetenv(name))
{
    qputenv(m_name, value);
}

Variable::~Variable()
{
    qputenv(m_name, m_before);
}

int flagsOf(const struct sigaction& action)
{
    return action.sa_flags
        & (SA_NOCLDSTOP | SA_NOCLDWAIT | SA_NODEFER | SA_ONSTACK | SA_RESETHAND | SA_RESTART
           | SA_SIGINFO);
}

void useUtf8()
{
    // Qt 6 does so by itself.
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
#endif
}

} // namespace tresktest
