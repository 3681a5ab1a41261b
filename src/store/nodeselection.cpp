#include "store/nodeselection.h"

#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/commandstate.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDateTime>
#include <QFileInfo>

namespace fenwork {

namespace {

const QString kProgramName = QStringLiteral("Fennelworks");

bool isChangedFile(const Node *file)
{
    return file && (file->Image == Pic::FileAbcM || file->Image == Pic::FileRoM);
}

QString dateText(const QDateTime &when)
{
    return when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// Path, size and date lines of one file on disk; a file that isn't there leaves the values out.
void appendDiskLines(QList<InfoLine> &lines, const QString &path, int color)
{
    const QFileInfo info(path);
    const bool there = info.isFile();
    lines.append({ QStringLiteral(" Path     : ") + path, color });
    lines.append({ QStringLiteral(" Size     : ")
            + (there ? QString::number(info.size()) + QStringLiteral(" Bytes") : QString()),
        color });
    lines.append(
        { QStringLiteral(" Modified : ") + (there ? dateText(info.lastModified()) : QString()), color });
}

} // namespace

SelectionColumn selectionColumn(const QString &key)
{
    switch (keyKind(key)) {
    case KeyKind::TrashTune:
    case KeyKind::Trash:
        return SelectionColumn::Trash;
    case KeyKind::TuneBody:
    case KeyKind::TuneHeader:
    case KeyKind::Tune:
        return SelectionColumn::Tune;
    case KeyKind::FileHeader:
        return SelectionColumn::FileHeader;
    case KeyKind::FileBody:
    case KeyKind::File:
        return SelectionColumn::File;
    case KeyKind::Root:
        return SelectionColumn::Root;
    case KeyKind::None:
        break;
    }
    return SelectionColumn::None;
}

NodeSelection describeNodeClick(const AppContext &app, const QString &key)
{
    NodeSelection s;
    s.tuneKey = app.selection().tuneKey();
    s.fileKey = app.selection().fileKey();
    const Node *node = key.isEmpty() ? nullptr : app.tree().find(key);
    if (!node)
        return s;
    s.column = selectionColumn(key);
    s.line = node->Text;

    const TuneStore &store = app.store();
    const auto showTune = [&](const QString &kTune, bool selectLine) {
        s.tuneKey = kTune;
        s.fileKey = GetKFile(key);
        s.content = PanelContent::Text;
        s.text = store.GetStringTune(kTune, false, 0);
        s.colour = true;
        s.selectLine = selectLine;
        s.score = true;
    };

    switch (keyKind(key)) {
    case KeyKind::TrashTune:
        s.tuneKey.clear();
        s.fileKey = key::Trash;
        s.content = PanelContent::Empty;
        s.trashPanel = true;
        break;
    case KeyKind::Trash:
        // Every node of the trash box works on the box itself: its header and body are no files.
        s.tuneKey.clear();
        s.fileKey = key::Trash;
        s.content = PanelContent::Empty;
        break;
    case KeyKind::TuneBody:
    case KeyKind::TuneHeader:
        showTune(GetKtune(key), true);
        break;
    case KeyKind::Tune:
        showTune(key, false);
        break;
    case KeyKind::FileHeader:
        s.tuneKey.clear();
        s.fileKey = GetKFile(key);
        s.content = PanelContent::Text;
        s.text = store.GetStringHdrFile(s.fileKey, false);
        s.colour = true;
        s.selectLine = true;
        s.score = true;
        break;
    case KeyKind::FileBody:
        s.tuneKey.clear();
        s.fileKey = GetKFile(key);
        s.content = PanelContent::Empty;
        break;
    case KeyKind::File:
        s.tuneKey.clear();
        s.fileKey = key;
        s.content = PanelContent::FileInformation;
        break;
    case KeyKind::Root:
        s.tuneKey.clear();
        s.fileKey.clear();
        s.content = PanelContent::Empty;
        break;
    case KeyKind::None:
        break;
    }

    const Node *tune = s.tuneKey.isEmpty() ? nullptr : app.tree().find(s.tuneKey);
    s.caption = tune ? tune->Text : kProgramName;
    return s;
}

SelectionFacts selectionFacts(const AppContext &app, const NodeSelection &selection)
{
    SelectionFacts facts;
    const WorkspaceTree &tree = app.tree();
    facts.fileChanged = !selection.fileKey.isEmpty() && isChangedFile(tree.find(selection.fileKey));
    const Node *trashBody = tree.find(key::TrashBody);
    facts.trashHoldsTune = trashBody && trashBody->childCount() > 0;
    facts.tunePending = !app.store().pendingTune.isEmpty();
    return facts;
}

QList<CommandSwitch> selectionCommands(SelectionColumn column, const SelectionFacts &facts)
{
    if (column == SelectionColumn::None)
        return {};
    const bool trash = column == SelectionColumn::Trash;
    const bool tune = column == SelectionColumn::Tune;
    const bool header = column == SelectionColumn::FileHeader;
    const bool root = column == SelectionColumn::Root;
    const bool inFile = !trash && !root; // a tune, the file header, the file or its body

    QList<CommandSwitch> list;
    const auto set = [&list](std::initializer_list<const char *> names, bool enabled) {
        for (const char *name : names)
            list.append({ QString::fromLatin1(name), enabled });
    };
    // The text that can be edited: a tune or the file's header.
    set({ "abcedit", "bt_Midi1" }, tune || header);
    set({ "mnu_Morceau", "tunecut", "tunecopy", "tunedel", "tomidi", "printtune", "topdftune" }, tune);
    set({ "tunepaste", "mnu_pasteTune" }, tune && facts.tunePending);
    // A new file needs no selection, so "mnu_doNew0" stays out of this row.
    set({ "mnu_doNew1", "mnu_Outils", "mnu_closeFile", "mnu_ExportFile", "mnu_playTunes", "mnu_saveSelTunes",
            "newtune", "toolsf", "closeabc", "print", "printfile", "topdf", "topdffile", "playfile" },
        inFile);
    const bool save = trash ? facts.trashHoldsTune : inFile && facts.fileChanged;
    set({ "mnu_save0", "save" }, save);
    set({ "mnu_save1" }, !root);
    return list;
}

void applyNodeClick(AppContext &app, const NodeSelection &selection)
{
    if (selection.column == SelectionColumn::None)
        return;
    app.selection().set(selection.tuneKey, selection.fileKey);
    CommandState &commands = app.commands();
    for (const CommandSwitch &command : selectionCommands(selection.column, selectionFacts(app, selection)))
        commands.setEnabled(command.name, command.enabled);
}

QList<InfoLine> fileInformation(const AppContext &app, const QString &kFile)
{
    QList<InfoLine> lines;
    const QString path = GetPathFile(app, kFile);
    lines.append({ QString(), kInfoColor });
    lines.append({ QStringLiteral(" ------ ABC FILE -------"), kInfoColor });
    lines.append({ QStringLiteral(" Alias    : ") + GetAliasFile(app, kFile), kInfoColor });
    appendDiskLines(lines, path, kInfoColor);
    lines.append({ QString(), kInfoColor });

    lines.append({ QStringLiteral(" --- ABC BACKUP FILE ---"), kBackupInfoColor });
    const QString backup = path + QStringLiteral(".BAK");
    if (!path.isEmpty() && QFileInfo(backup).isFile())
        appendDiskLines(lines, backup, kBackupInfoColor);
    else
        lines.append({ QStringLiteral("  (none)"), kBackupInfoColor });
    return lines;
}

qsizetype lineSelectionStart(const QString &panelText, const QString &line)
{
    if (line.isEmpty())
        return -1;
    return panelText.indexOf(line);
}

void toggleTuneMarks(AppContext &app, const QString &key, bool eachOnItsOwn)
{
    WorkspaceTree &tree = app.tree();
    Node *node = tree.find(key);
    if (!node)
        return;
    // Marks make a selection worth saving, even where this click marks nothing.
    app.commands().setEnabled(QStringLiteral("mnu_saveTunesFltr"), true);
    switch (keyKind(key)) {
    case KeyKind::Tune:
        if (node->ForeColor == color::TuneLeftOut)
            tree.setForeColor(node, color::TuneSelected);
        else if (node->ForeColor == color::TuneSelected)
            tree.setForeColor(node, color::TuneLeftOut);
        break;
    case KeyKind::File:
    case KeyKind::FileBody: {
        Node *body = keyKind(key) == KeyKind::File ? node->child(1) : node;
        if (!body || body->childCount() == 0)
            return;
        if (eachOnItsOwn) {
            for (Node *tune : body->children())
                tree.setForeColor(tune, tune->ForeColor != 0 ? color::TuneSelected : color::TuneLeftOut);
        } else {
            const int colour = body->firstChild()->ForeColor == color::TuneLeftOut ? color::TuneSelected
                                                                                   : color::TuneLeftOut;
            for (Node *tune : body->children())
                tree.setForeColor(tune, colour);
        }
        break;
    }
    default:
        break;
    }
}

} // namespace fenwork
