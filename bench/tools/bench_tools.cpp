// Timings of the whole-file tools on one file, each on the file as opened: cleaning with every
// option, a sort by two keys, a reindex. The backup each takes is part of its cost.
// Usage: bench_tools FILE
#include "frame/appcontext.h"
#include "frame/clidialogs.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"
#include "tools/filetools.h"
#include "tools/reindexsort.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

using namespace fenwork;

int main(int argc, char **argv)
{
    QCoreApplication qapp(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() != 2) {
        std::fprintf(stderr, "usage: bench_tools FILE\n");
        return 2;
    }
    QTemporaryDir root;
    const Paths paths(root.path(), QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    CliDialogs dialogs;
    AppContext app(paths, &dialogs);
    app.lang().setName(QStringLiteral("English"));
    app.buildStartupTexts();
    createWorkspaceRoot(app);
    app.store().backupOnOpen = false;

    // Each operation on a freshly opened copy, so that none works on another's result.
    const auto time = [&](const char *what, const std::function<void(QString & kFile)> &work) {
        QString kFile = app.store().FichierOuvrir(args.at(1), false, true, false);
        if (kFile.isEmpty())
            return false;
        const int tunes = tuneCount(app, kFile);
        QElapsedTimer timer;
        timer.start();
        work(kFile);
        const double ms = timer.nsecsElapsed() / 1e6;
        std::printf("tools: %-28s %6d tunes %9.1f ms\n", what, tunes, ms);
        app.tree().remove(app.tree().find(kFile));
        app.store().forgetFile(kFile);
        return true;
    };
    ToolsBackup backup;
    const bool ok = time("clean, all 14 options", [&](QString &kFile) {
        cleanFile(app, kFile, (1u << CleanOptionCount) - 1, backup);
    }) && time("sort by T: and K:", [&](QString &kFile) {
        sortFile(app, kFile, QStringLiteral("T:"), QStringLiteral("K:"), backup);
    }) && time("reindex", [&](QString &kFile) { reindexFile(app, kFile, 1, backup); });
    return ok ? 0 : 1;
}
