#include "frame/widgets/mainwindow.h"

#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/session.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/version.h"
#include "frame/widgets/icons.h"
#include "frame/widgets/progressstrip.h"
#include "frame/widgets/widgetdialogs.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/widgets/treemodel.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

namespace fenwork {

namespace {
const QString kMenus = QStringLiteral("Menus");
}

MainWindow::MainWindow(AppContext &app, WidgetDialogs &dialogs, QWidget *parent)
    : QMainWindow(parent), m_app(app), m_dialogs(dialogs)
{
    setObjectName(QStringLiteral("f_main"));
    m_model = new TreeModel(app.tree(), this);
    const QString programFolder = app.paths().programFolder();
    m_model->setIconProvider([programFolder](Pic pic) { return pictureIcon(picName(pic), programFolder); });

    m_split = new QSplitter(Qt::Horizontal, this);
    auto *left = new QWidget(m_split);
    auto *leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->setSpacing(2);
    m_splitLeft = new QSplitter(Qt::Vertical, left);
    m_tree = new TreeView(app.tree(), m_model, m_splitLeft);
    auto *below = new QLabel(m_splitLeft);
    below->setObjectName(QStringLiteral("tabs_left"));
    m_splitLeft->addWidget(m_tree);
    m_splitLeft->addWidget(below);
    leftLayout->addWidget(m_splitLeft, 1);
    m_progress = new ProgressStrip(left);
    leftLayout->addWidget(m_progress);

    m_splitRight = new QSplitter(Qt::Vertical, m_split);
    m_text = new QPlainTextEdit(m_splitRight);
    m_text->setObjectName(QStringLiteral("txt_ABC"));
    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto *score = new QLabel(m_splitRight);
    score->setObjectName(QStringLiteral("pic_Score"));
    score->setAlignment(Qt::AlignCenter);
    m_splitRight->addWidget(m_text);
    m_splitRight->addWidget(score);
    m_split->addWidget(left);
    m_split->addWidget(m_splitRight);
    m_split->setStretchFactor(1, 1);
    setCentralWidget(m_split);

    m_version = new QLabel(this);
    m_version->setObjectName(QStringLiteral("kversion"));
    m_fileInfo = new QLabel(this);
    m_fileInfo->setObjectName(QStringLiteral("kfich"));
    statusBar()->addWidget(m_fileInfo, 1);
    statusBar()->addPermanentWidget(m_version);

    m_dialogs.setParentWidget(this);
    m_dialogs.setProgressStrip(m_progress);

    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current) {
                if (Node *node = m_model->nodeAt(current))
                    NodeClick(node->Key);
            });
    m_app.store().selectNode = [this](const QString &key) { SimulerNodeClick(key); };
}

MainWindow::~MainWindow()
{
    m_app.store().selectNode = nullptr;
    m_dialogs.setProgressStrip(nullptr);
    m_dialogs.setParentWidget(nullptr);
}

void MainWindow::MainLoad()
{
    const QString title = QStringLiteral("Fennelworks ") + versionText();
    m_version->setText(title);
    setWindowTitle(programTitle());

    const QStringList failed = ensureUserFolders(m_app.paths());
    if (!failed.isEmpty())
        m_dialogs.contextError(QStringLiteral("MainLoad"),
                               QStringLiteral("Can't create these folders:\n") + failed.join(u'\n'));
    IniFile &ini = m_app.ini();
    if (ini.get(keys::DirDef).isEmpty())
        ini.set(keys::DirDef, specialFolder(SF_Documents));

    applyGeometry();
    m_app.buildStartupTexts();
    m_app.tempoDef = ini.get(keys::TempoDef).toShort();
    m_app.recent().load(ini);

    createWorkspaceRoot(m_app);
    WorkspaceTree &tree = m_app.tree();
    if (QFileInfo::exists(m_app.paths().trashFile())) {
        m_app.store().FichierOuvrir(m_app.paths().trashFile(), true, true, false);
    } else {
        Node *header = tree.find(key::TrashHeader);
        tree.addChild(header, QStringLiteral("_file0_hdrFile_lgabc"), QStringLiteral("%abc"), Pic::Rem);
        tree.addChild(header, QStringLiteral("_file0_hdrFile_lgcreator"), m_app.creatorLine, Pic::Rem);
        tree.addChild(header, QStringLiteral("_file0_hdrFile_lgIDpoubelle"), QStringLiteral("%Poubelle d'Fennelworks"),
                      Pic::Rem);
    }
    CompterTunesDansFichier(m_app, key::Trash);
    CompterFiles(m_app);

    QFont font(ini.get(keys::FontName));
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(qBound(6, ini.get(keys::FontSize).toInt(), 48));
    m_text->setFont(font);
    buildMenus();
}

void MainWindow::buildMenus()
{
    menuBar()->clear();
    Language &lang = m_app.lang();
    const QString folder = m_app.paths().programFolder();
    QMenu *file = menuBar()->addMenu(lang.text(kMenus, QStringLiteral("<file>")));
    file->setObjectName(QStringLiteral("mnu_file"));
    QAction *open = file->addAction(programIcon(QStringLiteral("open"), folder), lang.text(kMenus, QStringLiteral("<openFile>")),
                                    this, &MainWindow::openFileDialog);
    open->setObjectName(QStringLiteral("mnu_openFile"));
    open->setShortcut(QKeySequence::Open);
    file->addSeparator();
    QAction *quit = file->addAction(lang.text(kMenus, QStringLiteral("<quit>")), this, &QWidget::close);
    quit->setObjectName(QStringLiteral("mnu_Quitter"));
    quit->setShortcut(QKeySequence::Quit);
}

void MainWindow::applyGeometry()
{
    IniFile &ini = m_app.ini();
    const QRect screen = QGuiApplication::primaryScreen() ? QGuiApplication::primaryScreen()->availableGeometry()
                                                          : QRect(0, 0, 1280, 800);
    const bool recorded = ini.get(keys::UseRecordedData) == u"1";
    // Stored values are pixels; a missing one takes a default near the screen's size (the classic
    // defaults were 300 and 500 twips from the corner, and the screen less 1000 twips).
    const auto value = [&](const SettingKey &k, int fallback) {
        bool ok = false;
        const int v = recorded ? ini.getValue(k.sectionName(), k.keyName(), {}).toInt(&ok) : 0;
        return ok ? v : fallback;
    };
    const int width = value(keys::Width, screen.width() - 67);
    const int height = value(keys::Height, screen.height() - 67);
    const int left = value(keys::Left, screen.x() + 33);
    const int top = value(keys::Top, screen.y() + 20);
    resize(qBound(400, width, screen.width()), qBound(300, height, screen.height()));
    move(qBound(screen.x(), left, screen.right() - 200), qBound(screen.y(), top, screen.bottom() - 200));
    const int panelX = value(keys::PanelX, this->width() / 3);
    const int panelYG = value(keys::PanelYG, this->height() * 3 / 4);
    const int panelYD = value(keys::PanelYD, this->height() / 2);
    m_split->setSizes({panelX, qMax(100, this->width() - panelX)});
    m_splitLeft->setSizes({panelYG, qMax(50, this->height() - panelYG)});
    m_splitRight->setSizes({panelYD, qMax(50, this->height() - panelYD)});
    if (recorded && ini.get(keys::WindowState) == u"2")
        setWindowState(windowState() | Qt::WindowMaximized);
}

void MainWindow::writeGeometry()
{
    IniFile &ini = m_app.ini();
    const QList<int> x = m_split->sizes();
    const QList<int> yg = m_splitLeft->sizes();
    const QList<int> yd = m_splitRight->sizes();
    const auto panels = [&] {
        ini.set(keys::PanelX, QString::number(x.value(0)));
        ini.set(keys::PanelYG, QString::number(yg.value(0)));
        ini.set(keys::PanelYD, QString::number(yd.value(0)));
    };
    if (isMinimized()) {
        ini.set(keys::WindowState, QStringLiteral("0"));
        for (const SettingKey *k : {&keys::Top, &keys::Left, &keys::Width, &keys::Height, &keys::PanelX,
                                    &keys::PanelYD, &keys::PanelYG})
            ini.set(*k, {});
    } else if (isMaximized()) {
        ini.set(keys::WindowState, QStringLiteral("2"));
        for (const SettingKey *k : {&keys::Top, &keys::Left, &keys::Width, &keys::Height})
            ini.set(*k, {});
        panels();
    } else {
        ini.set(keys::WindowState, QStringLiteral("0"));
        ini.set(keys::Top, QString::number(y()));
        ini.set(keys::Left, QString::number(this->x()));
        ini.set(keys::Width, QString::number(width()));
        ini.set(keys::Height, QString::number(height()));
        panels();
    }
}

void MainWindow::NodeClick(const QString &key)
{
    Node *node = m_app.tree().find(key);
    if (!node)
        return;
    const KeyKind kind = keyKind(key);
    const QString kTune = GetKtune(key);
    m_app.currentTuneKey = kTune;
    m_app.currentFileKey = kind == KeyKind::Root ? QString() : GetKFile(key);
    TuneStore &store = m_app.store();
    if (!kTune.isEmpty())
        m_text->setPlainText(store.GetStringTune(kTune, false));
    else if (kind == KeyKind::FileHeader || kind == KeyKind::Trash)
        m_text->setPlainText(store.GetStringHdrFile(GetKFile(key), false));
    else
        m_text->setPlainText(node->Text);
    m_fileInfo->setText(GetPathFile(m_app, m_app.currentFileKey));
}

void MainWindow::SimulerNodeClick(const QString &key)
{
    Node *node = m_app.tree().find(key);
    if (!node)
        return;
    const QModelIndex index = m_model->indexOf(node);
    m_tree->setCurrentIndex(index);
    m_tree->scrollTo(index);
    NodeClick(key);
}

QString MainWindow::openPath(const QString &path)
{
    const QFileInfo info(path);
    const QString key = m_app.store().FichierOuvrir(path, false, false, info.exists() && !info.isWritable());
    if (!key.isEmpty()) {
        SimulerNodeClick(key);
        if (afterOpen)
            afterOpen(key);
    }
    return key;
}

void MainWindow::openHandedOver(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return;
    raise();
    activateWindow();
    openPath(path);
}

void MainWindow::openFileDialog()
{
    const QString msg = QStringLiteral("Msg");
    const QString path = m_dialogs.openFileName(m_app.text(msg, QStringLiteral("<openABCfile>")), m_app.ini().get(keys::DirDef),
                                                {m_app.text(msg, QStringLiteral("<ABCfile>")) + QStringLiteral(" (*.abc)"),
                                                 m_app.text(msg, QStringLiteral("<allFiles>")) + QStringLiteral(" (*)")});
    if (!path.isEmpty())
        openPath(path);
}

bool MainWindow::Form_Unload()
{
    m_dialogs.processEvents();
    IniFile &ini = m_app.ini();
    const bool reset = ini.get(keys::NbFiles) == u"x";
    const QString msg = QStringLiteral("Msg");

    Node *root = m_app.tree().root();
    for (int i = 1; root && i < root->childCount(); ++i) {
        Node *file = root->child(i);
        if (file->Image != Pic::FileAbcM && file->Image != Pic::FileRoM)
            continue;
        const auto answer = m_dialogs.question(file->Text + CRLF + CRLF + m_app.text(msg, QStringLiteral("<fileModified>"))
                                                   + CRLF + CRLF + m_app.text(msg, QStringLiteral("<saveModif>")),
                                               true);
        if (answer == UserDialogs::Answer::Cancel)
            return false;
        if (answer == UserDialogs::Answer::Yes && file->Tag != u"<new>")
            m_app.store().FichierSaveFromKey(file->Key, file->Tag, QString());
    }

    m_app.recent().save(ini, reset);
    writeOpenFiles(m_app, reset);
    writeGeometry();

    // The trash box keeps its newest tunes only.
    bool ok = false;
    const int trashMax = ini.get(keys::TrashMax).toInt(&ok);
    Node *trashBody = m_app.tree().find(key::TrashBody);
    bool trashChanged = m_app.store().trashChanged;
    while (ok && trashBody && trashBody->childCount() > trashMax) {
        m_app.tree().remove(trashBody->firstChild());
        trashChanged = true;
    }
    if (trashChanged)
        m_app.store().FichierSaveFromKey(key::Trash, m_app.paths().trashFile(), QString());

    ini.set(keys::Version, versionText());
    cleanScratchFiles(m_app.paths());
    return true;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_quitting || Form_Unload()) {
        m_quitting = true;
        event->accept();
    } else {
        event->ignore();
    }
}

} // namespace fenwork
