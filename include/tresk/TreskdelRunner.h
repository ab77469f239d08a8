#ifndef TRESK_TRESKDELRUNNER_H
#define TRESK_TRESKDELRUNNER_H

#include <tresk/TreskRunner.h>

namespace tresk {

/// Runs `treskdel`, which takes workflow steps out of documents again.
class TRESK_EXPORT TreskdelRunner : public TreskRunner {
    Q_OBJECT

public:
    explicit TreskdelRunner(QObject* listener);
    ~TreskdelRunner() override;

    /// Runs `treskdel` with @p request, as ArgFile::getUndoWorkflowStep() writes it, for its only
    /// argument. Its standard input is empty.
    int runProcess(const QString& request) override;
};

} // namespace tresk

#endif
