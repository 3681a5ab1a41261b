#include "app/widgets/mainwindow.h"

#include "frame/widgets/systemclipboard.h"

#include "editing/widgets/abctextpanel.h"
#include "editing/widgets/editcontroller.h"
#include "editing/widgets/insertiondialog.h"
#include "store/duplicates.h"
#include "finding/widgets/filterpanel.h"
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "app/helplinks.h"
#include "app/session.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/toolrunner.h"
#include "frame/version.h"
#include "frame/widgets/icons.h"
#include "app/widgets/mainmenus.h"
#include "app/widgets/mainstatusbar.h"
#include "frame/widgets/progressstrip.h"
#include "frame/widgets/widgetdialogs.h"
#include "playback/widgets/dronepanel.h"
#include "playback/widgets/playerpanel.h"
#include "playback/widgets/tempodialog.h"
#include "score/widgets/scorepanel.h"
#include "store/filecommands.h"
#include "store/trashbox.h"
#include "store/tuneops.h"
#include "store/widgets/trashpanel.h"
#include "store/midiimport.h"
#include "store/nodeselection.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/widgets/explorerpanel.h"
#include "collections/choicelist.h"
#include "collections/widgets/choicelistpanel.h"
#include "store/widgets/treemodel.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSignalBlocker>
#include <QSlider>
#include <QSplitter>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <type_traits>

namespace fenwork {

namespace {

const QString kMsg = QStringLiteral("Msg");
const QString kMainForm = QStringLiteral("MainForm");

bool readOnlyOnDisk(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isWritable();
}

// An empty panel standing for one still to come, in the look of a view.
QWidget *placeholder(const char *name)
{
    auto *frame = new QFrame;
    frame->setObjectName(QString::fromLatin1(name));
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setBackgroundRole(QPalette::Base);
    frame->setAutoFillBackground(true);
    return frame;
}

} // namespace

MainWindow::MainWindow(AppContext &app, QWidget *parent)
    : QMainWindow(parent)
    , m_app(app)
{
    setObjectName(QStringLiteral("f_main"));
    m_model = new TreeModel(app.tree(), this);
    const QString programFolder = app.paths().programFolder();
    m_model->setIconProvider([programFolder](Pic pic) { return pictureIcon(picName(pic), programFolder); });
    m_menus = new MainMenus(app, this);
    buildPanels();

    if (auto *dialogs = dynamic_cast<WidgetDialogs *>(&app.ui())) {
        dialogs->setParentWidget(this);
        dialogs->setProgressStrip(m_progress);
    }
    connect(&m_app.store(), &TuneStore::nodeSelectionRequested, this, &MainWindow::SimulerNodeClick);
    connect(&m_app.store(), &TuneStore::tunesRemoved, this, &MainWindow::EpurerListeChoix);
    m_clipboard = std::make_unique<SystemClipboard>();
    m_app.setClipboard(m_clipboard.get());
}

MainWindow::~MainWindow()
{
    m_app.setClipboard(nullptr);
    if (auto *dialogs = dynamic_cast<WidgetDialogs *>(&m_app.ui())) {
        dialogs->setProgressStrip(nullptr);
        dialogs->setParentWidget(nullptr);
    }
}

TreeView *MainWindow::tree() const
{
    return m_explorer->tree();
}

void MainWindow::buildPanels()
{
    m_toolBar = new QToolBar(this);
    addToolBar(Qt::TopToolBarArea, m_toolBar);

    m_splitX = new QSplitter(Qt::Horizontal, this);
    m_splitX->setObjectName(QStringLiteral("lab_dragV"));
    m_splitX->setChildrenCollapsible(false);

    // Left: the tabs and the progress strip above the player.
    m_splitLeft = new QSplitter(Qt::Vertical);
    m_splitLeft->setObjectName(QStringLiteral("lab_dragHG"));
    m_splitLeft->setChildrenCollapsible(false);
    auto *upper = new QWidget;
    auto *upperLayout = new QVBoxLayout(upper);
    upperLayout->setContentsMargins(0, 0, 0, 0);
    upperLayout->setSpacing(2);
    m_tabs = new QTabWidget;
    m_tabs->setObjectName(QStringLiteral("ongl_G"));
    m_tabs->setDocumentMode(true);
    m_explorer = new ExplorerPanel(m_app.tree(), m_model);
    m_choiceList = new ChoiceList(this);
    m_listPanel = new ChoiceListPanel(*m_choiceList);
    m_explorer->setLowerPanel(m_listPanel);
    m_tabs->addTab(m_explorer, QString());
    m_filter = new FilterPanel(m_app);
    m_tabs->addTab(m_filter, QString());
    m_tabs->addTab(placeholder("pic_Ref"), QString());
    m_tabs->setMinimumHeight(290);
    upperLayout->addWidget(m_tabs, 1);
    m_progress = new ProgressStrip;
    upperLayout->addWidget(m_progress);
    m_splitLeft->addWidget(upper);
    m_player = new PlayerPanel(m_app);
    m_splitLeft->addWidget(m_player);
    m_splitLeft->setStretchFactor(0, 1);
    m_splitLeft->setStretchFactor(1, 0);
    m_splitLeft->setMinimumWidth(200);

    // Right: the text above the score.
    m_splitRight = new QSplitter(Qt::Vertical);
    m_splitRight->setObjectName(QStringLiteral("lab_dragHD"));
    m_splitRight->setChildrenCollapsible(false);
    m_textPanel = new AbcTextPanel;
    m_textPanel->editor()->setMinimumHeight(50);
    m_score = new ScorePanel(m_app);
    m_score->textSource = [this] { return m_textPanel->text(); };
    connect(m_score, &ScorePanel::editorFocusRequested, this, [this] { m_textPanel->editor()->setFocus(); });
    m_score->setMinimumHeight(200);
    m_splitRight->addWidget(m_textPanel);
    m_splitRight->addWidget(m_score);
    m_edit = new EditController(m_app, m_textPanel, this);
    m_score->currentLineTune = [this] { return m_edit->getCurLineAsTune(); };
    m_score->oneLineTicked = [this] { return m_edit->isOneLineTicked(); };
    m_score->setPauseVisible(false);
    connect(m_edit, &EditController::scoreRefreshRequested, this, [this](const QString &text, bool evenIfPaused) {
        if (evenIfPaused || !m_score->isPaused())
            m_score->requestRefresh(text);
    });
    connect(m_edit, &EditController::sessionStarted, this, &MainWindow::closeForSession);
    connect(m_edit, &EditController::sessionEnded, this, &MainWindow::openAfterSession);
    const auto runCommand = [this](const char *name) {
        if (QAction *action = m_menus->action(QString::fromLatin1(name)); action && action->isEnabled())
            action->trigger();
    };
    connect(m_edit, &EditController::saveRequested, this, [runCommand] { runCommand("mnu_save0"); });
    connect(m_edit, &EditController::playRequested, this, [runCommand] { runCommand("mnu_playTune"); });
    m_trash = new TrashPanel(m_app, this);
    m_trash->followWidget(m_splitRight);
    connect(m_trash, &TrashPanel::trashChanged, this, [this] { SimulerNodeClick(key::Trash); });
    m_splitRight->setStretchFactor(0, 0);
    m_splitRight->setStretchFactor(1, 1);
    m_splitRight->setMinimumWidth(200);

    m_splitX->addWidget(m_splitLeft);
    m_splitX->addWidget(m_splitRight);
    m_splitX->setStretchFactor(0, 0);
    m_splitX->setStretchFactor(1, 1);
    setCentralWidget(m_splitX);

    m_status = new MainStatusBar(this);
    setStatusBar(m_status);

    TreeView *view = m_explorer->tree();
    connect(view, &TreeView::nodeClicked, this, &MainWindow::NodeClick);
    connect(view, &TreeView::markRequested, this,
        [this](const QString &key, bool eachOnItsOwn) { toggleTuneMarks(m_app, key, eachOnItsOwn); });
    connect(view, &TreeView::contextMenuRequested, this, &MainWindow::tr_ABC_ContextMenu);
    connect(view, &TreeView::nodeDoubleClicked, this, &MainWindow::tr_ABC_DblClick);
    connect(
        view, &TreeView::filesDropped, this, [this](const QStringList &paths) { openFiles(paths, false); });
    connect(view, &TreeView::tuneDropped, this,
        [this](const QString &dragged, const QString &target, bool asPart) { dropTune(m_app, dragged, target, asPart); });
    connect(m_tabs, &QTabWidget::currentChanged, this, &MainWindow::ongl_G_Click);
    connect(m_filter, &FilterPanel::treeFilterChanged, this, &MainWindow::showFilterState);
    connect(
        m_filter, &FilterPanel::showTreeRequested, this, [this] { m_tabs->setCurrentWidget(m_explorer); });
    connect(m_filter, &FilterPanel::selectNodeRequested, this, &MainWindow::SimulerNodeClick);
    m_listPanel->setTuneIcon(pictureIcon(QStringLiteral("tune"), m_app.paths().programFolder()));
    PlayerHost host = PlayerHost::forEditor(m_textPanel->editor());
    host.selectedNodeKey = [this] { return tree()->currentKey(); };
    host.selectNode = [this](const QString &key) { SimulerNodeClick(key); };
    host.choiceList = m_choiceList;
    host.showChoiceRow = [this](int row) { m_listPanel->setCurrentRow(row); };
    host.currentLineTune = [this] { return m_edit->getCurLineAsTune(); };
    m_player->setHost(host);
    auto *drone = new DronePanel(m_app, m_player->midiOut());
    m_drone = drone;
    m_player->setDronePanel(drone);
    connect(m_player, &PlayerPanel::stopped, drone, &DronePanel::stopDrone);
    connect(m_player, &PlayerPanel::mainPitchChanged, drone, [drone](int) { drone->followTransposition(); });
    m_edit->setNoteOutput(&m_player->midiOut());
    m_player->setOneLineShown(false);
    connect(m_edit, &EditController::tuneValidated, m_player, [this] {
        if (m_player->hasPerformance())
            m_player->pressStop();
    });
    drone->setKeyboardCheck([this] { return m_edit->isEditingTune(); });
    m_filter->filter().setChoiceList(m_choiceList);
    // A save as gives the current file a new path: the status bar follows.
    connect(m_model, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &from) {
        if (const Node *node = m_model->nodeAt(from); node && node->Key == m_app.selection().fileKey())
            m_status->setFilePath(node->Tag);
    });
}

void MainWindow::MainLoad()
{
    const QString title = QStringLiteral("Fennelworks ") + versionText();
    m_status->setVersionText(title);
    setWindowTitle(title);

    const QStringList failed = prepareMainLoad(m_app);
    if (!failed.isEmpty())
        m_app.ui().contextError(
            QStringLiteral("MainLoad"), QStringLiteral("Can't create these folders:\n") + failed.join(u'\n'));
    applyGeometry();
    m_app.buildStartupTexts();
    m_score->loadSettings();

    IniFile &ini = m_app.ini();
    m_menus->build(menuBar(), m_toolBar);
    connectCommands();
    m_app.recent().load(ini);

    createWorkspaceRoot(m_app);
    WorkspaceTree &tree = m_app.tree();
    if (QFileInfo::exists(m_app.paths().trashFile())) {
        m_app.store().FichierOuvrir(m_app.paths().trashFile(), true, true, false);
    } else {
        Node *header = tree.find(key::TrashHeader);
        tree.addChild(header, QStringLiteral("_file0_hdrFile_lgabc"), QStringLiteral("%abc"), Pic::Rem);
        tree.addChild(header, QStringLiteral("_file0_hdrFile_lgcreator"), m_app.creatorLine, Pic::Rem);
        tree.addChild(header, QStringLiteral("_file0_hdrFile_lgIDpoubelle"),
            QStringLiteral("%Poubelle d'Fennelworks"), Pic::Rem);
    }
    CompterTunesDansFichier(m_app, key::Trash);
    CompterFiles(m_app);

    m_filter->loadMasks();
    m_kept = readKeptSettings(ini);
    if (const int zoom = m_kept.zoom.toInt(); zoom > 0)
        m_score->setZoom(zoom);
    LoadLang();
    m_textPanel->setTextFont(ini.get(keys::FontName), ini.getInt(keys::FontSize));

    // Nothing is selected yet: the commands stand as for the root, the choice list's as for an
    // empty list, and saving marked tunes waits for marks or a search.
    m_app.commands().setEnabled(QStringLiteral("mnu_lst"), false);
    m_app.commands().setEnabled(QStringLiteral("topdflst"), false);
    m_app.commands().setEnabled(QStringLiteral("printlst"), false);
    m_app.commands().setEnabled(QStringLiteral("mnu_saveTunesFltr"), false);
    SimulerNodeClick(key::Root);
    m_explorer->tree()->setFocus();
}

void MainWindow::LoadLang()
{
    const Language &lang = m_app.lang();
    m_menus->loadLang();
    m_listPanel->loadLang(lang);
    m_filter->LoadLang();
    m_score->loadLang();
    m_player->LoadLang();
    if (auto *drone = findChild<DronePanel *>(QStringLiteral("pic_drone")))
        drone->LoadLang();
    m_edit->loadLang();
    m_tabs->setTabText(0, lang.text(kMainForm, QStringLiteral("<explorer>")));
    m_tabs->setTabText(1, lang.text(kMainForm, QStringLiteral("<find>")));
    m_tabs->setTabText(2, lang.text(kMainForm, QStringLiteral("<reference>")));
    m_tabs->setTabIcon(0, QIcon::fromTheme(QStringLiteral("view-list-tree")));
    m_tabs->setTabIcon(2, QIcon::fromTheme(QStringLiteral("view-readermode")));
    showFilterState(m_filter->isFilterActive());
}

// The search tab's picture says whether a filter greys tunes in the tree.
void MainWindow::showFilterState(bool active)
{
    const QString folder = m_app.paths().programFolder();
    QIcon icon = programIcon(active ? QStringLiteral("filter") : QStringLiteral("filter0"), folder);
    if (icon.isNull())
        icon = QIcon::fromTheme(active ? QStringLiteral("view-filter") : QStringLiteral("edit-find"));
    m_tabs->setTabIcon(1, icon);
}

void MainWindow::connectCommands()
{
    AppContext &app = m_app;
    const auto on = [this](std::initializer_list<const char *> names, const std::function<void()> &handler) {
        for (const char *name : names)
            m_menus->setHandler(QString::fromLatin1(name), handler);
    };
    on({ "mnu_doNew0", "newabc" }, [&app] { app.store().createNewFile(); });
    on({ "mnu_openFile", "open" }, [this] { mnu_openFile_Click(); });
    on({ "mnu_save0", "save" }, [&app] { mnu_save(app, 0); });
    on({ "mnu_save1" }, [&app] { mnu_save(app, 1); });
    on({ "mnu_SaveAll", "saveall" }, [&app] { mnu_SaveAll(app); });
    on({ "mnu_saveSelTunes0" }, [&app] { mnu_saveSelTunes(app, 0); });
    // The tunes a search or the marks left black: the selected tunes of all files.
    on({ "mnu_saveSelTunes1", "mnu_saveTunesFltr" }, [&app] { mnu_saveSelTunes(app, 1); });
    const auto prune = [this] { EpurerListeChoix(); };
    on({ "mnu_closeFile", "closeabc" }, [&app, prune] { mnu_closeFile(app, prune); });
    on({ "mnu_closeAll", "closeallabc" }, [&app, prune] { mnu_closeAll(app, prune); });
    on({ "mnu_showDoublons" }, [this] { mnu_showDoublons_Click(); });
    on({ "mnu_cutTune", "tunecut" }, [&app] { mnu_cutTune(app); });
    on({ "mnu_copyTune", "tunecopy" }, [&app] { mnu_copyTune(app); });
    on({ "mnu_pasteTune", "tunepaste" }, [&app] { mnu_pasteTune(app); });
    on({ "mnu_delTune0", "tunedel" }, [&app] { mnu_delTune(app, 0); });
    on({ "mnu_delTune1" }, [&app] { mnu_delTune(app, 1); });
    // A new tune is there to be written: the session starts on it at once.
    on({ "mnu_doNew1", "newtune" }, [this] {
        if (!CreateNewTune(m_app).isEmpty())
            m_edit->abcedit();
    });
    on({ "mnu_toExtras1" }, [this] { showToolWindow<TempoDialog>(); });
    on({ "mnu_inserAuto" }, [this] { showToolWindow<InsertionDialog>(); });
    on({ "mnu_impClipboard" }, [&app] { mnu_impClipboard(app); });
    on({ "mnu_Quitter" }, [this] { close(); });
    on({ "key_F5" }, [this] { m_edit->key_F5(); });
    on({ "key_Esc" }, [this] { m_edit->key_Esc(); });
    on({ "key_CtrlR" }, [this] { m_score->seeScore(); });
    on({ "key_F10" }, [this] { m_score->setFullPanel(!m_score->isFullPanel()); });
    on({ "key_CtrlW" }, [this] { bt_editMax_Click(); });
    on({ "mnu_impMidi" }, [&app] { mnu_impMidi(app); });
    PlayerPanel *player = m_player;
    on({ "mnu_playTune" }, [player] { player->mnu_playTune(); });
    on({ "mnu_PlayFile0", "playall" }, [player] { player->mnu_PlayFile(0); });
    on({ "mnu_PlayFile1", "playselect" }, [player] { player->mnu_PlayFile(1); });
    on({ "mnu_PlayFile2", "quickscan" }, [player] { player->mnu_PlayFile(2); });
    on({ "mnu_playLst" }, [player] { player->bt_playLst_Click(); });
    on({ "mnu_midiExt" }, [player] { player->mnu_midiExt(); });
    for (int row = 0; row < 4; ++row) {
        m_menus->setHandler(QStringLiteral("mnu_shellConsole") + QString::number(row), [&app, row] {
            QString error;
            if (!app.tools().openConsole(row, &error))
                app.ui().contextError(QStringLiteral("mnu_shellConsole"), error);
        });
    }
    m_menus->recentChosen = [&app](int index) { mnu_Recents(app, index); };
    connectPublishCommands();
    connectToolsCommands();
    connectListCommands();
    connectHelpCommands();
}

void MainWindow::NodeClick(const QString &key)
{
    if (key.isEmpty() || !m_app.tree().find(key))
        return;
    // An edit session holds the text panel: nothing selects another node until it ends.
    if (m_edit && m_edit->isEditing())
        return;
    tree()->selectKey(key, false);
    m_status->setNodeCaption(statusCaption(m_app.tree(), key));
    const NodeSelection selection = describeNodeClick(m_app, key);
    if (selection.column == SelectionColumn::None)
        return;
    applyNodeClick(m_app, selection);
    if (keyKind(key) == KeyKind::TrashTune)
        m_trash->showTune(key);
    else
        m_trash->hide();

    switch (selection.content) {
    case PanelContent::Unchanged:
        break;
    case PanelContent::Empty:
        m_textPanel->clearText();
        break;
    case PanelContent::Text:
        m_textPanel->showText(selection.text);
        // What the filter found in a tune is marked in yellow.
        if (!selection.tuneKey.isEmpty())
            m_textPanel->highlight(m_filter->ColorerFind(m_textPanel->text()), QColor(0xFF, 0xFF, 0x00));
        break;
    case PanelContent::FileInformation:
        m_textPanel->showLines(fileInformation(m_app, selection.fileKey));
        break;
    }
    if (selection.selectLine) {
        const qsizetype at = lineSelectionStart(m_textPanel->text(), selection.line);
        if (at >= 0)
            m_textPanel->selectRange(at, selection.line.size());
    }
    // The text panel colours ABC text itself as it shows it. The score never outlives the text
    // it was drawn from.
    if (selection.score)
        m_score->showTune(m_textPanel->text());
    else if (selection.content != PanelContent::Unchanged)
        m_score->showBlank();
    m_textPanel->setCaption(selection.caption);
    m_status->setFilePath(GetPathFile(m_app, m_app.selection().fileKey()));
}

void MainWindow::SimulerNodeClick(const QString &key)
{
    if (!m_app.tree().find(key))
        return;
    tree()->selectKey(key, true);
    NodeClick(key);
}

QString MainWindow::openPath(const QString &path, bool select)
{
    const QString key = m_app.store().FichierOuvrir(path, false, false, readOnlyOnDisk(path));
    if (key.isEmpty())
        return {};
    if (select)
        SimulerNodeClick(key);
    int doubled = 0;
    ShowDoublonsX(m_app, key, false, doubled);
    return key;
}

void MainWindow::openHandedOver(const QString &path)
{
    // A second start without a file only asks for this window.
    if (path.isEmpty()) {
        raise();
        activateWindow();
        return;
    }
    if (!QFileInfo(path).isFile()) {
        m_app.ui().message(commandLineNotOpened(path));
        return;
    }
    raise();
    activateWindow();
    // A session holds the tree's nodes as they are: the file waits for its end.
    if (m_edit->isEditing()) {
        m_handedOverDuringEdit.append(path);
        return;
    }
    openPath(path, true);
}

void MainWindow::mnu_openFile_Click()
{
    const QStringList paths = m_app.ui().openFileNames(m_app.text(kMsg, QStringLiteral("<openABCfile>")),
        m_app.ini().get(keys::DirDef),
        { m_app.text(kMsg, QStringLiteral("<ABCfile>")) + QStringLiteral(" (*.abc)"),
            m_app.text(kMsg, QStringLiteral("<allFiles>")) + QStringLiteral(" (*)") });
    openFiles(paths, true);
}

void MainWindow::openFiles(const QStringList &paths, bool tellDoubled)
{
    QString last;
    for (const QString &path : paths) {
        const QString key = m_app.store().FichierOuvrir(path, false, false, readOnlyOnDisk(path));
        if (key.isEmpty())
            continue;
        last = key;
        int doubled = 0;
        ShowDoublonsX(m_app, key, false, doubled);
        if (doubled > 0 && tellDoubled)
            m_app.ui().message(
                path + CRLF + CRLF + m_app.text(QStringLiteral("MSG"), QStringLiteral("<dblXinFile>")),
                UserDialogs::Icon::Information);
    }
    if (!last.isEmpty())
        SimulerNodeClick(last);
}

void MainWindow::mnu_showDoublons_Click()
{
    if (m_app.selection().fileKey().isEmpty()) {
        m_app.ui().message(m_app.text(kMsg, QStringLiteral("<selectFile>")));
        return;
    }
    int doubled = 0;
    ShowDoublonsX(m_app, m_app.selection().fileKey(), true, doubled);
}

void MainWindow::tr_ABC_DblClick()
{
    if (m_app.selection().tuneKey().isEmpty())
        return;
    switch (m_app.ini().getInt(keys::DblClcIdx)) {
    case 0:
        m_textPanel->clearSelection();
        m_player->mnu_playTune();
        break;
    case 1:
        m_edit->abcedit();
        break;
    case 2:
        m_app.ui().processEvents();
        if (QAction *add = m_menus->action(QStringLiteral("mnu_addTuneToLst")))
            add->trigger();
        break;
    default:
        m_app.ui().processEvents();
        break;
    }
}

void MainWindow::tr_ABC_ContextMenu(const QString &, const QPoint &globalPos)
{
    if (m_menus->isMenuEnabled(QStringLiteral("mnu_Morceau")))
        m_menus->popupTuneMenu(globalPos);
    else if (m_menus->isMenuEnabled(QStringLiteral("mnu_Fichier")))
        m_menus->popupFileMenu(globalPos);
}

// The small tool windows stay open beside the work; a second call brings the open one forward.
template <class Dialog> void MainWindow::showToolWindow()
{
    auto *dialog = findChild<Dialog *>(QString(), Qt::FindDirectChildrenOnly);
    if (!dialog) {
        dialog = new Dialog(m_app, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        if constexpr (std::is_same_v<Dialog, InsertionDialog>)
            dialog->insertText = [this](const QString &text) { return m_edit->insertText(text); };
        if constexpr (std::is_same_v<Dialog, TempoDialog>)
            connect(dialog, &TempoDialog::helpRequested, this, [this] { openHelp(kTempoHelpTopic); });
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

void MainWindow::ongl_G_Click(int index)
{
    // A search moves the selection, which belongs to the session until it ends.
    if (m_tabs->widget(index) == m_filter && m_edit->isEditing()) {
        {
            const QSignalBlocker block(m_tabs);
            m_tabs->setCurrentWidget(m_explorer);
        }
        m_app.ui().message(m_app.text(kMsg, QStringLiteral("<closeEdBeforeSearch>")));
        return;
    }
    // Each tab starts from no selection, so that no command works on a node out of sight.
    SimulerNodeClick(key::Root);
    if (QWidget *panel = m_tabs->widget(index))
        panel->setFocus();
}


} // namespace fenwork
