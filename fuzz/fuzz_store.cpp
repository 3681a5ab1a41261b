// libFuzzer target: arbitrary bytes as an ABC file through open, text out, save and a second
// open. Looks for crashes, hangs and sanitizer reports; a file that opened once and was saved
// must open again.
#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/tunestore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include "frame/clidialogs.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace fenwork;

namespace {

// Nobody answers: no alias, No to every question, nothing shown.
class QuietDialogs : public CliDialogs
{
public:
    bool terminated = false;

    void message(const QString &, Icon, const QString &) override { }
    void statusMessage(const QString &) override { }
    // The program would end here; the fuzzer goes on with the next input.
    void terminate(int) override { terminated = true; }
};

struct Fixture
{
    Fixture()
    {
        static int argc = 1;
        static char name[] = "fuzz_store";
        static char *argv[] = { name, nullptr };
        app = std::make_unique<QCoreApplication>(argc, argv);
        const Paths paths(dir.path(), QStringLiteral(FENWORK_DATA_DIR));
        QDir().mkpath(paths.cacheFolder());
        QDir().mkpath(dir.filePath(QStringLiteral("files")));
        context = std::make_unique<AppContext>(paths, &ui);
        // No settings file: every setting reads its default (backup copies on, the alias never
        // asked since the opens pass noAsk), and a missing file is the cheapest to read.
        context->lang().setName(QStringLiteral("English"));
        context->buildStartupTexts();
        input = dir.filePath(QStringLiteral("files/input.abc"));
        saved = dir.filePath(QStringLiteral("files/saved.abc"));
    }

    QTemporaryDir dir;
    std::unique_ptr<QCoreApplication> app;
    QuietDialogs ui;
    std::unique_ptr<AppContext> context;
    QString input;
    QString saved;
};

Fixture &fixture()
{
    static Fixture *f = new Fixture;
    return *f;
}

void reset(AppContext &app, const QString &kFile)
{
    if (!kFile.isEmpty())
        app.store().forgetFile(kFile);
    createWorkspaceRoot(app);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Fixture &f = fixture();
    AppContext &app = *f.context;
    TuneStore &store = app.store();
    reset(app, {});
    f.ui.terminated = false;
    {
        QFile file(f.input);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            std::abort();
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    }

    const QString kFile = store.FichierOuvrir(f.input, false, true, false);
    if (kFile.isEmpty())
        return 0;
    (void)store.GetStringFile(kFile, false, true);
    (void)store.GetStringFile(kFile, true, false);
    if (!store.FichierSaveFromKey(kFile, f.saved, QString()))
        return 0;
    reset(app, kFile);

    const QString kAgain = store.FichierOuvrir(f.saved, false, true, false);
    // What the program saved must open again. Known exception: a line that a save trims into
    // beginning "@@" meets the PostScript-block restore on the second open, as specified.
    if (kAgain.isEmpty() && !f.ui.terminated) {
        QFile file(f.saved);
        const bool atMarks
            = file.open(QIODevice::ReadOnly) && (file.peek(2) == "@@" || file.readAll().contains("\n@@"));
        if (!atMarks)
            __builtin_trap();
    }
    reset(app, kAgain);
    return 0;
}
