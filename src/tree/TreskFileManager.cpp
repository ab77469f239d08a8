#include <tresk/TreskFileManager.h>

#include <tresk/TreskParser.h>

#include <QFile>

namespace tresk {

TempTreskfile::TempTreskfile(const QSharedPointer<TreskParser>& parser, const QString& path,
                             bool temporary)
    : m_parser(parser)
    , m_path(path)
    , m_temporary(temporary)
{
}

TempTreskfile::~TempTreskfile()
{
    if (!m_temporary)
        return;
    const QWeakPointer<TreskParser> parser = m_parser;
    m_parser.clear();
    // Who keeps the parser reads on. So it has to have its file open, which it may have released.
    if (const QSharedPointer<TreskParser> kept = parser.toStrongRef())
        kept->getBytes(0, 1);
    QFile::remove(m_path);
}

TreskFileManager::TreskFileManager(QObject* listener)
    : LogSource(listener)
{
}

TreskFileManager::TreskFileManager(const TreskFileManager& other)
    : LogSource(nullptr)
    , m_files(other.m_files)
{
    relayLogs();
}

TreskFileManager& TreskFileManager::operator=(const TreskFileManager& other)
{
    if (this != &other) {
        clear();
        m_files = other.m_files;
        relayLogs();
    }
    return *this;
}

TreskFileManager::~TreskFileManager() = default;

QSharedPointer<TreskParser> TreskFileManager::addTreskFile(const QString& path, bool temporary)
{
    if (QSharedPointer<TreskParser> known = parser(path))
        return known;
    auto opened = QSharedPointer<TreskParser>::create(ParseTolerant);
    opened->publishToLogSignal(this);
    if (!opened->open(path))
        return {};
    m_files.insert(path, QSharedPointer<TempTreskfile>::create(opened, path, temporary));
    return opened;
}

QSharedPointer<TreskParser>
TreskFileManager::addTreskFile(const QSharedPointer<TreskParser>& parser, const QString& path)
{
    if (!parser)
        return {};
    parser->publishToLogSignal(this);
    m_files.insert(path, QSharedPointer<TempTreskfile>::create(parser, path, false));
    return parser;
}

QSharedPointer<TreskParser> TreskFileManager::parser(const QString& path) const
{
    const QSharedPointer<TempTreskfile> file = m_files.value(path);
    return file ? file->parser() : QSharedPointer<TreskParser>();
}

void TreskFileManager::remove(const QString& path)
{
    if (const QSharedPointer<TempTreskfile> file = m_files.take(path))
        file->parser()->disconnect(this);
}

void TreskFileManager::clear()
{
    for (const QSharedPointer<TempTreskfile>& file : qAsConst(m_files))
        file->parser()->disconnect(this);
    m_files.clear();
}

void TreskFileManager::relayLogs()
{
    for (const QSharedPointer<TempTreskfile>& file : qAsConst(m_files))
        file->parser()->publishToLogSignal(this);
}

} // namespace tresk
