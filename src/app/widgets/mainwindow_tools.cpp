// The Tools window from the menus, the tool bar and the editor's pop-up menu: the file tools on the
// file selected, the tune tools on the tune in an edit session.
#include "app/widgets/mainwindow.h"

#include "editing/editsession.h"
#include "editing/widgets/abctextpanel.h"
#include "editing/widgets/editcontroller.h"
#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/selection.h"
#include "app/widgets/mainmenus.h"
#include "tools/chords.h"
#include "tools/widgets/toolsdialog.h"

#include <QPlainTextEdit>

namespace fenwork {

namespace {
const QString kTuneTools = QStringLiteral("mnu_fileTools1");
} // namespace

void MainWindow::connectToolsCommands()
{
    const auto open = [this](ToolsDialog::Scope scope) {
        // One Tools window at a time: the other scope's gives way.
        if (auto *old = findChild<ToolsDialog *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (old->scope() == scope) {
                old->raise();
                old->activateWindow();
                return;
            }
            old->close();
            if (findChild<ToolsDialog *>(QString(), Qt::FindDirectChildrenOnly))
                return; // still busy: it closes when its work ends
        }
        auto *dialog = new ToolsDialog(m_app, scope, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        if (scope == ToolsDialog::Scope::File) {
            dialog->selectFile(m_app.selection().fileKey());
        } else {
            QPlainTextEdit *editor = m_textPanel->editor();
            dialog->tuneText = [editor] { return toStoreText(editor->toPlainText()); };
            EditController *edit = m_edit;
            dialog->setTuneText = [edit](const QString &text) { edit->replaceText(fromStoreText(text)); };
            // The window steps aside while the warning about keys without chords is shown.
            dialog->addChords = [this, dialog](const QString &text, bool twoPerBar) {
                return AddChords(m_app, text, twoPerBar, false, [dialog](bool visible) { dialog->setVisible(visible); });
            };
        }
        dialog->show();
        dialog->raise();
        dialog->activateWindow();
    };
    m_menus->setHandler(QStringLiteral("mnu_fileTools0"), [open] { open(ToolsDialog::Scope::File); });
    m_menus->setHandler(QStringLiteral("toolsf"), [open] { open(ToolsDialog::Scope::File); });
    m_menus->setHandler(kTuneTools, [this, open] {
        if (m_edit->isEditing() && m_edit->isEditingTune())
            open(ToolsDialog::Scope::Tune);
    });
    connect(m_edit, &EditController::tuneToolsRequested, this, [this] {
        if (QAction *action = m_menus->action(kTuneTools); action && action->isEnabled())
            action->trigger();
    });

    // The tune tools work on the text of a tune being edited, and only then; a session's start and
    // end close the Tools window, whose text would no longer be the one in the panel.
    CommandState &commands = m_app.commands();
    commands.setEnabled(kTuneTools, false);
    const auto closeTools = [this] {
        if (auto *dialog = findChild<ToolsDialog *>(QString(), Qt::FindDirectChildrenOnly))
            dialog->close();
    };
    connect(m_edit, &EditController::sessionStarted, this, [&commands, closeTools](bool tune) {
        closeTools();
        commands.setEnabled(kTuneTools, tune);
    });
    connect(m_edit, &EditController::sessionEnded, this, [&commands, closeTools] {
        closeTools();
        commands.setEnabled(kTuneTools, false);
    });
}

} // namespace fenwork
