#include "tools/filetools.h"

#include "frame/appcontext.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

namespace fenwork {

bool ToolsBackup::SetMemoFile(AppContext &app, const QString &kFile)
{
    const Node *file = app.tree().find(kFile);
    if (!file || keyKind(kFile) != KeyKind::File) {
        clear();
        return false;
    }
    memoKey = kFile;
    memoName = file->Text;
    memoText = app.store().GetStringFile(kFile, false, false);
    return true;
}

QString ToolsBackup::restore(AppContext &app)
{
    if (isEmpty() || !app.tree().contains(memoKey))
        return {};
    QString kFile = memoKey;
    app.store().SwapStringFile(memoText, kFile);
    app.store().SetFlagModifFile(kFile);
    emit app.store().nodeSelectionRequested(kFile);
    clear();
    return kFile;
}

QStringList openFileCaptions(const AppContext &app)
{
    QStringList captions;
    if (const Node *root = app.tree().root()) {
        for (const Node *file : root->children()) {
            if (file->Key != key::Trash)
                captions.append(file->Text);
        }
    }
    return captions;
}

QString fileKeyFromCaption(const AppContext &app, const QString &caption)
{
    const Node *root = app.tree().root();
    if (!root || caption.isEmpty())
        return {};
    for (const Node *file : root->children()) {
        if (file->Key != key::Trash && file->Text.startsWith(caption, Qt::CaseInsensitive))
            return file->Key;
    }
    return {};
}

int tuneCount(const AppContext &app, const QString &kFile)
{
    const Node *body = app.tree().find(kFile + key::BdyFile);
    return body ? body->childCount() : 0;
}

bool cleanFile(AppContext &app, QString &kFile, unsigned options, ToolsBackup &backup, const CleanProgress &progress)
{
    if (!backup.SetMemoFile(app, kFile))
        return false;
    bool changed = false;
    const QString text = cleanAbcText(backup.memoText, options, &changed, progress);
    if (changed) {
        app.store().SwapStringFile(text, kFile);
        app.store().SetFlagModifFile(kFile);
    }
    emit app.store().nodeSelectionRequested(kFile);
    return changed;
}

} // namespace fenwork
