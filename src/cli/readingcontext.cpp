#include "cli/readingcontext.h"

#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "store/treeops.h"
#include "store/tunestore.h"

#include <QDir>
#include <QTextStream>

namespace fenwork {

ReadingContext::ReadingContext(const char *command, QTextStream &err)
    : m_dialogs(err)
{
    const Paths paths = Paths::fromEnvironment();
    if (!QDir().mkpath(paths.cacheFolder())) {
        err << "fenwork-cli " << command << ": cannot make the user folder " << paths.userRoot() << "\n";
        err.flush();
        return;
    }
    m_app = std::make_unique<AppContext>(paths, &m_dialogs);
    if (m_app->lang().name().isEmpty())
        m_app->lang().setName(QStringLiteral("English"));
    m_app->buildStartupTexts();
    createWorkspaceRoot(*m_app);
    m_app->store().backupOnOpen = false;
}

ReadingContext::~ReadingContext() = default;

} // namespace fenwork
