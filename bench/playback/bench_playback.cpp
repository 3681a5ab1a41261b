// The press of Play to the first note: the player panel over the sample tunebook, each tune
// pressed in turn, timed until the synthesiser holds a sounding voice. The sound device's own
// buffer comes on top of that (about 23 ms with the default period size).
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/clidialogs.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "playback/midiplayer.h"
#include "playback/synthengine.h"
#include "playback/widgets/playerpanel.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <fluidsynth.h>

using namespace fenwork;

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The device is not what is measured: the sound goes nowhere at real-time pace.
    qputenv("FENNELWORKS_AUDIO", "none");
    QApplication qapp(argc, argv);
    QTemporaryDir root;
    const Paths paths(root.path(), QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    CliDialogs dialogs;
    AppContext app(paths, &dialogs);
    app.lang().setName(QStringLiteral("English"));
    app.buildStartupTexts();
    createWorkspaceRoot(app);
    // A copy, without a backup copy: a bench writes nothing outside its temporary folder.
    app.ini().set(keys::FichBak, QStringLiteral("0"));
    const QString sample = root.filePath(QStringLiteral("sample.abc"));
    QFile::copy(QStringLiteral(FENWORK_SAMPLE), sample);
    const QString kFile = app.store().FichierOuvrir(sample, false, true, true);
    const Node *body = app.tree().find(kFile + key::BdyFile);
    if (!body) {
        std::fprintf(stderr, "bench_playback: cannot open the sample tunebook\n");
        return 1;
    }

    PlayerPanel panel(app);
    QString text;
    PlayerHost host;
    host.text = [&text] { return text; };
    host.selectedText = [] { return QString(); };
    panel.setHost(host);
    QElapsedTimer loading;
    loading.start();
    panel.synth().start();
    const qint64 loadMs = loading.elapsed();

    QList<double> firstSound;
    for (int round = 0; round < 3; ++round) {
        for (const Node *tune : body->children()) {
            app.selection().setTuneKey(tune->Key);
            app.selection().setFileKey(kFile);
            text = app.store().GetStringTune(tune->Key, true);
            QElapsedTimer clock;
            clock.start();
            panel.mnu_playTune();
            while (fluid_synth_get_active_voice_count(panel.synth().synth()) == 0 && clock.elapsed() < 3000)
                QThread::usleep(200);
            firstSound.append(clock.nsecsElapsed() / 1e6);
            panel.pressStop();
            // The next press starts from silence.
            QElapsedTimer quiet;
            quiet.start();
            while (fluid_synth_get_active_voice_count(panel.synth().synth()) > 0 && quiet.elapsed() < 1000) {
                QThread::msleep(1);
                QCoreApplication::processEvents();
            }
        }
    }
    std::sort(firstSound.begin(), firstSound.end());
    const double median = firstSound.at(firstSound.size() / 2);
    std::printf("playback: synthesiser, SoundFont and audio ready in %lld ms (once a run, at the first Play)\n", loadMs);
    std::printf("playback: press of Play to the first note, %lld presses: median %.1f ms, worst %.1f ms"
                " (+ the device buffer, ~23 ms)\n",
        qlonglong(firstSound.size()), median, firstSound.last());
    return 0;
}
