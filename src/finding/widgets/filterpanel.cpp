#include "finding/widgets/filterpanel.h"

#include "collections/choicelist.h"
#include "finding/masks.h"
#include "finding/melodysimilar.h"
#include "frame/commandstate.h"
#include "frame/strutil.h"
#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/userdialogs.h"
#include "frame/widgets/presetnamebox.h"
#include "frame/widgets/icons.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

#include <limits>

namespace fenwork {

namespace {

const QString kMainForm = QStringLiteral("MainForm");
const QString kTTText = QStringLiteral("TTText");
const QString kMsg = QStringLiteral("Msg");

// A box that holds a condition stands out in light yellow (0xC0FFFF as blue-green-red).
const QColor kFilledBox(0xFF, 0xFF, 0xC0);

// A label that shows as much of its text as fits, with an ellipsis, and keeps the whole text.
class ElidedLabel : public QLabel
{
public:
    using QLabel::QLabel;
    QSize minimumSizeHint() const override
    {
        return {fontMetrics().averageCharWidth() * 8, QLabel::minimumSizeHint().height()};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const QRect area = contentsRect();
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, area.width());
        style()->drawItemText(&painter, area, int(alignment()), palette(), isEnabled(), shown, foregroundRole());
    }
};

QString objectNameOf(const char *base, int row)
{
    return QString::fromLatin1(base) + QString::number(row);
}

} // namespace

FilterPanel::FilterPanel(AppContext &app, QWidget *parent)
    : QWidget(parent), m_app(app), m_filter(std::make_unique<TuneFilter>(app)),
      m_similarSearch(std::make_unique<MelodySimilar>(app))
{
    setObjectName(QStringLiteral("pic_search"));
    m_filter->settled = [this](bool searched) { filterSettled(searched); };
    const QString programFolder = app.paths().programFolder();

    // Title and help on top, masks and the search buttons at the bottom stay in view; what lies
    // between scrolls as a whole only when the panel is too short for it, and otherwise the
    // field rows take the height that is left.
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(8, 8, 8, 8);
    whole->setSpacing(6);

    m_title = new QLabel(this);
    m_title->setObjectName(QStringLiteral("lab_tunefiltering"));
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.1);
    m_title->setFont(titleFont);
    whole->addWidget(m_title);

    m_info = new QLabel(this);
    m_info->setObjectName(QStringLiteral("lab_infoFind"));
    m_info->setWordWrap(true);
    m_info->setForegroundRole(QPalette::PlaceholderText);
    QFont small = m_info->font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    m_info->setFont(small);
    whole->addWidget(m_info);

    auto *scroller = new QScrollArea(this);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    whole->addWidget(scroller, 1);
    auto *content = new QWidget;
    scroller->setWidget(content);
    auto *outer = new QVBoxLayout(content);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(6);

    // Melody and anywhere: the two boxes that are not tied to a field.
    auto *top = new QFormLayout;
    top->setContentsMargins(0, 4, 0, 0);
    top->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    top->setHorizontalSpacing(8);
    top->setVerticalSpacing(4);
    m_musLabel = new QLabel(this);
    m_mus = new QLineEdit(this);
    m_mus->setObjectName(QStringLiteral("txt_mus"));
    m_mus->setClearButtonEnabled(true);
    m_mus->installEventFilter(this);
    m_musLabel->setBuddy(m_mus);
    top->addRow(m_musLabel, m_mus);
    // Under the melody box across the whole width: beside the label column it made the panel wider
    // than a laptop's left column.
    m_startOnly = new QCheckBox(this);
    m_startOnly->setObjectName(QStringLiteral("chk_startOnly"));
    top->addRow(m_startOnly);
    // The similar-melody mode, and under it its one option, indented as belonging to it: side
    // by side they were cut off in the narrow left column.
    m_similar = new QCheckBox(this);
    m_similar->setObjectName(QStringLiteral("chk_similar"));
    top->addRow(m_similar);
    auto *rhythmRow = new QHBoxLayout;
    rhythmRow->setContentsMargins(20, 0, 0, 0);
    m_rhythm = new QCheckBox(this);
    m_rhythm->setObjectName(QStringLiteral("chk_rhythm"));
    m_rhythm->setEnabled(false);
    rhythmRow->addWidget(m_rhythm);
    top->addRow(rhythmRow);
    connect(m_similar, &QCheckBox::toggled, this, &FilterPanel::similarToggled);
    m_anywhereLabel = new QLabel(this);
    m_anywhere = new QLineEdit(this);
    m_anywhere->setObjectName(QStringLiteral("txt_anywhere"));
    m_anywhere->setClearButtonEnabled(true);
    m_anywhereLabel->setBuddy(m_anywhere);
    top->addRow(m_anywhereLabel, m_anywhere);
    outer->addLayout(top);

    m_fieldsLabel = new QLabel(this);
    m_fieldsLabel->setFont(titleFont);
    outer->addWidget(m_fieldsLabel);

    m_pattern = new QScrollArea(this);
    m_pattern->setObjectName(QStringLiteral("pic_pattern"));
    m_pattern->setWidgetResizable(true);
    m_pattern->setFocusPolicy(Qt::StrongFocus);
    m_pattern->horizontalScrollBar()->setObjectName(QStringLiteral("scr_patternH"));
    m_pattern->verticalScrollBar()->setObjectName(QStringLiteral("scr_patternV"));
    auto *frame = new QWidget;
    frame->setObjectName(QStringLiteral("fr_pattern"));
    buildRows(frame);
    m_pattern->setWidget(frame);
    m_pattern->setMinimumHeight(120);
    outer->addWidget(m_pattern, 1);

    m_noCaseSens = new QCheckBox(this);
    m_noCaseSens->setObjectName(QStringLiteral("chk_noCaseSens"));
    m_invSearch = new QCheckBox(this);
    m_invSearch->setObjectName(QStringLiteral("chk_invSearch"));
    outer->addWidget(m_noCaseSens);
    outer->addWidget(m_invSearch);

    m_domain = new QComboBox(this);
    m_domain->setObjectName(QStringLiteral("lst_domaineFind"));
    m_results = new QComboBox(this);
    m_results->setObjectName(QStringLiteral("lst_resFind"));
    for (QComboBox *list : {m_domain, m_results}) {
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        list->setMinimumContentsLength(12);
        outer->addWidget(list);
    }

    // Saved masks: name box, save, delete, clear.
    auto *masks = new QHBoxLayout;
    masks->setSpacing(4);
    m_msk = new PresetNameBox(QStringLiteral("lst_Msk"), this);
    connect(m_msk, &PresetNameBox::returnPressed, this, [this] {
        if (m_memMask->isEnabled())
            bt_memMask_Click();
    });
    connect(m_msk, &PresetNameBox::nameEdited, this, &FilterPanel::maskNameEdited);
    m_msk->lineEdit()->installEventFilter(this);
    connect(m_msk, &QComboBox::activated, this, &FilterPanel::lst_Msk_Click);
    masks->addWidget(m_msk, 1);

    m_memMask = new QPushButton(themeIcon(QStringLiteral("document-save"), QStringLiteral("save"), programFolder), QString(), this);
    m_memMask->setObjectName(QStringLiteral("bt_memMask"));
    m_delMask = new QPushButton(themeIcon(QStringLiteral("edit-delete"), QStringLiteral("tunedel"), programFolder), QString(), this);
    m_delMask->setObjectName(QStringLiteral("bt_delMask"));
    m_mskClear = new QPushButton(themeIcon(QStringLiteral("edit-clear"), QString(), programFolder), QString(), this);
    m_mskClear->setObjectName(QStringLiteral("bt_mskClear"));
    for (QPushButton *button : {m_memMask, m_delMask, m_mskClear}) {
        button->setAutoDefault(false);
        masks->addWidget(button);
    }
    m_memMask->setEnabled(false);
    m_delMask->setEnabled(false);
    connect(m_memMask, &QPushButton::clicked, this, &FilterPanel::bt_memMask_Click);
    connect(m_delMask, &QPushButton::clicked, this, &FilterPanel::bt_delMask_Click);
    connect(m_mskClear, &QPushButton::clicked, this, &FilterPanel::bt_mskClear_Click);
    whole->addLayout(masks);

    auto *actions = new QHBoxLayout;
    actions->setSpacing(6);
    m_search = new QPushButton(themeIcon(QStringLiteral("edit-find"), QString(), programFolder), QString(), this);
    m_search->setObjectName(QStringLiteral("bt_Search"));
    m_supprFltr = new QPushButton(themeIcon(QStringLiteral("view-filter"), QString(), programFolder), QString(), this);
    m_supprFltr->setObjectName(QStringLiteral("bt_SupprFltr"));
    for (QPushButton *button : {m_search, m_supprFltr}) {
        button->setAutoDefault(false);
        button->setMinimumHeight(button->sizeHint().height() + 4);
        actions->addWidget(button, 1);
    }
    connect(m_search, &QPushButton::clicked, this, &FilterPanel::bt_Search_Click);
    connect(m_supprFltr, &QPushButton::clicked, this, &FilterPanel::bt_SupprFltr_Click);
    whole->addLayout(actions);

    // Return searches from the melody box and the rows, not from the anywhere box.
    for (QLineEdit *box : std::as_const(m_chpText))
        connect(box, &QLineEdit::returnPressed, this, &FilterPanel::bt_Search_Click);
    connect(m_mus, &QLineEdit::returnPressed, this, &FilterPanel::bt_Search_Click);
    for (QLineEdit *box : std::as_const(m_chpText))
        connect(box, &QLineEdit::textEdited, this, [this] { m_memMask->setEnabled(true); });
    connect(m_mus, &QLineEdit::textEdited, this, [this] { m_memMask->setEnabled(true); });
    QVector<QLineEdit *> boxes = m_chpText;
    boxes << m_mus << m_anywhere;
    for (QLineEdit *box : std::as_const(boxes)) {
        connect(box, &QLineEdit::textChanged, this, [this, box] { markFilled(box); });
        markFilled(box);
    }

    LoadLang();
    loadMasks();
}

FilterPanel::~FilterPanel()
{
    m_filter->settled = nullptr;
}

void FilterPanel::buildRows(QWidget *frame)
{
    auto *grid = new QGridLayout(frame);
    grid->setContentsMargins(6, 6, 6, 6);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(3);
    QFont markerFont = font();
    markerFont.setFamily(QStringLiteral("Monospace"));
    markerFont.setStyleHint(QFont::TypeWriter);
    markerFont.setBold(true);
    for (int row = 0; row < kFilterRowCount; ++row) {
        auto *marker = new QLabel(filterRowCaption(row), frame);
        marker->setObjectName(objectNameOf("lab_chp", row));
        marker->setFont(markerFont);
        auto *description = new ElidedLabel(frame);
        description->setObjectName(objectNameOf("lab_ChpDescr", row));
        description->setMaximumWidth(140);
        auto *box = new QLineEdit(frame);
        box->setObjectName(objectNameOf("txt_Chp", row));
        box->setMinimumWidth(120);
        marker->setBuddy(box);
        grid->addWidget(marker, row, 0);
        grid->addWidget(description, row, 1);
        grid->addWidget(box, row, 2);
        m_chp.append(marker);
        m_chpDescr.append(description);
        m_chpText.append(box);
    }
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(kFilterRowCount, 1);
}

void FilterPanel::LoadLang()
{
    const Language &lang = m_app.lang();
    const auto mainForm = [&lang](const char *key) { return lang.text(kMainForm, QString::fromLatin1(key)); };
    const auto tip = [&lang](const char *key) { return lang.text(kTTText, QString::fromLatin1(key)); };

    m_title->setText(mainForm("<tunefiltering>"));
    m_info->setText(QStringList{mainForm("<infoFind1>"), mainForm("<infoFind2>"), mainForm("<infoFind3>")}.join(u'\n'));
    m_musLabel->setText(mainForm("<melodyFragment>"));
    m_anywhereLabel->setText(mainForm("<anywhere>"));
    m_fieldsLabel->setText(mainForm("<fields>"));
    m_startOnly->setText(mainForm("<startOnly>"));
    m_similar->setText(mainForm("<similarMelody>"));
    m_similar->setToolTip(tip("<similarMelody>"));
    m_rhythm->setText(mainForm("<similarRhythm>"));
    m_rhythm->setToolTip(tip("<similarRhythm>"));
    similarToggled(m_similar->isChecked());
    m_noCaseSens->setText(mainForm("<noCaseSens>"));
    m_invSearch->setText(mainForm("<invSearch>"));
    m_search->setText(mainForm("<applyfiltering>"));
    m_supprFltr->setText(mainForm("<delfiltering>"));
    m_mskClear->setText(mainForm("<mskClear>"));
    m_memMask->setToolTip(tip("<memMskFind>"));
    m_memMask->setAccessibleName(mainForm("<memMask>"));
    m_delMask->setToolTip(tip("<delMsk>"));
    m_delMask->setAccessibleName(tip("<delMsk>"));
    m_msk->setToolTip(tip("<lstMskFind>"));
    m_msk->lineEdit()->setPlaceholderText(tip("<lstMskFind>"));
    const QString fieldTip = tip("<libelChp>");
    for (int row = 0; row < kFilterRowCount; ++row) {
        const QString description = lang.text(kMainForm, QStringLiteral("<chp%1>").arg(row));
        m_chpDescr[row]->setText(description);
        m_chpDescr[row]->setToolTip(description);
        m_chp[row]->setToolTip(fieldTip);
        m_chpText[row]->setAccessibleName(filterRowCaption(row) + u' ' + description);
    }

    m_domain->clear();
    m_domain->addItems({mainForm("<domainAll>"), mainForm("<domainFltr>")});
    m_domain->setCurrentIndex(0);
    m_results->clear();
    m_results->addItems({mainForm("<resFind0>"), mainForm("<resFind1>"), mainForm("<resFind2>")});
    m_results->setCurrentIndex(0);
}

void FilterPanel::loadMasks()
{
    m_msk->clear();
    m_msk->addItems(maskNames(m_app.paths()));
    m_msk->setCurrentIndex(-1);
    m_msk->setEditText(freeMaskName(m_app.paths()));
    m_delMask->setEnabled(false);
}

FilterConditions FilterPanel::conditions() const
{
    FilterConditions c;
    c.melody = m_mus->text();
    for (int row = 0; row < kFilterRowCount; ++row)
        c.fields[row] = m_chpText.at(row)->text();
    c.anywhere = m_anywhere->text();
    c.ignoreCase = m_noCaseSens->isChecked();
    c.invert = m_invSearch->isChecked();
    c.startOnly = m_startOnly->isChecked();
    return c;
}

void FilterPanel::setMaskConditions(const FilterConditions &c)
{
    m_mus->setText(c.melody);
    for (int row = 0; row < kFilterRowCount; ++row)
        m_chpText[row]->setText(c.field(row));
    m_noCaseSens->setChecked(c.ignoreCase);
    m_invSearch->setChecked(c.invert);
    m_anywhere->setText(c.anywhere);
}

QVector<HighlightRange> FilterPanel::ColorerFind(const QString &tuneText)
{
    return m_filter->ColorerFind(tuneText, conditions());
}

void FilterPanel::markFilled(QLineEdit *box)
{
    QPalette palette = box->palette();
    palette.setColor(QPalette::Base, box->text().isEmpty() ? this->palette().color(QPalette::Base) : kFilledBox);
    box->setPalette(palette);
}

void FilterPanel::filterSettled(bool searched)
{
    emit treeFilterChanged(m_filter->isActive());
    if (searched) {
        emit showTreeRequested();
        emit selectNodeRequested(key::Root);
    }
}

void FilterPanel::similarToggled(bool on)
{
    m_rhythm->setEnabled(on);
    m_startOnly->setEnabled(!on);
    m_mus->setPlaceholderText(on ? m_app.lang().text(kMainForm, QStringLiteral("<similarHint>")) : QString());
    // The index is read while the user types the fragment, not when the search is asked for.
    if (on)
        QTimer::singleShot(0, this, [this] {
            BusyScope busy(m_app.ui());
            m_similarSearch->refresh();
        });
}

void FilterPanel::searchSimilar()
{
    // The list shows the best few; a tune that shares less than half the fragment is no answer.
    constexpr int kShown = 20;
    constexpr double kLeast = 0.5;
    SimilarQuery query;
    query.fragment = m_mus->text();
    query.options.rhythm = m_rhythm->isChecked();
    query.options.top = kShown;
    UserDialogs &ui = m_app.ui();
    if (!MelodySimilar::isSearchable(query)) {
        ui.message(m_app.text(kMsg, QStringLiteral("<similarTooFew>")), UserDialogs::Icon::Information);
        return;
    }
    QVector<SimilarTune> found;
    {
        BusyScope busy(ui);
        // As the filter does: all the tunes, or only those the last search left shown.
        const bool shownOnly = FilterDomain(qMax(0, m_domain->currentIndex())) == FilterDomain::ShownTunes;
        if (!shownOnly)
            m_filter->clear();
        else
            query.options.top = std::numeric_limits<int>::max();
        WorkspaceTree &tree = m_app.tree();
        for (const SimilarTune &tune : m_similarSearch->search(query)) {
            const Node *node = tree.find(tune.key);
            if (found.size() < kShown && tune.ratio >= kLeast && node && node->ForeColor != color::TuneLeftOut)
                found.append(tune);
        }
        QSet<QString> keys;
        QVector<ChoiceItem> items;
        for (const SimilarTune &tune : std::as_const(found)) {
            keys.insert(tune.key);
            items.append({tune.key, tune.caption, 1});
        }
        // Greyed as the filter greys, so that removing the filter shows every tune again.
        const Node *root = tree.root();
        for (int f = 1; root && f < root->childCount(); ++f) {
            const Node *body = root->child(f)->child(1);
            if (!body || body->Image != Pic::BdyFile)
                continue;
            for (Node *tune : body->children())
                if (!keys.contains(tune->Key))
                    tree.setForeColor(tune, color::TuneLeftOut);
        }
        const auto policy = FilterResults(qMax(0, m_results->currentIndex()));
        if (ChoiceList *list = m_filter->choiceList(); list && policy != FilterResults::LeaveList) {
            if (policy == FilterResults::ReplaceList)
                list->clear();
            list->addAll(items);
        }
    }
    emit treeFilterChanged(true);
    emit showTreeRequested();
    emit selectNodeRequested(key::Root);
    if (found.isEmpty()) {
        ui.message(QStringLiteral("ABC:") + trimBlanks(query.fragment) + CRLF + QStringLiteral("---------") + CRLF
                       + m_app.text(kMsg, QStringLiteral("<noTuneFound>")),
                   UserDialogs::Icon::Information);
    } else {
        m_app.commands().setEnabled(QStringLiteral("mnu_saveTunesFltr"), true);
    }
}

void FilterPanel::bt_Search_Click()
{
    if (m_similar->isChecked() && !trimBlanks(m_mus->text()).isEmpty()) {
        searchSimilar();
        return;
    }
    m_filter->search(conditions(), FilterDomain(qMax(0, m_domain->currentIndex())),
                     FilterResults(qMax(0, m_results->currentIndex())));
}

void FilterPanel::bt_SupprFltr_Click()
{
    m_filter->clear();
    // Only the button leads here (the search clears through the filter itself): the user
    // wants to see the tree again.
    emit showTreeRequested();
}

void FilterPanel::lst_Msk_Click(int row)
{
    // The box's own confirmation of a typed name that happens to be listed is no choice.
    if (row < 0 || m_msk->confirmingTypedName())
        return;
    m_delMask->setEnabled(true);
    m_memMask->setEnabled(false);
    const QString name = m_msk->itemText(row);
    FilterConditions c = conditions();
    const MaskLoad load = loadMask(m_app.paths(), name, c);
    if (!load.opened) {
        m_app.ui().contextError(QStringLiteral("lst_Msk_Click"), load.error);
        return;
    }
    setMaskConditions(c);
    if (!load.problems.isEmpty())
        m_app.ui().statusMessage(name + QStringLiteral(": ") + load.problems.join(u' '));
}

void FilterPanel::bt_memMask_Click()
{
    const QString name = m_msk->currentText();
    const Paths &paths = m_app.paths();
    const bool exists = maskExists(paths, name);
    if (exists && m_app.ui().question(m_app.text(kMsg, QStringLiteral("<mskExist>"))) != UserDialogs::Answer::Yes)
        return;
    QString error;
    if (!saveMask(paths, name, conditions(), &error)) {
        m_app.ui().contextError(QStringLiteral("bt_memMask_Click"), error);
        return;
    }
    if (!exists && m_msk->findText(name, Qt::MatchFixedString | Qt::MatchCaseSensitive) < 0) {
        m_msk->addItem(name);
        m_msk->setEditText(name);
    }
    m_memMask->setEnabled(false);
    m_msk->lineEdit()->selectAll();
}

void FilterPanel::bt_delMask_Click()
{
    const QString name = m_msk->currentText();
    const QString question = m_app.text(kMsg, QStringLiteral("<confKillMsk>")) + QStringLiteral(" '") + name + u'\'';
    if (m_app.ui().question(question) != UserDialogs::Answer::Yes)
        return;
    deleteMask(m_app.paths(), name);
    const int row = m_msk->findText(name, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    if (row >= 0)
        m_msk->removeItem(row);
    m_delMask->setEnabled(false);
    m_msk->setCurrentIndex(-1);
    m_msk->setEditText(QStringLiteral("NewMask"));
    bt_mskClear_Click();
}

void FilterPanel::bt_mskClear_Click()
{
    m_mus->clear();
    m_anywhere->clear();
    for (QLineEdit *box : std::as_const(m_chpText))
        box->clear();
    m_memMask->setEnabled(false);
    m_msk->setEditText(QString());
    m_pattern->setFocus();
}

void FilterPanel::maskNameEdited(const QString &text)
{
    m_delMask->setEnabled(false);
    m_memMask->setEnabled(!text.isEmpty());
}

bool FilterPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_mus && event->type() == QEvent::KeyPress) {
        // The fragment has one wild card only: a typed "*" becomes it.
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->text() == u"*") {
            m_mus->insert(QStringLiteral("?"));
            m_memMask->setEnabled(true);
            return true;
        }
    } else if (event->type() == QEvent::FocusIn && m_msk && watched == m_msk->lineEdit()) {
        // After the click that gave the focus has placed the caret.
        QTimer::singleShot(0, m_msk->lineEdit(), &QLineEdit::selectAll);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace fenwork
