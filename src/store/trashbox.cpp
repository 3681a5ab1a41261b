#include "store/trashbox.h"

#include "store/duplicates.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

namespace fenwork {

namespace {

const QString kFromMarker = QStringLiteral("%~~~EX~~~");
const QString kWhenMarker = QStringLiteral("%~~~LE~~~");
const QString kFromLine = QStringLiteral("_hdrTune_lgex");
const QString kWhenLine = QStringLiteral("_hdrTune_lgle");

} // namespace

void saveTrash(AppContext &app)
{
    app.store().FichierSaveFromKey(key::Trash, app.paths().trashFile(), QString());
}

void moveToTrash(AppContext &app, const QString &kTune)
{
    const QString text = app.store().GetStringTune(kTune, false, 0);
    const qsizetype p = text.indexOf(CRLF);
    QString path = GetPathFile(app, GetKFile(kTune));
    if (path.isEmpty())
        path = QStringLiteral("<new>");
    const QLocale locale;
    const QDateTime now = QDateTime::currentDateTime();
    const QString when = locale.toString(now.date(), QLocale::ShortFormat) + u' '
                         + locale.toString(now.time(), QLocale::ShortFormat);
    const QString marked = (p < 0 ? text : text.left(p)) + CRLF + kFromMarker + path + CRLF + kWhenMarker + when
                           + CRLF + (p < 0 ? QString() : text.mid(p + 2));
    app.store().AddStringTune(marked, key::Trash, true);
    CompterTunesDansFichier(app, key::Trash);
    saveTrash(app);
}

TrashTuneInfo trashTuneInfo(const AppContext &app, const QString &clickedKey)
{
    TrashTuneInfo info;
    const qsizetype at = clickedKey.indexOf(QStringLiteral("_tune"));
    const qsizetype end = at < 0 ? -1 : clickedKey.indexOf(u'_', at + 5);
    info.tuneKey = end < 0 ? clickedKey : clickedKey.left(end);
    const WorkspaceTree &tree = app.tree();
    const Node *tune = tree.find(info.tuneKey);
    const Node *from = tree.find(info.tuneKey + kFromLine);
    const Node *when = tree.find(info.tuneKey + kWhenLine);
    if (!tune || !from || !when)
        return info;
    info.ok = true;
    info.caption = tune->Text;
    info.origin = from->Text.mid(9);
    info.deleted = when->Text.mid(9);
    info.originExists = QFileInfo(info.origin).isFile();
    return info;
}

QString restoreFromTrash(AppContext &app, const QString &tuneKey, const QString &originPath,
                         const QString &kTargetFile)
{
    WorkspaceTree &tree = app.tree();
    for (const QString &line : { kFromLine, kWhenLine })
        if (Node *marker = tree.find(tuneKey + line))
            tree.remove(marker);
    const QString text = app.store().GetStringTune(tuneKey, false, 0);
    QString kTarget = kTargetFile;
    if (kTarget.isEmpty() && !originPath.isEmpty()) {
        // Opening a file that is open already gives its key.
        kTarget = app.store().FichierOuvrir(originPath, false, false, !QFileInfo(originPath).isWritable());
    }
    if (kTarget.isEmpty())
        return {};
    const QString kNew = app.store().AddStringTune(text, kTarget);
    CompterTunesDansFichier(app, kTarget);
    app.store().SetFlagModifFile(kTarget);
    if (!kNew.isEmpty())
        emit app.store().nodeSelectionRequested(kNew);
    int count = 0;
    ShowDoublonsX(app, kTarget, false, count);
    if (Node *tune = tree.find(tuneKey))
        tree.remove(tune);
    CompterTunesDansFichier(app, key::Trash);
    saveTrash(app);
    return kNew;
}

void deleteFromTrash(AppContext &app, const QString &tuneKey)
{
    if (Node *tune = app.tree().find(tuneKey))
        app.tree().remove(tune);
    CompterTunesDansFichier(app, key::Trash);
    saveTrash(app);
}

bool emptyTrash(AppContext &app)
{
    if (app.ui().question(app.text(QStringLiteral("Msg"), QStringLiteral("<unfillTrash>")))
        != UserDialogs::Answer::Yes)
        return false;
    Node *body = app.tree().find(key::TrashBody);
    while (body && body->firstChild())
        app.tree().remove(body->firstChild());
    CompterTunesDansFichier(app, key::Trash);
    saveTrash(app);
    return true;
}

bool trimTrashBox(AppContext &app)
{
    bool ok = false;
    const int limit = app.ini().get(keys::TrashMax).toInt(&ok);
    Node *body = app.tree().find(key::TrashBody);
    if (!ok || !body)
        return false;
    bool trimmed = false;
    while (body->childCount() > qMax(0, limit)) {
        app.tree().remove(body->firstChild());
        trimmed = true;
    }
    if (trimmed)
        CompterTunesDansFichier(app, key::Trash);
    return trimmed;
}

} // namespace fenwork
