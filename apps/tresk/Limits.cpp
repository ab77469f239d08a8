#include "Limits.h"

#include "Invocation.h"
#include "Text.h"

#include <algorithm>
#include <limits>

namespace tresk::cli {

namespace {

constexpr int mostDocuments = 1000000;
constexpr qint64 mebibyte = qint64(1024) * 1024;

const char* const depthOption = "max-depth";
const char* const documentsOption = "max-documents";
const char* const unpackedOption = "max-unpacked";

/// The number that @p text says in digits alone: no signs and blanks, which toLongLong() takes.
std::optional<qint64> numberFromText(const QString& text)
{
    const bool allDigits = std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
    bool valid = false;
    const qint64 number = text.toLongLong(&valid);
    return valid && allDigits ? std::optional<qint64>(number) : std::nullopt;
}

/// The number from 0 to @p most that the option has, else @p usual. Reports another value.
std::optional<int> numberOf(const Invocation& invocation, const Command* command,
                            const char* option, int usual, int most)
{
    if (!invocation.isSet(option))
        return usual;
    const std::optional<qint64> number = numberFromText(invocation.value(option));
    if (number && *number <= most)
        return static_cast<int>(*number);
    reportUsage(command,
                QStringLiteral("--%1 takes a number from 0 to %2")
                    .arg(QLatin1String(option), QString::number(most)));
    return std::nullopt;
}

/// The size that --max-unpacked has, else @p usual. Reports another value.
std::optional<qint64> unpackedLimit(const Invocation& invocation, const Command* command,
                                    qint64 usual)
{
    if (!invocation.isSet(unpackedOption))
        return usual;
    const std::optional<qint64> size = sizeFromText(invocation.value(unpackedOption));
    if (!size) {
        reportUsage(command,
                    QStringLiteral("--max-unpacked takes a number of bytes, or one with KiB, MiB "
                                   "or GiB behind it"));
    }
    return size;
}

QString are(qint64 count, const QString& singular)
{
    return counted(count, singular) + (count == 1 ? QStringLiteral(" is") : QStringLiteral(" are"));
}

/// How a limit is named: what it is and, in brackets, the option for it.
QString limitText(const QString& limit, const QString& option)
{
    return option.isEmpty() ? limit : QStringLiteral("%1 (%2)").arg(limit, option);
}

QString lackingSummaries(qint64 steps, qint64 bytes, const QString& option)
{
    return QStringLiteral("the summaries of %1 are left out, since no more than %2 of summaries "
                          "are unpacked")
        .arg(counted(steps, QStringLiteral("step")), limitText(humanSize(bytes), option));
}

QString overfullSummaries(qint64 steps, qint64 files)
{
    return QStringLiteral("the summaries of %1 are left out, since no more than %2 in them are "
                          "read")
        .arg(counted(steps, QStringLiteral("step")), counted(files, QStringLiteral("file")));
}

QString lackingFiles(qint64 steps, qint64 files)
{
    return QStringLiteral("the files of %1 are left out, since steps have more than %2 in all")
        .arg(counted(steps, QStringLiteral("step")), counted(files, QStringLiteral("file")));
}

QString lackingDocuments(qint64 documents, const QString& reason)
{
    return QStringLiteral("%1 left out, since %2")
        .arg(are(documents, QStringLiteral("embedded document")), reason);
}

} // namespace

std::optional<qint64> sizeFromText(const QString& text)
{
    QString digits = text;
    qint64 unit = 1;
    qint64 factor = 1;
    for (const char* suffix : {"KiB", "MiB", "GiB"}) {
        factor *= 1024;
        if (text.endsWith(QLatin1String(suffix))) {
            digits.chop(3);
            unit = factor;
        }
    }
    const std::optional<qint64> number = numberFromText(digits);
    if (!number || *number > std::numeric_limits<qint64>::max() / unit)
        return std::nullopt;
    return *number * unit;
}

Option summaryLimitOption()
{
    return {0, unpackedOption, "SIZE", "unpack this much of summaries at most (64MiB)"};
}

bool applyLimits(const Invocation& invocation, const Command* command, SummaryBudget& budget)
{
    const std::optional<qint64> bytes = unpackedLimit(invocation, command, budget.bytes);
    if (bytes)
        budget.bytes = *bytes;
    return bytes.has_value();
}

std::vector<Option> withTreeLimits(std::vector<Option> options)
{
    options.push_back({0, depthOption, "N", "follow embedded documents so deep at most (100)"});
    options.push_back(
        {0, documentsOption, "N", "follow so many embedded documents at most (10000)"});
    options.push_back({0, unpackedOption, "SIZE", "unpack this much at most (1GiB)"});
    return options;
}

WorkflowTreeLimits usualTreeLimits()
{
    WorkflowTreeLimits limits;
    limits.bytes = 1024 * mebibyte;
    return limits;
}

bool applyLimits(const Invocation& invocation, const Command* command, WorkflowTreeLimits& limits)
{
    const std::optional<int> depth = numberOf(invocation, command, depthOption, limits.depth,
                                              WorkflowTreeLimits::deepest);
    if (!depth)
        return false;
    const std::optional<int> documents = numberOf(invocation, command, documentsOption,
                                                  limits.documents, mostDocuments);
    if (!documents)
        return false;
    const std::optional<qint64> bytes = unpackedLimit(invocation, command, limits.bytes);
    if (!bytes)
        return false;
    limits.depth = *depth;
    limits.documents = *documents;
    limits.bytes = *bytes;
    // Whoever names a size means it for everything.
    if (invocation.isSet(unpackedOption))
        limits.summaryBytes = *bytes;
    return true;
}

QStringList shortfalls(const SummaryBudget& whole, const SummaryBudget& left, const QString& option)
{
    QStringList texts;
    if (!left.unread.isEmpty())
        texts += lackingSummaries(left.unread.size(), whole.bytes, option);
    if (!left.namingTooMany.isEmpty())
        texts += overfullSummaries(left.namingTooMany.size(), whole.files);
    if (!left.withoutFiles.isEmpty())
        texts += lackingFiles(left.withoutFiles.size(), whole.files);
    return texts;
}

QStringList shortfalls(const WorkflowTreeLimits& limits, const QList<WorkflowTreeOmission>& omitted)
{
    const auto count = [&omitted](WorkflowTreeOmission::Limit limit, bool ofSteps) {
        return std::count_if(omitted.begin(), omitted.end(), [=](const WorkflowTreeOmission& one) {
            return one.limit == limit && one.document.isNull() == ofSteps;
        });
    };
    const QString unpacked = QStringLiteral("--max-unpacked");
    QStringList texts;
    if (const qint64 n = count(WorkflowTreeOmission::Depth, false)) {
        texts += lackingDocuments(n,
                                  QStringLiteral("none is followed deeper than %1 (--max-depth)")
                                      .arg(counted(limits.depth, QStringLiteral("level"))));
    }
    if (const qint64 n = count(WorkflowTreeOmission::Documents, false)) {
        texts += lackingDocuments(n,
                                  QStringLiteral("no more than %1 are followed "
                                                 "(--max-documents)")
                                      .arg(limits.documents));
    }
    if (const qint64 n = count(WorkflowTreeOmission::Bytes, false)) {
        texts += lackingDocuments(n,
                                  QStringLiteral("no more than %1 are unpacked")
                                      .arg(limitText(humanSize(limits.bytes), unpacked)));
    }
    if (const qint64 n = count(WorkflowTreeOmission::LargestDocument, false))
        texts += lackingDocuments(n, QStringLiteral("documents have less than 2 GiB"));
    if (const qint64 n = count(WorkflowTreeOmission::Records, false)) {
        texts += lackingDocuments(
            n, QStringLiteral("no more than %1 steps and files are kept").arg(limits.records));
    }
    if (const qint64 n = count(WorkflowTreeOmission::SummaryBytes, true))
        texts += lackingSummaries(n, std::min(limits.bytes, limits.summaryBytes), unpacked);
    if (const qint64 n = count(WorkflowTreeOmission::SummaryFiles, true))
        texts += overfullSummaries(n, limits.records);
    if (const qint64 n = count(WorkflowTreeOmission::Records, true))
        texts += lackingFiles(n, limits.records);
    return texts;
}

} // namespace tresk::cli
