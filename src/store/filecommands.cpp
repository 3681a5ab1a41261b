#include "store/filecommands.h"

#include "store/duplicates.h"
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFileInfo>

namespace fenwork {

namespace {

const QString kNewFileTag = QStringLiteral("<new>");

void selectNode(AppContext &app, const QString &key)
{
    emit app.store().nodeSelectionRequested(key);
}

QString fileName(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash < 0 ? path : path.mid(slash + 1);
}

// The start of a save dialog for a file that has no path yet: the default folder, and there the
// first "NewAbcFile<n>.abc" that isn't taken.
QString newFileStartPath(const AppContext &app)
{
    const QString folder = app.ini().get(keys::DirDef);
    QString name = uniqueName(QStringLiteral("NewAbcFile"), QStringLiteral(".abc"), folder);
    if (name.isEmpty())
        name = QStringLiteral("NewAbcFile");
    name += QStringLiteral(".abc");
    return folder.isEmpty() ? name : QDir(folder).filePath(name);
}

bool isChanged(const Node *file)
{
    return file->Image == Pic::FileAbcM || file->Image == Pic::FileRoM;
}

bool isReadOnly(const Node *file)
{
    return file->Image == Pic::FileRo || file->Image == Pic::FileRoM;
}

} // namespace

bool FichierEnregistrer(AppContext &app, const QString &kFile, int mode)
{
    WorkspaceTree &tree = app.tree();
    UserDialogs &ui = app.ui();
    Node *file = tree.find(kFile);
    if (!file)
        return false;
    // The trash box has no path of its own in the tree: a plain save writes the file it is kept
    // in, a save as writes a copy and leaves the box as it is.
    const bool isTrash = kFile == key::Trash;
    QString path = isTrash ? app.paths().trashFile() : file->Tag;
    if (!isTrash && path == kNewFileTag)
        mode = 1;

    QString lineEnd;
    if (mode == 1) {
        const QStringList filters {
            app.msg("<ABCfile>") + QStringLiteral(" (*.abc)"),
            app.msg("<ABCfileX>") + QStringLiteral(" (*.abc)"),
            app.msg("<ABCfileM>") + QStringLiteral(" (*.abc)"),
            app.msg("<textFile>") + QStringLiteral(" (*.txt)"),
        };
        const QString start = (isTrash || path == kNewFileTag) ? newFileStartPath(app) : path;
        int row = 1;
        const QString chosen = ui.saveFileName(app.msg("<saveABCas>"), start, filters, &row);
        if (chosen.isEmpty())
            return false;
        // Also refuses the file's own path: save as under the same name is no save as.
        if (IsOpenFile(app, chosen))
            return false;
        if (row == 2)
            lineEnd = QStringLiteral("lf");
        else if (row == 3)
            lineEnd = QStringLiteral("cr");
        path = chosen;
    }

    QString why;
    if (!app.store().FichierSaveFromKey(kFile, path, lineEnd, &why)) {
        ui.contextError(QStringLiteral("FichierEnregistrer"), why);
        return false;
    }

    if (isTrash) {
        if (mode == 1)
            app.recent().add(path);
        return true;
    }
    if (mode == 1) {
        file->Tag = path;
        tree.setText(file, GetAliasFile(app, kFile) + QStringLiteral(" [") + fileName(path) + u']');
    }
    if (Node *body = file->child(1)) {
        for (Node *tune : body->children())
            if (tune->Image != Pic::Tune)
                tree.setImage(tune, Pic::Tune);
    }
    // Also from a read-only picture: the file just written is a writable copy.
    tree.setImage(file, Pic::FileAbc);
    app.commands().setEnabled(QStringLiteral("mnu_save0"), false);
    app.commands().setEnabled(QStringLiteral("save"), false);
    app.recent().add(path);
    return true;
}

bool FichierFermer(AppContext &app, const QString &fileKey)
{
    // A copy: callers may pass the node's own Key, which goes with the node.
    const QString kFile = fileKey;
    if (kFile.isEmpty() || kFile == key::Trash)
        return false;
    WorkspaceTree &tree = app.tree();
    Node *file = tree.find(kFile);
    if (!file || file->parent() != tree.root())
        return false;

    if (isChanged(file)) {
        const QString question
            = app.msg("<fileModified>") + CRLF + CRLF + file->Text + CRLF + CRLF + app.msg("<saveModif>");
        switch (app.ui().question(question, true)) {
        case UserDialogs::Answer::Cancel:
            return false;
        case UserDialogs::Answer::Yes:
            if (file->Tag != kNewFileTag) {
                QString why;
                if (!app.store().FichierSaveFromKey(kFile, file->Tag, QString(), &why)) {
                    app.ui().contextError(QStringLiteral("FichierFermer"), why);
                    return false;
                }
            } else if (!FichierEnregistrer(app, kFile, 1)) {
                return false;
            }
            break;
        case UserDialogs::Answer::No:
            break;
        }
    }

    tree.remove(file);
    app.store().forgetFile(kFile);
    // Nothing may keep pointing into the nodes just removed.
    const QString prefix = kFile + u'_';
    Selection &selection = app.selection();
    selection.set(selection.tuneKey().startsWith(prefix) ? QString() : selection.tuneKey(),
        selection.fileKey() == kFile ? QString() : selection.fileKey());
    return true;
}

void mnu_save(AppContext &app, int index)
{
    const QString kFile = app.selection().fileKey();
    Node *file = kFile.isEmpty() ? nullptr : app.tree().find(kFile);
    if (!file) {
        app.ui().message(app.msg("<selectFile>"));
        return;
    }
    if (kFile == key::Trash) {
        const Node *body = file->child(1);
        if (!body || body->childCount() == 0) {
            app.ui().message(app.msg("<selectFile>"));
            return;
        }
        if (app.ui().question(app.msg("<trashSelected>")) != UserDialogs::Answer::Yes)
            return;
    }
    if (isReadOnly(file))
        index = 1;
    FichierEnregistrer(app, kFile, index);
}

void mnu_SaveAll(AppContext &app)
{
    const Node *root = app.tree().root();
    if (!root)
        return;
    // The keys are gathered first, so that the walk does not depend on what the saves do.
    QStringList changed;
    for (int i = 1; i < root->childCount(); ++i) {
        const Node *file = root->child(i);
        if (isChanged(file))
            changed.append(file->Key);
    }
    for (const QString &kFile : changed)
        FichierEnregistrer(app, kFile, 0);
}

void mnu_saveSelTunes(AppContext &app, int index)
{
    WorkspaceTree &tree = app.tree();
    UserDialogs &ui = app.ui();
    const Node *root = tree.root();
    if (!root)
        return;
    QList<const Node *> files;
    if (index == 0) {
        const Node *file = app.selection().fileKey().isEmpty() ? nullptr : tree.find(app.selection().fileKey());
        if (!file) {
            ui.message(app.msg("<selectFile>"));
            return;
        }
        files.append(file);
    } else {
        for (int i = 1; i < root->childCount(); ++i)
            files.append(root->child(i));
    }

    const bool escape = app.ini().get(keys::ABCstr) == u"1";
    QString text;
    int n = 0;
    for (const Node *file : files) {
        const Node *body = file->child(1);
        if (!body)
            continue;
        for (const Node *tune : body->children()) {
            if (tune->ForeColor == color::TuneLeftOut)
                continue;
            QString tuneText = app.store().GetStringTune(tune->Key, false, ++n);
            if (escape)
                tuneText = abcEscapeEncode(tuneText, &ui);
            text += tuneText + CRLF;
        }
    }

    const QStringList filters {
        app.msg("<ABCfile>") + QStringLiteral(" (*.abc)"),
        app.msg("<textFile>") + QStringLiteral(" (*.txt)"),
    };
    const QString folder = app.ini().get(keys::DirDef);
    const QString start = folder.isEmpty() ? QStringLiteral("Nouveau.abc")
                                           : QDir(folder).filePath(QStringLiteral("Nouveau.abc"));
    const QString path = ui.saveFileName(app.msg("<saveABCas>"), start, filters);
    if (path.isEmpty() || IsOpenFile(app, path))
        return;

    if (app.ini().get(keys::NoSaveHdrFile) == u"0")
        text.prepend(QStringLiteral("%abc") + CRLF + app.creatorLine + CRLF + CRLF);
    QString why;
    if (!writeTextFile(path, text, TextEncoding::Utf8, &why)) {
        ui.contextError(QStringLiteral("mnu_saveSelTunes"), why);
        return;
    }
    if (ui.question(app.msg("<askOpen>")) != UserDialogs::Answer::Yes)
        return;
    const QString kFile = app.store().FichierOuvrir(path, false, false, false);
    if (kFile.isEmpty())
        return;
    selectNode(app, kFile);
    int doubled = 0;
    ShowDoublonsX(app, kFile, false, doubled);
}

bool mnu_closeFile(AppContext &app, const std::function<void()> &afterClose)
{
    if (!FichierFermer(app, app.selection().fileKey()))
        return false;
    CompterFiles(app);
    selectNode(app, key::Root);
    if (afterClose)
        afterClose();
    return true;
}

bool mnu_closeAll(AppContext &app, const std::function<void()> &afterClose)
{
    bool all = true;
    while (const Node *root = app.tree().root()) {
        const Node *file = root->child(1);
        if (!file)
            break;
        if (!FichierFermer(app, file->Key)) {
            all = false;
            break;
        }
    }
    CompterFiles(app);
    selectNode(app, key::Root);
    if (afterClose)
        afterClose();
    return all;
}

void mnu_Recents(AppContext &app, int index)
{
    const QStringList &items = app.recent().items();
    if (index < 0 || index >= items.size())
        return;
    const QString path = items.at(index);
    if (path.isEmpty())
        return;
    const QFileInfo info(path);
    if (!info.exists()) {
        app.ui().message(app.msg("<fileNotFound>"), UserDialogs::Icon::Information);
        app.recent().remove(index);
        return;
    }
    const QString kFile = app.store().FichierOuvrir(path, false, false, !info.isWritable());
    if (kFile.isEmpty())
        return;
    selectNode(app, kFile);
    int doubled = 0;
    ShowDoublonsX(app, kFile, false, doubled);
    if (doubled > 0)
        app.ui().message(
            path + CRLF + CRLF + app.text(QStringLiteral("MSG"), QStringLiteral("<dblXinFile>")));
}

} // namespace fenwork
