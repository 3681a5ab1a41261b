#include "frame/appcontext.h"

#include "frame/clipboard.h"
#include "frame/commandstate.h"
#include "frame/selection.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/settingsnotice.h"
#include "frame/strutil.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "frame/version.h"
#include "store/recentfiles.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDate>

namespace fenwork {

AppContext::AppContext(const Paths &paths, UserDialogs *dialogs)
    : m_paths(paths),
      m_ini(std::make_unique<IniFile>(paths.settingsFile())),
      m_lang(std::make_unique<Language>(m_paths)),
      m_ui(dialogs),
      m_tree(std::make_unique<WorkspaceTree>()),
      m_commands(std::make_unique<CommandState>()),
      m_selection(std::make_unique<Selection>()),
      m_ownClipboard(std::make_unique<MemoryClipboard>()),
      m_recent(std::make_unique<RecentFiles>(paths.cacheFolder())),
      m_store(std::make_unique<TuneStore>(*this)),
      m_tools(std::make_unique<ToolRunner>(*this)),
      m_settingsNotice(std::make_unique<SettingsNotice>())
{
    m_store->recent = m_recent.get();
    m_ini->setWriteFailureHandler([this](const QString &path) {
        if (m_ui)
            m_ui->message(text(QStringLiteral("Msg"), QStringLiteral("<iniNotSaved>")) + CRLF + path);
    });
    m_lang->setName(m_ini->get(keys::Lang));
}

AppContext::~AppContext() = default;

QString AppContext::text(const QString &section, const QString &key) const
{
    return m_lang->text(section, key);
}

QString AppContext::msg(const char *key) const
{
    return m_lang->text(QStringLiteral("Msg"), QLatin1String(key));
}

void AppContext::buildStartupTexts()
{
    newTuneText = QStringLiteral("X:0") + CRLF + QStringLiteral("T:(")
                  + text(QStringLiteral("TTText"), QStringLiteral("<titleDef>")) + QStringLiteral(")") + CRLF
                  + QStringLiteral("M:4/4") + CRLF + QStringLiteral("L:1/8") + CRLF + QStringLiteral("K:C") + CRLF;
    creatorLine = QStringLiteral("%%abc-creator Fennelworks ") + versionText() + QStringLiteral(" [")
                  + QDate::currentDate().toString(Qt::ISODate) + QStringLiteral("]");
}

} // namespace fenwork
