#ifndef TRESK_TRESKDELRUNNER_H
#define TRESK_TRESKDELRUNNER_H

#include <tresk/TreskRunner.h>

namespace tresk {

/// Runs `treskdel`, which takes workflow steps out of documents again.
class TRESK_EXPORT TreskdelRunner : public TreskRunner {
    Q_OBJECT

public:
    /// A @p listener that is not null is connected to the log.
    explicit TreskdelRunner(QObject* listener);
    ~TreskdelRunner() override;

    /// Runs `treskdel` with @p request, as ArgFile::getUndoWorkflowStep() writes it, for its only
    /// argument. Its standard input is empty.
    ///
    /// The operating system ends an argument at its first NUL, so the tool sees nothing of what is
    /// behind one in @p request, and limits its length, on Linux to less than 128 KiB: with a
    /// longer one the tool cannot be started.
    int runProcess(const QString& request) override;
};

} // namespace tresk

#endif
