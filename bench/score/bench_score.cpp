// The score of a tune: from a click on the tune in the tree to its page painted in the window,
// against abcm2ps and Ghostscript run as commands on the same text, side by side in one run.
// Usage: bench_score [file.abc] [runs]
#include "benchrow.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "scripteddialogs.h"
#include "frame/settings.h"
#include "app/widgets/mainwindow.h"
#include "score/scorerefresh.h"
#include "score/widgets/scorepanel.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace fenwork;

namespace {

// The corpus beside the source tree, or where $FENWORK_CORPUS_DIR says.
QString corpusDir()
{
    const QByteArray env = qgetenv("FENWORK_CORPUS_DIR");
    return env.isEmpty() ? QStringLiteral(FENWORK_CORPUS_DIR) : QString::fromLocal8Bit(env);
}

// The window's own dialogs would need the window; these let events run as the window's do.
class PumpingDialogs : public ScriptedDialogs
{
public:
    void processEvents() override { QCoreApplication::processEvents(); }
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n == 0 ? 0 : n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

bool run(const QString &folder, const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    return process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
}

const char *kOwnTune = "X:1\nT:The Mill Road\nR:reel\nM:4/4\nL:1/8\nK:D\n"
                       "|:DFAF dFAF|GBdB AFEF|DFAF dfed|cABc d2 d2:|\n"
                       "|:fdfa gefg|fdec d2 AG|FDFA GEGB|Adcd e2 d2:|\n";

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList args = application.arguments();
    const int runs = args.size() > 2 ? qMax(3, args.at(2).toInt()) : 15;

    const QString abcm2ps = QStandardPaths::findExecutable(QStringLiteral("abcm2ps"));
    const QString gs = QStandardPaths::findExecutable(QStringLiteral("gs"));
    if (abcm2ps.isEmpty() || gs.isEmpty()) {
        std::printf("score: abcm2ps or gs is not installed: not timed\n");
        return 0;
    }

    QTemporaryDir root;
    qputenv("FENNELWORKS_ROOT", root.path().toUtf8());
    const Paths paths(root.path(), QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    {
        const IniFile ini(paths.settingsFile());
        ini.set(keys::Lang, QStringLiteral("English"));
        ini.set(keys::Ask4alias, QStringLiteral("0"));
        ini.set(keys::FichBak, QStringLiteral("0"));
    }
    PumpingDialogs dialogs;
    AppContext app(paths, &dialogs);
    app.buildStartupTexts();

    QString file = args.size() > 1 ? args.at(1) : QString();
    if (file.isEmpty()) {
        const QString corpus = corpusDir() + QStringLiteral("/tuneworks/abc_1201_cooleys.abc");
        file = QFile::exists(corpus) ? corpus : QString();
    }
    if (file.isEmpty()) {
        file = root.filePath(QStringLiteral("own.abc"));
        QFile own(file);
        if (own.open(QIODevice::WriteOnly))
            own.write(kOwnTune);
    }

    // Work on a copy, without a backup copy: a bench writes nothing beside the tunes it reads.
    app.ini().set(keys::FichBak, QStringLiteral("0"));
    const QString copy = root.filePath(QStringLiteral("tunes.abc"));
    if (file != copy && QFile::copy(file, copy))
        file = copy;

    MainWindow window(app);
    window.MainLoad();
    window.resize(1280, 800);
    window.show();
    QApplication::processEvents();

    const QString kFile = app.store().FichierOuvrir(file, false, true, true);
    const Node *body = app.tree().find(kFile + key::BdyFile);
    if (!body || body->childCount() == 0) {
        std::printf("score: no tune in %s\n", qPrintable(file));
        return 1;
    }
    const QString kTune = body->child(0)->Key;
    ScorePanel *panel = window.scorePanel();

    // The command line works on the very text the program sent, in a folder of its own.
    window.NodeClick(kTune);
    QTemporaryDir cli;
    QFile::copy(paths.cacheFolder() + QStringLiteral("/tmp.abc"), cli.filePath(QStringLiteral("tmp.abc")));
    const QString zoom = QString::number(panel->zoom());

    std::vector<double> clicks, commands, engraver, interpreter;
    for (int i = 0; i < runs; ++i) {
        window.NodeClick(kFile); // away from the tune, so that the next click is a real change
        QApplication::processEvents();

        QElapsedTimer clock;
        clock.start();
        window.NodeClick(kTune);
        window.repaint(); // the page painted, not only scheduled
        clicks.push_back(clock.nsecsElapsed() / 1e6);
        if (panel->picture().isNull() || panel->isBlank()) {
            std::printf("score: the tune gave no page\n");
            return 1;
        }

        QFile::remove(cli.filePath(QStringLiteral("tmp.ps")));
        clock.restart();
        run(cli.path(), abcm2ps,
            { QStringLiteral("tmp.abc"), QStringLiteral("-s0.65"), QStringLiteral("-O"),
                QStringLiteral("tmp.ps") });
        const double first = clock.nsecsElapsed() / 1e6;
        // The command gets the very arguments the program hands the library.
        run(cli.path(), gs, ScoreRefresher::ghostscriptArguments(panel->zoom()).mid(1));
        const double both = clock.nsecsElapsed() / 1e6;
        engraver.push_back(first);
        interpreter.push_back(both - first);
        commands.push_back(both);
    }

    const double click = median(clicks);
    const double command = median(commands);
    std::printf("score of \"%s\" at %s dpi, %d runs, medians:\n", qPrintable(QFileInfo(file).fileName()),
        qPrintable(zoom), runs);
    std::printf("  click on the tune to page painted   %8.1f ms\n", click);
    std::printf("  abcm2ps + gs as commands            %8.1f ms  (abcm2ps %.1f, gs %.1f)\n", command,
        median(engraver), median(interpreter));
    fenwork::bench::row(QStringLiteral("click on a one-page tune to its score"), click, QStringLiteral("ms"),
        QStringLiteral("abcm2ps + gs as commands"), command, QStringLiteral("goal <= 20 ms, ratio <= 0.40"));
    return 0;
}
