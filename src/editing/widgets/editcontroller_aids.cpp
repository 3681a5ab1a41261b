// The edit session's tools that rewrite the text: transposition, templates, automatic insertion,
// bar numbers, paste and the caret's line as a tune.
#include "editing/widgets/editcontroller.h"

#include "editing/autoinsert.h"
#include "editing/barcounter.h"
#include "editing/editsession.h"
#include "editing/templates.h"
#include "editing/transpose.h"
#include "editing/widgets/abctextpanel.h"
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSpinBox>

namespace fenwork {

void EditController::bt_Transpose_Click(int index)
{
    QPlainTextEdit *editor = m_panel->editor();
    editor->setFocus();
    const int halfTones = transposeStep(m_step->text(), index == 0);
    const QString moved = transposeText(m_app, toStoreText(editor->toPlainText()), halfTones);
    if (moved.isEmpty())
        return;
    replaceAllText(fromStoreText(moved));
}

bool EditController::replaceText(const QString &text)
{
    if (!isEditing())
        return false;
    replaceAllText(text);
    return true;
}

void EditController::replaceAllText(const QString &text)
{
    QPlainTextEdit *editor = m_panel->editor();
    const int caret = editor->textCursor().position();
    const int scroll = editor->verticalScrollBar()->value();
    // Through a cursor, not setPlainText: the ring records it as one change.
    QTextCursor cursor(editor->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    cursor.setPosition(qMin(caret, int(text.size())));
    editor->setTextCursor(cursor);
    editor->verticalScrollBar()->setValue(scroll);
    m_panel->ColorerABC();
}

void EditController::fillTemplates()
{
    m_templates->clear();
    m_templates->addItem(m_app.text(QStringLiteral("MainForm"), QStringLiteral("<templates>")));
    m_templates->addItems(templateNames(m_app));
}

void EditController::lst_Mdl_Click(int index)
{
    QPlainTextEdit *editor = m_panel->editor();
    const QString name = m_templates->itemText(index);
    m_templates->setCurrentIndex(0);
    if (index < 1 || editor->isReadOnly())
        return;
    const QString msg = QStringLiteral("Msg");
    const auto answer = m_app.ui().question(m_app.text(msg, QStringLiteral("<replaceByTmpl>")) + CRLF + CRLF
            + m_app.text(msg, QStringLiteral("<inserTmpl>")),
        true, m_app.text(msg, QStringLiteral("<useTmpl>")));
    if (answer == UserDialogs::Answer::Yes) {
        const QString text = readTemplate(m_app, name, false);
        if (!text.isNull())
            replaceAllText(fromStoreText(text));
    } else if (answer == UserDialogs::Answer::No) {
        const QString text = readTemplate(m_app, name, true);
        if (!text.isNull()) {
            editor->textCursor().insertText(fromStoreText(text));
            m_panel->ColorerABC();
        }
    }
    editor->setFocus();
}

void EditController::domodel()
{
    if (!isEditing())
        return;
    const QString name = saveTemplate(m_app, m_panel->editor()->toPlainText());
    if (!name.isEmpty())
        fillTemplates();
    m_panel->editor()->setFocus();
}

void EditController::insertion_auto()
{
    QPlainTextEdit *editor = m_panel->editor();
    if (editor->isReadOnly())
        return;
    QTextCursor cursor = editor->textCursor();
    if (!cursor.hasSelection()) {
        const TextSpan word = insertionWordAt(editor->toPlainText(), cursor.position());
        cursor.setPosition(int(word.start));
        cursor.setPosition(int(word.start + word.length), QTextCursor::KeepAnchor);
    }
    const QString code = trimBlanks(cursor.selectedText());
    const QList<InsertionEntry> entries = loadInsertions(m_app);
    const int found = findInsertion(entries, code);
    if (found < 0) {
        cursor.setPosition(cursor.selectionEnd());
        editor->setTextCursor(cursor);
        m_app.ui().message(m_app.text(QStringLiteral("Msg"), QStringLiteral("<codeNotExist>")), UserDialogs::Icon::Warning);
        return;
    }
    QString text = entries.at(found).text;
    cursor.insertText(text.replace(CRLF, QStringLiteral("\n")));
    editor->setTextCursor(cursor);
    m_panel->ColorerABC();
}

bool EditController::insertText(const QString &text)
{
    if (!isEditing())
        return false;
    QString plain = text;
    m_panel->editor()->textCursor().insertText(plain.replace(CRLF, QStringLiteral("\n")));
    m_panel->ColorerABC();
    return true;
}

void EditController::defineInsertion()
{
    QString selection = m_panel->editor()->textCursor().selectedText();
    selection.replace(QChar::ParagraphSeparator, CRLF);
    def_Insertion(m_app, selection);
    m_panel->editor()->setFocus();
}

void EditController::numberBars(bool insertMarker)
{
    if (!isEditing())
        return;
    QPlainTextEdit *editor = m_panel->editor();
    if (insertMarker) {
        // The number takes the rest of the marker's line: music after the caret goes to a line
        // of its own.
        QTextCursor cursor = editor->textCursor();
        QTextCursor rest(editor->document());
        rest.setPosition(cursor.selectionEnd());
        rest.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        const bool musicAfter = !trimBlanks(rest.selectedText()).isEmpty();
        cursor.insertText(musicAfter ? QStringLiteral("%%|\n") : QStringLiteral("%%|"));
    }
    const QString numbered = fromStoreText(numberBarMarkers(toStoreText(editor->toPlainText())));
    if (numbered != editor->toPlainText())
        replaceAllText(numbered);
}

void EditController::paste()
{
    QPlainTextEdit *editor = m_panel->editor();
    QString text = QApplication::clipboard()->text();
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    editor->textCursor().insertText(text);
    m_panel->ColorerABC();
}

QString EditController::getCurLineAsTune() const
{
    const QPlainTextEdit *editor = m_panel->editor();
    return fenwork::getCurLineAsTune(
        m_app, m_app.selection().tuneKey(), editor->toPlainText(), editor->textCursor().position());
}

} // namespace fenwork
