#include "frame/toolrunner.h"

#include "frame/appcontext.h"

namespace fenwork {

// Placeholder bodies: the runner is being written.
QString toolPath(const AppContext &, Tool) { return {}; }
QString toolOptions(const AppContext &, Tool) { return {}; }
QString commandAbc2ps(const AppContext &, const QString &, const QString &) { return {}; }
QString commandAbc2midi(const AppContext &, const QString &, const QString &) { return {}; }
QString commandAbc2abc(const AppContext &, const QString &, int, const QString &) { return {}; }
QString commandMidi2abc(const AppContext &, const QString &, const QString &) { return {}; }

ToolRunner::ToolRunner(AppContext &app) : m_app(app) {}
ToolRunner::~ToolRunner() = default;

bool ToolRunner::startCommand(const QString &, int, QString *error)
{
    if (error)
        *error = QStringLiteral("not available");
    return false;
}

QString ToolRunner::WaitForDispo(const QString &, double)
{
    return kWaitTimeout;
}

} // namespace fenwork
