// Damages documents in every small way, and looks whether the library bears it and never takes a
// damaged content for a right one. See the usage text, and scripts/damage.

#include "DamageDocuments.h"
#include "Mutation.h"
#include "TestFiles.h"
#include "Workers.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cstdio>
#include <thread>

using tresktest::DamageCount;
using tresktest::DamageDocument;
using tresktest::Mutation;

namespace {

const char usage[] =
    "usage: tresk_damage [--jobs N] [DOCUMENT [MUTATION...]]...\n"
    "DOCUMENT is one of those that the program knows (all, if none is named), or a file of up to\n"
    "16 KiB. Without a MUTATION it is damaged in every way.\n";

/// What is to be done to a document.
struct Task {
    DamageDocument document;
    QVector<Mutation> mutations;
};

std::optional<DamageDocument> documentNamed(const QString& name)
{
    const QVector<DamageDocument> known = tresktest::damageDocuments();
    for (const DamageDocument& document : known) {
        if (document.name == name)
            return document;
    }
    const QFileInfo file(name);
    if (!file.isFile() || file.size() > tresktest::largestDamageDocument)
        return std::nullopt;
    return DamageDocument{name, tresktest::readFile(name)};
}

/// Nothing if @p arguments cannot be understood.
std::optional<QVector<Task>> tasks(const QStringList& arguments)
{
    QVector<Task> tasks;
    for (const QString& argument : arguments) {
        const std::optional<Mutation> mutation = Mutation::named(argument);
        if (mutation && !tasks.isEmpty()) {
            tasks.last().mutations.append(*mutation);
            continue;
        }
        const std::optional<DamageDocument> document = documentNamed(argument);
        if (!document)
            return std::nullopt;
        tasks.append({*document, {}});
    }
    return tasks;
}

QVector<Mutation> allMutations(const QByteArray& document)
{
    QVector<Mutation> mutations;
    const int count = Mutation::count(int(document.size()));
    mutations.reserve(count);
    for (int i = 0; i < count; ++i)
        mutations.append(Mutation::numbered(i));
    return mutations;
}

DamageCount run(const Task& task, int jobs, const QString& folder)
{
    const QVector<Mutation> mutations = task.mutations.isEmpty() ? allMutations(task.document.bytes)
                                                                 : task.mutations;
    const DamageCount count = examineInProcesses(task.document, mutations, jobs, folder);
    std::printf("%s: %d bytes, %d variants, %d failed; checksums right %d, not %d; ",
                qPrintable(task.document.name), int(task.document.bytes.size()), count.variants,
                count.failures, count.valid, count.invalid);
    if (count.slowest >= 0)
        std::printf("slowest %s, %d ms", qPrintable(mutations.at(count.slowest).name()),
                    count.slowestMilliseconds);
    std::printf("\n");
    std::fflush(stdout);
    return count;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    qputenv("TMPDIR", folder.path().toLocal8Bit()); // what is left by processes that die goes, too
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));

    QStringList arguments = QCoreApplication::arguments().mid(1);
    int jobs = qMax(1, int(std::thread::hardware_concurrency()));
    if (arguments.value(0) == QLatin1String("--jobs")) {
        jobs = arguments.value(1).toInt();
        arguments = arguments.mid(2);
    }
    std::optional<QVector<Task>> all = tasks(arguments);
    if (!all || jobs < 1 || !folder.isValid()) {
        std::fputs(usage, stderr);
        return 2;
    }
    if (all->isEmpty()) {
        const QVector<DamageDocument> known = tresktest::damageDocuments();
        for (const DamageDocument& document : known)
            all->append({document, {}});
    }
    int variants = 0;
    int failures = 0;
    for (const Task& task : qAsConst(*all)) {
        const DamageCount count = run(task, jobs, folder.path());
        variants += count.variants;
        failures += count.failures;
    }
    std::printf("%d variants, %d failed\n", variants, failures);
    return failures == 0 ? 0 : 1;
}
