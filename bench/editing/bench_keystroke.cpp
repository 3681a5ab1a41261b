// A keystroke in the unlocked editor with a 300-line tune: the typed character, the repaint of
// the caret's line colours and the relayout, as the user waits for them.
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

QString tuneText()
{
    QFile file(QStringLiteral(FENWORK_CORPUS_DIR "/nottingham/reelsa-c.abc"));
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
    QApplication::processEvents();
    QPlainTextEdit *editor = panel.editor();
    QTextCursor cursor = editor->textCursor();
    cursor.movePosition(QTextCursor::Down, QTextCursor::MoveAnchor, 150);
    cursor.movePosition(QTextCursor::EndOfLine);
    editor->setTextCursor(cursor);

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
    std::printf("Keystroke in the editor (300-line tune, 300 keys)\n");
    std::printf("  median %8.3f ms, 95th percentile %8.3f ms, worst %8.3f ms\n", times[times.size() / 2],
        times[times.size() * 95 / 100], times.back());
    return 0;
}
