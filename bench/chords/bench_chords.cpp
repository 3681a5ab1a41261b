// Timing of automatic chords: every tune of a 1,000-tune collection, one chord a bar and two.
#include "frame/appcontext.h"
#include "frame/clidialogs.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "tools/chords.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>

using namespace fenwork;

namespace {

constexpr int kTunes = 1000;

// The first 1,000 tunes of the Nottingham collection, each with CR LF line ends; a tune of our
// own making repeated when the corpus is absent.
QStringList tunes(QString *origin)
{
    QStringList out;
    const QString corpus = qEnvironmentVariableIsSet("FENWORK_CORPUS_DIR")
        ? qEnvironmentVariable("FENWORK_CORPUS_DIR")
        : QStringLiteral(FENWORK_CORPUS_DIR);
    const QDir folder(corpus + QStringLiteral("/nottingham"));
    for (const QString &name : folder.entryList({ QStringLiteral("*.abc") })) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = crlfLines(QString::fromUtf8(file.readAll()));
        for (const QString &tune : text.split(QRegularExpression(QStringLiteral("\r\n(?=X:)"))))
            if (tune.startsWith(QLatin1String("X:")) && out.size() < kTunes)
                out << tune;
    }
    *origin = QStringLiteral("Nottingham collection");
    if (out.size() < kTunes) {
        out.clear();
        const QString tune = QStringLiteral(
            "X:1\r\nT:Built reel\r\nM:4/4\r\nL:1/8\r\nK:D\r\n"
            "|:\"D\"A2FA ~d2fd|\"G\"B2GB \"A\"A2FA|[1\"D\"d2fd {g}e2ce:|[2\"A\"(3ABc de \"D\"d4|]\r\n"
            "|:fgaf g2fg|afge fdec|dfaf gfed|1 ceAc d4:|2 ceAc d2AF||\r\n");
        while (out.size() < kTunes)
            out << tune;
        *origin = QStringLiteral("built tune");
    }
    return out;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication qapp(argc, argv);
    QTemporaryDir root;
    qputenv("FENNELWORKS_ROOT", root.path().toUtf8());
    CliDialogs dialogs;
    AppContext app(Paths::fromEnvironment(), &dialogs);

    QString origin;
    const QStringList all = tunes(&origin);
    std::printf(
        "Automatic chords (%lld tunes, %s)\n", static_cast<long long>(all.size()), qPrintable(origin));
    for (bool two : { false, true }) {
        QElapsedTimer timer;
        timer.start();
        qsizetype written = 0;
        for (const QString &tune : all)
            written += AddChords(app, tune, two, false).size();
        std::printf("  %s : %8.1f ms for all (%lld characters written)\n", two ? "two a bar" : "one a bar",
            timer.nsecsElapsed() / 1e6, static_cast<long long>(written));
    }
    return 0;
}
