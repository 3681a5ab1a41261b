#pragma once
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTextCursor>

#include <functional>
#include <memory>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QMenu;
class QPoint;
class QSpinBox;
class QToolBar;
class QToolButton;
class QWidget;

namespace fenwork {

class AbcTextPanel;
class AppContext;
class EditSession;
class MidiOut;
class TreeDimmer;

// The edit session in the window: the tool bar `tb_edit` above the text, the keys of `txt_ABC`,
// the locked editor's question, paste, the blank-line guard, undo, the caret's line:column, word
// wrap, the pop-up menu `pop_ABC` and transposition. The window is closed off while a session runs.
class EditController : public QObject
{
    Q_OBJECT
public:
    EditController(AppContext &app, AbcTextPanel *panel, QObject *parent = nullptr);
    ~EditController() override;

    // A session on a tune owns the note output: open while it runs, closed at its end.
    void setNoteOutput(MidiOut *notes) { m_notes = notes; }
    void loadLang();


    EditSession &session() const { return *m_session; }
    bool isEditing() const;
    // A tune, not a file header, is being edited: the note output belongs to the session.
    bool isEditingTune() const;
    // The score's "current line only" box is ticked during a session.
    bool isOneLineTicked() const;
    // Quitting with a session running: no recovery copy must survive the orderly exit.
    void abandonRecovery();
    QToolBar *toolBar() const { return m_bar; }

    // F5: starts a session, or validates the running one.
    void key_F5();
    // Esc: cancels a running session.
    void key_Esc();
    void abcedit();
    // False when the text was refused (no X:) or no session runs.
    bool validate();
    bool cancel();
    // validsave: validate, save, and edit the saved tune again; validsavequit: stop after saving.
    void validSave(bool quit);
    void bt_undo_Click();
    void bt_Transpose_Click(int index);
    void paste();
    // The tune made of the header fields and the caret's line.
    QString getCurLineAsTune() const;
    // lst_Mdl: replaces the text by a template, or inserts it at the caret, as the user answers.
    void lst_Mdl_Click(int index);
    // domodel: keeps the editor's text as a template.
    void domodel();
    // F3: the code at the caret, or the selected one, becomes its stored text.
    void insertion_auto();
    // An insertion chosen in its window goes in at the caret; false when no session runs.
    bool insertText(const QString &text);
    // Alt+F3: stores the selection under a code the user gives.
    void defineInsertion();
    // Ctrl+M: renumbers the "%%|" bar markers; Alt+M first puts one at the caret.
    void numberBars(bool insertMarker);
    // The whole text replaced, as one change the undo ring keeps, and coloured anew: what the
    // tune tools give back. False when no session runs.
    bool replaceText(const QString &text);

signals:
    // validsave wants the file saved, Ctrl+P the tune played: the window runs its own command,
    // when that command is enabled.
    void saveRequested();
    void playRequested();
    // The window closes itself off around a session and opens again at its end: the tree, the
    // tool bar, the score's pause, the player's next and previous, the one-line boxes, the drone.
    void sessionStarted(bool tune, const QString &editedKey);
    void sessionEnded(const QString &editedKey, bool validated);
    // The pop-up menu's tune tools entry.
    void tuneToolsRequested();
    // A tune's text went into the file: the old version must not go on sounding.
    void tuneValidated();
    // The score should show `text`; `evenIfPaused` for a redraw the user asked for.
    void scoreRefreshRequested(const QString &text, bool evenIfPaused);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setSessionLook(bool editing);
    void holdCommands(bool held);
    void txt_ABC_Change();
    void showCaret();
    void popupMenu(const QPoint &pos);
    void setWrap(bool wrap);
    // Replaces the editor's whole text as one change, keeping the caret and the scroll position.
    void replaceAllText(const QString &text);
    void endSession(bool validated);
    // The score's "current line only" box: shown, and cleared, for a session on a tune only.
    void showOneLineBox(bool shown);
    void refreshScore();
    void fillTemplates();
    // A closer typed right before one that came with its opening bracket steps over it.
    bool stepOverCloser(const QString &typed);

    AppContext &m_app;
    AbcTextPanel *m_panel;
    // Compared in the event filter, which also sees the events of the panel's destruction.
    QObject *m_editorObject;
    EditSession *m_session;
    std::unique_ptr<TreeDimmer> m_dimmer;
    QToolBar *m_bar;
    QAction *m_edit;
    QAction *m_ok;
    QAction *m_cancel;
    QAction *m_validSave;
    QAction *m_validSaveQuit;
    QAction *m_undo;
    QAction *m_doModel;
    QComboBox *m_templates; // lst_Mdl
    QAction *m_templatesAction;
    QAction *m_down;
    QAction *m_up;
    QAction *m_stepAction;
    QSpinBox *m_step;
    QCheckBox *m_wrap;
    QToolButton *m_oneLine; // chk_OneLine0
    QAction *m_oneLineAction;
    int m_caretBlock = -1;
    QLabel *m_caret;
    QMenu *m_popup;
    MidiOut *m_notes = nullptr;
    bool m_undoLock = false;
    QString m_editedKey;
    QString m_shownText;
    QList<QTextCursor> m_autoClosers; // each selects a closer put in with its bracket
};

} // namespace fenwork
