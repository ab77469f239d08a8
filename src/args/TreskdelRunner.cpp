#include <tresk/TreskdelRunner.h>

namespace tresk {

TreskdelRunner::TreskdelRunner(QObject* listener)
    : TreskRunner(QStringLiteral("treskdel"), listener)
{
}

TreskdelRunner::~TreskdelRunner() = default;

int TreskdelRunner::runProcess(const QString& request)
{
    return runTool({request}, QByteArray());
}

} // namespace tresk
