// A keystroke in the unlocked editor with a 300-line tune: the typed character, the repaint of
// the caret's line colours, the line-number margin and the relayout, as the user waits for them;
// beside it the same keys in a bare QPlainTextEdit, in the same run.
#include "benchrow.h"
#include "editing/widgets/abceditor.h"
#include "editing/widgets/abctextpanel.h"
#include "frame/strutil.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QPlainTextEdit>

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

QString tuneText()
{
    QFile file(corpusDir() + QStringLiteral("/nottingham/reelsa-c.abc"));
    QStringList lines;
    if (file.open(QIODevice::ReadOnly)) {
        const QStringList all = QString::fromUtf8(file.readAll()).remove(u'\r').split(u'\n');
        for (const QString &line : all)
            if (lines.size() < 300 && (!lines.isEmpty() || line.startsWith(u"X:")))
                lines << line;
    }
    while (lines.size() < 300)
        lines << QStringLiteral("|:\"D\"A2FA ~d2fd|\"G\"B2GB \"A\"A2FA|[1\"D\"d2fd {g}e2ce:|");
    return lines.join(CRLF);
}

// Times `keys` typed at the end of line 150, each until the events it caused are done.
std::vector<double> typeInto(QPlainTextEdit *editor)
{
    QTextCursor cursor = editor->textCursor();
    cursor.movePosition(QTextCursor::Start);
    cursor.movePosition(QTextCursor::Down, QTextCursor::MoveAnchor, 150);
    cursor.movePosition(QTextCursor::EndOfLine);
    editor->setTextCursor(cursor);
    QApplication::processEvents();

    const QString keys = QStringLiteral("|\"G\"B2GB A2FA|");
    std::vector<double> times;
    for (int i = 0; i < 300; ++i) {
        const QChar c = keys.at(i % keys.size());
        QElapsedTimer timer;
        timer.start();
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(editor, &press);
        QApplication::processEvents();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times;
}

double percentile95(const std::vector<double> &sorted)
{
    return sorted[sorted.size() * 95 / 100];
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    AbcTextPanel panel;
    panel.resize(900, 600);
    panel.showText(tuneText());
    panel.setLocked(false);
    panel.abcEditor()->setLineNumbersVisible(true); // as in a session: the margin repaints too
    panel.show();

    QPlainTextEdit bare;
    bare.resize(900, 600);
    bare.setPlainText(tuneText());
    bare.show();

    // Alternating rounds, so that a busy moment of the machine falls on both.
    std::vector<double> ours, anchor;
    for (int round = 0; round < 5; ++round) {
        const std::vector<double> a = typeInto(panel.editor());
        const std::vector<double> b = typeInto(&bare);
        ours.insert(ours.end(), a.begin(), a.end());
        anchor.insert(anchor.end(), b.begin(), b.end());
    }
    std::sort(ours.begin(), ours.end());
    std::sort(anchor.begin(), anchor.end());
    std::printf("Keystroke in the editor (300-line tune, 5 x 300 keys, colours and line numbers on)\n");
    std::printf("  median %8.3f ms, 95th percentile %8.3f ms, worst %8.3f ms\n", ours[ours.size() / 2],
        percentile95(ours), ours.back());
    fenwork::bench::row(QStringLiteral("keystroke, 300-line tune, 95th percentile"), percentile95(ours),
        QStringLiteral("ms"), QStringLiteral("bare QPlainTextEdit"), percentile95(anchor),
        QStringLiteral("goal <= 2 ms"));
    fenwork::bench::row(QStringLiteral("keystroke, 300-line tune, median"), fenwork::bench::median(ours),
        QStringLiteral("ms"), QStringLiteral("bare QPlainTextEdit"), fenwork::bench::median(anchor), QString());
    return 0;
}
