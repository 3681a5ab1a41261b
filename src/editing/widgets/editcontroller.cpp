#include "editing/widgets/editcontroller.h"

#include "editing/editsession.h"
#include "editing/widgets/abceditor.h"
#include "editing/widgets/abctextpanel.h"
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/paths.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "playback/midierror.h"
#include "playback/midiout.h"
#include "store/treedimmer.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSpinBox>
#include <QTextBlock>
#include <QTextCursor>
#include <QToolBar>
#include <QTimer>
#include <QToolButton>

namespace fenwork {

namespace {

const QString kAbcEdit = QStringLiteral("abcedit");
// What would leave the tune: another file, another tune, the list, an import, a whole-file tool.
// The other tools (tempo, insertions, consoles) stay at hand while typing.
const QStringList kClosedCommands = { QStringLiteral("mnu_Fichier"), QStringLiteral("mnu_Morceau"),
    QStringLiteral("mnu_lst"), QStringLiteral("mnu_Import"), QStringLiteral("mnu_fileTools0"),
    QStringLiteral("mnu_extract"), QStringLiteral("mnu_showDoublons"), QStringLiteral("mnu_toExtras0") };

QAction *barAction(QToolBar *bar, const char *name, const char *icon)
{
    auto *action = new QAction(QIcon::fromTheme(QString::fromLatin1(icon)), QString(), bar);
    action->setObjectName(QString::fromLatin1(name));
    bar->addAction(action);
    if (QWidget *button = bar->widgetForAction(action))
        button->setObjectName(action->objectName());
    return action;
}

} // namespace

EditController::EditController(AppContext &app, AbcTextPanel *panel, QObject *parent)
    : QObject(parent)
    , m_app(app)
    , m_panel(panel)
    , m_editorObject(panel->editor())
    , m_session(new EditSession(app, this))
    , m_dimmer(std::make_unique<TreeDimmer>(app.tree()))
    , m_bar(new QToolBar)
{
    QPlainTextEdit *editor = m_panel->editor();
    m_session->textSource = [editor] { return editor->toPlainText(); };
    connect(m_session, &EditSession::ended, this, &EditController::endSession);

    m_bar->setObjectName(QStringLiteral("tb_edit"));
    m_bar->setIconSize(QSize(20, 20));
    m_bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_edit = barAction(m_bar, "abcedit", "document-edit");
    m_ok = barAction(m_bar, "ok", "dialog-ok-apply");
    auto *okMenu = new QMenu(m_bar);
    okMenu->setObjectName(QStringLiteral("ok_pop"));
    m_validSave = okMenu->addAction(QIcon::fromTheme(QStringLiteral("document-save")), QString());
    m_validSave->setObjectName(QStringLiteral("validsave"));
    m_validSaveQuit = okMenu->addAction(QIcon::fromTheme(QStringLiteral("document-save-all")), QString());
    m_validSaveQuit->setObjectName(QStringLiteral("validsavequit"));
    m_ok->setMenu(okMenu);
    if (auto *button = qobject_cast<QToolButton *>(m_bar->widgetForAction(m_ok)))
        button->setPopupMode(QToolButton::MenuButtonPopup);
    m_cancel = barAction(m_bar, "cancel", "dialog-cancel");
    m_undo = barAction(m_bar, "bt_undo", "edit-undo");
    m_doModel = barAction(m_bar, "domodel", "document-save-as-template");
    m_templates = new QComboBox;
    m_templates->setObjectName(QStringLiteral("lst_Mdl"));
    m_templates->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_templatesAction = m_bar->addWidget(m_templates);
    m_bar->addSeparator();
    m_down = barAction(m_bar, "bt_Transpose0", "arrow-down");
    m_step = new QSpinBox;
    m_step->setObjectName(QStringLiteral("txt_unitTranspose"));
    m_step->setRange(1, 12);
    m_step->setValue(1);
    m_stepAction = m_bar->addWidget(m_step);
    m_up = barAction(m_bar, "bt_Transpose1", "arrow-up");
    m_bar->addSeparator();
    m_wrap = new QCheckBox;
    m_wrap->setObjectName(QStringLiteral("chk_wrap"));
    m_bar->addWidget(m_wrap);
    m_oneLine = new QToolButton;
    m_oneLine->setObjectName(QStringLiteral("chk_OneLine0"));
    m_oneLine->setCheckable(true);
    m_oneLine->setAutoRaise(true);
    m_oneLine->setIcon(QIcon::fromTheme(QStringLiteral("format-justify-left")));
    m_oneLineAction = m_bar->addWidget(m_oneLine);
    auto *spacer = new QWidget;
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_bar->addWidget(spacer);
    m_caret = new QLabel(QStringLiteral("1:1"));
    m_caret->setObjectName(QStringLiteral("lab_numLigne"));
    m_caret->setContentsMargins(6, 0, 6, 0);
    m_bar->addWidget(m_caret);
    m_panel->setEditBar(m_bar);

    connect(m_edit, &QAction::triggered, this, &EditController::abcedit);
    connect(m_ok, &QAction::triggered, this, &EditController::validate);
    connect(m_cancel, &QAction::triggered, this, &EditController::cancel);
    connect(m_validSave, &QAction::triggered, this, [this] { validSave(false); });
    connect(m_validSaveQuit, &QAction::triggered, this, [this] { validSave(true); });
    connect(m_undo, &QAction::triggered, this, &EditController::bt_undo_Click);
    connect(m_doModel, &QAction::triggered, this, &EditController::domodel);
    connect(m_templates, &QComboBox::activated, this, &EditController::lst_Mdl_Click);
    connect(m_down, &QAction::triggered, this, [this] { bt_Transpose_Click(0); });
    connect(m_up, &QAction::triggered, this, [this] { bt_Transpose_Click(1); });
    connect(m_wrap, &QCheckBox::toggled, this, &EditController::setWrap);
    connect(m_oneLine, &QToolButton::clicked, this, &EditController::refreshScore);

    m_popup = new QMenu(editor);
    m_popup->setObjectName(QStringLiteral("pop_ABC"));
    editor->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(editor, &QWidget::customContextMenuRequested, this, &EditController::popupMenu);
    connect(editor, &QPlainTextEdit::textChanged, this, &EditController::txt_ABC_Change);
    connect(editor, &QPlainTextEdit::cursorPositionChanged, this, &EditController::showCaret);
    editor->installEventFilter(this);

    m_edit->setEnabled(m_app.commands().isEnabled(kAbcEdit));
    connect(&m_app.commands(), &CommandState::enabledChanged, this, [this](const QString &name, bool on) {
        if (name == kAbcEdit)
            m_edit->setEnabled(on);
    });
    setSessionLook(false);
}

EditController::~EditController() = default;

bool EditController::isOneLineTicked() const
{
    return isEditing() && m_oneLine->isChecked();
}

void EditController::loadLang()
{
    const auto text = [this](const char *section, const char *key) {
        return m_app.text(QString::fromLatin1(section), QString::fromLatin1(key));
    };
    m_edit->setText(text("MainForm", "<edit>"));
    m_edit->setToolTip(text("TTText", "<editTune>"));
    m_ok->setText(text("MainForm", "<validate>"));
    m_ok->setToolTip(text("MainForm", "<validate>") + QStringLiteral(" (F5)"));
    m_validSave->setText(text("MainForm", "<validSave>"));
    m_validSaveQuit->setText(text("MainForm", "<validSaveQuit>"));
    m_cancel->setText(text("MainForm", "<cancel>"));
    m_cancel->setToolTip(text("MainForm", "<cancel>") + QStringLiteral(" (Esc)"));
    m_undo->setToolTip(text("TTText", "<undo>"));
    m_doModel->setToolTip(text("TTText", "<doTemplate>"));
    m_templates->setToolTip(text("TTText", "<useTemplate>"));
    fillTemplates();
    m_down->setToolTip(text("TTText", "<transposDown>"));
    m_up->setToolTip(text("TTText", "<transposUp>"));
    m_step->setToolTip(text("TTText", "<unitTranspose>"));
    m_wrap->setText(text("MainForm", "<lineWrapping>"));
    m_oneLine->setToolTip(text("TTText", "<displOneLine>"));
}

bool EditController::isEditing() const
{
    return m_session->isActive();
}

bool EditController::isEditingTune() const
{
    return m_session->target() == EditSession::Target::Tune;
}

void EditController::abandonRecovery()
{
    m_session->recoveryTimer()->stop();
    QFile::remove(m_app.paths().recoverFile());
}

void EditController::key_F5()
{
    if (m_edit->isVisible() && m_edit->isEnabled())
        abcedit();
    else if (m_ok->isVisible() && m_ok->isEnabled())
        validate();
}

void EditController::key_Esc()
{
    if (m_cancel->isVisible())
        cancel();
}

void EditController::abcedit()
{
    if (isEditing() || !m_app.commands().isEnabled(kAbcEdit))
        return;
    QPlainTextEdit *editor = m_panel->editor();
    if (!m_session->start(editor->toPlainText()))
        return;
    m_shownText = editor->toPlainText();
    const bool tune = isEditingTune();
    m_editedKey = tune ? m_session->tuneKey() : m_session->fileKey() + QStringLiteral("_hdrFile");
    // First, so that the drone has let go of the note output before the session opens it.
    emit sessionStarted(tune, m_editedKey);
    if (tune) {
        QString error;
        if (m_notes && !m_notes->open(&error))
            DisplayErrMidi(m_app.ui(), error, QStringLiteral("Context: Edit ABC file > midiOutOpen"));
    }
    editor->setExtraSelections({});
    m_panel->setLocked(false);
    editor->setFocus();
    holdCommands(true);
    m_dimmer->ToggleEnabledTree(true, m_editedKey);
    setSessionLook(true);
    m_undo->setEnabled(false);
    fillTemplates(); // templates may have been added to the folder since the last session
    m_panel->abcEditor()->setLineNumbersVisible(true);
    m_panel->setWarning(m_app.text(QStringLiteral("MainForm"), QStringLiteral("<modeEdition>")) + u'\n'
        + m_app.text(QStringLiteral("MainForm"), QStringLiteral("<modeEdition2>")));
    showOneLineBox(tune);
}

bool EditController::validate()
{
    if (!isEditing())
        return false;
    const bool tune = isEditingTune();
    // The kept colours go back before the text rebuilds the edited nodes.
    m_dimmer->ToggleEnabledTree(false);
    if (!m_session->validate(m_panel->editor()->toPlainText())) {
        m_dimmer->ToggleEnabledTree(true, m_editedKey);
        return false;
    }
    if (tune)
        emit tuneValidated();
    return true;
}

bool EditController::cancel()
{
    if (!isEditing())
        return false;
    QString reloaded;
    if (!m_session->cancel(&reloaded))
        return false;
    m_panel->showText(reloaded);
    // The score was drawn from the text just discarded.
    refreshScore();
    return true;
}

void EditController::validSave(bool quit)
{
    BusyScope busy(m_app.ui());
    if (!validate())
        return;
    emit saveRequested();
    if (!quit)
        abcedit();
}

void EditController::endSession(bool validated)
{
    m_panel->setLocked(true);
    holdCommands(false);
    setSessionLook(false);
    if (m_notes && m_notes->isOpen())
        m_notes->close();
    m_panel->setWarning({});
    m_panel->abcEditor()->setLineNumbersVisible(false);
    showOneLineBox(false);
    m_autoClosers.clear();
    const QString key = m_editedKey;
    m_editedKey.clear();
    emit sessionEnded(key, validated);
}

void EditController::setSessionLook(bool editing)
{
    m_edit->setVisible(!editing);
    // Esc belongs to the session only while one runs; otherwise the panels keep it.
    m_app.commands().setEnabled(QStringLiteral("key_Esc"), editing);
    for (QAction *action : { m_ok, m_cancel, m_undo, m_doModel, m_templatesAction, m_down, m_up, m_stepAction })
        action->setVisible(editing);
    if (!editing)
        showOneLineBox(false);
}

void EditController::showOneLineBox(bool shown)
{
    m_oneLine->setChecked(false);
    m_oneLineAction->setVisible(shown);
}

void EditController::refreshScore()
{
    emit scoreRefreshRequested(m_panel->editor()->toPlainText(), true);
}

void EditController::holdCommands(bool held)
{
    // Through the command state, so that the end gives back what the selection calls for.
    if (held) {
        m_app.commands().hold(kClosedCommands);
    } else {
        m_dimmer->ToggleEnabledTree(false);
        m_app.commands().release();
    }
}

void EditController::txt_ABC_Change()
{
    if (!isEditing())
        return;
    const QString text = m_panel->editor()->toPlainText();
    // A repaint of the colours also reports a change: only a new text counts.
    if (text == m_shownText)
        return;
    m_shownText = text;
    if (!m_undoLock && m_session->ring().SetUndo(text))
        m_undo->setEnabled(true);
    emit scoreRefreshRequested(text, false);
}

void EditController::bt_undo_Click()
{
    if (!isEditing())
        return;
    QPlainTextEdit *editor = m_panel->editor();
    const QString text = m_session->ring().GetUndo();
    if (text.isEmpty()) {
        m_undo->setEnabled(false);
    } else {
        m_undoLock = true;
        const int caret = editor->textCursor().position();
        const int scroll = editor->verticalScrollBar()->value();
        editor->setPlainText(text);
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(qMin(caret, int(text.size())));
        editor->setTextCursor(cursor);
        editor->verticalScrollBar()->setValue(scroll);
        m_undoLock = false;
    }
    editor->setFocus();
}

bool EditController::stepOverCloser(const QString &typed)
{
    QPlainTextEdit *editor = m_panel->editor();
    QTextCursor caret = editor->textCursor();
    bool stepped = false;
    for (qsizetype i = m_autoClosers.size() - 1; i >= 0; --i) {
        const QTextCursor &closer = m_autoClosers.at(i);
        const QString selected = closer.selectedText();
        // A closer deleted or typed over is no longer ours to step over.
        const bool standing = selected == u"]" || selected == u"}";
        const bool here = !stepped && !caret.hasSelection() && selected == typed
            && closer.selectionStart() == caret.position();
        if (!standing || here)
            m_autoClosers.removeAt(i);
        if (here) {
            caret.movePosition(QTextCursor::NextCharacter);
            editor->setTextCursor(caret);
            stepped = true;
        }
    }
    return stepped;
}

void EditController::showCaret()
{
    const QTextCursor cursor = m_panel->editor()->textCursor();
    // A score of the caret's line follows the caret to another line.
    if (cursor.blockNumber() != m_caretBlock) {
        m_caretBlock = cursor.blockNumber();
        if (isEditing() && m_oneLine->isChecked())
            refreshScore();
    }
    m_caret->setText(
        QString::number(cursor.blockNumber() + 1) + u':' + QString::number(cursor.positionInBlock() + 1));
}

void EditController::setWrap(bool wrap)
{
    m_panel->editor()->setLineWrapMode(wrap ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
}

void EditController::popupMenu(const QPoint &pos)
{
    QPlainTextEdit *editor = m_panel->editor();
    QTextCursor cursor = editor->textCursor();
    const int under = editor->cursorForPosition(pos).position();
    if (!cursor.hasSelection() || under < cursor.selectionStart() || under > cursor.selectionEnd()) {
        cursor.setPosition(under);
        editor->setTextCursor(cursor);
    }
    const bool selection = editor->textCursor().hasSelection();
    const bool editing = isEditing();
    const auto text
        = [this](const char *key) { return m_app.text(QStringLiteral("Menus"), QString::fromLatin1(key)); };
    m_popup->clear();
    QAction *cut = m_popup->addAction(
        QIcon::fromTheme(QStringLiteral("edit-cut")), text("<cut>"), editor, &QPlainTextEdit::cut);
    cut->setEnabled(editing && selection);
    QAction *copy = m_popup->addAction(
        QIcon::fromTheme(QStringLiteral("edit-copy")), text("<copy>"), editor, &QPlainTextEdit::copy);
    copy->setEnabled(selection);
    QAction *pasteItem = m_popup->addAction(
        QIcon::fromTheme(QStringLiteral("edit-paste")), text("<paste>"), this, &EditController::paste);
    pasteItem->setEnabled(editing && !QApplication::clipboard()->text().isEmpty());
    m_popup->addSeparator();
    // Context help comes with the reference panel.
    QAction *help = m_popup->addAction(QIcon::fromTheme(QStringLiteral("help-contextual")), text("<abcHlp>"));
    help->setObjectName(QStringLiteral("pop_ABC_item3"));
    help->setEnabled(false);
    QAction *tools = m_popup->addAction(text("<tuneTools>"), this, &EditController::tuneToolsRequested);
    tools->setObjectName(QStringLiteral("pop_ABC_item4"));
    tools->setEnabled(editing && isEditingTune());
    m_popup->addSeparator();
    m_popup->addAction(QIcon::fromTheme(QStringLiteral("edit-select-all")),
        QKeySequence(QKeySequence::SelectAll).toString(QKeySequence::NativeText), editor,
        &QPlainTextEdit::selectAll);
    m_popup->popup(editor->viewport()->mapToGlobal(pos));
}

bool EditController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_editorObject || event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    QPlainTextEdit *editor = m_panel->editor();
    const Qt::KeyboardModifiers mods = key->modifiers() & ~Qt::KeypadModifier;
    if (key->matches(QKeySequence::SelectAll)) {
        editor->selectAll();
        return true;
    }
    if (!isEditing()) {
        // Typing into the locked text: offer to edit the tune instead of ignoring the key.
        const int code = key->key();
        const bool typing = mods == Qt::NoModifier
            && ((code >= 45 && code <= 111) || code == Qt::Key_Delete || code == Qt::Key_Insert);
        if (typing && !m_app.selection().tuneKey().isEmpty() && m_app.commands().isEnabled(kAbcEdit)) {
            if (m_app.ui().question(m_app.text(QStringLiteral("Msg"), QStringLiteral("<noedit>")))
                == UserDialogs::Answer::Yes)
                abcedit();
            return true;
        }
        return false;
    }
    if (key->matches(QKeySequence::Paste) || (key->key() == Qt::Key_Insert && mods == Qt::ShiftModifier)) {
        paste();
        return true;
    }
    if (key->matches(QKeySequence::Undo)) {
        bt_undo_Click();
        return true;
    }
    if (key->key() == Qt::Key_F3 && (mods == Qt::NoModifier || mods == Qt::AltModifier)) {
        if (mods == Qt::AltModifier)
            defineInsertion();
        else
            insertion_auto();
        return true;
    }
    if (key->key() == Qt::Key_M && (mods == Qt::ControlModifier || mods == Qt::AltModifier)) {
        numberBars(mods == Qt::AltModifier);
        return true;
    }
    const QString typed = key->text();
    if ((typed == u"[" || typed == u"{") && m_app.ini().getInt(keys::CloseBrackets) != 0) {
        // The closing bracket comes with the opening one; the caret stands between them.
        QTextCursor cursor = editor->textCursor();
        cursor.insertText(typed + (typed == u"[" ? u']' : u'}'));
        cursor.movePosition(QTextCursor::PreviousCharacter);
        editor->setTextCursor(cursor);
        // A cursor over the closer follows the edits around it, so that typing the closer
        // later can step over this one.
        QTextCursor closer = cursor;
        closer.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        m_autoClosers.append(closer);
        return true;
    }
    if ((typed == u"]" || typed == u"}") && stepOverCloser(typed))
        return true;
    if (key->key() == Qt::Key_P && mods == Qt::ControlModifier) {
        emit playRequested();
        return true;
    }
    if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
        && needsBlankLineGuard(editor->toPlainText(), editor->textCursor().position())) {
        // A blank line would end the tune for the tools: the new line holds a comment instead.
        editor->textCursor().insertText(QStringLiteral("%"));
    }
    return false;
}

} // namespace fenwork
