#include "collections/choicesets.h"

#include "collections/choicelist.h"
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/tuneops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QSignalBlocker>

namespace fenwork {

namespace {

QString setTitle(const AppContext &app)
{
    return app.text(QStringLiteral("MainForm"), QStringLiteral("<setTune>"));
}

} // namespace

void nameSet(AppContext &app, const QString &kTune)
{
    TuneStore &store = app.store();
    QStringList lines = store.GetStringTune(kTune, false, 0).split(CRLF);
    const QString title = setTitle(app);
    for (QString &line : lines) {
        if (line.startsWith(QStringLiteral("K:")))
            break; // the header ends here; a "T:" further down names a part
        if (line.startsWith(QStringLiteral("T:"))) {
            line = QStringLiteral("T:") + title;
            QString text = lines.join(CRLF);
            QString unchanged;
            store.AddStringTune(text, GetKFile(kTune), false, kTune, false, unchanged);
            break;
        }
    }
    if (Node *tune = app.tree().find(kTune)) {
        const QString old = tune->Text;
        const qsizetype bracket = old.indexOf(u']');
        app.tree().setText(tune, old.left(bracket + 1) + u' ' + title);
    }
}

QString makeSet(AppContext &app, const QString &kFile, const QVector<ChoiceItem> &items)
{
    if (kFile.isEmpty() || !app.tree().find(kFile)) {
        app.ui().message(app.text(QStringLiteral("Msg"), QStringLiteral("<selectFile>")));
        return {};
    }
    if (items.size() < 2)
        return {};
    if (items.size() > kMaxSetTunes) {
        app.ui().message(app.text(QStringLiteral("Msg"), QStringLiteral("<overSet>")));
        return {};
    }
    BusyScope busy(app.ui());
    // The plain new tune text: a template's music would stand before the first part.
    const QString kNew = AddNewTune(app, kFile, false);
    if (kNew.isEmpty())
        return {};
    {
        // Each part would click the set and draw its score again: the set is clicked once, whole.
        const QSignalBlocker quiet(&app.store());
        for (const ChoiceItem &item : items)
            AddTuneAsPart(app, item.key, kNew, item.repetitions);
    }
    nameSet(app, kNew);
    emit app.store().nodeSelectionRequested(kNew);
    return kNew;
}

QString mnu_lstToSet(AppContext &app, const ChoiceList &list)
{
    return makeSet(app, app.selection().fileKey(), list.items());
}

QString createNewSet(AppContext &app)
{
    const QString kFile = app.selection().fileKey();
    if (kFile.isEmpty() || !app.tree().find(kFile)) {
        app.ui().message(app.text(QStringLiteral("Msg"), QStringLiteral("<selectFile>")));
        return {};
    }
    const QString kNew = AddNewTune(app, kFile, false);
    if (kNew.isEmpty())
        return {};
    emit app.store().nodeSelectionRequested(kNew);
    app.store().SetFlagModifFile(kFile);
    nameSet(app, kNew);
    return kNew;
}

} // namespace fenwork
