// Timings of the editor's colouring: a whole tune of 300 lines (tune selection, paste, undo) and
// the caret's line alone (every keystroke).
#include "editing/abccolour.h"
#include "frame/strutil.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStringList>

#include <algorithm>
#include <cstdio>

using namespace fenwork;

namespace {

constexpr int kLines = 300;

// 300 lines of real music from the corpus, from its first X: on, with the editor's line ends;
// a tune of our own making when the corpus is absent.
QString tuneText(QString *origin)
{
    QFile file(QStringLiteral(FENWORK_CORPUS_DIR "/nottingham/reelsa-c.abc"));
    QStringList lines;
    if (file.open(QIODevice::ReadOnly)) {
        QString text = QString::fromUtf8(file.readAll());
        text.replace(CRLF, QStringLiteral("\n"));
        const QStringList all = text.split(u'\n');
        bool started = false;
        for (const QString &line : all) {
            started = started || line.startsWith(u"X:");
            if (started && lines.size() < kLines)
                lines << line;
        }
        *origin = QStringLiteral("nottingham/reelsa-c.abc, first 300 lines");
    }
    if (lines.size() < kLines) {
        lines = { QStringLiteral("X:1"), QStringLiteral("T:Built tune % bench"), QStringLiteral("M:4/4"),
            QStringLiteral("L:1/8"), QStringLiteral("%%MIDI program 40"), QStringLiteral("K:D") };
        const QStringList body { QStringLiteral("P:A"),
            QStringLiteral(
                "|:\"D\"A2FA ~d2fd|\"G\"B2GB \"A\"A2FA|[1\"D\"d2fd {g}e2ce:|[2\"A\"(3ABc de \"D\"d4|]"),
            QStringLiteral("w:la la la la % words"),
            QStringLiteral("[K:G][M:6/8]GAB [DFA]2d :: \"^rit.\"c3 \\") };
        while (lines.size() < kLines)
            lines << body.at(lines.size() % body.size());
        *origin = QStringLiteral("built tune");
    }
    return lines.join(CRLF) + CRLF;
}

template <typename F> double millisecondsPerRun(int runs, F work)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < runs; ++i)
        work();
    return timer.nsecsElapsed() / 1e6 / runs;
}

} // namespace

int main()
{
    QString origin;
    const QString text = tuneText(&origin);
    std::printf(
        "ABC colouring (%s, %lld characters)\n", qPrintable(origin), static_cast<long long>(text.size()));

    qsizetype count = 0;
    abcColourRanges(text); // compiles the expression
    const double whole = millisecondsPerRun(200, [&] { count = abcColourRanges(text).size(); });
    std::printf(
        "  whole tune, 300 lines : %8.3f ms per run (%lld ranges)\n", whole, static_cast<long long>(count));

    // Every line in turn, as a caret moving down the tune would colour it.
    std::vector<double> perLine;
    qsizetype caret = 0;
    while (caret < text.size()) {
        TextRegion region;
        abcColourCaretLine(text, caret, &region);
        perLine.push_back(millisecondsPerRun(200, [&] { abcColourCaretLine(text, caret); }));
        caret = region.start + region.length;
    }
    std::sort(perLine.begin(), perLine.end());
    double sum = 0;
    for (double t : perLine)
        sum += t;
    std::printf("  caret line            : %8.4f ms mean, %8.4f ms worst (%zu lines)\n", sum / perLine.size(),
        perLine.back(), perLine.size());
    return 0;
}
