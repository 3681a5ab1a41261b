#include "store/treeops.h"

#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "store/workspacetree.h"

namespace fenwork {

KeyKind keyKind(const QString &k)
{
    const bool inTrash = k.contains(key::Trash) && (k.size() == 6 || !k.at(6).isDigit());
    if (inTrash && k.contains(u"_tune"))
        return KeyKind::TrashTune;
    if (inTrash)
        return KeyKind::Trash;
    if (k.contains(key::BdyTune))
        return KeyKind::TuneBody;
    if (k.contains(key::HdrTune))
        return KeyKind::TuneHeader;
    if (k.contains(u"_tune"))
        return KeyKind::Tune;
    if (k.contains(key::HdrFile))
        return KeyKind::FileHeader;
    if (k.contains(key::BdyFile))
        return KeyKind::FileBody;
    if (k.contains(u"_file"))
        return KeyKind::File;
    if (k == key::Root)
        return KeyKind::Root;
    return KeyKind::None;
}

QString GetKFile(const QString &k)
{
    const qsizetype at = k.indexOf(u'_', 1);
    return at < 0 ? k : k.left(at);
}

QString GetKtune(const QString &k)
{
    if (keyKind(k) == KeyKind::Trash || keyKind(k) == KeyKind::TrashTune)
        return {};
    qsizetype at = k.indexOf(key::BdyTune);
    if (at >= 0)
        return k.left(at);
    at = k.indexOf(key::HdrTune);
    if (at >= 0)
        return k.left(at);
    if (k.contains(u"_tune"))
        return k;
    return {};
}

Pic GetIconeLigne(QString &line)
{
    line = trimBlanks(line);
    if (line.startsWith(u"%%") && QStringView(line).left(13).compare(u"%%abc-include", Qt::CaseInsensitive) == 0)
        return Pic::Include;
    if (line.startsWith(u"%%"))
        return Pic::ChpEtend;
    if (line.startsWith(u'%') || line.startsWith(u"r:"))
        return Pic::Rem;
    if (line.size() >= 2 && line.at(1) == u':') {
        const QChar first = line.at(0);
        if (first == u'P')
            return trimBlanks(line.mid(2)).size() < 2 ? Pic::Part : Pic::Propr;
        if (first == u'V')
            return Pic::Voix;
        if ((first >= u'A' && first <= u'Z') || (first >= u'a' && first <= u'z'))
            return Pic::Propr;
    }
    return Pic::Mus;
}

void SetOneKey(WorkspaceTree &tree, Node *node, const QString &prefix)
{
    for (int n = 1;; ++n)
        if (tree.setKey(node, prefix + QString::number(n)))
            return;
}

QString GetPathFile(const AppContext &app, const QString &kFile)
{
    if (kFile.isEmpty())
        return {};
    const Node *node = app.tree().find(kFile);
    return node ? node->Tag : QString();
}

QString GetAliasFile(const AppContext &app, const QString &kFile, bool *found)
{
    const Node *line = app.tree().find(kFile + key::HdrFile + QStringLiteral("_lgalias"));
    if (found)
        *found = line != nullptr;
    if (!line)
        return {};
    const QString alias = trimBlanks(line->Text.mid(11));
    return alias == u"none" ? QString() : alias;
}

bool IsOpenFile(AppContext &app, const QString &path)
{
    const Node *root = app.tree().root();
    if (!root)
        return false;
    for (int i = 1; i < root->childCount(); ++i) {
        if (root->child(i)->Tag == path) {
            app.ui().message(path + CRLF + CRLF + app.text(QStringLiteral("Msg"), QStringLiteral("<openSyn>")));
            return true;
        }
    }
    return false;
}

void CompterTunesDansFichier(AppContext &app, const QString &kFile)
{
    WorkspaceTree &tree = app.tree();
    Node *file = tree.find(kFile);
    Node *body = file ? file->child(1) : nullptr;
    if (!body)
        return;
    const QString section = QStringLiteral("Mainform");
    const int n = body->childCount();
    QString count;
    if (n >= 2)
        count = QString::number(n) + u' ' + app.text(section, QStringLiteral("<tunes>")) + u')';
    else if (n == 1)
        count = QStringLiteral("1 ") + app.text(section, QStringLiteral("<tune>")) + u')';
    else
        count = app.text(section, QStringLiteral("<empty>")) + u')';
    if (kFile == key::Trash) {
        tree.setText(body, app.text(section, QStringLiteral("<contents>")) + QStringLiteral(" (") + count);
        tree.setText(file, app.text(section, QStringLiteral("<trashbox>")) + QStringLiteral(" (") + count);
        if (file->Bold != (n >= 1)) {
            file->Bold = n >= 1;
            tree.changed(file);
        }
    } else {
        tree.setText(body, app.text(QStringLiteral("MainForm"), QStringLiteral("<fileBody>")) + QStringLiteral(" (")
                               + count);
    }
}

int openFileCount(const AppContext &app)
{
    const Node *root = app.tree().root();
    return root ? qMax(0, root->childCount() - 1) : 0;
}

void CompterFiles(AppContext &app)
{
    Node *root = app.tree().root();
    if (!root)
        return;
    const int n = openFileCount(app);
    const QString word = app.text(QStringLiteral("MainForm"), n > 1 ? QStringLiteral("<files>") : QStringLiteral("<file>"));
    app.tree().setText(root, QStringLiteral("Fennelworks (") + QString::number(n) + u' ' + word + u')');
    app.commands().setEnabled(QStringLiteral("mnu_SaveAll"), n > 0);
    app.commands().setEnabled(QStringLiteral("saveall"), n > 0);
}

void createWorkspaceRoot(AppContext &app)
{
    WorkspaceTree &tree = app.tree();
    tree.clear();
    Node *root = tree.add(nullptr, WorkspaceTree::Place::Child, key::Root, QStringLiteral("Fennelworks"), Pic::AbcRoot);
    root->Expanded = true;
    const QString section = QStringLiteral("Mainform");
    Node *trash = tree.addChild(root, key::Trash, app.text(section, QStringLiteral("<trashbox>")), Pic::Poub);
    trash->ForeColor = color::Trash;
    Node *header = tree.addChild(trash, key::TrashHeader, app.text(section, QStringLiteral("<trashboxHeader>")),
                                 Pic::HdrFile);
    header->ForeColor = color::TrashHeader;
    header->Bold = true;
    Node *body = tree.addChild(trash, key::TrashBody, app.text(section, QStringLiteral("<contents>")), Pic::BdyFile);
    body->ForeColor = color::TrashHeader;
    body->Bold = true;
}

QString statusCaption(const WorkspaceTree &tree, const QString &key)
{
    const Node *node = tree.find(key);
    if (!node)
        return {};
    const Node *file = nullptr;
    const Node *tune = nullptr;
    for (const Node *n = node; n && n->parent(); n = n->parent()) {
        if (!n->parent()->parent())
            file = n;
        else if (n->parent()->Key.endsWith(key::BdyFile))
            tune = n;
    }
    if (!file)
        return node->Text; // the root
    return tune ? file->Text + QStringLiteral(" \u203a ") + tune->Text : file->Text;
}

} // namespace fenwork
