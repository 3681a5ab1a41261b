// The six tabs of the options dialog: their controls and layout.
#include "app/optionsapply.h"
#include "app/widgets/optionsdialog.h"

#include "app/helplinks.h"
#include "frame/appcontext.h"
#include "frame/settings.h"
#include "frame/userdialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QFontComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace fenwork {

namespace {

QLabel *info(QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setWordWrap(true);
    label->setEnabled(false);
    return label;
}

QPushButton *browseButton(const QString &name)
{
    const QIcon icon = QIcon::fromTheme(QStringLiteral("document-open"));
    auto *button = new QPushButton(icon, icon.isNull() ? QStringLiteral("…") : QString());
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

} // namespace

QCheckBox *OptionsDialog::check(const char *name, const SettingKey &key, const char *caption)
{
    auto *box = new QCheckBox;
    box->setObjectName(QString::fromLatin1(name));
    m_bound.append({ box, &key });
    m_captions.append({ box, QString::fromLatin1(caption), QStringLiteral("Options") });
    return box;
}

QLineEdit *OptionsDialog::box(const char *name, const SettingKey &key, bool digitsOnly)
{
    auto *edit = new QLineEdit;
    edit->setObjectName(QString::fromLatin1(name));
    if (digitsOnly) {
        edit->setValidator(
            new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), edit));
        edit->setMaximumWidth(80);
    }
    m_bound.append({ edit, &key });
    return edit;
}

QLabel *OptionsDialog::label(const char *caption, const char *section)
{
    auto *text = new QLabel;
    m_captions.append({ text, QString::fromLatin1(caption), QString::fromLatin1(section) });
    return text;
}

QPushButton *OptionsDialog::button(const char *name, const char *caption, const char *section)
{
    auto *push = new QPushButton;
    push->setObjectName(QString::fromLatin1(name));
    push->setAutoDefault(false);
    m_captions.append({ push, QString::fromLatin1(caption), QString::fromLatin1(section) });
    return push;
}

QWidget *OptionsDialog::buildFilesTab()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    auto *folder = new QGroupBox;
    m_captions.append({ folder, QStringLiteral("<ttrDir>"), QStringLiteral("Options") });
    auto *folderLayout = new QGridLayout(folder);
    m_path = new QLabel;
    m_path->setObjectName(QStringLiteral("lab_path"));
    m_path->setFrameShape(QFrame::StyledPanel);
    m_path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QPushButton *choose = browseButton(QStringLiteral("Dir1"));
    if (const QIcon folderIcon = QIcon::fromTheme(QStringLiteral("folder-open")); !folderIcon.isNull())
        choose->setIcon(folderIcon);
    connect(choose, &QPushButton::clicked, this, &OptionsDialog::bt_dir_Click);
    QLabel *dirInfo = info(folder);
    m_captions.append({ dirInfo, QStringLiteral("<dirInfo>"), QStringLiteral("Options") });
    folderLayout->addWidget(m_path, 0, 0);
    folderLayout->addWidget(choose, 0, 1);
    folderLayout->addWidget(dirInfo, 1, 0, 1, 2);
    folderLayout->setColumnStretch(0, 1);
    layout->addWidget(folder);

    layout->addWidget(check("chk_Bak", keys::FichBak, "<saveBak>"));
    auto *reopen = new QHBoxLayout;
    reopen->addWidget(check("chk_openFiles", keys::Rouvrir, "<openFiles>"), 1);
    QPushButton *forget = button("bt_reinitOp", "<reinitOp>");
    connect(forget, &QPushButton::clicked, this, &OptionsDialog::bt_reinitOp_Click);
    reopen->addWidget(forget);
    layout->addLayout(reopen);
    layout->addWidget(check("chk_abcStr", keys::ABCstr, "<abcStr>"));
    m_noHeader = check("chk_noSaveHdrFile", keys::NoSaveHdrFile, "<noSaveHdrFile>");
    connect(m_noHeader, &QCheckBox::clicked, this, [this] { chk_noSaveHdrFile_Click(true); });
    layout->addWidget(m_noHeader);
    m_alias = check("chk_Alias", keys::Ask4alias, "<askAlias>");
    auto *aliasRow = new QHBoxLayout;
    aliasRow->addSpacing(20);
    aliasRow->addWidget(m_alias);
    layout->addLayout(aliasRow);
    layout->addWidget(check("chk_lastDir", keys::KeepLastExportDir, "<lastExportDir>"));

    auto *desktop = new QGroupBox;
    auto *desktopLayout = new QGridLayout(desktop);
    QLabel *extInfo = info(desktop);
    m_captions.append({ extInfo, QStringLiteral("<infoExt>"), QStringLiteral("Options") });
    QPushButton *associate = button("bt_extAbc", "<associate>");
    connect(associate, &QPushButton::clicked, this, &OptionsDialog::bt_extAbc_Click);
    QPushButton *seeData = button("bt_seeApDat", "<seeApDat>");
    connect(seeData, &QPushButton::clicked, this, &OptionsDialog::bt_seeApDat_Click);
    desktopLayout->addWidget(extInfo, 0, 0);
    desktopLayout->addWidget(associate, 0, 1);
    desktopLayout->addWidget(label("<apDatFolder>"), 1, 0);
    desktopLayout->addWidget(seeData, 1, 1);
    desktopLayout->setColumnStretch(0, 1);
    layout->addWidget(desktop);
    layout->addStretch(1);
    return page;
}

QWidget *OptionsDialog::buildEditorTab()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    auto *font = new QGroupBox;
    m_captions.append({ font, QStringLiteral("<ttrFont>"), QStringLiteral("Options") });
    auto *fontLayout = new QGridLayout(font);
    m_fontName = new QFontComboBox;
    m_fontName->setObjectName(QStringLiteral("lst_polEdName"));
    m_fontSize = new QComboBox;
    m_fontSize->setObjectName(QStringLiteral("lst_polEdSize"));
    for (int size : { 7, 8, 9, 10, 11, 12, 13, 14, 16, 18, 20, 24 })
        m_fontSize->addItem(QString::number(size));
    m_fontExample = new QLabel(QStringLiteral("X:1  T:Fennel  K:D  |:d2fe dcBA|"));
    m_fontExample->setObjectName(QStringLiteral("lab_FontEx"));
    m_fontExample->setFrameShape(QFrame::StyledPanel);
    m_fontExample->setMinimumHeight(40);
    connect(m_fontName, &QFontComboBox::currentFontChanged, this, &OptionsDialog::showFontExample);
    connect(m_fontSize, &QComboBox::currentIndexChanged, this, &OptionsDialog::showFontExample);
    fontLayout->addWidget(m_fontName, 0, 0);
    fontLayout->addWidget(label("<size>"), 0, 1);
    fontLayout->addWidget(m_fontSize, 0, 2);
    fontLayout->addWidget(m_fontExample, 1, 0, 1, 3);
    fontLayout->setColumnStretch(0, 1);
    layout->addWidget(font);

    auto *keysBox = new QGroupBox;
    m_captions.append({ keysBox, QStringLiteral("<progKeys>"), QStringLiteral("Options") });
    auto *keysLayout = new QGridLayout(keysBox);
    QLabel *editInfo = info(keysBox);
    m_captions.append({ editInfo, QStringLiteral("<editInfo>"), QStringLiteral("Options") });
    keysLayout->addWidget(editInfo, 0, 0, 1, 4);
    for (int i = 0; i < kProgrammableKeys; ++i) {
        auto *number = new QLabel(QString::number(i + 1));
        number->setObjectName(QStringLiteral("lab_editProgr%1").arg(i));
        auto *phrase = new QLineEdit;
        phrase->setObjectName(QStringLiteral("txt_editProgr%1").arg(i));
        m_progKeys.append(phrase);
        keysLayout->addWidget(number, 1 + i / 2, (i % 2) * 2);
        keysLayout->addWidget(phrase, 1 + i / 2, (i % 2) * 2 + 1);
    }
    layout->addWidget(keysBox);
    layout->addWidget(check("chk_Zoom", keys::SaveZoom, "<saveZoom>"));
    layout->addWidget(check("chk_seeScore", keys::SeeScore, "<seeScore>"));
    layout->addWidget(check("chk_useHdr", keys::UseHdr, "<useHdr>"));
    layout->addWidget(check("chk_closeBrck", keys::CloseBrackets, "<closeBrck>"));
    layout->addStretch(1);
    return page;
}

QWidget *OptionsDialog::buildTemplatesTab()
{
    auto *page = new QWidget;
    auto *layout = new QGridLayout(page);
    QLabel *tmplInfo = info(page);
    m_captions.append({ tmplInfo, QStringLiteral("<tmplInfo>"), QStringLiteral("Options") });
    layout->addWidget(tmplInfo, 0, 0, 1, 3);
    m_templates = new QListWidget;
    m_templates->setObjectName(QStringLiteral("lst_Mdl"));
    m_templates->setMaximumWidth(200);
    connect(m_templates, &QListWidget::currentRowChanged, this, &OptionsDialog::lst_Mdl_Click);
    layout->addWidget(m_templates, 1, 0, 4, 1);
    m_templateName = new QLineEdit;
    m_templateName->setObjectName(QStringLiteral("txt_fichMdl"));
    QPushButton *rename = button("bt_newName", "<rename>", "TTText");
    connect(rename, &QPushButton::clicked, this, &OptionsDialog::bt_newName_Click);
    auto *nameRow = new QHBoxLayout;
    nameRow->addWidget(label("<tmplFileName>"));
    nameRow->addWidget(m_templateName, 1);
    nameRow->addWidget(rename);
    layout->addLayout(nameRow, 1, 1, 1, 2);
    layout->addWidget(label("<txtTmpl>"), 2, 1, 1, 2);
    m_templateText = new QPlainTextEdit;
    m_templateText->setObjectName(QStringLiteral("txt_Mdl"));
    m_templateText->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    layout->addWidget(m_templateText, 3, 1, 1, 2);
    auto *buttons = new QHBoxLayout;
    QPushButton *fresh = button("bt_newTmpl", "<newTmpl>");
    connect(fresh, &QPushButton::clicked, this, &OptionsDialog::bt_newTmpl_Click);
    QPushButton *remove = button("bt_delTmpl", "<delTmpl>");
    connect(remove, &QPushButton::clicked, this, &OptionsDialog::bt_delTmpl_Click);
    QPushButton *save = button("bt_saveMdl", "<saveModifTmpl>");
    connect(save, &QPushButton::clicked, this, &OptionsDialog::bt_saveMdl_Click);
    buttons->addWidget(fresh);
    buttons->addWidget(remove);
    buttons->addStretch(1);
    buttons->addWidget(save);
    layout->addLayout(buttons, 4, 1, 1, 2);
    m_defaultTemplate = new QComboBox;
    m_defaultTemplate->setObjectName(QStringLiteral("lst_mdlDef"));
    auto *defaultRow = new QHBoxLayout;
    defaultRow->addWidget(label("<defaultTmpl>"));
    defaultRow->addWidget(m_defaultTemplate, 1);
    layout->addLayout(defaultRow, 5, 0, 1, 3);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(3, 1);
    return page;
}

QWidget *OptionsDialog::buildToolsTab()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    QLabel *toolsInfo = info(page);
    m_captions.append({ toolsInfo, QStringLiteral("<infoTools>"), QStringLiteral("Options") });
    layout->addWidget(toolsInfo);
    auto *grid = new QGridLayout;
    const char *captions[] = { "<visuBitmap>", "<visuPdf>", "<tool2ps>", "<tool2midi>", "<tool2abc>",
        "<toolMidi2abc>", "<fmtFile>" };
    const char *commands[] = { "txt_Cmd2ps", "txt_Cmd2midi", "txt_Cmd2abc", "txt_CmdMidi2abc" };
    QLabel *optionsHeading = label("<optCmd>");
    grid->addWidget(optionsHeading, 0, 3);
    for (int row = 0; row < optionToolKeys().size(); ++row) {
        auto *path = new QLineEdit;
        path->setObjectName(QStringLiteral("txt_Tool%1").arg(row));
        m_toolPaths.append(path);
        QPushButton *choose = browseButton(QStringLiteral("bt_setTool%1").arg(row));
        connect(choose, &QPushButton::clicked, this, [this, row] { bt_setTool_Click(row); });
        grid->addWidget(label(captions[row]), row + 1, 0);
        grid->addWidget(path, row + 1, 1);
        grid->addWidget(choose, row + 1, 2);
        if (row >= 2 && row < 6) {
            auto *options = new QLineEdit;
            options->setObjectName(QString::fromLatin1(commands[row - 2]));
            options->setMaximumWidth(140);
            m_toolOptions.append(options);
            grid->addWidget(options, row + 1, 3);
        }
    }
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);
    QLabel *caution = info(page);
    m_captions.append({ caution, QStringLiteral("<cautionTools>"), QStringLiteral("Options") });
    layout->addWidget(caution);
    auto *row = new QHBoxLayout;
    QPushButton *defaults = button("bt_toolsDefault", "<toolsDefault>");
    connect(defaults, &QPushButton::clicked, this, &OptionsDialog::bt_toolsDefault_Click);
    row->addWidget(defaults);
    row->addStretch(1);
    row->addWidget(label("<gs>"));
    QPushButton *fonts = button("bt_gsFonts", "<gsFonts>");
    connect(fonts, &QPushButton::clicked, this, &OptionsDialog::bt_gsFonts_Click);
    row->addWidget(fonts);
    layout->addLayout(row);
    layout->addStretch(1);
    return page;
}

QWidget *OptionsDialog::buildAudioTab()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    QLabel *audioInfo = info(page);
    m_captions.append({ audioInfo, QStringLiteral("<audioInfo>"), QStringLiteral("Options") });
    layout->addWidget(audioInfo);
    auto *form = new QFormLayout;
    m_gm = new QComboBox;
    m_gm->setObjectName(QStringLiteral("lst_GM"));
    m_gm->setMaxVisibleItems(20);
    form->addRow(label("<defGM>"), m_gm);
    QLineEdit *repeats = box("txt_nbRepeat", keys::NbRepeat, true);
    // The floor is put in when the box is left, so that "12" can be typed through its "1".
    connect(repeats, &QLineEdit::editingFinished, this,
        [repeats] { repeats->setText(atLeast(repeats->text(), 1)); });
    form->addRow(label("<nbRepeat>"), repeats);
    form->addRow(label("<tempoDef>"), box("txt_tempoDef", keys::TempoDef, true));
    QLineEdit *soundFont = box("txt_soundFont", keys::SoundFont);
    soundFont->setPlaceholderText(QStringLiteral("/usr/share/sounds/sf2/default-GM.sf2"));
    QPushButton *choose = browseButton(QStringLiteral("bt_soundFont"));
    connect(choose, &QPushButton::clicked, this, [this, soundFont] {
        const QString path
            = m_app.ui().openFileName(m_app.text(QStringLiteral("Options"), QStringLiteral("<soundFont>")),
                soundFont->text().isEmpty() ? QStringLiteral("/usr/share/sounds/sf2") : soundFont->text(),
                { QStringLiteral("SoundFont (*.sf2 *.sf3)") });
        if (!path.isEmpty())
            soundFont->setText(path);
    });
    auto *fontRow = new QHBoxLayout;
    fontRow->addWidget(soundFont, 1);
    fontRow->addWidget(choose);
    form->addRow(label("<soundFont>"), fontRow);
    layout->addLayout(form);
    layout->addStretch(1);
    return page;
}

QWidget *OptionsDialog::buildMiscTab()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    QLabel *miscInfo = info(page);
    m_captions.append({ miscInfo, QStringLiteral("<miscInfo>"), QStringLiteral("Options") });
    layout->addWidget(miscInfo);
    auto *columns = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    left->addWidget(check("chk_showTips", keys::ShowTips, "<showTips>"));
    left->addWidget(check("chk_ShowDoublons", keys::ShowDoublons, "<showDoublons>"));
    left->addWidget(check("chk_saveWindow", keys::UseRecordedData, "<saveSize>"));
    left->addWidget(check("chk_fileExpand", keys::FileExpand, "<fileExpanded>"));
    left->addWidget(check("chk_compactSet", keys::CompactSet, "<compactSet>"));
    left->addWidget(check("chk_selFirstTune", keys::SelFirstTune, "<selFirstTune>"));
    left->addWidget(check("chk_newVersion", keys::CheckNewVersion, "<newVersion>"));
    left->addStretch(1);
    columns->addLayout(left, 1);
    auto *form = new QFormLayout;
    m_dblClc = new QComboBox;
    m_dblClc->setObjectName(QStringLiteral("lst_dblClc"));
    form->addRow(label("<dblClick>"), m_dblClc);
    m_lang = new QComboBox;
    m_lang->setObjectName(QStringLiteral("lst_lang"));
    auto *translate = new QLabel;
    translate->setObjectName(QStringLiteral("lab_translate"));
    translate->setTextFormat(Qt::RichText);
    connect(translate, &QLabel::linkActivated, this,
        [this] { QDesktopServices::openUrl(languageFolderUrl(m_app.paths())); });
    auto *langRow = new QHBoxLayout;
    langRow->addWidget(m_lang, 1);
    langRow->addWidget(translate);
    form->addRow(label("<lang>"), langRow);
    QLineEdit *trash = box("txt_TrashMax", keys::TrashMax, true);
    connect(
        trash, &QLineEdit::editingFinished, this, [trash] { trash->setText(atLeast(trash->text(), 50)); });
    form->addRow(label("<trashMax>"), trash);
    form->addRow(label("<updateServer>"), box("txt_updateServer", keys::UpdateServer));
    form->addRow(label("<contactAddress>"), box("txt_contact", keys::ContactAddress));
    columns->addLayout(form, 1);
    layout->addLayout(columns);
    layout->addStretch(1);
    return page;
}

} // namespace fenwork
