// The tabs of the Tools window besides cleaning: chords, reindex, sort, fields and analysis.
#include "tools/widgets/toolsdialog.h"

#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "store/tunestore.h"
#include "tools/fieldtools.h"
#include "tools/fileanalysis.h"
#include "tools/reindexsort.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace fenwork {

namespace {

QVBoxLayout *pageLayout(QWidget *page, const QString &heading, const QString &info = {})
{
    auto *layout = new QVBoxLayout(page);
    auto *title = new QLabel(QStringLiteral("<b>") + heading.toHtmlEscaped() + QStringLiteral("</b>"), page);
    layout->addWidget(title);
    if (!info.isEmpty()) {
        auto *label = new QLabel(info, page);
        label->setWordWrap(true);
        layout->addWidget(label);
    }
    return layout;
}

QProgressBar *progressBar(QWidget *page, const char *name)
{
    auto *bar = new QProgressBar(page);
    bar->setObjectName(QString::fromLatin1(name));
    bar->setTextVisible(false);
    bar->setValue(0);
    return bar;
}

QPushButton *runButton(QWidget *page, const char *name, const QString &caption, const char *icon)
{
    auto *button = new QPushButton(QIcon::fromTheme(QString::fromLatin1(icon)), caption, page);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    return button;
}

// A progress bar told "value of maximum" by the core.
std::function<void(int, int)> feeding(QProgressBar *bar, UserDialogs &ui)
{
    return [bar, &ui](int value, int maximum) {
        bar->setMaximum(qMax(1, maximum));
        bar->setValue(value);
        ui.processEvents();
    };
}

} // namespace

QWidget *ToolsDialog::buildChordsTab()
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("chords"));
    QVBoxLayout *layout = pageLayout(page, text("<chordsAcc>"));
    m_chordCount = new QButtonGroup(page);
    m_chordCount->setObjectName(QStringLiteral("opt_nbChords"));
    const char *captions[] = { "<onePerBar>", "<twoPerBar>" };
    for (int i = 0; i < 2; ++i) {
        auto *option = new QRadioButton(text(captions[i]), page);
        option->setObjectName(QStringLiteral("opt_nbChords") + QString::number(i));
        option->setChecked(i == 0);
        m_chordCount->addButton(option, i);
        layout->addWidget(option);
    }
    layout->addStretch(1);
    m_chordsButton = runButton(page, "bt_addChords", text("<addChords>"), "insert-text");
    m_chordsButton->setEnabled(false);
    connect(m_chordsButton, &QPushButton::clicked, this, &ToolsDialog::bt_addChords_Click);
    auto *run = new QHBoxLayout;
    run->addStretch(1);
    run->addWidget(m_chordsButton);
    layout->addLayout(run);
    return page;
}

void ToolsDialog::bt_addChords_Click()
{
    if (!addChords || !tuneText || !beginWork())
        return;
    const QString result = addChords(tuneText(), m_chordCount->checkedId() == 1);
    endWork();
    if (setTuneText && !result.isEmpty())
        setTuneText(result);
}

QWidget *ToolsDialog::buildReindexTab()
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("reindex"));
    QVBoxLayout *layout = pageLayout(page, text("<reIndexFile>"));
    m_reindexStart = new QLineEdit(QStringLiteral("1"), page);
    m_reindexStart->setObjectName(QStringLiteral("txt_reindex"));
    m_reindexStart->setValidator(new QIntValidator(-999999999, 999999999, m_reindexStart));
    m_reindexStart->setMaximumWidth(m_reindexStart->fontMetrics().horizontalAdvance(u'0') * 14);
    auto *form = new QFormLayout;
    form->addRow(text("<reinitIndex>"), m_reindexStart);
    layout->addLayout(form);
    layout->addStretch(1);
    m_reindexButton = runButton(page, "bt_reindex", text("<reindex>"), "format-list-ordered");
    connect(m_reindexButton, &QPushButton::clicked, this, &ToolsDialog::bt_reindex_Click);
    connect(m_reindexStart, &QLineEdit::textChanged, this,
        [this](const QString &value) { m_reindexButton->setEnabled(int(leadingNumber(value)) != 0); });
    auto *run = new QHBoxLayout;
    run->addStretch(1);
    run->addWidget(m_reindexButton);
    layout->addLayout(run);
    return page;
}

void ToolsDialog::bt_reindex_Click()
{
    const int start = int(leadingNumber(m_reindexStart->text()));
    const QString kFile = fileKey();
    if (start == 0 || kFile.isEmpty() || !beginWork())
        return;
    const bool done = reindexFile(m_app, kFile, start, m_backup);
    endWork();
    if (!done) {
        m_app.ui().message(msg("<noTunesInFile>"));
        return;
    }
    operationDone();
}

QWidget *ToolsDialog::buildSortTab()
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("sort"));
    QVBoxLayout *layout = pageLayout(page, text("<sortFile>"));
    auto *form = new QFormLayout;
    const QString mainForm = QStringLiteral("MainForm");
    for (int i = 0; i < 2; ++i) {
        QComboBox *box = m_sortKeys[i] = new QComboBox(page);
        box->setObjectName(QStringLiteral("lst_keySort") + QString::number(i));
        if (i == 1)
            box->addItem(QString());
        for (const SortField &field : sortFields())
            box->addItem(QString::fromLatin1(field.code) + m_app.text(mainForm, QString::fromLatin1(field.labelKey)));
        box->setCurrentIndex(i == 0 ? -1 : 0);
        form->addRow(text("<keySort1>") + QStringLiteral(" [") + QString::number(i + 1) + u']', box);
    }
    layout->addLayout(form);
    m_sortInfo = new QLabel(page);
    m_sortInfo->setObjectName(QStringLiteral("lab_infoSort"));
    layout->addWidget(m_sortInfo);
    layout->addStretch(1);
    m_sortProgress = progressBar(page, "PrgS");
    m_sortButton = runButton(page, "bt_sort", text("<sort>"), "view-sort-ascending");
    m_sortButton->setEnabled(false);
    connect(m_sortKeys[0], &QComboBox::currentIndexChanged, this,
        [this](int index) { m_sortButton->setEnabled(index >= 0); });
    connect(m_sortButton, &QPushButton::clicked, this, &ToolsDialog::bt_sort_Click);
    auto *run = new QHBoxLayout;
    run->addWidget(m_sortProgress, 1);
    run->addWidget(m_sortButton);
    layout->addLayout(run);
    return page;
}

void ToolsDialog::bt_sort_Click()
{
    const QString code1 = m_sortKeys[0]->currentText().left(2);
    const QString code2 = m_sortKeys[1]->currentText().left(2);
    const QString kFile0 = fileKey();
    if (code1.isEmpty() || kFile0.isEmpty() || !beginWork())
        return;
    UserDialogs &ui = m_app.ui();
    m_sortInfo->setText(msg("<sortInPrcs>"));
    ui.processEvents();
    QString kFile = kFile0;
    const bool done = sortFile(m_app, kFile, code1, code2, m_backup, feeding(m_sortProgress, ui),
        [this, &ui] {
            m_sortInfo->setText(msg("<reorgInPrcs>"));
            ui.processEvents();
        });
    m_sortInfo->clear();
    m_sortProgress->setValue(0);
    endWork();
    if (!done) {
        ui.message(msg("<noTunesInFile>"));
        return;
    }
    operationDone();
}

QWidget *ToolsDialog::buildFieldTab()
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("gstchp"));
    QVBoxLayout *layout = pageLayout(page, text("<gstChp>"), text("<info1>"));
    m_field = new QLineEdit(page);
    m_field->setObjectName(QStringLiteral("txt_Chp"));
    m_field->setPlaceholderText(QStringLiteral("R:reel"));
    auto *form = new QFormLayout;
    form->addRow(text("<libelChp>"), m_field);
    layout->addLayout(form);

    auto *choices = new QGridLayout;
    m_fieldAction = new QButtonGroup(page);
    const char *actions[] = { "<addChp>", "<modifFirstChp>", "<modifLastChp>", "<modifAllChp>" };
    for (int i = 0; i < 4; ++i) {
        auto *option = new QRadioButton(text(actions[i]), page);
        option->setObjectName(QStringLiteral("opt_action") + QString::number(i));
        option->setChecked(i == 0);
        m_fieldAction->addButton(option, i);
        choices->addWidget(option, i, 0);
    }
    m_fieldScope = new QButtonGroup(page);
    auto *whole = new QRadioButton(text("<wholeFile>"), page);
    whole->setObjectName(QStringLiteral("opt_portee0"));
    whole->setChecked(true);
    auto *range = new QRadioButton(text("<indexFrom>"), page);
    range->setObjectName(QStringLiteral("opt_portee1"));
    m_fieldScope->addButton(whole, 0);
    m_fieldScope->addButton(range, 1);
    auto *rangeRow = new QHBoxLayout;
    rangeRow->addWidget(range);
    for (int i = 0; i < 2; ++i) {
        m_index[i] = new QLineEdit(page);
        m_index[i]->setObjectName(QStringLiteral("txt_Idx") + QString::number(i));
        m_index[i]->setMaximumWidth(m_index[i]->fontMetrics().horizontalAdvance(u'0') * 10);
        if (i == 1)
            rangeRow->addWidget(new QLabel(text("<toIdx>"), page));
        rangeRow->addWidget(m_index[i]);
    }
    rangeRow->addStretch(1);
    choices->addWidget(whole, 0, 1);
    choices->addLayout(rangeRow, 1, 1);
    choices->setColumnStretch(1, 1);
    layout->addLayout(choices);
    layout->addStretch(1);

    m_fieldProgress = progressBar(page, "PrgC");
    m_fieldButton = runButton(page, "bt_actionChp", text("<actionChp>"), "dialog-ok-apply");
    connect(m_fieldButton, &QPushButton::clicked, this, &ToolsDialog::bt_actionChp_Click);
    connect(m_field, &QLineEdit::textChanged, this, &ToolsDialog::refreshFieldControls);
    connect(m_fieldScope, &QButtonGroup::idClicked, this, &ToolsDialog::refreshFieldControls);
    auto *run = new QHBoxLayout;
    run->addWidget(m_fieldProgress, 1);
    run->addWidget(m_fieldButton);
    layout->addLayout(run);
    refreshFieldControls();
    return page;
}

void ToolsDialog::refreshFieldControls()
{
    m_fieldButton->setEnabled(!m_field->text().isEmpty());
    for (QLineEdit *box : m_index)
        box->setEnabled(m_fieldScope->checkedId() == 1);
}

void ToolsDialog::bt_actionChp_Click()
{
    const QString kFile0 = fileKey();
    if (kFile0.isEmpty() || m_field->text().isEmpty() || !beginWork())
        return;
    const bool range = m_fieldScope->checkedId() == 1;
    QString kFile = kFile0;
    const FieldResult result = applyFieldToFile(m_app, kFile, m_field->text(), FieldAction(m_fieldAction->checkedId()),
        range ? m_index[0]->text() : QString(), range ? m_index[1]->text() : QString(), m_backup,
        feeding(m_fieldProgress, m_app.ui()));
    m_fieldProgress->setValue(0);
    endWork();
    const char *refusal = nullptr;
    switch (result) {
    case FieldResult::Done:
        m_field->clear();
        operationDone();
        return;
    case FieldResult::Invalid:
        refusal = "<chpInval>";
        break;
    case FieldResult::CommentStop:
        refusal = "<chpCmtAddOnly>";
        break;
    case FieldResult::NoTunes:
        refusal = "<noTunesInFile>";
        break;
    case FieldResult::NoFromTune:
        refusal = "<noFromTune>";
        break;
    }
    m_app.ui().message(msg(refusal));
}

QWidget *ToolsDialog::buildAnalyseTab()
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("analyse"));
    QVBoxLayout *layout = pageLayout(page, text("<analyseFile>"), text("<infoA1>"));
    layout->addWidget(new QLabel(text("<badTunes>"), page));
    m_bad = new QListWidget(page);
    m_bad->setObjectName(QStringLiteral("lst_beurk"));
    layout->addWidget(m_bad, 1);
    m_analyseProgress = progressBar(page, "prgA");
    m_analyseButton = runButton(page, "bt_analyse", text("<analyse>"), "system-search");
    m_stopButton = runButton(page, "bt_stopAnalyse", text("<stopAnalyse>"), "process-stop");
    m_stopButton->setVisible(false);
    connect(m_analyseButton, &QPushButton::clicked, this, &ToolsDialog::bt_analyse_Click);
    connect(m_stopButton, &QPushButton::clicked, this, [this] { m_analysis->requestStop(); });
    auto *run = new QHBoxLayout;
    run->addWidget(m_analyseProgress, 1);
    run->addWidget(m_stopButton);
    run->addWidget(m_analyseButton);
    layout->addLayout(run);
    return page;
}

void ToolsDialog::bt_analyse_Click()
{
    const QString kFile = fileKey();
    // No busy cursor: the window stays usable while the tunes go through the tool.
    if (kFile.isEmpty() || !beginWork(false))
        return;
    UserDialogs &ui = m_app.ui();
    // The stop button is the one control that stays live while the tunes go through the tool.
    m_tabs->setEnabled(true);
    for (QWidget *control : { static_cast<QWidget *>(m_analyseButton), static_cast<QWidget *>(m_tabs->tabBar()) })
        control->setEnabled(false);
    m_stopButton->setVisible(true);
    m_bad->clear();
    const FileAnalysis::Result result = m_analysis->run(kFile, feeding(m_analyseProgress, ui));
    m_stopButton->setVisible(false);
    m_analyseButton->setEnabled(true);
    m_tabs->tabBar()->setEnabled(true);
    m_analyseProgress->setValue(0);
    m_bad->addItems(result.badTunes);
    const bool closing = m_closeWanted;
    endWork();
    if (closing)
        return;
    if (!result.error.isEmpty()) {
        ui.message(result.error);
        return;
    }
    if (tuneCount(m_app, kFile) == 0) {
        ui.message(msg("<noTunesInFile>"));
        return;
    }
    if (result.stopped)
        ui.statusMessage(msg("<analyseStopped>"));
    else if (m_bad->count() == 0)
        m_bad->addItem(text("<analyseOk>"));
    emit m_app.store().nodeSelectionRequested(kFile);
}

} // namespace fenwork
