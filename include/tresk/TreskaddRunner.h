#ifndef TRESK_TRESKADDRUNNER_H
#define TRESK_TRESKADDRUNNER_H

#include <tresk/TreskRunner.h>

namespace tresk {

/// Runs `treskadd`, which adds a workflow step to documents.
class TRESK_EXPORT TreskaddRunner : public TreskRunner {
    Q_OBJECT

public:
    explicit TreskaddRunner(QObject* listener);
    ~TreskaddRunner() override;

    /// Runs `treskadd --stdin` and hands it @p input, the text of an argument file, in the
    /// encoding of the locale.
    int runProcess(const QString& input) override;
};

} // namespace tresk

#endif
