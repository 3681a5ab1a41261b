#include "store/tuneops.h"

#include "store/duplicates.h"
#include "frame/appcontext.h"
#include "frame/clipboard.h"
#include "frame/selection.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/regexp.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"
#include "store/trashbox.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>

namespace fenwork {

namespace {

void setPasteEnabled(AppContext &app, bool enabled)
{
    app.commands().setEnabled(QStringLiteral("mnu_pasteTune"), enabled);
    app.commands().setEnabled(QStringLiteral("tunepaste"), enabled);
}

void selectNode(AppContext &app, const QString &key)
{
    if (!key.isEmpty())
        emit app.store().nodeSelectionRequested(key);
}

void pruneChoiceList(AppContext &app)
{
    emit app.store().tunesRemoved();
}

void showDoubles(AppContext &app, const QString &kFile)
{
    int count = 0;
    ShowDoublonsX(app, kFile, false, count);
}

// A paste into the trash box or onto nothing cannot come from the commands, which are off there.
void internalError(AppContext &app, const QString &text)
{
    app.ui().message(text, UserDialogs::Icon::Critical);
    app.ui().terminate(1);
}

bool startsWithField(const QString &line, QChar field)
{
    return line.size() >= 2 && line.at(0) == field && line.at(1) == u':';
}

} // namespace

void CopierTune(AppContext &app, const QString &kTune, QString &pending)
{
    const QString text = app.store().GetStringTune(kTune, false, 0);
    if (trimBlanks(text).isEmpty()) {
        app.commands().setEnabled(QStringLiteral("mnu_pasteTune"), false);
        return;
    }
    app.clipboard().setText(text);
    if (!pending.isEmpty()
        && app.ui().question(app.msg("<clipNotSaved>") + CRLF + CRLF + app.msg("<continue>"))
               != UserDialogs::Answer::Yes)
        return;
    setPasteEnabled(app, true);
    pending = kTune + CRLF + text;
}

void CouperTune(AppContext &app, const QString &kTune, QString &pending)
{
    CopierTune(app, kTune, pending);
    if (Node *tune = app.tree().find(kTune))
        app.tree().remove(tune);
    CompterTunesDansFichier(app, app.selection().fileKey());
}

QString CollerTuneSur(AppContext &app, const QString &targetKey, QString &pending)
{
    const qsizetype cut = pending.indexOf(CRLF);
    const QString kSource = cut < 0 ? pending : pending.left(cut);
    QString text = cut < 0 ? QString() : pending.mid(cut + 2);
    // Nothing pending, or a key without a tune: there is nothing to paste.
    if (trimBlanks(text).isEmpty()) {
        setPasteEnabled(app, false);
        return {};
    }
    if (targetKey.contains(key::Trash)) {
        internalError(app, QStringLiteral("* * * Erreur logique : coller dans poubelle ! * * *"));
        return {};
    }
    if (targetKey.isEmpty()) {
        internalError(app, QStringLiteral("Context: CollerTuneSur\r\n\r\nno target"));
        return {};
    }
    if (targetKey == key::Root)
        return {};

    TuneStore &store = app.store();
    QString kTargetFile;
    QString kNew;
    QString targetTune;
    if (targetKey.contains(key::BdyTune))
        targetTune = targetKey.left(targetKey.indexOf(key::BdyTune));
    else if (targetKey.contains(key::HdrTune))
        targetTune = targetKey.left(targetKey.indexOf(key::HdrTune));
    else if (targetKey.contains(QStringLiteral("_tune")))
        targetTune = targetKey;

    if (!targetTune.isEmpty()) {
        kTargetFile = GetKFile(targetTune);
        if (GetKFile(kSource) == kTargetFile) {
            // A tune cut from this file gets its own key back.
            QString wanted = kSource;
            kNew = store.AddStringTune(text, app.selection().fileKey(), false, targetTune, true, wanted);
        } else {
            QString none;
            kNew = store.AddStringTune(text, kTargetFile, false, targetTune, true, none);
        }
    } else {
        kTargetFile = targetKey.contains(key::HdrFile) || targetKey.contains(key::BdyFile) ? GetKFile(targetKey)
                                                                                          : targetKey;
        QString none;
        kNew = store.AddStringTune(text, kTargetFile, false, QString(), false, none);
    }
    CompterTunesDansFichier(app, kTargetFile);
    pending.clear();
    setPasteEnabled(app, false);
    return kNew;
}

void DelTune(AppContext &app, const QString &kTune, bool confirm, bool toTrash)
{
    WorkspaceTree &tree = app.tree();
    Node *tune = tree.find(kTune);
    if (!tune)
        return;
    const QString kFile = GetKFile(kTune);
    if (confirm) {
        const Node *file = tree.find(kFile);
        const QString rule(80, u'-');
        const QString question = rule + CRLF + CRLF + QStringLiteral("- ") + app.msg("<file>").toUpper()
                                 + QStringLiteral(" :") + CRLF + u'\t' + (file ? file->Text : QString()) + CRLF
                                 + CRLF + QStringLiteral("- ") + app.msg("<tune>").toUpper() + QStringLiteral(" :")
                                 + CRLF + u'\t' + tune->Text + CRLF + CRLF + rule + CRLF + CRLF
                                 + app.msg(toTrash ? "<tuneToTrash>" : "<tuneToErase>");
        if (app.ui().question(question) != UserDialogs::Answer::Yes)
            return;
    }
    if (toTrash)
        moveToTrash(app, kTune);
    if (Node *again = tree.find(kTune))
        tree.remove(again);
    CompterTunesDansFichier(app, kFile);
    app.store().SetFlagModifFile(kFile);
    selectNode(app, kFile);
}

QString AddNewTune(AppContext &app, const QString &kFile, bool useTemplate)
{
    BusyScope busy(app.ui());
    QString text = app.newTuneText;
    const QString templateName = app.ini().get(keys::ModeleDef);
    if (!templateName.isEmpty() && useTemplate) {
        const QString path = QDir(app.paths().userFolder()).filePath(QStringLiteral("tmpl/") + templateName
                                                                    + QStringLiteral(".txt"));
        if (QFile::exists(path)) {
            QStringList kept;
            const QString content = replaceAll(readTextFile(path).text, u"\r\n", u"\n");
            for (QString line : content.split(u'\n')) {
                line = trimBlanks(line);
                if (!line.isEmpty())
                    kept.append(line);
            }
            text = kept.join(CRLF);
        } else {
            app.ui().message(app.msg("<tmplNotFound>"));
        }
    }
    QStringList lines;
    for (const QString &line : trimBlanks(text).split(CRLF))
        if (!line.isEmpty() && !line.startsWith(QStringLiteral("X:")))
            lines.append(line);

    const Node *body = app.tree().find(kFile + key::BdyFile);
    int n = (body ? body->childCount() : 0) + 1;
    if (n > 1) {
        const QString fileText = app.store().GetStringFile(kFile, false, false);
        RegExp re;
        re.MultiLine = true;
        // A prefix counts: "X:12" rules out 1 as well, so the number found may be below the count.
        for (; n > 0; --n) {
            re.Pattern = QStringLiteral("^X: *?") + QString::number(n);
            if (!re.Test(fileText))
                break;
        }
    }
    const QString tuneText = QStringLiteral("X:") + QString::number(n) + CRLF + lines.join(CRLF);
    const QString kNew = app.store().AddStringTune(tuneText, kFile);
    CompterTunesDansFichier(app, kFile);
    app.store().SetFlagModifFile(kFile);
    return kNew;
}

void AddTuneAsPart(AppContext &app, const QString &kSource, const QString &kTarget, int repeats)
{
    TuneStore &store = app.store();
    const bool compact = app.ini().getBool(keys::CompactSet);
    const QString sourceText = store.GetStringTune(kSource, false, 0);
    const QStringList a = sourceText.split(CRLF);
    QStringList b = store.GetStringTune(kTarget, false, 0).split(CRLF);

    int letter = 64;
    for (qsizetype i = b.size() - 1; i >= 0; --i) {
        if (startsWithField(b.at(i), u'P')) {
            letter = b.at(i).size() > 2 ? b.at(i).at(2).unicode() : 64;
            break;
        }
    }
    qsizetype order = -1;
    for (qsizetype i = 0; i < b.size(); ++i) {
        if (startsWithField(b.at(i), u'K'))
            break;
        if (startsWithField(b.at(i), u'P')) {
            order = i;
            break;
        }
    }
    if (order < 0) {
        order = qMin<qsizetype>(2, b.size());
        b.insert(order, QStringLiteral("P:"));
    }
    const auto startPart = [&] {
        ++letter;
        if (letter == 91) // after "Z" come the small letters
            letter = 97;
        const QString name { QChar(char16_t(letter)) };
        b.append(QStringLiteral("P:") + name);
        b[order] += QStringLiteral("(") + name + QStringLiteral(")") + QString::number(repeats);
    };
    bool inHeader = true;
    for (const QString &line : a) {
        const QString t = line.left(2);
        if (t == u"X:") {
            startPart();
        } else if (t == u"P:") {
            if (!inHeader)
                startPart();
        } else if (t == u"K:") {
            inHeader = false;
            b.append(line);
        } else if (t == u"M:" || t == u"Q:" || t == u"L:") {
            b.append(line);
        } else if (((t >= u"A:" && t <= u"Z:") || (t >= u"a:" && t <= u"z:")) && t.endsWith(u':') && compact) {
            b.append(u'%' + line);
        } else {
            b.append(line);
        }
    }
    QString none;
    QString text = b.join(CRLF);
    store.AddStringTune(text, GetKFile(kTarget), false, kTarget, false, none);
    selectNode(app, kTarget);
    if (Node *tune = app.tree().find(kTarget))
        app.tree().setImage(tune, Pic::TuneM);
    store.SetFlagModifFile(GetKFile(kTarget));

    const qsizetype p = sourceText.indexOf(QStringLiteral("|:")) + 1;
    const qsizetype close = sourceText.indexOf(QStringLiteral(":|")) + 1;
    const qsizetype twice = sourceText.indexOf(QStringLiteral("::")) + 1;
    const qsizetype q = qMax(close, twice);
    if (p >= q)
        app.ui().message(app.msg("<noCloseRepeat>"));
}

bool cutTuneNotPasted(AppContext &app)
{
    const QString &pending = app.store().pendingTune;
    if (pending.isEmpty())
        return false;
    // A copied tune still stands in the tree under its key; a cut one does not.
    return !app.tree().find(pending.left(pending.indexOf(CRLF)));
}

QStringList clipboardTunes(const QString &text)
{
    if (!text.contains(QStringLiteral("X:")))
        return { QStringLiteral("X:0") + CRLF + text };
    QStringList pieces = text.split(QStringLiteral("X:"));
    pieces.removeFirst();
    for (QString &piece : pieces)
        piece.prepend(QStringLiteral("X:"));
    return pieces;
}

void mnu_copyTune(AppContext &app)
{
    CopierTune(app, app.selection().tuneKey(), app.store().pendingTune);
}

void mnu_cutTune(AppContext &app)
{
    if (app.selection().tuneKey().isEmpty())
        return;
    const QString kFile = app.selection().fileKey();
    CouperTune(app, app.selection().tuneKey(), app.store().pendingTune);
    selectNode(app, kFile);
    app.store().SetFlagModifFile(kFile);
    showDoubles(app, kFile);
    pruneChoiceList(app);
}

void mnu_pasteTune(AppContext &app)
{
    if (app.selection().tuneKey().isEmpty()) {
        app.ui().message(app.msg("<selectTarget>"));
        return;
    }
    const QString kNew = CollerTuneSur(app, app.selection().tuneKey(), app.store().pendingTune);
    if (kNew.isEmpty())
        return;
    const QString kFile = GetKFile(kNew);
    selectNode(app, kNew);
    app.store().SetFlagModifFile(kFile);
    showDoubles(app, kFile);
}

void mnu_delTune(AppContext &app, int index)
{
    const QString kFile = app.selection().fileKey();
    if (index == 0 || index == 1)
        DelTune(app, app.selection().tuneKey(), true, index == 0);
    showDoubles(app, kFile);
    pruneChoiceList(app);
}

QString CreateNewTune(AppContext &app)
{
    const QString kFile = app.selection().fileKey();
    if (kFile.isEmpty())
        return {};
    const QString kNew = AddNewTune(app, kFile, true);
    selectNode(app, kNew);
    app.ui().processEvents();
    app.store().SetFlagModifFile(kFile);
    return kNew;
}

void mnu_impClipboard(AppContext &app)
{
    const QString kFile = app.selection().fileKey();
    if (kFile.isEmpty()) {
        app.ui().message(app.msg("<selectFile>"));
        return;
    }
    QString text = app.clipboard().text();
    // The desktop's clipboard speaks LF; lines in memory end in CR LF.
    text = replaceAll(replaceAll(text, u"\r\n", u"\n"), u"\n", u"\r\n");
    if (!text.contains(QStringLiteral("K:")) && app.ui().question(app.msg("<clipInval>")) != UserDialogs::Answer::Yes)
        return;
    QString last;
    for (const QString &piece : clipboardTunes(text)) {
        const QString key = app.store().AddStringTune(piece, kFile);
        if (Node *tune = app.tree().find(key)) {
            app.tree().setImage(tune, Pic::TuneM);
            last = key;
        }
    }
    app.ui().processEvents();
    selectNode(app, last);
    app.store().SetFlagModifFile(kFile);
    CompterTunesDansFichier(app, kFile);
}

bool isDraggableTune(const QString &key)
{
    return key.contains(QStringLiteral("_tune")) && !key.contains(key::Trash) && !key.contains(key::HdrTune)
           && !key.contains(key::BdyTune);
}

void dropTune(AppContext &app, const QString &draggedKey, const QString &targetKey, bool asPart)
{
    // Substring tests, as the keys nest: a tune is never dropped on itself or its own lines.
    if (draggedKey.isEmpty() || targetKey.contains(draggedKey) || targetKey.contains(key::Root)
        || targetKey.contains(QStringLiteral("hdr")))
        return;
    const QString kSourceFile = GetKFile(draggedKey);
    if (targetKey.contains(key::Trash)) {
        DelTune(app, draggedKey, false, true);
        showDoubles(app, app.selection().fileKey());
        pruneChoiceList(app);
        return;
    }
    if (!asPart) {
        QString &pending = app.store().pendingDrag;
        CouperTune(app, draggedKey, pending);
        const QString kNew = CollerTuneSur(app, targetKey, pending);
        selectNode(app, kNew);
        const QString kTargetFile = GetKFile(targetKey);
        app.store().SetFlagModifFile(kTargetFile);
        app.store().SetFlagModifFile(kSourceFile);
        showDoubles(app, kTargetFile);
        if (kSourceFile != kTargetFile)
            showDoubles(app, kSourceFile);
        pruneChoiceList(app);
        return;
    }
    if (app.ui().question(app.msg("<addPart>")) == UserDialogs::Answer::Yes)
        AddTuneAsPart(app, draggedKey, GetKtune(targetKey), 1);
}

} // namespace fenwork
