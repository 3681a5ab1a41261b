#pragma once
#include "tools/filetools.h"

#include <QDialog>
#include <QList>
#include <functional>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QTabWidget;

namespace fenwork {

class AppContext;
class FileAnalysis;

// The Tools window `f_tools`. In the file scope it cleans, renumbers, sorts, sets fields in and
// analyses the file picked in `lst_fich`, keeping the file's text before the last operation so
// that `bt_restaur` can put it back. In the tune scope its cleaning and chords work on the text
// of the edit panel.
class ToolsDialog : public QDialog
{
    Q_OBJECT
public:
    enum class Scope { File, Tune };

    ToolsDialog(AppContext &app, Scope scope, QWidget *parent = nullptr);
    ~ToolsDialog() override;

    Scope scope() const { return m_scope; }
    // Tune scope: the edit panel's text with CR LF line ends, and where a changed text goes
    // (into the panel, coloured anew).
    std::function<QString()> tuneText;
    std::function<void(const QString &text)> setTuneText;
    // Writes chords into a tune's text; while empty, `bt_addChords` stays disabled.
    std::function<QString(const QString &text, bool twoPerBar)> addChords;

    // Picks the file of that key in `lst_fich`.
    void selectFile(const QString &kFile);
    const ToolsBackup &backup() const { return m_backup; }

public slots:
    void bt_Clean_Click();
    void bt_restaur_Click();
    void bt_actionChp_Click();
    void bt_reindex_Click();
    void bt_sort_Click();
    void bt_analyse_Click();
    void bt_addChords_Click();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void reject() override;

private:
    QWidget *buildCleanTab();
    QWidget *buildChordsTab();
    QWidget *buildReindexTab();
    QWidget *buildSortTab();
    QWidget *buildFieldTab();
    QWidget *buildAnalyseTab();
    QString text(const char *key) const; // section "Tools"
    QString msg(const char *key) const;  // section "Msg"
    // The key of the file picked in lst_fich; empty when none is open.
    QString fileKey();
    void lst_fich_Click();
    void chk_clean_Click();
    void showRestore(bool shown);
    // After a file operation: the backup is for the file now shown.
    void operationDone();
    void refreshFieldControls();
    // Runs with the rest of the window closed to clicks; events still run for the progress.
    bool beginWork(bool busyCursor = true);
    void endWork();

    AppContext &m_app;
    Scope m_scope;
    ToolsBackup m_backup;
    bool m_working = false;
    bool m_closeWanted = false;
    bool m_busyCursor = false;

    QTabWidget *m_tabs = nullptr;      // pic_tool
    QComboBox *m_files = nullptr;      // lst_fich
    QLabel *m_filesLabel = nullptr;
    QPushButton *m_restore = nullptr;  // bt_restaur
    QLabel *m_restorePic = nullptr;    // pic_restaur

    QList<QCheckBox *> m_clean;        // chk_clean
    QLabel *m_steps = nullptr;         // lab_nAction
    QProgressBar *m_cleanProgress = nullptr; // PrgN
    QPushButton *m_cleanButton = nullptr;    // bt_Clean

    QButtonGroup *m_chordCount = nullptr;    // opt_nbChords
    QPushButton *m_chordsButton = nullptr;   // bt_addChords

    QLineEdit *m_reindexStart = nullptr;     // txt_reindex
    QPushButton *m_reindexButton = nullptr;  // bt_reindex

    QComboBox *m_sortKeys[2] = {};           // lst_keySort
    QLabel *m_sortInfo = nullptr;            // lab_infoSort
    QProgressBar *m_sortProgress = nullptr;  // PrgS
    QPushButton *m_sortButton = nullptr;     // bt_sort

    QLineEdit *m_field = nullptr;            // txt_Chp
    QButtonGroup *m_fieldAction = nullptr;   // opt_action
    QButtonGroup *m_fieldScope = nullptr;    // opt_portee
    QLineEdit *m_index[2] = {};              // txt_Idx
    QProgressBar *m_fieldProgress = nullptr; // PrgC
    QPushButton *m_fieldButton = nullptr;    // bt_actionChp

    QListWidget *m_bad = nullptr;            // lst_beurk
    QProgressBar *m_analyseProgress = nullptr; // prgA
    QPushButton *m_analyseButton = nullptr;  // bt_analyse
    QPushButton *m_stopButton = nullptr;
    FileAnalysis *m_analysis = nullptr;
};

} // namespace fenwork
