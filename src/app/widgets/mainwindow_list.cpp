// The working list's commands: its menu `mnu_lst`, the same menu as the list's pop-up, its tool
// bar, clicks and drops on the list, and the sets and files made from it.
#include "app/widgets/mainwindow.h"

#include "app/widgets/mainmenus.h"
#include "collections/choicelist.h"
#include "collections/choicesets.h"
#include "collections/listtoabc.h"
#include "collections/widgets/choicelistpanel.h"
#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/selection.h"
#include "frame/strutil.h"
#include "frame/widgets/progressstrip.h"
#include "frame/widgets/widgetdialogs.h"
#include "playback/widgets/playerpanel.h"
#include "store/workspacetree.h"

#include <QAction>
#include <QMenu>
#include <QTreeView>

namespace fenwork {

namespace {

// The list's tool bar buttons and the menu items they stand for.
const std::pair<const char *, const char *> kListButtons[] = {
    { "lstPlayLst", "mnu_playLst" },
    { "lstSupTune", "mnu_lstSupTune" },
    { "emptyLst", "mnu_emptyLst" },
    { "lstToSet", "mnu_lstToSet" },
    { "lstToAbc", "mnu_lstToAbc" },
};

} // namespace

void MainWindow::connectListCommands()
{
    AppContext &app = m_app;
    ChoiceList &list = *m_choiceList;
    ChoiceListPanel *panel = m_listPanel;
    const auto on = [this](const char *name, const std::function<void()> &handler) {
        m_menus->setHandler(QString::fromLatin1(name), handler);
    };
    const auto addToList = [&app, panel](const QString &key) {
        if (const Node *tune = app.tree().find(key))
            panel->AddTunetolst(key, tune->Text);
    };

    on("mnu_addTuneToLst", [&app, addToList] { addToList(app.selection().tuneKey()); });
    on("mnu_lstSupTune", [&list, panel] {
        const int row = panel->currentRow();
        if (row < 0)
            return;
        list.removeAt(row);
        panel->setCurrentRow(qMin(row, list.count() - 1));
    });
    on("mnu_emptyLst", [&list] { list.clear(); });
    on("mnu_lstPlayTune", [this, &list, panel] {
        const int row = panel->currentRow();
        if (row < 0)
            return;
        SimulerNodeClick(list.at(row).key);
        m_player->mnu_playTune();
    });
    on("mnu_defineRepTune", [&app, &list, panel] {
        const int row = panel->currentRow();
        if (row < 0)
            return;
        const ChoiceItem &item = list.at(row);
        if (auto *dialogs = dynamic_cast<WidgetDialogs *>(&app.ui()))
            dialogs->setNextInputNear(panel->view());
        const QString typed = app.ui().inputText(
            app.text(QStringLiteral("Msg"), QStringLiteral("<nbRepTune>")) + CRLF + CRLF + item.caption,
            QString(), QString::number(item.repetitions));
        if (const int repetitions = repetitionsFromText(typed); repetitions > 0)
            list.setRepetitions(row, repetitions);
    });
    on("mnu_lstToSet", [&app, &list] { mnu_lstToSet(app, list); });
    on("mnu_lstToAbc", [&app, &list] { mnu_lstToAbc(app, list); });
    on("mnu_doNew2", [&app] { createNewSet(app); });

    for (const auto &[button, item] : kListButtons) {
        QAction *tool = panel->toolAction(QString::fromLatin1(button));
        QAction *command = m_menus->action(QString::fromLatin1(item));
        if (!tool || !command)
            continue;
        tool->setEnabled(command->isEnabled());
        connect(
            command, &QAction::changed, tool, [tool, command] { tool->setEnabled(command->isEnabled()); });
        connect(tool, &QAction::triggered, command, &QAction::trigger);
    }

    // A click on an item makes the list's commands work and shows its tune.
    connect(panel, &ChoiceListPanel::itemActivated, this, [this](const QString &key) {
        CommandState &commands = m_app.commands();
        commands.setEnabled(QStringLiteral("mnu_lst"), true);
        commands.setEnabled(QStringLiteral("topdflst"), true);
        commands.setEnabled(QStringLiteral("printlst"), true);
        SimulerNodeClick(key);
    });
    connect(&list, &ChoiceList::countChanged, this, [this](int count) {
        if (count > 0)
            return;
        CommandState &commands = m_app.commands();
        commands.setEnabled(QStringLiteral("mnu_lst"), false);
        commands.setEnabled(QStringLiteral("topdflst"), false);
        commands.setEnabled(QStringLiteral("printlst"), false);
    });
    connect(panel, &ChoiceListPanel::itemDoubleClicked, this, [this](const QString &key) {
        if (!key.isEmpty())
            tr_ABC_DblClick();
    });
    connect(panel, &ChoiceListPanel::tuneDropped, this, addToList);
    connect(panel, &ChoiceListPanel::filesDropped, this,
        [this](const QStringList &paths) { openFiles(paths, false); });
    connect(panel, &ChoiceListPanel::deleteRequested, this, [this] {
        if (QAction *remove = m_menus->action(QStringLiteral("mnu_lstSupTune"));
            remove && remove->isEnabled())
            remove->trigger();
    });
    connect(panel, &ChoiceListPanel::contextMenuRequested, this, [this](const QPoint &at) {
        if (QMenu *menu = m_menus->menu(QStringLiteral("mnu_lst")))
            menu->exec(at);
    });
}

} // namespace fenwork
