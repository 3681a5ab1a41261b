#pragma once
#include <memory>
#include "app/windowsession.h"

#include <QMainWindow>

class QSplitter;
class QTabWidget;
class QToolBar;

namespace fenwork {

class AbcTextPanel;
class AppContext;
class ChoiceList;
class ChoiceListPanel;
class DronePanel;
class SystemClipboard;
class EditController;
class ExplorerPanel;
class FilterPanel;
class MainMenus;
class MainStatusBar;
class PlayerPanel;
class ProgressStrip;
class ScorePanel;
class TrashPanel;
class TreeModel;
class TreeView;

// The main window `f_main`. It composes the panels, runs the load and quit sequences, and turns
// the tree's clicks and the menus' commands into calls of the core; each panel does its own work.
// Questions and messages go through the application's dialogs (a WidgetDialogs is given this
// window as parent and the progress strip).
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(AppContext &app, QWidget *parent = nullptr);
    ~MainWindow() override;

    // Makes every panel ready and the workspace root; runs once before the window is first shown.
    void MainLoad();
    // Sets the texts of the window from the current language.
    void LoadLang();
    // A click on a node: what it shows and which commands work.
    void NodeClick(const QString &key);
    // Selects a node as a click would, opening its ancestors and scrolling to it.
    void SimulerNodeClick(const QString &key);
    // Opens a file as the command line and the last session do, read-only when the file is;
    // `select` clicks its node. The duplicate X: check follows. Returns the key, or empty.
    QString openPath(const QString &path, bool select = true);
    // Opens a file handed over by a second start.
    void openHandedOver(const QString &path);
    // The quit sequence: asks about unsaved files and writes the session. False: cancelled.
    bool Form_Unload();
    // The quit sequence when the system ends the program: nothing is asked, a running edit
    // leaves its recovery copy, and the session is written back as at any quit.
    void quitWithoutQuestions();
    // Ctrl+W: the text panel alone in the window, or the panels back.
    void bt_editMax_Click();
    // Our help window at `topic` (0: the guide's beginning).
    void openHelp(int topic);
    // The options dialog, modal, on tab `tab` (-1: the first).
    void showOptions(int tab);
    // Asks the update server for a newer version, beside the interface; `silent` at start-up.
    void CheckVersion(bool silent);

    ExplorerPanel *explorer() const { return m_explorer; }
    ChoiceList &choiceList() const { return *m_choiceList; }
    ChoiceListPanel *choiceListPanel() const { return m_listPanel; }
    // Drops the working list's tunes that are no longer in the tree.
    void EpurerListeChoix();
    TreeView *tree() const;
    MainMenus *menus() const { return m_menus; }
    AbcTextPanel *textPanel() const { return m_textPanel; }
    EditController *editController() const { return m_edit; }
    ScorePanel *scorePanel() const { return m_score; }
    PlayerPanel *playerPanel() const { return m_player; }
    MainStatusBar *status() const { return m_status; }
    ProgressStrip *progressStrip() const { return m_progress; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildPanels();
    void connectCommands();
    void connectPublishCommands();
    void connectToolsCommands();
    void connectListCommands();
    void connectHelpCommands();
    void followSettings(bool languageChanged);
    void applyGeometry();
    WindowGeometry currentGeometry() const;

    void mnu_openFile_Click();
    // Opens each file, checks its X: numbers and clicks the last one opened; `tellDoubled` warns of
    // doubled numbers as the open command does.
    void openFiles(const QStringList &paths, bool tellDoubled);
    void mnu_showDoublons_Click();
    void tr_ABC_DblClick();
    void tr_ABC_ContextMenu(const QString &key, const QPoint &globalPos);
    void ongl_G_Click(int index);
    template <class Dialog> void showToolWindow();
    void showFilterState(bool active);
    // What an edit session closes off while it runs, and opens again at its end.
    void closeForSession(bool tune, const QString &editedKey);
    void openAfterSession(const QString &editedKey, bool validated);

    AppContext &m_app;
    TreeModel *m_model = nullptr;
    MainMenus *m_menus = nullptr;
    QToolBar *m_toolBar = nullptr;
    QSplitter *m_splitX = nullptr; // PanelX: left against right
    QSplitter *m_splitLeft = nullptr; // PanelYG: the tabs above the player
    QSplitter *m_splitRight = nullptr; // PanelYD: the text above the score
    QTabWidget *m_tabs = nullptr;
    ExplorerPanel *m_explorer = nullptr;
    ChoiceList *m_choiceList = nullptr;
    ChoiceListPanel *m_listPanel = nullptr;
    FilterPanel *m_filter = nullptr;
    AbcTextPanel *m_textPanel = nullptr;
    EditController *m_edit = nullptr;
    ScorePanel *m_score = nullptr;
    TrashPanel *m_trash = nullptr;
    PlayerPanel *m_player = nullptr;
    DronePanel *m_drone = nullptr;
    ProgressStrip *m_progress = nullptr;
    MainStatusBar *m_status = nullptr;
    KeptSettings m_kept;
    std::unique_ptr<SystemClipboard> m_clipboard;
    bool m_quitting = false;
    bool m_unattended = false;
    bool m_editMax = false;
    QList<int> m_sizesBeforeEditMax; // PanelX, PanelYG, PanelYD of the normal view
    QStringList m_handedOverDuringEdit; // opened when the session ends: it holds the tree as it is
};

} // namespace fenwork
