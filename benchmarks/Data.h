#ifndef TRESK_BENCHMARKS_DATA_H
#define TRESK_BENCHMARKS_DATA_H

#include <QByteArray>
#include <QString>

namespace treskbench {

/// Size in MiB of the largest documents: the environment variable TRESK_BENCHMARK_MIB, or
/// 1024 where it is not set.
int largestMebibytes();
/// @p count in the proportion of that to 1024, at least 1.
int scaled(int count);

/// A folder for the run's documents, removed at its end. Its parent is the system's folder for
/// temporary files (TMPDIR), which needs about three times the largest size.
QString dataPath(const QString& name);

/// What documents hold besides a history: stretches of 4 to 64 KiB, by turns lines of 60 to 100
/// characters and random bytes.
QByteArray hostBytes(int size);
/// Text that deflates to about a quarter.
QByteArray prose(int size);

/// Writes a document of @p mebibytes of host bytes, with a header and, at its end, three sections
/// of two small files each if @p withHistory. Returns its path.
QString writeHostDocument(const QString& name, int mebibytes, bool withHistory);
/// Writes a document whose one section embeds a single file of @p mebibytes, deflated or as it is.
QString writeLargeFileDocument(const QString& name, int mebibytes, bool compressed);
/// Writes a document of @p sections sections with @p filesEach small files each.
QString writeLongHistory(const QString& name, int sections, int filesEach);

/// The summary document of a step with @p files files: about 750 characters each, and 800 besides.
QString summaryDocument(int files);
/// Writes a document of @p steps sections, each with two files and a summary that names them.
QString writeSummaryHistory(const QString& name, int steps);
/// Writes a document of one step that embeds @p count documents of @p steps steps each, deflated.
QString writeNestedHistory(const QString& name, int count, int steps);
/// Writes @p count documents of 1 MiB of host bytes with five steps each into a folder, whose path
/// it returns. The word "resonance" is in the summaries of the last one only, which are not
/// deflated.
QString writeFolder(const QString& name, int count);

} // namespace treskbench

#endif
