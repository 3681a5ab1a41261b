#include "app/widgets/optionsdialog.h"

#include "app/fileassociation.h"
#include "app/helplinks.h"
#include "app/optionsapply.h"
#include "editing/templates.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFontComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace fenwork {

namespace {
const QString kOptions = QStringLiteral("Options");
const QString kMsg = QStringLiteral("Msg");
const char *const kTabKeys[]
    = { "<tabFiles>", "<tabEditor>", "<tabTmpl>", "<tabTools>", "<tabAudio>", "<tabMisc>" };
} // namespace

OptionsDialog::OptionsDialog(AppContext &app, QWidget *parent)
    : QDialog(parent)
    , m_app(app)
    , m_tabs(new QTabWidget(this))
{
    setObjectName(QStringLiteral("f_Options"));
    setModal(true);
    m_tabs->setObjectName(QStringLiteral("ongl_Opt"));
    m_tabs->addTab(buildFilesTab(), QString());
    m_tabs->addTab(buildEditorTab(), QString());
    m_tabs->addTab(buildTemplatesTab(), QString());
    m_tabs->addTab(buildToolsTab(), QString());
    m_tabs->addTab(buildAudioTab(), QString());
    m_tabs->addTab(buildMiscTab(), QString());

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("bt_ok"));
    QPushButton *cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("bt_cancel"));
    m_captions.append({ cancel, QStringLiteral("<cancel>"), kOptions });
    QPushButton *apply = buttons->addButton(QDialogButtonBox::Apply);
    apply->setObjectName(QStringLiteral("bt_Appliquer"));
    m_captions.append({ apply, QStringLiteral("<apply>"), kOptions });
    connect(ok, &QPushButton::clicked, this, [this] {
        if (bt_Appliquer_Click())
            accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(apply, &QPushButton::clicked, this, &OptionsDialog::bt_Appliquer_Click);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(buttons);
    resize(720, 500);
    Form_Load();
    LoadLang();
}

OptionsDialog::~OptionsDialog() = default;

void OptionsDialog::setCurrentTab(int tab)
{
    m_tabs->setCurrentIndex(qBound(0, tab, m_tabs->count() - 1));
}

void OptionsDialog::Form_Load()
{
    const IniFile &ini = m_app.ini();
    for (const Bound &bound : std::as_const(m_bound)) {
        if (auto *box = qobject_cast<QCheckBox *>(bound.widget))
            box->setChecked(ini.getBool(*bound.key));
        else if (auto *edit = qobject_cast<QLineEdit *>(bound.widget))
            edit->setText(ini.get(*bound.key));
    }
    chk_noSaveHdrFile_Click(false);
    m_path->setText(ini.get(keys::DirDef));
    m_fontName->setCurrentFont(QFont(ini.get(keys::FontName)));
    const QString size = ini.get(keys::FontSize);
    if (m_fontSize->findText(size) < 0)
        m_fontSize->addItem(size);
    m_fontSize->setCurrentText(size);
    for (int i = 0; i < m_progKeys.size(); ++i)
        m_progKeys.at(i)->setText(
            ini.getValue(QString::fromLatin1(keys::ToucheProgr.section), keys::ToucheProgr.keyName(i), {}));
    for (int i = 0; i < m_toolPaths.size(); ++i)
        m_toolPaths.at(i)->setText(ini.get(*optionToolKeys().at(i)));
    for (int i = 0; i < m_toolOptions.size(); ++i)
        m_toolOptions.at(i)->setText(ini.get(*optionCommandKeys().at(i)));
    fillLists();
    m_dblClc->setCurrentIndex(qBound(0, ini.getInt(keys::DblClcIdx), m_dblClc->count() - 1));
    m_gm->setCurrentIndex(qBound(0, ini.getInt(keys::DefaultGM), m_gm->count() - 1));
    m_lang->clear();
    m_lang->addItems(m_app.lang().available());
    m_lang->setCurrentIndex(m_lang->findText(m_app.lang().name()));
    fillTemplates({});
    showFontExample();
}

// The lists made of language texts, refilled when the language changes, keeping their rows.
void OptionsDialog::fillLists()
{
    const int gm = m_gm->currentIndex();
    m_gm->clear();
    for (int n = 0; n < 128; ++n)
        m_gm->addItem(
            QString::number(n) + u' ' + m_app.text(QStringLiteral("GM"), QStringLiteral("<gm%1>").arg(n)));
    m_gm->setCurrentIndex(gm);
    const int dblClc = m_dblClc->currentIndex();
    m_dblClc->clear();
    for (int n = 0; n < 4; ++n)
        m_dblClc->addItem(m_app.text(kOptions, QStringLiteral("<dblClc%1>").arg(n)));
    m_dblClc->setCurrentIndex(dblClc);
}

void OptionsDialog::LoadLang()
{
    setWindowTitle(m_app.text(kOptions, QStringLiteral("<options>")));
    for (int i = 0; i < m_tabs->count(); ++i)
        m_tabs->setTabText(i, m_app.text(kOptions, QString::fromLatin1(kTabKeys[i])));
    for (const Caption &caption : std::as_const(m_captions)) {
        const QString text = m_app.text(caption.section, caption.key);
        if (auto *box = qobject_cast<QCheckBox *>(caption.widget))
            box->setText(text);
        else if (auto *push = qobject_cast<QPushButton *>(caption.widget))
            push->setText(text);
        else if (auto *group = qobject_cast<QGroupBox *>(caption.widget))
            group->setTitle(text);
        else if (auto *label = qobject_cast<QLabel *>(caption.widget))
            label->setText(text);
    }
    if (auto *translate = findChild<QLabel *>(QStringLiteral("lab_translate")))
        translate->setText(QStringLiteral("<a href=\"lang\">")
            + withoutAccelerator(m_app.text(QStringLiteral("Menus"), QStringLiteral("<translate>")))
                  .toHtmlEscaped()
            + QStringLiteral("</a>"));
    if (m_gm->count() > 0)
        fillLists();
}

bool OptionsDialog::bt_Appliquer_Click()
{
    OptionValues values;
    values.language = m_lang->currentText();
    values.defaultTemplate
        = m_defaultTemplate->currentIndex() > 0 ? m_defaultTemplate->currentText() : QString();
    for (const QLineEdit *phrase : std::as_const(m_progKeys))
        values.progKeys.append(phrase->text());
    values.plain.append({ &keys::DirDef, m_path->text() });
    values.plain.append({ &keys::FontName, m_fontName->currentFont().family() });
    values.plain.append({ &keys::FontSize, m_fontSize->currentText() });
    values.plain.append({ &keys::DefaultGM, QString::number(m_gm->currentIndex()) });
    values.plain.append({ &keys::DblClcIdx, QString::number(m_dblClc->currentIndex()) });
    for (const Bound &bound : std::as_const(m_bound)) {
        if (auto *box = qobject_cast<QCheckBox *>(bound.widget)) {
            values.plain.append({ bound.key, box->isChecked() ? QStringLiteral("1") : QStringLiteral("0") });
        } else if (auto *edit = qobject_cast<QLineEdit *>(bound.widget)) {
            // A box left empty or too low takes its floor even when apply comes before it is left.
            QString text = edit->text();
            if (bound.key == &keys::NbRepeat)
                text = atLeast(text, 1);
            else if (bound.key == &keys::TrashMax)
                text = atLeast(text, 50);
            else if (bound.key == &keys::TempoDef && text.isEmpty())
                text = keys::TempoDef.defaultValue();
            edit->setText(text);
            values.plain.append({ bound.key, trimBlanks(text) });
        }
    }
    for (const QLineEdit *path : std::as_const(m_toolPaths))
        values.toolPaths.append(path->text());
    for (const QLineEdit *options : std::as_const(m_toolOptions))
        values.toolOptions.append(options->text());

    const OptionsOutcome outcome = applyOptions(m_app, values);
    for (int i = 0; i < m_toolPaths.size() && i < outcome.toolPaths.size(); ++i)
        m_toolPaths.at(i)->setText(outcome.toolPaths.at(i));
    for (int i = 0; i < m_toolOptions.size() && i < outcome.toolOptions.size(); ++i)
        m_toolOptions.at(i)->setText(outcome.toolOptions.at(i));
    return outcome.ok;
}

void OptionsDialog::chk_noSaveHdrFile_Click(bool byUser)
{
    const bool noHeader = m_noHeader->isChecked();
    if (noHeader)
        m_alias->setChecked(false);
    m_alias->setEnabled(!noHeader);
    if (noHeader && byUser)
        m_app.ui().message(m_app.text(kMsg, QStringLiteral("<noHdrAdv>")), UserDialogs::Icon::Information);
}

void OptionsDialog::showFontExample()
{
    QFont font = m_fontName->currentFont();
    font.setPointSize(qMax(1, m_fontSize->currentText().toInt()));
    m_fontExample->setFont(font);
}

void OptionsDialog::bt_dir_Click()
{
    const QString folder
        = m_app.ui().folderName(m_app.text(kOptions, QStringLiteral("<ttrDir>")), m_path->text());
    if (!folder.isEmpty())
        m_path->setText(folder.endsWith(u'/') ? folder : folder + u'/');
}

void OptionsDialog::bt_setTool_Click(int row)
{
    const bool format = row == optionToolKeys().size() - 1;
    const QString start = !m_toolPaths.at(row)->text().isEmpty() ? m_toolPaths.at(row)->text()
        : format ? m_app.paths().inProgram(QStringLiteral("fmt"))
                 : QStringLiteral("/usr/bin");
    const QStringList filters = format
        ? QStringList { QStringLiteral("Format abcm2ps (*.fmt)") }
        : QStringList { m_app.text(kMsg, QStringLiteral("<allFiles>")) + QStringLiteral(" (*)") };
    const QString path
        = m_app.ui().openFileName(m_app.text(kMsg, QStringLiteral("<chooseTool>")), start, filters);
    if (!path.isEmpty())
        m_toolPaths.at(row)->setText(path);
}

void OptionsDialog::bt_toolsDefault_Click()
{
    if (m_app.ui().question(m_app.text(kMsg, QStringLiteral("<confToolsDef>"))) != UserDialogs::Answer::Yes)
        return;
    for (int i = 0; i < m_toolPaths.size(); ++i)
        m_toolPaths.at(i)->setText(computedDefault(*optionToolKeys().at(i), m_app.paths()));
    for (int i = 0; i < m_toolOptions.size(); ++i)
        m_toolOptions.at(i)->setText(optionCommandKeys().at(i)->defaultValue());
}

void OptionsDialog::bt_gsFonts_Click()
{
    QString warning = m_app.text(kOptions, QStringLiteral("<gsFWarn>"));
    warning.replace(QStringLiteral("<br>"), CRLF);
    m_app.ui().message(warning, UserDialogs::Icon::Information);
    const QString fontMap = ghostscriptFontMap();
    if (fontMap.isEmpty())
        m_app.ui().message(
            m_app.text(kMsg, QStringLiteral("<toolNotExist>")) + CRLF + CRLF + QStringLiteral("Fontmap.GS"));
    else
        QDesktopServices::openUrl(QUrl::fromLocalFile(fontMap));
}

void OptionsDialog::bt_reinitOp_Click()
{
    // Taken at the next exit: recent files emptied, no open files; a cancel does not undo it.
    m_app.ini().set(keys::NbFiles, QStringLiteral("x"));
}

void OptionsDialog::bt_extAbc_Click()
{
    AssociateAbc(m_app, QCoreApplication::applicationFilePath());
}

void OptionsDialog::bt_seeApDat_Click()
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(m_app.paths().userRoot()));
}

} // namespace fenwork
