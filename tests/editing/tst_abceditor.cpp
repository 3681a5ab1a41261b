// The line-number margin: the caret's number in red follows the caret, and a caret move repaints
// the two lines concerned, not the whole margin.
#include "testmain.h"

#include "editing/widgets/abceditor.h"

#include <QApplication>
#include <QPaintEvent>
#include <QScreen>
#include <QTest>
#include <QTextBlock>

using namespace fenwork;

namespace {

// Collects the areas the margin is asked to paint.
class PaintWatch : public QObject
{
public:
    QRegion painted;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            painted += static_cast<QPaintEvent *>(event)->region();
        return false;
    }
};

bool redAt(const QImage &image, int x0, int x1, int y0, int y1)
{
    for (int y = qMax(0, y0); y < qMin(image.height(), y1); ++y)
        for (int x = qMax(0, x0); x < qMin(image.width(), x1); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.red() > 180 && c.green() < 90 && c.blue() < 90)
                return true;
        }
    return false;
}

} // namespace

class TestAbcEditor : public QObject
{
    Q_OBJECT

private slots:
    void caretLineInMargin_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::newRow("down") << 0 << 6;
        QTest::newRow("up") << 9 << 2;
        QTest::newRow("next line") << 3 << 4;
    }

    void caretLineInMargin()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        AbcEditor editor;
        QStringList lines;
        for (int i = 0; i < 30; ++i)
            lines << QStringLiteral("|:DFAF dFAF|GBdB AFEF:|");
        editor.setPlainText(lines.join(u'\n'));
        editor.resize(400, 300);
        editor.setLineNumbersVisible(true);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        QWidget *margin = editor.findChild<QWidget *>(QStringLiteral("pic_Lignes"));
        QVERIFY(margin);

        const auto moveTo = [&](int line) {
            QTextCursor cursor(editor.document()->findBlockByNumber(line));
            editor.setTextCursor(cursor);
        };
        const auto lineBand = [&](int line) {
            QTextCursor cursor(editor.document()->findBlockByNumber(line));
            const QRect r = editor.cursorRect(cursor);
            return std::pair { r.top(), r.bottom() };
        };
        moveTo(from);
        QApplication::processEvents();
        QApplication::processEvents();

        PaintWatch watch;
        margin->installEventFilter(&watch);
        moveTo(to);
        QTRY_VERIFY(!watch.painted.isEmpty());
        // The two lines, never the whole margin.
        const int lineHeight = lineBand(0).second - lineBand(0).first + 1;
        for (const QRect &rect : watch.painted)
            QVERIFY2(rect.height() <= 2 * lineHeight + 2, qPrintable(QString::number(rect.height())));

        // What is on the screen: red at the new line only.
        const QImage shown = editor.screen()->grabWindow(editor.winId()).toImage();
        const QPoint origin = margin->mapTo(&editor, QPoint(0, 0));
        const auto [newTop, newBottom] = lineBand(to);
        const auto [oldTop, oldBottom] = lineBand(from);
        QVERIFY(redAt(shown, origin.x(), origin.x() + margin->width(), origin.y() + newTop, origin.y() + newBottom));
        QVERIFY(!redAt(shown, origin.x(), origin.x() + margin->width(), origin.y() + oldTop, origin.y() + oldBottom));
    }
};

FENWORK_TEST(TestAbcEditor)
#include "tst_abceditor.moc"
