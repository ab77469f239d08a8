#include "StepFiles.h"

#include <QStringList>

#include <algorithm>

namespace tresk::cli {

StepFiles::StepFiles(const TreskParser& parser)
    : m_steps(parser.getSections())
    , m_files(parser.getFiles())
{
    const QList<FileTag> files = parser.getSectionlessFiles();
    for (const FileTag& file : files)
        m_filesWithoutStep += file.id;
}

QVector<int> StepFiles::filesIn(const SectionTag& step) const
{
    const qint64 end = qint64(step.pos) - step.left + step.size;
    const auto [first, last] = markersIn(step);
    QVector<int> ids;
    for (int i = first; i < last; ++i) {
        const FileTag& file = m_files[i];
        if (qint64(file.pos) + file.tagLength + file.blocksize <= end)
            ids += file.id;
    }
    return ids;
}

qint64 StepFiles::memberships() const
{
    qint64 sum = 0;
    for (const SectionTag& step : m_steps) {
        const auto [first, last] = markersIn(step);
        sum += last - first;
    }
    return sum;
}

QVector<int> StepFiles::filesWithoutStep() const
{
    return m_filesWithoutStep;
}

/// The files whose markers stand in the region of @p step, from the first id to the one behind the
/// last: found without looking at each, since they are in the order of their positions.
std::pair<int, int> StepFiles::markersIn(const SectionTag& step) const
{
    const qint64 start = qint64(step.pos) - step.left;
    const qint64 end = start + step.size;
    const auto isBefore = [](const FileTag& file, qint64 pos) { return file.pos < pos; };
    const auto first = std::lower_bound(m_files.begin(), m_files.end(), start, isBefore);
    const auto last = std::lower_bound(first, m_files.end(), std::max(start, end + 1), isBefore);
    return {int(first - m_files.begin()), int(last - m_files.begin())};
}

void IdRuns::append(int id)
{
    if (!m_runs.isEmpty() && m_runs.last().second == id - 1)
        m_runs.last().second = id;
    else
        m_runs += {id, id};
}

QVector<int> IdRuns::ids() const
{
    QVector<int> result;
    for (const auto& [first, last] : m_runs) {
        for (int id = first; id <= last; ++id)
            result += id;
    }
    return result;
}

QString IdRuns::text() const
{
    if (m_runs.isEmpty())
        return QStringLiteral("-");
    QStringList parts;
    for (const auto& [first, last] : m_runs) {
        QString part = QString::number(first);
        if (last > first)
            part += QLatin1Char(last == first + 1 ? ',' : '-') + QString::number(last);
        parts += part;
    }
    return parts.join(QLatin1Char(','));
}

QVector<IdRuns> stepsOfFiles(const StepFiles& stepFiles)
{
    QVector<IdRuns> result(stepFiles.files().size());
    for (const SectionTag& step : stepFiles.steps()) {
        for (const int file : stepFiles.filesIn(step))
            result[file].append(step.id);
    }
    return result;
}

} // namespace tresk::cli
