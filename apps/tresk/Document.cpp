#include "Document.h"

#include "Messages.h"
#include "RegularFile.h"
#include "SystemText.h"
#include "Text.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

/// How messages speak of an embedded file.
QString describe(const FileTag& file)
{
    return QStringLiteral("file %1 %2").arg(QString::number(file.id), shownQuoted(file.filename));
}

QString describe(const SectionTag& step)
{
    return QStringLiteral("step %1 %2").arg(QString::number(step.id), shownQuoted(step.title));
}

/// Where what the markers say of the file ends: its block, or its stored bytes.
qint64 endOf(const FileTag& file)
{
    const qint64 markerEnd = qint64(file.pos) + file.tagLength;
    const qint64 stored = file.compression == QLatin1String("none") ? file.filesize
                                                                    : file.cfilesize;
    return markerEnd + std::max<qint64>(file.blocksize, file.offset + stored);
}

qint64 endOf(const SectionTag& section)
{
    return qint64(section.pos) - section.left + section.size;
}

template <typename Tags>
qint64 countBeyond(const Tags& tags, qint64 size)
{
    return std::count_if(tags.begin(), tags.end(),
                         [size](const auto& tag) { return endOf(tag) > size; });
}

} // namespace

Document::Document()
{
    QObject::connect(&m_parser, &LogSource::log, &m_parser,
                     [](const QString& text) { relayLogLine(text); });
}

Document::~Document()
{
    if (m_fd != -1)
        close(m_fd);
}

bool Document::open(const QString& path)
{
    return openQuietly(path) || refuse(m_problem);
}

bool Document::openWithSteps(const QString& path)
{
    if (!open(path))
        return false;
    if (m_parser.getNumSections() > 0)
        return true;
    m_lacksHistory = true;
    return refuse(QStringLiteral("has no history: no step is left in it, only %1")
                      .arg(counted(m_parser.getNumFiles(), QStringLiteral("embedded file"))));
}

bool Document::openQuietly(const QString& path)
{
    m_name = path;
    m_problem = problemWithFile();
    if (!m_problem.isEmpty())
        return false;
    const bool hasHeader = m_parser.open(parserPath());
    // Where a part is missing from the lists, steps and files have other numbers.
    if (m_parser.readFailed()) {
        m_problem = readingProblem();
        return false;
    }
    if (!hasHeader)
        m_problem = QStringLiteral(
            "has no history: none of its first 10 lines is a history header");
    else if (m_parser.getNumSections() == 0 && m_parser.getNumFiles() == 0)
        m_problem = QStringLiteral("has an empty history: neither steps nor embedded files");
    m_lacksHistory = !m_problem.isEmpty();
    return m_problem.isEmpty();
}

QString Document::parserPath() const
{
    // The open file has another one.
    return isUndecoded(m_name) ? QStringLiteral("/dev/fd/%1").arg(m_fd) : m_name;
}

QByteArray Document::bytes(qint64 pos, int length)
{
    return m_parser.getBytes(static_cast<int>(pos), length);
}

void Document::report(const QString& problem) const
{
    reportError(m_name, problem);
}

void Document::report(const FileTag& file, const QString& problem) const
{
    reportError(m_name, describe(file) + QStringLiteral(": ") + problem);
}

void Document::report(const SectionTag& step, const QString& problem) const
{
    reportError(m_name, describe(step) + QStringLiteral(": ") + problem);
}

void Document::warn(const QString& remark) const
{
    reportWarning(m_name, remark);
}

void Document::warn(const FileTag& file, const QString& remark) const
{
    reportWarning(m_name, describe(file) + QStringLiteral(": ") + remark);
}

void Document::warn(const SectionTag& step, const QString& remark) const
{
    reportWarning(m_name, describe(step) + QStringLiteral(": ") + remark);
}

QString Document::extentProblem(const TreskParser& parser, qint64 size)
{
    const qint64 steps = countBeyond(parser.getSections(), size);
    const qint64 files = countBeyond(parser.getFiles(), size);
    QStringList what;
    if (steps > 0)
        what += counted(steps, QStringLiteral("step"));
    if (files > 0)
        what += counted(files, QStringLiteral("embedded file"));
    if (what.isEmpty())
        return {};
    return QStringLiteral("is cut off or damaged: %1 would reach beyond its end")
        .arg(what.join(QStringLiteral(" and ")));
}

bool Document::checkExtent() const
{
    const QString problem = extentProblem();
    if (!problem.isEmpty())
        report(problem);
    return problem.isEmpty();
}

QString Document::chainProblem(const TreskParser& parser)
{
    const int steps = parser.getNumSections();
    if (steps == 0 || parser.getSection(steps - 1)->previousmarker < 0)
        return {};
    return QStringLiteral("the history is incomplete: the step before step %1 is not where its "
                          "marker says")
        .arg(steps - 1);
}

bool Document::checkChain() const
{
    const QString problem = chainProblem();
    if (!problem.isEmpty())
        report(problem);
    return problem.isEmpty();
}

QString Document::readingProblem() const
{
    struct stat status = {};
    if (fstat(m_fd, &status) != 0)
        return systemError(errno);
    if (status.st_size < m_size)
        return QStringLiteral("has become shorter while it was read; try again");
    return m_parser.readFailed() ? QStringLiteral("a part of it cannot be read") : QString();
}

bool Document::checkReading()
{
    const QString problem = readingProblem();
    return problem.isEmpty() || refuse(problem);
}

bool Document::refuse(const QString& problem)
{
    m_problem = problem;
    report(problem);
    return false;
}

QString Document::unfit(const QString& problem)
{
    m_isUnfit = true;
    return problem;
}

/// Opens the file and says why it cannot be a document; nothing if it can.
QString Document::problemWithFile()
{
    const OpenedFile file = openRegularFile(m_name);
    m_fd = file.fd;
    m_isUnfit = file.isUnfit;
    if (file.isDirectory)
        return QStringLiteral("is a directory; 'tresk find' searches those");
    if (!file.problem.isEmpty())
        return file.problem;
    if (file.size == 0)
        return unfit(QStringLiteral("is empty"));
    if (file.size > std::numeric_limits<int>::max())
        return unfit(QStringLiteral("has 2 GiB or more, which is not supported"));
    char byte = 0;
    ssize_t count = 0;
    do {
        count = pread(m_fd, &byte, 1, 0);
    } while (count == -1 && errno == EINTR);
    if (count == -1)
        return systemError(errno);
    m_size = file.size;
    return {};
}

} // namespace tresk::cli
