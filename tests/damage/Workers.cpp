#include "Workers.h"

#include "Examination.h"

#include <QDir>

#include <csignal>
#include <cstdio>
#include <ctime>
#include <memory>

#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tresktest {

namespace {

constexpr int longestSeconds = 1;
// Other programs may need the processors, too; what waits without working is ended by this.
constexpr int longestWaitSeconds = 120;

/// What a process has done, in memory that it shares with the one that started it.
struct Progress {
    int current; ///< index of the variant that is being examined
    DamageCount count;
};

/// One of several processes, of which each takes every so manieth variant.
struct Worker {
    pid_t process = -1;
    int step = 1;
    QString folder;
    Progress* progress = nullptr;
};

Progress* sharedProgress(int current)
{
    void* memory = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        qFatal("there is no memory to share");
    return new (memory) Progress{current, DamageCount()};
}

void print(const DamageDocument& document, const Mutation& mutation, const QString& what)
{
    std::printf("%s %s: %s\n", qPrintable(document.name), qPrintable(mutation.name()),
                qPrintable(what));
    std::fflush(stdout);
}

/// Has this process killed unless it is called again in time; 0 seconds stop that.
void limitTime(int processorSeconds, unsigned int waitSeconds)
{
    const itimerval limit = {{0, 0}, {processorSeconds, 0}};
    setitimer(ITIMER_PROF, &limit, nullptr);
    alarm(waitSeconds);
}

void examineOne(Examination& examination, const DamageDocument& document, const Mutation& mutation,
                Progress& progress)
{
    const std::clock_t begin = std::clock();
    limitTime(longestSeconds, longestWaitSeconds);
    const std::optional<QStringList> failures = examination.examine(mutation);
    limitTime(0, 0);
    const auto milliseconds = int((std::clock() - begin) * 1000 / CLOCKS_PER_SEC);
    if (!failures)
        return;
    for (const QString& failure : *failures)
        print(document, mutation, failure);
    DamageCount& count = progress.count;
    ++count.variants;
    count.failures += failures->isEmpty() ? 0 : 1;
    if (milliseconds > count.slowestMilliseconds) {
        count.slowestMilliseconds = milliseconds;
        count.slowest = progress.current;
    }
}

/// The whole life of a process: from the variant where the one before it ended.
int work(const Worker& worker, const DamageDocument& document, const QVector<Mutation>& mutations)
{
    Examination examination(document.bytes, worker.folder);
    Progress& progress = *worker.progress;
    const int validBefore = progress.count.valid;
    const int invalidBefore = progress.count.invalid;
    for (; progress.current < mutations.size(); progress.current += worker.step) {
        examineOne(examination, document, mutations.at(progress.current), progress);
        progress.count.valid = validBefore + examination.numValid();
        progress.count.invalid = invalidBefore + examination.numInvalid();
    }
    return 0;
}

void start(Worker& worker, const DamageDocument& document, const QVector<Mutation>& mutations)
{
    worker.process = fork();
    if (worker.process < 0)
        qFatal("no process could be started");
    if (worker.process == 0)
        std::exit(work(worker, document, mutations)); // not _exit(): leaks are looked for then
}

QString causeOfDeath(int status)
{
    if (!WIFSIGNALED(status))
        return QStringLiteral("ended with code %1").arg(WEXITSTATUS(status));
    if (WTERMSIG(status) == SIGPROF)
        return QStringLiteral("took longer than a second");
    return QStringLiteral("killed by signal %1").arg(WTERMSIG(status));
}

/// Whether @p worker goes on behind the variant at which it ended with @p status.
bool goesOn(Worker& worker, int status, const DamageDocument& document,
            const QVector<Mutation>& mutations)
{
    Progress& progress = *worker.progress;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return false;
    ++progress.count.variants;
    ++progress.count.failures;
    if (progress.current >= mutations.size()) {
        std::printf("%s: at its end, %s\n", qPrintable(document.name),
                    qPrintable(causeOfDeath(status)));
        return false;
    }
    print(document, mutations.at(progress.current), causeOfDeath(status));
    progress.current += worker.step;
    return progress.current < mutations.size();
}

void add(DamageCount& sum, const DamageCount& part)
{
    sum.variants += part.variants;
    sum.failures += part.failures;
    sum.valid += part.valid;
    sum.invalid += part.invalid;
    if (part.slowestMilliseconds > sum.slowestMilliseconds) {
        sum.slowestMilliseconds = part.slowestMilliseconds;
        sum.slowest = part.slowest;
    }
}

} // namespace

DamageCount examineInProcesses(const DamageDocument& document, const QVector<Mutation>& mutations,
                               int jobs, const QString& folder)
{
    std::fflush(stdout); // or each process would print what is still in it
    QVector<Worker> workers;
    for (int i = 0; i < jobs; ++i) {
        Worker worker{-1, jobs, folder + QStringLiteral("/%1").arg(i), sharedProgress(i)};
        QDir().mkpath(worker.folder);
        start(worker, document, mutations);
        workers.append(worker);
    }
    DamageCount sum;
    for (Worker& worker : workers) {
        int status = 0;
        while (waitpid(worker.process, &status, 0) == worker.process
               && goesOn(worker, status, document, mutations))
            start(worker, document, mutations);
        add(sum, worker.progress->count);
        munmap(worker.progress, sizeof(Progress));
    }
    return sum;
}

} // namespace tresktest
