#include "tools/widgets/toolsdialog.h"

#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "tools/fileanalysis.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QVBoxLayout>

namespace fenwork {

namespace {

const QString kTools = QStringLiteral("Tools");

// The check boxes in their groups, as a user looks for them: by what they touch.
struct CleanGroup
{
    const char *captionKey;
    QList<int> options;
};
const QList<CleanGroup> &cleanGroups()
{
    static const QList<CleanGroup> groups = {
        { "<gestSpc>", { CleanJoinLines, CleanBlanks, CleanTabs, CleanBarBlanks } },
        { "<gestCmt>", { CleanComments, CleanRemarks } },
        { "<gestSymb>", { CleanBangDecorations, CleanPlusDecorations } },
        { "<gestScore>", { CleanRolls, CleanGraceNotes, CleanQuoted } },
        { "<gestChp>", { CleanFieldBlank } },
        { "<gestDiv>", { CleanEntities, CleanLineEndStars } },
    };
    return groups;
}

const char *const kCleanCaptions[CleanOptionCount] = { "<cleanBslh>", "<cleanSpace>", "<cleanTab>", "<cleanRem>",
    "<cleanHtml>", "<cleanSpChp>", "<cleanSymbEx>", "<cleanSymbPlus>", "<cleanStar>", "<cleanSpcBar>", "<cleanRoll>",
    "<cleanGrace>", "<cleanRemFld>", "<cleanChords>" };

} // namespace

ToolsDialog::ToolsDialog(AppContext &app, Scope scope, QWidget *parent)
    : QDialog(parent)
    , m_app(app)
    , m_scope(scope)
    , m_analysis(new FileAnalysis(app))
{
    setObjectName(QStringLiteral("f_tools"));
    const bool file = scope == Scope::File;
    setWindowTitle(text(file ? "<fileTools>" : "<tuneTools>"));

    m_filesLabel = new QLabel(text("<fich>"), this);
    m_files = new QComboBox(this);
    m_files->setObjectName(QStringLiteral("lst_fich"));
    m_files->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_files->setMinimumContentsLength(40);
    m_filesLabel->setBuddy(m_files);
    auto *fileRow = new QHBoxLayout;
    fileRow->addWidget(m_filesLabel);
    fileRow->addWidget(m_files, 1);
    connect(m_files, &QComboBox::currentIndexChanged, this, &ToolsDialog::lst_fich_Click);

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("pic_tool"));
    m_tabs->addTab(buildCleanTab(), text("<clean>"));
    m_tabs->addTab(buildChordsTab(), text("<chords>"));
    m_tabs->addTab(buildReindexTab(), text("<reindex>"));
    m_tabs->addTab(buildSortTab(), text("<sort>"));
    m_tabs->addTab(buildFieldTab(), text("<gstChp>"));
    m_tabs->addTab(buildAnalyseTab(), text("<analyse>"));
    // The tune scope works on the edit panel alone; chords make sense only there.
    for (int i = 0; i < m_tabs->count(); ++i) {
        const QString key = m_tabs->widget(i)->objectName();
        m_tabs->setTabVisible(i, file ? key != u"chords" : (key == u"clean" || key == u"chords"));
    }
    m_filesLabel->setVisible(file);
    m_files->setVisible(file);

    m_restore = new QPushButton(QIcon::fromTheme(QStringLiteral("edit-undo")), text("<restaur>"), this);
    m_restore->setObjectName(QStringLiteral("bt_restaur"));
    m_restore->setToolTip(text("<restProc>"));
    m_restore->setAutoDefault(false);
    m_restorePic = new QLabel(this);
    m_restorePic->setObjectName(QStringLiteral("pic_restaur"));
    m_restorePic->setPixmap(QIcon::fromTheme(QStringLiteral("view-refresh")).pixmap(22, 22));
    connect(m_restore, &QPushButton::clicked, this, &ToolsDialog::bt_restaur_Click);
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *close = buttons->addButton(m_app.text(QStringLiteral("Common"), QStringLiteral("<close>")),
        QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("bt_esc"));
    close->setIcon(QIcon::fromTheme(QStringLiteral("window-close")));
    close->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &ToolsDialog::reject);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_restore);
    bottom->addWidget(m_restorePic);
    bottom->addStretch(1);
    bottom->addWidget(buttons);
    showRestore(false);

    auto *whole = new QVBoxLayout(this);
    whole->addLayout(fileRow);
    whole->addWidget(m_tabs, 1);
    whole->addLayout(bottom);
    resize(760, 560);

    for (const QString &caption : openFileCaptions(app))
        m_files->addItem(caption);
}

ToolsDialog::~ToolsDialog()
{
    delete m_analysis;
}

QString ToolsDialog::text(const char *key) const
{
    return m_app.text(kTools, QString::fromLatin1(key));
}

QString ToolsDialog::msg(const char *key) const
{
    return m_app.text(QStringLiteral("Msg"), QString::fromLatin1(key));
}

QWidget *ToolsDialog::buildCleanTab()
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("clean"));
    auto *heading = new QLabel(QStringLiteral("<b>") + text(m_scope == Scope::File ? "<cleanFile>" : "<cleanTune>").toHtmlEscaped() + QStringLiteral("</b>"), page);
    heading->setObjectName(QStringLiteral("lab_clean"));
    auto *info = new QLabel(text("<info0>"), page);
    info->setWordWrap(true);

    for (int option = 0; option < CleanOptionCount; ++option) {
        auto *box = new QCheckBox(text(kCleanCaptions[option]), page);
        box->setObjectName(QStringLiteral("chk_clean") + QString::number(option));
        connect(box, &QCheckBox::clicked, this, &ToolsDialog::chk_clean_Click);
        m_clean.append(box);
    }
    auto *grid = new QGridLayout;
    int at = 0;
    for (const CleanGroup &group : cleanGroups()) {
        auto *box = new QGroupBox(text(group.captionKey), page);
        auto *column = new QVBoxLayout(box);
        for (int option : group.options)
            column->addWidget(m_clean.at(option));
        column->addStretch(1);
        grid->addWidget(box, at / 2, at % 2);
        ++at;
    }

    m_steps = new QLabel(page);
    m_steps->setObjectName(QStringLiteral("lab_nAction"));
    m_cleanProgress = new QProgressBar(page);
    m_cleanProgress->setObjectName(QStringLiteral("PrgN"));
    m_cleanProgress->setTextVisible(false);
    m_cleanButton = new QPushButton(QIcon::fromTheme(QStringLiteral("edit-clear")), text("<clean>"), page);
    m_cleanButton->setObjectName(QStringLiteral("bt_Clean"));
    m_cleanButton->setEnabled(false);
    connect(m_cleanButton, &QPushButton::clicked, this, &ToolsDialog::bt_Clean_Click);
    auto *run = new QHBoxLayout;
    run->addWidget(m_steps);
    run->addWidget(m_cleanProgress, 1);
    run->addWidget(m_cleanButton);

    auto *layout = new QVBoxLayout(page);
    layout->addWidget(heading);
    layout->addWidget(info);
    layout->addLayout(grid);
    layout->addStretch(1);
    layout->addLayout(run);
    chk_clean_Click();
    return page;
}

void ToolsDialog::chk_clean_Click()
{
    int ticked = 0;
    for (const QCheckBox *box : std::as_const(m_clean))
        ticked += box->isChecked() ? 1 : 0;
    m_steps->setText(QStringLiteral(".../") + QString::number(ticked));
    m_cleanButton->setEnabled(ticked > 0);
}

void ToolsDialog::selectFile(const QString &kFile)
{
    const QStringList captions = openFileCaptions(m_app);
    const QSignalBlocker block(m_files);
    m_files->clear();
    m_files->addItems(captions);
    for (int i = 0; i < captions.size(); ++i) {
        if (fileKeyFromCaption(m_app, captions.at(i)) == kFile) {
            m_files->setCurrentIndex(i);
            break;
        }
    }
    lst_fich_Click();
}

QString ToolsDialog::fileKey()
{
    return fileKeyFromCaption(m_app, m_files->currentText());
}

void ToolsDialog::lst_fich_Click()
{
    // The backup belongs to the file it was made of.
    // By key: a rebuilt file's caption may read otherwise than when the backup was taken.
    showRestore(!m_backup.isEmpty() && fileKey() == m_backup.memoKey);
}

void ToolsDialog::showRestore(bool shown)
{
    m_restore->setVisible(shown && m_scope == Scope::File);
    m_restorePic->setVisible(false);
}

void ToolsDialog::operationDone()
{
    // The file was rebuilt: its caption may read otherwise now (a count, a mark).
    const QString kFile = m_backup.memoKey;
    selectFile(kFile);
    showRestore(!m_backup.isEmpty());
}

bool ToolsDialog::beginWork(bool busyCursor)
{
    if (m_working)
        return false;
    m_working = true;
    m_busyCursor = busyCursor;
    m_tabs->setEnabled(false);
    m_files->setEnabled(false);
    m_restore->setEnabled(false);
    if (busyCursor)
        m_app.ui().setBusy(true);
    return true;
}

void ToolsDialog::endWork()
{
    if (m_busyCursor)
        m_app.ui().setBusy(false);
    m_tabs->setEnabled(true);
    m_files->setEnabled(true);
    m_restore->setEnabled(true);
    m_working = false;
    if (m_closeWanted)
        close();
}

void ToolsDialog::bt_Clean_Click()
{
    unsigned options = 0;
    for (int option = 0; option < m_clean.size(); ++option)
        options |= m_clean.at(option)->isChecked() ? 1u << option : 0u;
    if (options == 0)
        return;
    QString kFile;
    if (m_scope == Scope::File) {
        kFile = fileKey();
        if (kFile.isEmpty())
            return;
    }
    if (!beginWork())
        return;
    UserDialogs &ui = m_app.ui();
    CleanProgress progress;
    progress.stepStarted = [&](int step, int steps) {
        m_steps->setText(QString::number(step) + u'/' + QString::number(steps));
        m_cleanProgress->setValue(0);
        ui.processEvents();
    };
    int shownPercent = -1;
    progress.matchDone = [&](int value, int maximum) {
        // Repainting for every match would cost more than the matching.
        const int percent = int(qint64(value) * 100 / qMax(1, maximum));
        if (percent != shownPercent) {
            shownPercent = percent;
            m_cleanProgress->setMaximum(100);
            m_cleanProgress->setValue(percent);
            ui.processEvents();
        }
    };

    if (m_scope == Scope::File) {
        const bool changed = cleanFile(m_app, kFile, options, m_backup, progress);
        m_cleanProgress->setValue(0);
        endWork();
        if (changed) {
            operationDone();
            ui.message(msg("<CleanedFile>") + CRLF + CRLF + msg("<infoRestore>"), UserDialogs::Icon::Information);
        } else {
            ui.message(msg("<noCleanedFile>"), UserDialogs::Icon::Information);
            close();
        }
        return;
    }
    const QString before = tuneText ? trimBlanks(tuneText()) : QString();
    bool changed = false;
    const QString after = cleanAbcText(before, options, &changed, progress);
    m_cleanProgress->setValue(0);
    endWork();
    if (changed && setTuneText)
        setTuneText(trimBlanks(after));
}

void ToolsDialog::bt_restaur_Click()
{
    if (m_backup.isEmpty() || m_working)
        return;
    m_restorePic->setVisible(true);
    m_app.ui().processEvents();
    const QString name = m_backup.memoName;
    const QString kFile = m_backup.restore(m_app);
    m_restorePic->setVisible(false);
    if (kFile.isEmpty())
        return;
    selectFile(kFile);
    showRestore(false);
    m_app.ui().message(msg("<fileRestDone>") + CRLF + CRLF + name, UserDialogs::Icon::Information);
}

void ToolsDialog::showEvent(QShowEvent *event)
{
    m_chordsButton->setEnabled(bool(addChords));
    QDialog::showEvent(event);
}

void ToolsDialog::closeEvent(QCloseEvent *event)
{
    // Work in progress runs inside this window's handlers: it ends first, then the window.
    if (m_working) {
        m_closeWanted = true;
        m_analysis->requestStop();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void ToolsDialog::reject()
{
    if (m_working) {
        m_closeWanted = true;
        m_analysis->requestStop();
        return;
    }
    QDialog::reject();
}

} // namespace fenwork
