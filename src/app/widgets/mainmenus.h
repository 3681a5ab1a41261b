#pragma once
#include <QHash>
#include <QObject>
#include <QPoint>
#include <functional>

class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;
class QToolBar;

namespace fenwork {

class AppContext;

// The main window's commands: the menu bar, the main tool bar `tb_main` and the window-wide keys.
// Every item carries its control name as objectName ("mnu_openFile", "mnu_save1", tool bar
// buttons by their keys: "open", "save" ...; rows of a control array end with their index). An
// item works once a handler is set for it, and then is enabled as the command state says for its
// name: items of features still to come stay disabled.
class MainMenus : public QObject
{
    Q_OBJECT
public:
    MainMenus(AppContext &app, QMainWindow *window);
    ~MainMenus() override;

    // Builds the menus into the window's menu bar, the tool bar and the keys; once.
    void build(QMenuBar *bar, QToolBar *toolBar);
    // Texts, tool tips and pictures from the current language.
    void loadLang();

    QAction *action(const QString &name) const;
    QMenu *menu(const QString &name) const;
    // Makes a command work: its items call `handler` and follow the command state from now on.
    void setHandler(const QString &name, std::function<void()> handler);
    // The recent-file item `index` was chosen; connected by the window.
    std::function<void(int index)> recentChosen;

    // The menus as the tree's context menu: the tune menu, or the file menu without the items that
    // do not concern the node clicked (open, save all, recent files, quit).
    void popupTuneMenu(const QPoint &globalPos);
    void popupFileMenu(const QPoint &globalPos);
    // Whether a menu can open now (the command state of its name).
    bool isMenuEnabled(const QString &name) const;

private:
    struct Item;
    QAction *addItem(QMenu *menu, const char *name, const char *section, const char *textKey,
        const char *picture = nullptr, const char *state = nullptr);
    QMenu *addMenu(
        QMenu *parent, QMenuBar *bar, const char *name, const char *textKey, const char *picture = nullptr);
    void addSeparator(QMenu *menu, const char *name);
    void buildFileMenu(QMenuBar *bar);
    void buildOtherMenus(QMenuBar *bar);
    void buildToolBar(QToolBar *toolBar);
    void buildKeys();
    void applyState(const QString &stateName);
    void applyItem(const Item &item);
    void followRecents();

    AppContext &m_app;
    QMainWindow *m_window;
    QHash<QString, QAction *> m_actions;
    QHash<QString, QMenu *> m_menus;
    QList<Item *> m_items;
};

} // namespace fenwork
