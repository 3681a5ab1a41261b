#include "app/widgets/mainmenus.h"

#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/language.h"
#include "frame/strutil.h"
#include "frame/paths.h"
#include "frame/widgets/icons.h"
#include "store/recentfiles.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

namespace fenwork {

struct MainMenus::Item
{
    QAction *action = nullptr;
    QString section; // where its text is: "Menus", or "TTText" for a tool bar button's tip
    QString textKey;
    QString picture;
    QString state; // the command state it follows
    bool isMenu = false;
    bool works = false;
    bool tipOnly = false; // a tool bar button: the text is its tool tip
    QAction *twin = nullptr; // the menu item a button stands for, whose key the tip shows
};

namespace {

const char *const kMenus = "Menus";

// A name with a dash is a freedesktop icon. Any other is a picture name: the program's own drawing
// when it has one, else the theme's icon for it.
QIcon iconFor(const QString &picture, const QString &programFolder)
{
    if (picture.isEmpty())
        return {};
    if (picture.contains(u'-'))
        return QIcon::fromTheme(picture);
    const QIcon own = pictureIcon(picture, programFolder);
    return own.isNull() ? programIcon(picture, programFolder) : own;
}

} // namespace

MainMenus::MainMenus(AppContext &app, QMainWindow *window)
    : QObject(window)
    , m_app(app)
    , m_window(window)
{
    connect(&app.commands(), &CommandState::enabledChanged, this,
        [this](const QString &name) { applyState(name); });
    connect(&app.recent(), &RecentFiles::changed, this, &MainMenus::followRecents);
}

MainMenus::~MainMenus()
{
    qDeleteAll(m_items);
}

QAction *MainMenus::action(const QString &name) const
{
    return m_actions.value(name);
}

QMenu *MainMenus::menu(const QString &name) const
{
    return m_menus.value(name);
}

QAction *MainMenus::addItem(QMenu *menu, const char *name, const char *section, const char *textKey,
    const char *picture, const char *state)
{
    auto *action = new QAction(m_window);
    const QString objectName = QString::fromLatin1(name);
    action->setObjectName(objectName);
    auto *item = new Item;
    item->action = action;
    item->section = QString::fromLatin1(section);
    item->textKey = QString::fromLatin1(textKey);
    item->picture = picture ? QString::fromLatin1(picture) : QString();
    item->state = state ? QString::fromLatin1(state) : objectName;
    m_items.append(item);
    m_actions.insert(objectName, action);
    if (menu)
        menu->addAction(action);
    applyItem(*item);
    return action;
}

QMenu *MainMenus::addMenu(
    QMenu *parent, QMenuBar *bar, const char *name, const char *textKey, const char *picture)
{
    auto *menu = new QMenu(parent ? static_cast<QWidget *>(parent) : bar);
    const QString objectName = QString::fromLatin1(name);
    menu->setObjectName(objectName);
    if (parent)
        parent->addMenu(menu);
    else
        bar->addMenu(menu);
    auto *item = new Item;
    item->action = menu->menuAction();
    item->section = QString::fromLatin1(kMenus);
    item->textKey = QString::fromLatin1(textKey);
    item->picture = picture ? QString::fromLatin1(picture) : QString();
    item->state = objectName;
    item->isMenu = true;
    item->works = true;
    m_items.append(item);
    m_menus.insert(objectName, menu);
    applyItem(*item);
    return menu;
}

void MainMenus::addSeparator(QMenu *menu, const char *name)
{
    QAction *separator = menu->addSeparator();
    separator->setObjectName(QString::fromLatin1(name));
    m_actions.insert(separator->objectName(), separator);
}

void MainMenus::build(QMenuBar *bar, QToolBar *toolBar)
{
    buildFileMenu(bar);
    buildOtherMenus(bar);
    buildToolBar(toolBar);
    buildKeys();
    // Shortcuts a desktop user expects.
    const QList<std::pair<const char *, QKeySequence>> keys = {
        { "mnu_doNew0", QKeySequence::New },
        { "mnu_openFile", QKeySequence::Open },
        { "mnu_save0", QKeySequence::Save },
        { "mnu_save1", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S) },
        { "mnu_closeAll", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W) },
        { "mnu_printTune", QKeySequence::Print },
        { "mnu_Quitter", QKeySequence(Qt::CTRL | Qt::Key_Q) },
        { "mnu_hlp_item1", QKeySequence::HelpContents },
    };
    for (const auto &[name, sequence] : keys)
        if (QAction *a = action(QString::fromLatin1(name)))
            a->setShortcut(sequence);
    followRecents();
    loadLang();
}

void MainMenus::buildFileMenu(QMenuBar *bar)
{
    QMenu *file = addMenu(nullptr, bar, "mnu_Fichier", "<file>");
    QMenu *fresh = addMenu(file, nullptr, "mnu_New", "<new>", "document-new");
    addItem(fresh, "mnu_doNew0", kMenus, "<newFile>", "fileabc");
    addItem(fresh, "mnu_doNew1", kMenus, "<newTune>", "tune");
    addItem(fresh, "mnu_doNew2", kMenus, "<newSet>");
    addItem(fresh, "mnu_doNew3", kMenus, "<newGrp>");
    addItem(file, "mnu_openFile", kMenus, "<openFile>", "open");
    addItem(file, "mnu_openUrl", kMenus, "<openUrl>", "document-open-remote");
    addItem(file, "mnu_openDir", kMenus, "<openDir>", "folder-open");
    addItem(file, "mnu_openGrp", kMenus, "<openGrp>", "grpopen");
    addSeparator(file, "sep_fich1");
    addItem(file, "mnu_save0", kMenus, "<save>", "save");
    addItem(file, "mnu_save1", kMenus, "<saveAs>", "document-save-as");
    addItem(file, "mnu_SaveAll", kMenus, "<saveAll>", "saveall");
    addItem(file, "mnu_saveTunesFltr", kMenus, "<saveTunesFltr>");
    addItem(file, "mnu_saveSelTunes0", kMenus, "<saveFichSelTunes>", nullptr, "mnu_saveSelTunes");
    addItem(file, "mnu_saveSelTunes1", kMenus, "<saveAllSelTunes>", nullptr, "mnu_saveSelTunes");
    addSeparator(file, "sep_fich2");
    addItem(file, "mnu_closeFile", kMenus, "<closeFile>", "closeabc");
    addItem(file, "mnu_closeAll", kMenus, "<closeAll>", "closeallabc");
    addSeparator(file, "sep_fich3");
    QMenu *play = addMenu(file, nullptr, "mnu_playTunes", "<playTunes>", "view-media-playlist");
    addItem(play, "mnu_PlayFile0", kMenus, "<playAllFile>");
    addItem(play, "mnu_PlayFile1", kMenus, "<playFltrFile>");
    addItem(play, "mnu_PlayFile2", kMenus, "<quickScan>");
    QMenu *exportFile = addMenu(file, nullptr, "mnu_ExportFile", "<exportFile>", "document-export");
    addItem(exportFile, "mnu_exportFichVersMIDI", kMenus, "<exportMidi>", "tomidi");
    addItem(exportFile, "mnu_ExportFileViaGS0", kMenus, "<exportPdf>", "topdf");
    addItem(exportFile, "mnu_ExportFileViaGS1", kMenus, "<exportPng>", "image-x-generic");
    addItem(exportFile, "mnu_ExportFileViaGS2", kMenus, "<exportBmp>");
    addItem(exportFile, "mnu_ExportFileViaGS3", kMenus, "<exportJpeg>");
    exportFile->addSeparator();
    addItem(exportFile, "mnu_fileExportNet0", kMenus, "<sendFileByMail>", "mail-send");
    addItem(exportFile, "mnu_fileExportNet1", kMenus, "<exportWeb>", "text-html");
    addItem(file, "mnu_printFile", kMenus, "<printFile>", "print");
    addItem(file, "mnu_printAbcFile", kMenus, "<printAbc>");
    addSeparator(file, "sep_fich4");
    for (int i = 0; i < RecentFiles::kCount; ++i) {
        auto *recent = new QAction(m_window);
        recent->setObjectName(QStringLiteral("mnu_Recents") + QString::number(i));
        connect(recent, &QAction::triggered, this, [this, i] {
            if (recentChosen)
                recentChosen(i);
        });
        file->addAction(recent);
        m_actions.insert(recent->objectName(), recent);
    }
    addSeparator(file, "sep_fich5");
    addItem(file, "mnu_Quitter", kMenus, "<quit>", "application-exit");
}

void MainMenus::buildOtherMenus(QMenuBar *bar)
{
    QMenu *tune = addMenu(nullptr, bar, "mnu_Morceau", "<tune>");
    addItem(tune, "mnu_cutTune", kMenus, "<cutTune>", "tunecut");
    addItem(tune, "mnu_copyTune", kMenus, "<copyTune>", "tunecopy");
    addItem(tune, "mnu_pasteTune", kMenus, "<pasteTune>", "tunepaste");
    tune->addSeparator();
    addItem(tune, "mnu_addTuneToLst", kMenus, "<addTuneToLst>", "list-add");
    tune->addSeparator();
    addItem(tune, "mnu_delTune0", kMenus, "<removeTune>", "tunedel");
    addItem(tune, "mnu_delTune1", kMenus, "<delTune>", "edit-delete-shred");
    tune->addSeparator();
    addItem(tune, "mnu_playTune", kMenus, "<playTune>", "media-playback-start");
    QMenu *exportTune = addMenu(tune, nullptr, "mnu_exportTune", "<exportTune>", "document-export");
    addItem(exportTune, "mnu_exportTuneVersMidi", kMenus, "<exportMidi>", "tomidi");
    addItem(exportTune, "mnu_ExportTuneViaGS0", kMenus, "<exportPng>", "image-x-generic");
    addItem(exportTune, "mnu_ExportTuneViaGS1", kMenus, "<exportBmp>");
    addItem(exportTune, "mnu_ExportTuneViaGS2", kMenus, "<exportJpeg>");
    exportTune->addSeparator();
    addItem(exportTune, "mnu_tuneExportNet0", kMenus, "<sendTuneByMail>", "mail-send");
    addItem(exportTune, "mnu_tuneExportNet1", kMenus, "<exportWeb>", "text-html");
    addItem(tune, "mnu_printTune", kMenus, "<printTune>", "print");
    addItem(tune, "mnu_printAbcTune", kMenus, "<printAbc>");

    QMenu *list = addMenu(nullptr, bar, "mnu_lst", "<choiceLst>");
    addItem(list, "mnu_lstPlayTune", kMenus, "<lstPlayTune>", "media-playback-start");
    addItem(list, "mnu_playLst", kMenus, "<lstPlayLst>", "media-playlist-play");
    addItem(list, "mnu_lstSupTune", kMenus, "<lstSupTune>", "list-remove");
    addItem(list, "mnu_emptyLst", kMenus, "<emptyLst>", "edit-clear-all");
    addItem(list, "mnu_defineRepTune", kMenus, "<defineRepTune>");
    list->addSeparator();
    addItem(list, "mnu_lstToSet", kMenus, "<lstToSet>");
    addItem(list, "mnu_lstToAbc", kMenus, "<lstToAbc>", "document-save-as");
    QMenu *exportList = addMenu(list, nullptr, "mnu_lstExport", "<lstExport>", "document-export");
    addItem(exportList, "mnu_exportLstVersMidi", kMenus, "<exportMidi>", "tomidi");
    addItem(exportList, "mnu_exportLstViaGs0", kMenus, "<exportPdf>", "topdf");
    addItem(exportList, "mnu_exportLstViaGs1", kMenus, "<exportPng>", "image-x-generic");
    addItem(exportList, "mnu_exportLstViaGs2", kMenus, "<exportBmp>");
    addItem(exportList, "mnu_exportLstViaGs3", kMenus, "<exportJpeg>");
    addItem(list, "mnu_lstExportNet", kMenus, "<sendLstByMail>", "mail-send");
    addItem(list, "mnu_lstToLst", kMenus, "<lstToLst>");
    addItem(list, "mnu_printLst", kMenus, "<printLst>", "print");
    addItem(list, "mnu_printAbcLst", kMenus, "<printAbc>");

    QMenu *import = addMenu(nullptr, bar, "mnu_Import", "<import>");
    addItem(import, "mnu_impClipboard", kMenus, "<impClipboard>", "edit-paste");
    addItem(import, "mnu_impMidi", kMenus, "<impMidi>", "audio-midi");
    addItem(import, "mnu_midiExt", kMenus, "<midiExt>", "media-playback-start");

    QMenu *tools = addMenu(nullptr, bar, "mnu_Outils", "<tools>");
    addItem(tools, "mnu_fileTools0", kMenus, "<fileTools>", "toolsf");
    addItem(tools, "mnu_fileTools1", kMenus, "<tuneTools>");
    addItem(tools, "mnu_extract", kMenus, "<extract>", "extract");
    addItem(tools, "mnu_showDoublons", kMenus, "<showDoublons>");
    addItem(tools, "mnu_inserAuto", kMenus, "<inserAuto>");
    QMenu *extras = addMenu(tools, nullptr, "mnu_extras", "<extras>");
    addItem(extras, "mnu_toExtras0", kMenus, "<scanRep>", "scanrep");
    addItem(extras, "mnu_toExtras1", kMenus, "<tempo>");
    addItem(extras, "mnu_toExtras2", kMenus, "<tabEdit>");
    tools->addSeparator();
    addItem(tools, "mnu_shellConsole0", kMenus, "<shellAbc2midi>", "utilities-terminal");
    addItem(tools, "mnu_shellConsole1", kMenus, "<shellAbc2ps>");
    addItem(tools, "mnu_shellConsole2", kMenus, "<shellAbc2abc>");
    addItem(tools, "mnu_shellConsole3", kMenus, "<shellMidi2abc>");
    tools->addSeparator();
    addItem(tools, "mnu_Options", kMenus, "<options>", "configure");

    QMenu *help = addMenu(nullptr, bar, "mnu_hlp", "<hlp>");
    addItem(help, "mnu_hlp_item1", kMenus, "<openHlp>", "help-contents");
    addItem(help, "mnu_hlp_item2", kMenus, "<abcHlp>");
    help->addSeparator();
    addItem(help, "mnu_hlp_item3", kMenus, "<translate>");
    addItem(help, "mnu_hlp_item4", kMenus, "<contact>", "mail-send");
    addItem(help, "mnu_hlp_item5", kMenus, "<webSite>", "internet-web-browser");
    addItem(help, "mnu_hlp_item6", kMenus, "<chkVersion>");
    help->addSeparator();
    addItem(help, "mnu_hlp_item0", kMenus, "<about>", "help-about");
}

void MainMenus::buildToolBar(QToolBar *toolBar)
{
    toolBar->setObjectName(QStringLiteral("tb_main"));
    toolBar->setMovable(false);
    toolBar->setFloatable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);

    struct Button
    {
        const char *key;
        const char *picture;
        const char *tip; // in TTText
        const char *twin; // the menu item it stands for
    };
    const auto button = [&](const Button &b) {
        QAction *action = addItem(nullptr, b.key, "TTText", b.tip, b.picture);
        Item *item = m_items.last();
        item->tipOnly = true;
        item->twin = b.twin ? this->action(QString::fromLatin1(b.twin)) : nullptr;
        toolBar->addAction(action);
        if (QWidget *widget = toolBar->widgetForAction(action))
            widget->setObjectName(action->objectName());
        return action;
    };
    // A button with a menu of three commands on the arrow beside it.
    const auto popup = [&](const Button &b, std::initializer_list<std::pair<const char *, const char *>> rows,
                           QToolButton::ToolButtonPopupMode mode) {
        QAction *action = button(b);
        auto *menu = new QMenu(toolBar);
        menu->setObjectName(QString::fromLatin1(b.key) + QStringLiteral("_pop"));
        for (const auto &[name, text] : rows)
            addItem(menu, name, "MainForm", text);
        action->setMenu(menu);
        if (auto *tool = qobject_cast<QToolButton *>(toolBar->widgetForAction(action)))
            tool->setPopupMode(mode);
    };

    button({ "open", "open", "<openFile>", "mnu_openFile" });
    button({ "grpopen", "grpopen", "<openGrp>", "mnu_openGrp" });
    button({ "save", "save", "<saveFile>", "mnu_save0" });
    button({ "saveall", "saveall", "<saveAllFile>", "mnu_SaveAll" });
    button({ "scanrep", "scanrep", "<scanRep>", "mnu_toExtras0" });
    toolBar->addSeparator();
    button({ "newabc", "fileabc", "<newAbcFile>", "mnu_doNew0" });
    button({ "closeabc", "closeabc", "<closeAbcFile>", "mnu_closeFile" });
    button({ "closeallabc", "closeallabc", "<closeAllAbc>", "mnu_closeAll" });
    toolBar->addSeparator();
    button({ "toolsf", "toolsf", "<fileTools>", "mnu_fileTools0" });
    button({ "extract", "extract", "<extract>", "mnu_extract" });
    toolBar->addSeparator();
    button({ "newtune", "tune", "<createNewTune>", "mnu_doNew1" });
    button({ "tunedel", "tunedel", "<delTune>", "mnu_delTune0" });
    button({ "tunecut", "tunecut", "<tuneCut>", "mnu_cutTune" });
    button({ "tunecopy", "tunecopy", "<tuneCopy>", "mnu_copyTune" });
    button({ "tunepaste", "tunepaste", "<tunePaste>", "mnu_pasteTune" });
    toolBar->addSeparator();
    popup({ "print", "print", "<print>", nullptr },
        { { "printtune", "<printTune>" }, { "printfile", "<printFile>" }, { "printlst", "<printLst>" } },
        QToolButton::MenuButtonPopup);
    button({ "tomidi", "tomidi", "<exportTuneMidi>", "mnu_exportTuneVersMidi" });
    popup({ "topdf", "topdf", "<exportPdf>", nullptr },
        { { "topdftune", "<exportTunePdf>" }, { "topdffile", "<exportFilePdf>" },
            { "topdflst", "<exportLstPdf>" } },
        QToolButton::MenuButtonPopup);
    popup({ "playfile", "view-media-playlist", "<playTunes>", nullptr },
        { { "playall", "<playAllTunes>" }, { "playselect", "<playSelectTunes>" },
            { "quickscan", "<quickScan>" } },
        QToolButton::InstantPopup);
    // The pop-up button opens its menu whatever its commands: they say themselves what works.
    for (Item *item : std::as_const(m_items))
        if (item->action->objectName() == u"playfile")
            item->works = true;
    applyState(QStringLiteral("playfile"));
}

void MainMenus::buildKeys()
{
    // Window-wide keys, whatever has the focus.
    for (const auto &[name, sequence] :
        { std::pair<const char *, QKeySequence> { "key_F5", QKeySequence(Qt::Key_F5) },
            { "key_Esc", QKeySequence(Qt::Key_Escape) },
            { "key_CtrlR", QKeySequence(Qt::CTRL | Qt::Key_R) },
            { "key_F10", QKeySequence(Qt::Key_F10) },
            { "key_CtrlW", QKeySequence(Qt::CTRL | Qt::Key_W) } }) {
        QAction *key = addItem(nullptr, name, kMenus, "");
        key->setShortcut(sequence);
        key->setShortcutContext(Qt::WindowShortcut);
        m_window->addAction(key);
    }
}

void MainMenus::setHandler(const QString &name, std::function<void()> handler)
{
    QAction *a = action(name);
    if (!a)
        return;
    connect(a, &QAction::triggered, this, [handler = std::move(handler)] { handler(); });
    for (Item *item : std::as_const(m_items)) {
        if (item->action == a) {
            item->works = true;
            applyItem(*item);
        }
    }
}

void MainMenus::applyItem(const Item &item)
{
    item.action->setEnabled(item.works && m_app.commands().isEnabled(item.state));
}

void MainMenus::applyState(const QString &stateName)
{
    for (const Item *item : std::as_const(m_items))
        if (item->state == stateName)
            applyItem(*item);
}

bool MainMenus::isMenuEnabled(const QString &name) const
{
    const QMenu *m = menu(name);
    return m && m->menuAction()->isEnabled();
}

void MainMenus::loadLang()
{
    const Language &lang = m_app.lang();
    const QString folder = m_app.paths().programFolder();
    for (const Item *item : std::as_const(m_items)) {
        if (item->textKey.isEmpty())
            continue;
        const QString text = lang.text(item->section, item->textKey);
        if (item->tipOnly) {
            QString tip = withoutAccelerator(text);
            if (item->twin && !item->twin->shortcut().isEmpty())
                tip += QStringLiteral(" (") + item->twin->shortcut().toString(QKeySequence::NativeText)
                    + u')';
            item->action->setText(tip);
            item->action->setToolTip(tip);
        } else {
            item->action->setText(text);
        }
        if (!item->picture.isEmpty())
            item->action->setIcon(iconFor(item->picture, folder));
    }
}

void MainMenus::followRecents()
{
    const QStringList &items = m_app.recent().items();
    bool any = false;
    for (int i = 0; i < items.size(); ++i) {
        QAction *recent = action(QStringLiteral("mnu_Recents") + QString::number(i));
        if (!recent)
            continue;
        const QString path = items.at(i);
        QString shown = path;
        shown.replace(u'&', QStringLiteral("&&"));
        recent->setText(u'&' + QString::number(i + 1) + u' ' + shown);
        recent->setData(path);
        recent->setToolTip(path);
        recent->setVisible(!path.isEmpty());
        any = any || !path.isEmpty();
    }
    if (QAction *separator = action(QStringLiteral("sep_fich4")))
        separator->setVisible(any);
}

void MainMenus::popupTuneMenu(const QPoint &globalPos)
{
    if (QMenu *tune = menu(QStringLiteral("mnu_Morceau")))
        tune->exec(globalPos);
}

void MainMenus::popupFileMenu(const QPoint &globalPos)
{
    QMenu *file = menu(QStringLiteral("mnu_Fichier"));
    if (!file)
        return;
    QStringList hidden
        = { QStringLiteral("mnu_openFile"), QStringLiteral("mnu_openUrl"), QStringLiteral("mnu_openDir"),
              QStringLiteral("mnu_openGrp"), QStringLiteral("mnu_SaveAll"), QStringLiteral("mnu_Quitter"),
              QStringLiteral("sep_fich1"), QStringLiteral("sep_fich4"), QStringLiteral("sep_fich5") };
    for (int i = 0; i < RecentFiles::kCount; ++i)
        hidden.append(QStringLiteral("mnu_Recents") + QString::number(i));
    QList<std::pair<QAction *, bool>> restore;
    for (const QString &name : std::as_const(hidden)) {
        if (QAction *a = action(name)) {
            restore.append({ a, a->isVisible() });
            a->setVisible(false);
        }
    }
    file->exec(globalPos);
    for (const auto &[a, visible] : std::as_const(restore))
        a->setVisible(visible);
}

} // namespace fenwork
