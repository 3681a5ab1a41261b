// The window's own figures on a large file, each beside its anchor measured in the same run:
// start to the window painted (anchor: reading and splitting the file), the window's memory after
// the start and once a tune played (anchor: the store alone), the first Play of the run (anchor:
// a later Play), and a filter filling the choice list (anchor: grep on the same file). Each start
// runs in a fresh process.
//
//   bench_window FILE [runs]        the figures (medians of `runs`, at least 5)
//   bench_window --start FILE ROOT  one child: starts the window as a user would, then filters
//   bench_window --store FILE ROOT  one child: only opens FILE into the store
#include "app/widgets/mainwindow.h"
#include "benchrow.h"
#include "finding/widgets/filterpanel.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/textfile.h"
#include "frame/widgets/icons.h"
#include "playback/synthengine.h"
#include "playback/widgets/playerpanel.h"
#include "scripteddialogs.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <fluidsynth.h>

using namespace fenwork;

namespace {

const QString kAnywhere = QStringLiteral("K: ?[DG]");
const QString kMelody = QStringLiteral("DFA");

class PumpingDialogs : public ScriptedDialogs
{
public:
    void processEvents() override { QCoreApplication::processEvents(); }
};

qint64 residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    return -1;
}

void prepareRoot(const QString &root)
{
    const Paths paths(root, QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    const IniFile ini(paths.settingsFile());
    ini.set(keys::Lang, QStringLiteral("English"));
    ini.set(keys::FichBak, QStringLiteral("0"));
    ini.set(keys::Ask4alias, QStringLiteral("0"));
    ini.set(keys::ShowTips, QStringLiteral("0"));
}

void say(const char *what, double value)
{
    std::printf("%s %.3f\n", what, value);
    std::fflush(stdout);
}

// The start of Main without its first-run windows: the window, the file of the command line,
// the first tune when the settings ask for it, painted.
int startChild(const QString &file, const QString &root)
{
    QElapsedTimer phase;
    phase.start();
    const auto mark = [&phase](const char *name) {
        say(name, phase.nsecsElapsed() / 1e6);
        phase.restart();
    };
    PumpingDialogs dialogs;
    const Paths paths(root, QStringLiteral(FENWORK_DATA_DIR));
    AppContext app(paths, &dialogs);
    setupIconTheme();
    app.buildStartupTexts();
    mark("context");
    MainWindow window(app);
    mark("window");
    window.MainLoad();
    window.resize(1280, 800);
    window.show();
    mark("mainload");
    const QString kFile = window.openPath(file, true);
    mark("open");
    if (app.ini().getBool(keys::SelFirstTune) && !kFile.isEmpty())
        if (Node *f = app.tree().find(kFile); f && f->child(1) && f->child(1)->firstChild())
            window.SimulerNodeClick(f->child(1)->firstChild()->Key);
    QApplication::processEvents();
    window.repaint();
    mark("paint");
    say("painted", 0);

    // The memory at rest, then the first Play of the run: the synthesiser is made, its font
    // read, the tune sounds; then a second Play of the same tune.
    QApplication::processEvents();
    say("rss", residentKiB());
    if (Node *f = app.tree().find(kFile); f && f->child(1) && f->child(1)->firstChild())
        window.SimulerNodeClick(f->child(1)->firstChild()->Key);
    PlayerPanel *player = window.playerPanel();
    const auto press = [&] {
        QElapsedTimer clock;
        clock.start();
        player->mnu_playTune();
        while ((!player->synth().isStarted() || fluid_synth_get_active_voice_count(player->synth().synth()) == 0)
            && clock.elapsed() < 5000) {
            QApplication::processEvents();
            QThread::usleep(200);
        }
        const double ms = clock.nsecsElapsed() / 1e6;
        player->pressStop();
        QElapsedTimer quiet;
        quiet.start();
        while (fluid_synth_get_active_voice_count(player->synth().synth()) > 0 && quiet.elapsed() < 2000) {
            QApplication::processEvents();
            QThread::msleep(1);
        }
        return ms;
    };
    say("firstsound", press());
    say("rssplaying", residentKiB());
    say("latersound", press());

    auto *filter = window.findChild<FilterPanel *>();
    auto *anywhere = window.findChild<QLineEdit *>(QStringLiteral("txt_anywhere"));
    auto *melody = window.findChild<QLineEdit *>(QStringLiteral("txt_mus"));
    if (!filter || !anywhere || !melody)
        return 1;
    const auto timed = [&](QLineEdit *box, const QString &text) {
        filter->bt_SupprFltr_Click();
        anywhere->clear();
        melody->clear();
        box->setText(text);
        QApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        filter->bt_Search_Click();
        QApplication::processEvents();
        window.repaint();
        return clock.nsecsElapsed() / 1e6;
    };
    say("anywhere", timed(anywhere, kAnywhere));
    say("melody", timed(melody, kMelody));
    std::fflush(stdout);
    std::_Exit(0); // the figures are out; tearing the window down is not measured
}

int storeChild(const QString &file, const QString &root)
{
    PumpingDialogs dialogs;
    const Paths paths(root, QStringLiteral(FENWORK_DATA_DIR));
    AppContext app(paths, &dialogs);
    app.buildStartupTexts();
    createWorkspaceRoot(app);
    QElapsedTimer clock;
    clock.start();
    if (app.store().FichierOuvrir(file, false, true, false).isEmpty())
        return 1;
    say("open", clock.nsecsElapsed() / 1e6);
    say("rss", residentKiB());
    std::_Exit(0);
}

struct StartRun
{
    double painted = -1, rssMiB = -1, rssPlayingMiB = -1, firstSound = -1, laterSound = -1, anywhere = -1,
           melody = -1;
    QMap<QByteArray, double> phases; // where the start's time went, in the child
};

StartRun runStart(const QString &file)
{
    QTemporaryDir root;
    prepareRoot(root.path());
    StartRun run;
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer clock;
    clock.start();
    child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--start"), file, root.path() });
    while (child.state() != QProcess::NotRunning || child.canReadLine()) {
        if (!child.canReadLine() && !child.waitForReadyRead(30000))
            break;
        while (child.canReadLine()) {
            const QList<QByteArray> words = child.readLine().trimmed().split(' ');
            if (words.size() != 2)
                continue;
            const double value = words.at(1).toDouble();
            if (words.at(0) == "painted")
                run.painted = clock.nsecsElapsed() / 1e6;
            else if (words.at(0) == "rss")
                run.rssMiB = value / 1024;
            else if (words.at(0) == "rssplaying")
                run.rssPlayingMiB = value / 1024;
            else if (words.at(0) == "firstsound")
                run.firstSound = value;
            else if (words.at(0) == "latersound")
                run.laterSound = value;
            else if (words.at(0) == "anywhere")
                run.anywhere = value;
            else if (words.at(0) == "melody")
                run.melody = value;
            else
                run.phases[words.at(0)] = value;
        }
    }
    child.waitForFinished(30000);
    return run;
}

// The store alone in a process of its own: its peak memory and its time to open the file.
std::pair<double, double> storeAlone(const QString &file)
{
    QTemporaryDir root;
    prepareRoot(root.path());
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--store"), file, root.path() });
    child.waitForFinished(60000);
    double mib = -1, openMs = -1;
    for (const QByteArray &line : child.readAllStandardOutput().split('\n')) {
        const QList<QByteArray> words = line.trimmed().split(' ');
        if (words.size() == 2 && words.at(0) == "rss")
            mib = words.at(1).toDouble() / 1024;
        else if (words.size() == 2 && words.at(0) == "open")
            openMs = words.at(1).toDouble();
    }
    return { mib, openMs };
}

// What opening costs at the least: the bytes read, decoded, and cut at each tune.
double readAndSplit(const QString &file)
{
    QElapsedTimer clock;
    clock.start();
    const TextFileResult read = readTextFile(file);
    static const QRegularExpression tuneStart(QStringLiteral("\n(?=X:)"));
    const qsizetype tunes = read.text.split(tuneStart).size();
    const double ms = clock.nsecsElapsed() / 1e6;
    return tunes > 0 ? ms : -1;
}

double grepCount(const QString &file, const QString &pattern)
{
    QProcess grep;
    grep.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    grep.start(QStringLiteral("grep"), { QStringLiteral("-c"), QStringLiteral("-E"), pattern, file });
    grep.waitForFinished(30000);
    return clock.nsecsElapsed() / 1e6;
}

int parent(const QString &file, int runs)
{
    std::vector<double> painted, rss, rssPlaying, firstSound, laterSound, anywhere, melody, split, store, grepAny,
        grepMel, storeOpen;
    QMap<QByteArray, std::vector<double>> phases;
    for (int i = 0; i < runs; ++i) {
        const StartRun run = runStart(file);
        if (run.painted < 0 || run.anywhere < 0) {
            std::printf("window: the start of run %d failed\n", i + 1);
            return 1;
        }
        painted.push_back(run.painted);
        for (auto it = run.phases.cbegin(); it != run.phases.cend(); ++it)
            phases[it.key()].push_back(it.value());
        rss.push_back(run.rssMiB);
        rssPlaying.push_back(run.rssPlayingMiB);
        firstSound.push_back(run.firstSound);
        laterSound.push_back(run.laterSound);
        anywhere.push_back(run.anywhere);
        melody.push_back(run.melody);
        split.push_back(readAndSplit(file));
        const auto [mib, openMs] = storeAlone(file);
        store.push_back(mib);
        storeOpen.push_back(openMs);
        grepAny.push_back(grepCount(file, kAnywhere));
        grepMel.push_back(grepCount(file, kMelody));
    }
    using bench::median;
    std::printf("The window on %s, %d runs, medians:\n", qPrintable(QFileInfo(file).fileName()), runs);
    std::printf("  start in the child:");
    for (const char *name : { "context", "window", "mainload", "open", "paint" })
        std::printf(" %s %.1f ms,", name, median(phases.value(name)));
    std::printf(" (the rest: loading the program and its libraries); the store alone opens the file in"
                " %.1f ms\n", median(storeOpen));
    using bench::row;
    row(QStringLiteral("start to the window painted"), median(painted), QStringLiteral("ms"),
        QStringLiteral("read and split the file"), median(split), QStringLiteral("goal <= 300 ms"));
    row(QStringLiteral("window memory after the start"), median(rss), QStringLiteral("MiB"),
        QStringLiteral("the store alone"), median(store), QStringLiteral("goal <= 150 MiB"));
    row(QStringLiteral("window memory, a tune played"), median(rssPlaying), QStringLiteral("MiB"),
        QStringLiteral("the store alone"), median(store), QString());
    row(QStringLiteral("first Play of the run to its first note"), median(firstSound), QStringLiteral("ms"),
        QStringLiteral("a later Play of the same tune"), median(laterSound), QStringLiteral("goal <= 300 ms"));
    row(QStringLiteral("filter in the window, anywhere /") + kAnywhere + u'/', median(anywhere),
        QStringLiteral("ms"), QStringLiteral("grep -c -E"), median(grepAny), QStringLiteral("goal <= 50 ms"));
    row(QStringLiteral("filter in the window, melody ") + kMelody, median(melody), QStringLiteral("ms"),
        QStringLiteral("grep -c -E"), median(grepMel), QStringLiteral("goal <= 50 ms"));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The device is not what is measured.
    qputenv("FENNELWORKS_AUDIO", "none");
    QApplication application(argc, argv);
    const QStringList args = application.arguments();
    if (args.size() == 4 && args.at(1) == u"--start")
        return startChild(args.at(2), args.at(3));
    if (args.size() == 4 && args.at(1) == u"--store")
        return storeChild(args.at(2), args.at(3));
    if (args.size() < 2 || args.at(1).startsWith(u"--")) {
        std::fprintf(stderr, "usage: bench_window FILE [runs]\n");
        return 2;
    }
    return parent(args.at(1), args.size() > 2 ? qMax(5, args.at(2).toInt()) : 5);
}
