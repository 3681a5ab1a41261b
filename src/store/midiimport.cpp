#include "store/midiimport.h"

#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>

namespace fenwork {

QString importMidiText(AppContext &app, const QString &midiFile)
{
    ToolRunner &tools = app.tools();
    const QString output = tools.inCache(QStringLiteral("tmp.abc"));
    QFile::remove(output);
    QString error;
    if (!tools.startCommand(commandMidi2abc(app, midiFile, output), 0, &error)) {
        // The wait below then runs into its limit, as for a tool that writes nothing.
    }
    const QString answer = tools.WaitForDispo(output, 6000);
    if (!answer.isEmpty()) {
        app.ui().setBusy(false);
        app.ui().message(answer, UserDialogs::Icon::Warning);
        return {};
    }
    QFile file(output);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    QString text = decodeText(bytes, detectEncoding(bytes));
    // The tool ends its lines with LF; the tree wants CR LF.
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\n', CRLF);
    return text;
}

QString ImportMidi(AppContext &app, const QString &midiFile, const QString &kFile)
{
    const QString text = importMidiText(app, midiFile);
    if (text.isEmpty())
        return {};
    return app.store().AddStringTune(text, kFile);
}

void mnu_impMidi(AppContext &app)
{
    UserDialogs &ui = app.ui();
    const QString msg = QStringLiteral("Msg");
    QDir cache(app.tools().cacheFolder());
    for (const QString &name : cache.entryList({ QStringLiteral("tmp*.*") }, QDir::Files))
        cache.remove(name);
    if (ui.question(app.text(msg, QStringLiteral("<infoMidi2Abc>"))) != UserDialogs::Answer::Yes)
        return;
    const QString kFile = app.selection().fileKey();
    if (kFile.isEmpty()) {
        ui.message(app.text(msg, QStringLiteral("<selectFile>")), UserDialogs::Icon::Warning);
        return;
    }
    const QString midiFile
        = ui.openFileName(app.text(msg, QStringLiteral("<openMidiFile>")), app.ini().get(keys::DirDef),
            { app.text(msg, QStringLiteral("<midiFile>")) + QStringLiteral(" (*.mid *.midi)") });
    if (midiFile.isEmpty())
        return;

    BusyScope busy(ui);
    const QString key = ImportMidi(app, midiFile, kFile);
    if (key.isEmpty())
        return;
    if (Node *tune = app.tree().find(key))
        app.tree().setImage(tune, Pic::TuneM);
    emit app.store().nodeSelectionRequested(key);
    app.store().SetFlagModifFile(kFile);
    CompterTunesDansFichier(app, kFile);
}

} // namespace fenwork
