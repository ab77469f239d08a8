#include "StepFiles.h"

#include <QStringList>

#include <algorithm>
#include <numeric>
#include <vector>

namespace tresk::cli {

namespace {

constexpr qint64 mostMemberships = 1000000; // summaries that name so many files take some 300 MB

/// The offset behind the region of the step, and that behind the block of the file.
qint64 endOf(const SectionTag& step)
{
    return qint64(step.pos) - step.left + step.size;
}

qint64 endOf(const FileTag& file)
{
    return qint64(file.pos) + file.tagLength + file.blocksize;
}

/// Counts numbers from 0 to a bound, and how many there are up to one of them, in a time that grows
/// with the logarithm of the bound (a Fenwick tree).
class Counter {
public:
    explicit Counter(size_t bound)
        : m_sums(bound + 1)
    {
    }

    void add(size_t number)
    {
        for (size_t i = number + 1; i < m_sums.size(); i += i & (~i + 1))
            ++m_sums[i];
    }

    /// How many of those added are below @p number.
    int countBelow(size_t number) const
    {
        int count = 0;
        for (size_t i = number; i > 0; i &= i - 1)
            count += m_sums[i];
        return count;
    }

private:
    std::vector<int> m_sums;
};

} // namespace

StepFiles::StepFiles(const TreskParser& parser)
    : m_steps(parser.getSections())
    , m_files(parser.getFiles())
{
    const QList<FileTag> files = parser.getSectionlessFiles();
    for (const FileTag& file : files)
        m_filesWithoutStep += file.id;
    qint64 memberships = 0;
    for (const SectionTag& step : m_steps) {
        const auto [first, last] = markersIn(step);
        memberships += last - first;
    }
    m_areTooMany = memberships > mostMemberships;
    countFiles();
}

QVector<int> StepFiles::filesIn(const SectionTag& step) const
{
    QVector<int> ids;
    if (m_areTooMany)
        return ids;
    const qint64 end = endOf(step);
    const auto [first, last] = markersIn(step);
    for (int i = first; i < last; ++i) {
        if (endOf(m_files[i]) <= end)
            ids += m_files[i].id;
    }
    return ids;
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
    const qint64 end = endOf(step);
    const auto isBefore = [](const FileTag& file, qint64 pos) { return file.pos < pos; };
    const auto first = std::lower_bound(m_files.begin(), m_files.end(), start, isBefore);
    const auto last = std::lower_bound(first, m_files.end(), std::max(start, end + 1), isBefore);
    return {int(first - m_files.begin()), int(last - m_files.begin())};
}

/// Counts the files of all steps at once: goes through the steps from the one that begins last,
/// with the ends of the files that begin behind that.
void StepFiles::countFiles()
{
    std::vector<qint64> ends;
    ends.reserve(static_cast<size_t>(m_files.size()));
    for (const FileTag& file : m_files)
        ends.push_back(endOf(file));
    std::sort(ends.begin(), ends.end());
    const auto lowerRank = [&ends](qint64 end) {
        return static_cast<size_t>(std::lower_bound(ends.begin(), ends.end(), end) - ends.begin());
    };
    const auto upperRank = [&ends](qint64 end) {
        return static_cast<size_t>(std::upper_bound(ends.begin(), ends.end(), end) - ends.begin());
    };

    QVector<int> byStart(m_steps.size());
    std::iota(byStart.begin(), byStart.end(), 0);
    const auto startOf = [this](int id) { return qint64(m_steps[id].pos) - m_steps[id].left; };
    std::sort(byStart.begin(), byStart.end(),
              [&startOf](int a, int b) { return startOf(a) > startOf(b); });

    m_counts.resize(m_steps.size());
    Counter counter(ends.size());
    int next = int(m_files.size()) - 1;
    for (const int id : byStart) {
        for (; next >= 0 && m_files[next].pos >= startOf(id); --next)
            counter.add(lowerRank(endOf(m_files[next])));
        m_counts[id] = counter.countBelow(upperRank(endOf(m_steps[id])));
    }
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
