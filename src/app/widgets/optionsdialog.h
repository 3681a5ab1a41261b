#pragma once
#include <QDialog>
#include <QList>

class QCheckBox;
class QComboBox;
class QFontComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;

namespace fenwork {

class AppContext;
struct SettingKey;

// f_Options: every setting of the program on six tabs, written when applied. Modal.
class OptionsDialog : public QDialog
{
    Q_OBJECT
public:
    enum Tab { Files, Editor, Templates, Tools, Audio, Misc };

    explicit OptionsDialog(AppContext &app, QWidget *parent = nullptr);
    ~OptionsDialog() override;

    void setCurrentTab(int tab);

public slots:
    void LoadLang();
    // Writes everything; false when a step failed (the dialog then stays open).
    bool bt_Appliquer_Click();

private:
    // A control whose text comes from a key of section "Options" (or of `section`).
    struct Caption
    {
        QWidget *widget;
        QString key;
        QString section;
    };
    // A check box or a box of text, with the setting it shows.
    struct Bound
    {
        QWidget *widget;
        const SettingKey *key;
    };

    QWidget *buildFilesTab();
    QWidget *buildEditorTab();
    QWidget *buildTemplatesTab();
    QWidget *buildToolsTab();
    QWidget *buildAudioTab();
    QWidget *buildMiscTab();
    QCheckBox *check(const char *name, const SettingKey &key, const char *caption);
    QLineEdit *box(const char *name, const SettingKey &key, bool digitsOnly = false);
    QLabel *label(const char *caption, const char *section = "Options");
    QPushButton *button(const char *name, const char *caption, const char *section = "Options");
    void Form_Load();
    void fillLists();

    void chk_noSaveHdrFile_Click(bool byUser);
    void showFontExample();
    void bt_dir_Click();
    void bt_setTool_Click(int row);
    void bt_toolsDefault_Click();
    void bt_gsFonts_Click();
    void bt_reinitOp_Click();
    void bt_extAbc_Click();
    void bt_seeApDat_Click();
    void lst_Mdl_Click();
    void bt_newTmpl_Click();
    void bt_delTmpl_Click();
    void bt_saveMdl_Click();
    void bt_newName_Click();
    void fillTemplates(const QString &select);

    AppContext &m_app;
    QTabWidget *m_tabs;
    QList<Caption> m_captions;
    QList<Bound> m_bound;
    QLabel *m_path = nullptr;
    QFontComboBox *m_fontName = nullptr;
    QComboBox *m_fontSize = nullptr;
    QLabel *m_fontExample = nullptr;
    QList<QLineEdit *> m_progKeys;
    QListWidget *m_templates = nullptr;
    QPlainTextEdit *m_templateText = nullptr;
    QLineEdit *m_templateName = nullptr;
    QComboBox *m_defaultTemplate = nullptr;
    QList<QLineEdit *> m_toolPaths;
    QList<QLineEdit *> m_toolOptions;
    QComboBox *m_gm = nullptr;
    QComboBox *m_dblClc = nullptr;
    QComboBox *m_lang = nullptr;
    QCheckBox *m_noHeader = nullptr;
    QCheckBox *m_alias = nullptr;
};

} // namespace fenwork
