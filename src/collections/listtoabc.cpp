#include "collections/listtoabc.h"

#include "collections/choicelist.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"
#include "store/duplicates.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFileInfo>

namespace fenwork {

QVector<ListedTune> listedTunes(const TuneStore &store, const WorkspaceTree &tree, const ChoiceList &list)
{
    QVector<ListedTune> tunes;
    tunes.reserve(list.count());
    int n = 0;
    for (const ChoiceItem &item : list.items()) {
        if (!tree.contains(item.key))
            continue;
        ++n;
        tunes.append(
            { item.key, item.caption, n, item.repetitions, store.GetStringTune(item.key, false, n) });
    }
    return tunes;
}

QString listAbcBody(AppContext &app, const ChoiceList &list, bool escapes)
{
    QString body;
    for (const ListedTune &tune : listedTunes(app.store(), app.tree(), list)) {
        body += escapes ? abcEscapeEncode(tune.text, &app.ui()) : tune.text;
        body += CRLF;
    }
    return body;
}

QString listAbcFile(AppContext &app, const QString &body)
{
    if (app.ini().get(keys::NoSaveHdrFile) == u"0")
        return QStringLiteral("%abc") + CRLF + app.creatorLine + CRLF + CRLF + body;
    return body;
}

QString mnu_lstToAbc(AppContext &app, const ChoiceList &list)
{
    UserDialogs &ui = app.ui();
    const QString body = listAbcBody(app, list, app.ini().get(keys::ABCstr) == u"1");

    const QString folder = app.ini().get(keys::DirDef);
    const QString start
        = uniqueName(QStringLiteral("NewAbcFile"), QStringLiteral("abc"), folder) + QStringLiteral(".abc");
    const QString chosen
        = ui.saveFileName(app.msg("<saveABCas>"), folder.isEmpty() ? start : QDir(folder).filePath(start),
            { app.msg("<ABCfile>") + QStringLiteral(" (*.abc)"),
                app.msg("<textFile>") + QStringLiteral(" (*.txt)") });
    if (chosen.isEmpty())
        return {};
    const QString path = QFileInfo(chosen).absoluteFilePath();
    if (IsOpenFile(app, path))
        return {};
    QString why;
    if (!writeTextFile(path, listAbcFile(app, body), TextEncoding::Utf8, &why)) {
        ui.contextError(QStringLiteral("mnu_lstToAbc"), why);
        return {};
    }
    if (ui.question(app.msg("<askOpen>")) == UserDialogs::Answer::Yes) {
        const QString kFile = app.store().FichierOuvrir(path, false, false, false);
        if (Node *file = kFile.isEmpty() ? nullptr : app.tree().find(kFile)) {
            file->Expanded = true;
            if (Node *bodyNode = file->child(1))
                bodyNode->Expanded = true;
            app.tree().changed(file);
            emit app.store().nodeSelectionRequested(kFile);
            int doubled = 0;
            ShowDoublonsX(app, kFile, false, doubled);
        }
    }
    return path;
}

} // namespace fenwork
