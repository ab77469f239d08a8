#ifndef TRESK_TRESKADDRUNNER_H
#define TRESK_TRESKADDRUNNER_H

#include <tresk/TreskRunner.h>

namespace tresk {

/// Runs `treskadd`, which adds a workflow step to documents.
class TRESK_EXPORT TreskaddRunner : public TreskRunner {
    Q_OBJECT

public:
    /// A @p listener that is not null is connected to the log.
    explicit TreskaddRunner(QObject* listener);
    ~TreskaddRunner() override;

    /// Runs `treskadd --stdin` and hands it @p input, the text of an argument file, in the
    /// encoding of the locale.
    int runProcess(const QString& input) override;
};

} // namespace tresk

#endif
