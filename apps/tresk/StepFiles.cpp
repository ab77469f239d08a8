#include "StepFiles.h"

#include <QStringList>

#include <algorithm>
#include <vector>

namespace tresk::cli {

StepFiles::StepFiles(const TreskParser& parser)
    : m_steps(parser.getSections())
    , m_files(parser.getFiles())
{
}

QVector<int> StepFiles::filesIn(const SectionTag& step) const
{
    const qint64 start = qint64(step.pos) - step.left;
    const qint64 end = start + step.size;
    // Files are in the order of their positions, and a block never ends before the marker.
    auto file = std::lower_bound(m_files.begin(), m_files.end(), start,
                                 [](const FileTag& f, qint64 pos) { return f.pos < pos; });
    QVector<int> ids;
    for (; file != m_files.end() && file->pos <= end; ++file) {
        if (qint64(file->pos) + file->tagLength + file->blocksize <= end)
            ids += file->id;
    }
    return ids;
}

qint64 StepFiles::memberships() const
{
    qint64 sum = 0;
    for (const SectionTag& step : m_steps)
        sum += filesIn(step).size();
    return sum;
}

QVector<int> StepFiles::filesWithoutStep() const
{
    std::vector<bool> hasStep(static_cast<size_t>(m_files.size()), false);
    for (const SectionTag& step : m_steps) {
        for (const int id : filesIn(step))
            hasStep[static_cast<size_t>(id)] = true;
    }
    QVector<int> ids;
    for (const FileTag& file : m_files) {
        if (!hasStep[static_cast<size_t>(file.id)])
            ids += file.id;
    }
    return ids;
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
