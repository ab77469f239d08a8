#include <tresk/TreskaddRunner.h>

namespace tresk {

TreskaddRunner::TreskaddRunner(QObject* listener)
    : TreskRunner(QStringLiteral("treskadd"), listener)
{
}

TreskaddRunner::~TreskaddRunner() = default;

int TreskaddRunner::runProcess(const QString& input)
{
    return runTool({QStringLiteral("--stdin")}, input.toLocal8Bit());
}

} // namespace tresk
