#pragma once
// The process-wide values of one run: paths, settings, language, the dialogs seam and the
// workspace tree, plus the texts built once at start-up. The program makes one at start; each test
// makes its own. Every layer reads it, so it names the store's services by declaration only: they
// are made in app/appcontext.cpp, the one place that knows them all.
#include "frame/paths.h"

#include <QString>
#include <memory>

namespace fenwork {

class Clipboard;
class CommandState;
class Selection;
class IniFile;
class RecentFiles;
class SettingsNotice;
class ToolRunner;
class TuneStore;
class Language;
class UserDialogs;
class WorkspaceTree;

class AppContext
{
public:
    // Uses `paths`; settings at paths.settingsFile(); the language named in the settings.
    AppContext(const Paths &paths, UserDialogs *dialogs);
    ~AppContext();

    const Paths &paths() const { return m_paths; }
    IniFile &ini() const { return *m_ini; }
    Language &lang() const { return *m_lang; }
    UserDialogs &ui() const { return *m_ui; }
    void setDialogs(UserDialogs *dialogs) { m_ui = dialogs; }
    WorkspaceTree &tree() const { return *m_tree; }
    CommandState &commands() const { return *m_commands; }
    Selection &selection() const { return *m_selection; }
    // A private clipboard until the window gives the desktop's (null: back to the private one).
    Clipboard &clipboard() const { return m_clipboard ? *m_clipboard : *m_ownClipboard; }
    void setClipboard(Clipboard *clipboard) { m_clipboard = clipboard; }
    TuneStore &store() const { return *m_store; }
    RecentFiles &recent() const { return *m_recent; }
    ToolRunner &tools() const { return *m_tools; }
    SettingsNotice &settingsNotice() const { return *m_settingsNotice; }

    // Shorthand for lang().text(section, key).
    QString text(const QString &section, const QString &key) const;
    // The text of a key of section "Msg", where the messages stand.
    QString msg(const char *key) const;

    // "X:0", "T:(<titleDef>)", "M:4/4", "L:1/8", "K:C", each with CR LF.
    QString newTuneText;
    // "%%abc-creator Fennelworks <version> [<date>]"
    QString creatorLine;
    int tempoDef = 100;
    // Given to abcm2ps after its options: empty, or the format file and tablature switches.
    QString scoreExtras;

    // Builds newTuneText and creatorLine from the current language and date.
    void buildStartupTexts();

private:
    Paths m_paths;
    std::unique_ptr<IniFile> m_ini;
    std::unique_ptr<Language> m_lang;
    UserDialogs *m_ui;
    std::unique_ptr<WorkspaceTree> m_tree;
    std::unique_ptr<CommandState> m_commands;
    std::unique_ptr<Selection> m_selection;
    std::unique_ptr<Clipboard> m_ownClipboard;
    Clipboard *m_clipboard = nullptr;
    std::unique_ptr<RecentFiles> m_recent;
    std::unique_ptr<TuneStore> m_store;
    std::unique_ptr<ToolRunner> m_tools;
    std::unique_ptr<SettingsNotice> m_settingsNotice;
};

} // namespace fenwork
