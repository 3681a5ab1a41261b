// The panels of f_export, one a node of its tree.
#include "publishing/widgets/exportdialog.h"

#include "frame/strutil.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSlider>
#include <QVBoxLayout>

namespace fenwork {

namespace {

template <class W> W *named(W *widget, const QString &name)
{
    widget->setObjectName(name);
    return widget;
}

QString indexed(const char *name, int index)
{
    return QLatin1String(name) + QString::number(index);
}

QButtonGroup *radioRow(QWidget *parent, QBoxLayout *layout, const char *name, const QStringList &captions)
{
    auto *group = new QButtonGroup(parent);
    group->setObjectName(QLatin1String(name));
    for (int i = 0; i < captions.size(); ++i) {
        auto *button = named(new QRadioButton(captions.at(i), parent), indexed(name, i));
        group->addButton(button, i);
        layout->addWidget(button);
    }
    return group;
}

QWidget *column(QVBoxLayout **layout)
{
    auto *panel = new QWidget;
    *layout = new QVBoxLayout(panel);
    return panel;
}

} // namespace

void ExportDialog::addSpaceRow(QGridLayout *grid, int row, int slot, const QString &label)
{
    grid->addWidget(new QLabel(label), row, 0);
    m_space[slot] = named(new QLineEdit, indexed("txt_space", slot));
    m_space[slot]->setMaximumWidth(70);
    m_spaceSlider[slot] = named(new QSlider(Qt::Horizontal), indexed("sl_space", slot));
    m_spaceSlider[slot]->setRange(0, FormatModel::spaceMaximum(slot));
    grid->addWidget(m_space[slot], row, 1);
    grid->addWidget(m_spaceSlider[slot], row, 2);
    QLineEdit *box = m_space[slot];
    QSlider *slider = m_spaceSlider[slot];
    // The slider holds tenths of a centimetre; each follows the other.
    connect(slider, &QSlider::sliderMoved, box, [box](int value) { box->setText(QString::number(value / 10.0)); });
    connect(box, &QLineEdit::textEdited, slider, [slider](const QString &text) {
        slider->setValue(qRound(leadingNumber(QString(text).replace(u',', u'.')) * 10));
    });
}

void ExportDialog::addFontRow(QGridLayout *grid, int row, int slot, const QString &label)
{
    grid->addWidget(new QLabel(label), row, 0);
    m_font[slot] = named(new QComboBox, indexed("lst_font", slot));
    m_font[slot]->addItem(QString());
    m_font[slot]->addItems(FormatModel::fontNames());
    m_size[slot] = named(new QComboBox, indexed("lst_sizeFnt", slot));
    m_size[slot]->addItem(QString());
    for (int size = 1; size <= 30; ++size)
        m_size[slot]->addItem(QString::number(size));
    m_bold[slot] = named(new QCheckBox(caption("<bold>")), indexed("chk_bold", slot));
    m_italic[slot] = named(new QCheckBox(caption("<italic>")), indexed("chk_italic", slot));
    grid->addWidget(m_font[slot], row, 1);
    grid->addWidget(m_size[slot], row, 2);
    grid->addWidget(m_bold[slot], row, 3);
    grid->addWidget(m_italic[slot], row, 4);
}

QWidget *ExportDialog::buildOutputPanel()
{
    QVBoxLayout *layout;
    QWidget *panel = column(&layout);
    m_infoDoc = named(new QLabel, QStringLiteral("lab_infoDoc"));
    m_infoDoc->setWordWrap(true);
    layout->addWidget(m_infoDoc);
    auto *box = new QGroupBox(caption("<outputDoc>"));
    auto *boxLayout = new QVBoxLayout(box);
    m_export = radioRow(box, boxLayout, "opt_export", { caption("<expFile>"), caption("<directPrnt>") });
    m_expFile = static_cast<QRadioButton *>(m_export->button(0));
    m_directPrnt = static_cast<QRadioButton *>(m_export->button(1));
    m_typFile = named(new QComboBox, QStringLiteral("lst_typFile"));
    m_typFile->addItems({ QStringLiteral("PDF"), QStringLiteral("PNG"), QStringLiteral("BMP"), QStringLiteral("JPG") });
    boxLayout->addWidget(m_typFile);
    layout->addWidget(box);
    auto *resolRow = new QHBoxLayout;
    resolRow->addWidget(new QLabel(caption("<resol>")));
    m_resol = named(new QLineEdit, QStringLiteral("txt_resol"));
    m_resol->setMaximumWidth(80);
    resolRow->addWidget(m_resol);
    resolRow->addStretch();
    layout->addLayout(resolRow);
    m_jumpFormat = named(new QCheckBox(caption("<jumpFormat>")), QStringLiteral("chk_jumpFormat"));
    layout->addWidget(m_jumpFormat);
    layout->addStretch();
    connect(m_typFile, &QComboBox::currentIndexChanged, this, [this] { updateInfo(); });
    connect(m_export, &QButtonGroup::idClicked, this, [this](int id) {
        m_typFile->setEnabled(id == 0);
        updateInfo();
    });
    return panel;
}

QWidget *ExportDialog::buildPagePanel()
{
    auto *panel = new QWidget;
    auto *grid = new QGridLayout(panel);
    int row = 0;
    grid->addWidget(new QLabel(caption("<margins>")), row++, 0, 1, 3);
    const char *sides[] = { "<top>", "<bot>", "<left>", "<right>" };
    for (int slot = 0; slot < 4; ++slot)
        addSpaceRow(grid, row++, slot, caption(sides[slot]));
    grid->addWidget(new QLabel(caption("<scale>")), row, 0);
    m_scale = named(new QSlider(Qt::Horizontal), QStringLiteral("sl_scale"));
    m_scale->setRange(FormatModel::kScaleMin, FormatModel::kScaleMax);
    auto *scaleValue = new QLabel;
    connect(m_scale, &QSlider::valueChanged, scaleValue, qOverload<int>(&QLabel::setNum));
    grid->addWidget(scaleValue, row, 1);
    grid->addWidget(m_scale, row++, 2);
    addSpaceRow(grid, row++, 4, caption("<staffWidth>"));
    grid->addWidget(new QLabel(caption("<staffSep>")), row, 0);
    m_staffSep = named(new QLineEdit, QStringLiteral("txt_staffSep"));
    m_staffSep->setMaximumWidth(70);
    m_staffSepSlider = named(new QSlider(Qt::Horizontal), QStringLiteral("sl_staffSep"));
    m_staffSepSlider->setRange(FormatModel::kStaffSepMin, FormatModel::kStaffSepMax);
    connect(m_staffSepSlider, &QSlider::sliderMoved, m_staffSep, [this](int v) { m_staffSep->setText(QString::number(v)); });
    connect(m_staffSep, &QLineEdit::textEdited, m_staffSepSlider,
            [this](const QString &text) { m_staffSepSlider->setValue(qRound(leadingNumber(text))); });
    grid->addWidget(m_staffSep, row, 1);
    grid->addWidget(m_staffSepSlider, row++, 2);

    auto *paperBox = new QGroupBox(caption("<paper>"));
    auto *paperLayout = new QHBoxLayout(paperBox);
    m_paper = radioRow(paperBox, paperLayout, "opt_paper",
                       { QStringLiteral("A4"), QStringLiteral("Letter"), QStringLiteral("Legal") });
    paperLayout->addStretch();
    auto *orientationBox = new QGroupBox;
    auto *orientationLayout = new QHBoxLayout(orientationBox);
    // Landscape first, portrait second, as the format file's flag reads.
    m_orientation = radioRow(orientationBox, orientationLayout, "opt_orientation",
                             { QStringLiteral("Landscape"), QStringLiteral("Portrait") });
    orientationLayout->addStretch();
    grid->addWidget(paperBox, row++, 0, 1, 3);
    grid->addWidget(orientationBox, row++, 0, 1, 3);
    grid->setRowStretch(row, 1);
    return panel;
}

QWidget *ExportDialog::buildHeaderPanel()
{
    auto *panel = new QWidget;
    auto *grid = new QGridLayout(panel);
    const char *headerNames[] = { "txt_hdrL", "txt_hdrMid", "txt_hdrR" };
    const char *footerNames[] = { "txt_ftrL", "txt_ftrMid", "txt_ftrR" };
    grid->addWidget(new QLabel(caption("<hdrTxt>")), 0, 0, 1, 5);
    for (int i = 0; i < 3; ++i) {
        m_header[i] = named(new QLineEdit, QLatin1String(headerNames[i]));
        grid->addWidget(m_header[i], 1, i == 0 ? 0 : i + 1, 1, i == 0 ? 2 : 1);
    }
    addFontRow(grid, 2, 0, caption("<font>"));
    grid->addWidget(new QLabel(caption("<ftrTxt>")), 3, 0, 1, 5);
    for (int i = 0; i < 3; ++i) {
        m_footer[i] = named(new QLineEdit, QLatin1String(footerNames[i]));
        grid->addWidget(m_footer[i], 4, i == 0 ? 0 : i + 1, 1, i == 0 ? 2 : 1);
    }
    addFontRow(grid, 5, 1, caption("<font>"));
    grid->setRowStretch(6, 1);
    return panel;
}

QWidget *ExportDialog::buildTitlesPanel()
{
    auto *panel = new QWidget;
    auto *grid = new QGridLayout(panel);
    auto *ttrRow = new QHBoxLayout;
    ttrRow->addWidget(new QLabel(caption("<ttrTune>")));
    m_ttr = radioRow(panel, ttrRow, "opt_ttr", { caption("<left>"), caption("<center>") });
    ttrRow->addStretch();
    grid->addLayout(ttrRow, 0, 0, 1, 5);
    addFontRow(grid, 1, 5, caption("<ttrTune>"));
    addFontRow(grid, 2, 6, caption("<subTtr>"));
    m_prntX = named(new QCheckBox(caption("<prntX>")), QStringLiteral("chk_prntX"));
    grid->addWidget(m_prntX, 3, 0, 1, 5);
    auto *composerRow = new QHBoxLayout;
    composerRow->addWidget(new QLabel(caption("<composer>")));
    m_composer = radioRow(panel, composerRow, "opt_composer", { caption("<left>"), caption("<center>"), caption("<right>") });
    composerRow->addStretch();
    grid->addLayout(composerRow, 4, 0, 1, 5);
    addFontRow(grid, 5, 4, caption("<composer>"));
    addSpaceRow(grid, 6, 6, caption("<compSpace>"));
    grid->setRowStretch(7, 1);
    return panel;
}

QWidget *ExportDialog::buildPartsPanel()
{
    auto *panel = new QWidget;
    auto *grid = new QGridLayout(panel);
    m_printP = named(new QCheckBox(caption("<printP>")), QStringLiteral("chk_printP"));
    grid->addWidget(m_printP, 0, 0, 1, 5);
    addSpaceRow(grid, 1, 7, caption("<partsSpace>"));
    addFontRow(grid, 2, 7, caption("<voices>"));
    grid->setRowStretch(3, 1);
    return panel;
}

QWidget *ExportDialog::buildWordsPanel()
{
    auto *panel = new QWidget;
    auto *grid = new QGridLayout(panel);
    m_musicOnly = named(new QCheckBox(caption("<musicOnly>")), QStringLiteral("chk_musicOnly"));
    grid->addWidget(m_musicOnly, 0, 0, 1, 5);
    addFontRow(grid, 1, 2, caption("<wBelow>"));
    addSpaceRow(grid, 2, 5, caption("<vocalSpace>"));
    addFontRow(grid, 3, 3, caption("<vocals>"));
    grid->setRowStretch(4, 1);
    return panel;
}

QWidget *ExportDialog::buildMiscPanel()
{
    QVBoxLayout *layout;
    QWidget *panel = column(&layout);
    m_oneTunePg = named(new QCheckBox(caption("<oneTunePg>")), QStringLiteral("chk_oneTunePg"));
    m_splitTune = named(new QCheckBox(caption("<splitTune>")), QStringLiteral("chk_splitTune"));
    m_prntTempo = named(new QCheckBox(caption("<prntTempo>")), QStringLiteral("chk_prntTempo"));
    m_continueAll = named(new QCheckBox(caption("<continueAll>")), QStringLiteral("chk_continueAll"));
    m_addTabs = named(new QCheckBox(caption("<addTabs>")), QStringLiteral("chk_addTabs"));
    m_tabs = named(new QComboBox, QStringLiteral("lst_Tabs"));
    for (QWidget *w : std::initializer_list<QWidget *> { m_oneTunePg, m_splitTune, m_prntTempo, m_continueAll,
                                                         m_addTabs, m_tabs })
        layout->addWidget(w);
    layout->addStretch();
    connect(m_addTabs, &QCheckBox::toggled, m_tabs, &QWidget::setEnabled);
    connect(m_tabs, &QComboBox::activated, this, [this] { m_tabsRowRead = -1; });
    return panel;
}

QWidget *ExportDialog::buildHandPanel()
{
    QVBoxLayout *layout;
    QWidget *panel = column(&layout);
    auto *info = new QLabel(caption("<handWrInfo>"));
    info->setWordWrap(true);
    layout->addWidget(info);
    m_handWr = named(new QPlainTextEdit, QStringLiteral("txt_handWr"));
    m_handWr->setLineWrapMode(QPlainTextEdit::NoWrap);
    layout->addWidget(m_handWr);
    return panel;
}

} // namespace fenwork
