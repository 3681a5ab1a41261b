#include "publishing/widgets/exportdialog.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "publishing/exportpreview.h"
#include "tablature/tablaturelist.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFile>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QUrl>

namespace fenwork {

namespace {

const QString kSection = QStringLiteral("Export");
// Where the engraver's format keywords are explained.
const char *const kFormatDocUrl = "https://moinejf.free.fr/abcm2ps-doc/index.html";
// The preview renders at this resolution; the zoom slider scales the picture.
constexpr int kPreviewDpi = 100;

void setCombo(QComboBox *combo, const QString &text)
{
    int index = combo->findText(text);
    if (index < 0 && !text.isEmpty()) {
        combo->addItem(text);
        index = combo->count() - 1;
    }
    combo->setCurrentIndex(qMax(0, index));
}

} // namespace

QString ExportDialog::caption(const char *key) const
{
    return m_app.text(kSection, QLatin1String(key));
}

QString ExportDialog::formatPath() const
{
    return m_app.paths().inUser(QStringLiteral("format.fmt"));
}

ExportDialog::ExportDialog(AppContext &app, const ExportDialogRequest &request, QWidget *parent)
    : QDialog(parent)
    , m_app(app)
    , m_request(request)
{
    setObjectName(QStringLiteral("f_export"));
    setWindowTitle(caption("<export>") + QStringLiteral(" ") + request.extension);

    m_tree = new QTreeWidget;
    m_tree->setObjectName(QStringLiteral("tr_fmt"));
    m_tree->header()->hide();
    m_tree->setMinimumWidth(190);
    m_tree->setMaximumWidth(220);
    const auto branch = [this](const char *key, const char *text) {
        auto *item = new QTreeWidgetItem(m_tree, { caption(text) });
        item->setData(0, Qt::UserRole, QLatin1String(key));
        item->setExpanded(true);
        return item;
    };
    const auto leaf = [this](QTreeWidgetItem *parent, int k, const char *text) {
        auto *item = new QTreeWidgetItem(parent, { caption(text) });
        item->setData(0, Qt::UserRole, QStringLiteral("k") + QString::number(k));
    };
    QTreeWidgetItem *output = branch("output", "<output>");
    leaf(output, 6, "<expDoc>");
    QTreeWidgetItem *fmt = branch("fmt", "<fmt>");
    leaf(fmt, 0, "<pageAndMargins>");
    leaf(fmt, 2, "<hdrAndFtr>");
    leaf(fmt, 4, "<blocTtr>");
    leaf(fmt, 7, "<partsAndVoices>");
    leaf(fmt, 3, "<words>");
    leaf(fmt, 1, "<misc>");
    leaf(fmt, 5, "<handWr>");
    m_tree->expandAll();

    m_panels = new QStackedWidget;
    m_panels->setObjectName(QStringLiteral("pic_fmt"));
    QWidget *panels[8] = { buildPagePanel(),  buildMiscPanel(),  buildHeaderPanel(), buildWordsPanel(),
                           buildTitlesPanel(), buildHandPanel(), buildOutputPanel(), buildPartsPanel() };
    for (int k = 0; k < 8; ++k) {
        panels[k]->setObjectName(QStringLiteral("pic_fmt") + QString::number(k));
        m_panels->addWidget(panels[k]);
    }
    connect(m_tree, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *item) {
        const QString key = item ? item->data(0, Qt::UserRole).toString() : QString();
        if (key.startsWith(u'k'))
            showPanel(key.mid(1).toInt());
    });

    auto *buttons = new QHBoxLayout;
    const auto button = [&](const char *name, const char *key) {
        auto *b = new QPushButton(caption(key));
        b->setObjectName(QLatin1String(name));
        buttons->addWidget(b);
        return b;
    };
    QPushButton *seeDoc = button("bt_seeDoc", "<docAbcm2ps>");
    QPushButton *reinit = button("bt_reinit", "<reinit>");
    QPushButton *preview = button("bt_preview", "<preview>");
    buttons->addStretch();
    QPushButton *ok = button("bt_ok", "<export>");
    QPushButton *cancel = button("bt_cancel", "<cancel>");
    ok->setDefault(true);
    connect(seeDoc, &QPushButton::clicked, this, [this] { bt_seeDoc_Click(); });
    connect(reinit, &QPushButton::clicked, this, [this] { bt_reinit_Click(); });
    connect(preview, &QPushButton::clicked, this, [this] { Preview(false, false, 1); });
    connect(ok, &QPushButton::clicked, this, [this] { bt_ok_Click(); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *left = new QWidget;
    auto *leftLayout = new QHBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->addWidget(m_tree);
    leftLayout->addWidget(m_panels, 1);
    auto *split = new QSplitter(Qt::Horizontal);
    split->addWidget(left);
    split->addWidget(buildPreview());
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    split->setSizes({ 700, 520 });
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(split, 1);
    layout->addLayout(buttons);

    // What the caller asks for.
    const QString ext = request.extension.toUpper();
    const bool setup = ext == u"SETUP";
    m_directPrnt->setChecked(ext == u"PRN");
    m_expFile->setChecked(ext != u"PRN");
    m_typFile->setEnabled(ext != u"PRN");
    m_typFile->setCurrentIndex(qMax(0, m_typFile->findText(ext)));
    m_expFile->setVisible(!setup);
    m_directPrnt->setVisible(!setup);
    m_typFile->setVisible(!setup);
    m_resol->setText(QString::number(request.resolution));

    loadTabs();
    FormatModel model;
    ReadFormat(model, formatPath(), &m_app.ui());
    setModel(model);
    updateInfo();
    m_tree->setCurrentItem(output->child(0));
    resize(1100, 680);
}

QWidget *ExportDialog::buildPreview()
{
    auto *panel = new QWidget;
    auto *layout = new QVBoxLayout(panel);
    m_image = new QLabel;
    m_image->setObjectName(QStringLiteral("img_preView"));
    m_image->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_view = new QScrollArea;
    m_view->setWidget(m_image);
    m_view->setWidgetResizable(false);
    m_view->setBackgroundRole(QPalette::Dark);
    m_view->horizontalScrollBar()->setObjectName(QStringLiteral("scr_viewH"));
    m_view->verticalScrollBar()->setObjectName(QStringLiteral("scr_viewV"));
    layout->addWidget(m_view, 1);
    auto *row = new QHBoxLayout;
    m_zoom = new QSlider(Qt::Horizontal);
    m_zoom->setObjectName(QStringLiteral("sl_view"));
    m_zoom->setRange(20, 200);
    m_zoom->setValue(50);
    m_page = new QSpinBox;
    m_page->setObjectName(QStringLiteral("upd_page"));
    m_page->setRange(0, 0);
    m_page->setSpecialValueText(QStringLiteral(" "));
    if (auto *edit = m_page->findChild<QLineEdit *>())
        edit->setObjectName(QStringLiteral("txt_page"));
    row->addWidget(m_zoom, 1);
    row->addWidget(m_page);
    layout->addLayout(row);
    connect(m_zoom, &QSlider::valueChanged, this, [this] { showPage(m_page->value()); });
    connect(m_page, &QSpinBox::valueChanged, this, [this](int page) { showPage(page); });
    return panel;
}

void ExportDialog::showPanel(int k)
{
    if (k >= 0 && k < m_panels->count())
        m_panels->setCurrentIndex(k);
}

void ExportDialog::loadTabs()
{
    const TablatureList list = LoadTabsList(m_app, m_app.ini().get(keys::FmtFile));
    if (list.loaded) {
        m_tabs->clear();
        m_tabs->addItems(list.entries);
    }
}

void ExportDialog::setModel(const FormatModel &m)
{
    for (int slot = 0; slot < FormatModel::kSlots; ++slot) {
        m_space[slot]->setText(m.space[slot]);
        m_spaceSlider[slot]->setValue(m.spaceSlider[slot]);
        setCombo(m_font[slot], m.font[slot]);
        setCombo(m_size[slot], m.fontSize[slot] > 0 ? QString::number(m.fontSize[slot]) : QString());
        m_bold[slot]->setChecked(m.bold[slot]);
        m_italic[slot]->setChecked(m.italic[slot]);
    }
    m_scale->setValue(m.scale);
    m_staffSep->setText(m.staffSep);
    m_staffSepSlider->setValue(m.staffSepSlider);
    m_paper->button(qBound(0, m.paper, 2))->setChecked(true);
    m_orientation->button(m.orientation == 0 ? 0 : 1)->setChecked(true);
    for (int i = 0; i < 3; ++i) {
        m_header[i]->setText(m.header[i]);
        m_footer[i]->setText(m.footer[i]);
    }
    m_oneTunePg->setChecked(m.oneTunePg);
    m_splitTune->setChecked(m.splitTune);
    m_prntTempo->setChecked(m.prntTempo);
    m_continueAll->setChecked(m.continueAll);
    m_addTabs->setChecked(m.addTabs);
    m_tabs->setEnabled(m.addTabs);
    // A row the list does not have stays as read, so that writing the file keeps it.
    m_tabsRowRead = m.tabsRow < m_tabs->count() ? -1 : m.tabsRow;
    if (m.tabsRow < m_tabs->count())
        m_tabs->setCurrentIndex(m.tabsRow);
    m_ttr->button(m.ttr == 0 ? 0 : 1)->setChecked(true);
    m_prntX->setChecked(m.prntX);
    m_composer->button(qBound(0, m.composer, 2))->setChecked(true);
    m_printP->setChecked(m.printP);
    m_musicOnly->setChecked(m.musicOnly);
    m_handWr->setPlainText(QString(m.handWr).replace(CRLF, QStringLiteral("\n")));
}

FormatModel ExportDialog::model() const
{
    FormatModel m;
    for (int slot = 0; slot < FormatModel::kSlots; ++slot) {
        m.space[slot] = m_space[slot]->text();
        m.spaceSlider[slot] = m_spaceSlider[slot]->value();
        m.font[slot] = m_font[slot]->currentText();
        m.fontSize[slot] = m_size[slot]->currentText().toInt();
        m.bold[slot] = m_bold[slot]->isChecked();
        m.italic[slot] = m_italic[slot]->isChecked();
    }
    m.scale = m_scale->value();
    m.staffSep = m_staffSep->text();
    m.staffSepSlider = m_staffSepSlider->value();
    m.paper = qMax(0, m_paper->checkedId());
    m.orientation = m_orientation->checkedId() == 0 ? 0 : 1;
    for (int i = 0; i < 3; ++i) {
        m.header[i] = m_header[i]->text();
        m.footer[i] = m_footer[i]->text();
    }
    m.oneTunePg = m_oneTunePg->isChecked();
    m.splitTune = m_splitTune->isChecked();
    m.prntTempo = m_prntTempo->isChecked();
    m.continueAll = m_continueAll->isChecked();
    m.addTabs = m_addTabs->isChecked();
    m.tabsRow = m_tabsRowRead >= 0 ? m_tabsRowRead : qMax(0, m_tabs->currentIndex());
    m.ttr = m_ttr->checkedId() == 0 ? 0 : 1;
    m.prntX = m_prntX->isChecked();
    m.composer = qMax(0, m_composer->checkedId());
    m.printP = m_printP->isChecked();
    m.musicOnly = m_musicOnly->isChecked();
    m.handWr = crlfLines(m_handWr->toPlainText());
    return m;
}

void ExportDialog::updateInfo()
{
    // A picture type holds one page: each page becomes a file of its own.
    if (m_expFile->isChecked() && m_typFile->currentIndex() > 0) {
        m_infoDoc->setText(m_app.text(QStringLiteral("Msg"), QStringLiteral("<noMultipage>")));
        return;
    }
    const char *key = m_request.scope == ExportScope::Tune ? "<exportTune>"
        : m_request.scope == ExportScope::File             ? "<exportFile>"
                                                           : "<exportAbc>";
    m_infoDoc->setText(m_app.text(QStringLiteral("Msg"), QLatin1String(key)));
}

void ExportDialog::Preview(bool keepFormat, bool keepPostScript, int page)
{
    const FormatModel m = model();
    if (!keepFormat) {
        QString error;
        if (BuildFormat(m, formatPath(), &error).isEmpty()) {
            m_app.ui().contextError(QStringLiteral("Preview"), error);
            return;
        }
        keepPostScript = false;
    }
    PreviewRun run;
    run.input = m_request.inputPath;
    run.formatFile = formatPath();
    run.extras = m.addTabs ? tablatureScoreExtras(m_app.ini().get(keys::FmtFile), true, m.tabsRow) : QString();
    run.jumpFormat = m_jumpFormat->isChecked();
    run.resolution = kPreviewDpi;
    run.paperName = m.paperName();
    run.keepPostScript = keepPostScript;
    const BusyScope busy(m_app.ui());
    const PreviewPages pages = renderPreview(m_app, run);
    m_pages = pages.pages;
    const QSignalBlocker block(m_page);
    if (m_pages.isEmpty()) {
        // The failure picture: the engraver could not make the pages.
        m_pageImage.load(m_app.paths().inProgram(QStringLiteral("img/preview.bmp")));
        m_page->setRange(0, 0);
        m_page->setValue(0);
        showPage(0);
        return;
    }
    m_page->setRange(1, int(m_pages.size()));
    m_page->setValue(qBound(1, page, int(m_pages.size())));
    showPage(m_page->value());
}

void ExportDialog::showPage(int page)
{
    if (page >= 1 && page <= m_pages.size())
        m_pageImage.load(m_pages.at(page - 1));
    if (m_pageImage.isNull()) {
        m_image->clear();
        m_image->resize(0, 0);
        return;
    }
    const QImage scaled = m_pageImage.scaledToWidth(qMax(1, m_pageImage.width() * m_zoom->value() / 100),
                                                    Qt::SmoothTransformation);
    m_image->setPixmap(QPixmap::fromImage(scaled));
    m_image->resize(scaled.size());
}

void ExportDialog::bt_ok_Click()
{
    QString error;
    const FormatModel m = model();
    const QString paper = BuildFormat(m, formatPath(), &error);
    if (paper.isEmpty()) {
        m_app.ui().contextError(QStringLiteral("BuildFormat"), error);
        return;
    }
    m_answer.paperName = paper;
    m_answer.resolution = m_request.resolution;
    const int resolution = m_resol->text().toInt();
    if (resolution > 0)
        m_answer.resolution = resolution;
    const bool print = m_directPrnt->isChecked();
    m_answer.extension = print ? QStringLiteral("prn") : m_typFile->currentText().toLower();
    if (print && m_answer.resolution > 0)
        m_app.ini().set(keys::PrintResolution, QString::number(m_answer.resolution));
    m_answer.addTabs = m.addTabs;
    m_answer.tabsRow = m.tabsRow;
    m_answer.jumpFormat = m_jumpFormat->isChecked();
    accept();
}

void ExportDialog::bt_reinit_Click()
{
    // The next opening starts from the dialog's initial values.
    QFile::remove(formatPath());
    reject();
}

void ExportDialog::bt_seeDoc_Click()
{
    QDesktopServices::openUrl(QUrl(QLatin1String(kFormatDocUrl)));
}

ExportDialogAnswer ExportDialogWindowHost::showExportDialog(const ExportDialogRequest &request)
{
    ExportDialog dialog(m_app, request, m_parent);
    if (request.extension.compare(QLatin1String("SETUP"), Qt::CaseInsensitive) == 0) {
        dialog.show();
        dialog.Preview(false, false, 1);
    }
    dialog.exec();
    return dialog.answer();
}

} // namespace fenwork
