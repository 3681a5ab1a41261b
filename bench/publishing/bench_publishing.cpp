// One tune exported to PDF and one preview page, in process, against abcm2ps and gs run as
// commands with the same arguments, side by side in one run.
// Usage: bench_publishing [runs]
#include "frame/appcontext.h"
#include "frame/paths.h"
#include "publishing/exportpreview.h"
#include "publishing/formatmodel.h"
#include "publishing/gsexport.h"
#include "scripteddialogs.h"
#include "store/treeops.h"
#include "store/tunestore.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace fenwork;

namespace {

const char *kTune = "X:1\r\nT:The Mill Road\r\nR:reel\r\nM:4/4\r\nL:1/8\r\nK:D\r\n"
                    "|:DFAF dFAF|GBdB AFEF|DFAF dfed|cABc d2 d2:|\r\n"
                    "|:fdfa gefg|fdec d2 AG|FDFA GEGB|Adcd e2 d2:|\r\n";

double medianMs(int runs, const std::function<bool()> &work)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer clock;
        clock.start();
        if (!work())
            return -1;
        times.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication qapp(argc, argv);
    const int runs = argc > 1 ? qMax(1, atoi(argv[1])) : 15;
    if (QStandardPaths::findExecutable(QStringLiteral("abcm2ps")).isEmpty()
        || QStandardPaths::findExecutable(QStringLiteral("gs")).isEmpty()) {
        std::printf("publishing: abcm2ps or gs is not installed: not timed\n");
        return 0;
    }
    QTemporaryDir root;
    const Paths paths(root.path(), QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    ScriptedDialogs dialogs;
    AppContext app(paths, &dialogs);
    createWorkspaceRoot(app);
    app.store().backupOnOpen = false;
    const QString work = root.filePath(QStringLiteral("work"));
    QDir().mkpath(work);
    const QString abc = QDir(work).filePath(QStringLiteral("tune.abc"));
    QFile file(abc);
    if (!file.open(QIODevice::WriteOnly) || file.write(kTune) < 0)
        return 1;
    file.close();
    const QString fmt = paths.inUser(QStringLiteral("format.fmt"));
    BuildFormat(FormatModel(), fmt);
    const QString kFile = app.store().FichierOuvrir(abc, false, true, true);

    const QString pdf = QDir(work).filePath(QStringLiteral("out.pdf"));
    const double ours = medianMs(runs, [&] {
        GsExporter exporter(app);
        QString ext = QStringLiteral("pdf"), target = pdf;
        int resolution = 0;
        return exporter.ExportViaGs(kFile, ext, target, resolution).isEmpty();
    });
    const QStringList gsPdf = exportGhostscriptArguments(QStringLiteral("pdf"), 0, QStringLiteral("tools.pdf"),
                                                         QStringLiteral("a4"), QStringLiteral("tools.ps")).mid(1);
    const double tools = medianMs(runs, [&] {
        return run(work, QStringLiteral("abcm2ps"), { abc, QStringLiteral("-F"), fmt, QStringLiteral("-O"), QStringLiteral("tools.ps") })
            && run(work, QStringLiteral("gs"), gsPdf);
    });

    PreviewRun preview;
    preview.input = abc;
    preview.formatFile = fmt;
    preview.resolution = 100;
    const double ourPreview = medianMs(runs, [&] { return !renderPreview(app, preview).pages.isEmpty(); });
    const QStringList gsBmp = exportGhostscriptArguments(QStringLiteral("bmp"), 100, QStringLiteral("tools.bmp"),
                                                         QStringLiteral("a4"), QStringLiteral("tools.ps")).mid(1);
    const double toolPreview = medianMs(runs, [&] {
        return run(work, QStringLiteral("abcm2ps"), { abc, QStringLiteral("-F"), fmt, QStringLiteral("-O"), QStringLiteral("tools.ps") })
            && run(work, QStringLiteral("gs"), gsBmp);
    });

    std::printf("publishing, one tune, %d runs, medians:\n", runs);
    std::printf("  ExportViaGs to PDF (in process)     %8.1f ms\n", ours);
    std::printf("  abcm2ps + gs pdfwrite as commands   %8.1f ms  (ratio %.2f)\n", tools, ours / tools);
    std::printf("  preview page (in process)           %8.1f ms\n", ourPreview);
    std::printf("  abcm2ps + gs bmpgray as commands    %8.1f ms  (ratio %.2f)\n", toolPreview, ourPreview / toolPreview);
    return 0;
}
