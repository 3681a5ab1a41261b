#include "testmain.h"

#include "scripteddialogs.h"
#include "frame/widgets/progressstrip.h"
#include "frame/widgets/widgetdialogs.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <QVBoxLayout>

using namespace fenwork;

class TestDialogs : public QObject
{
    Q_OBJECT
private slots:
    void widgetProgressStrip();
    void widgetBusyCursorNests();
    void widgetEscapeFilter_data();
    void widgetEscapeFilter();
};

void TestDialogs::widgetProgressStrip()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *strip = new ProgressStrip;
    layout->addWidget(strip);
    window.show();

    WidgetDialogs ui(&window);
    // Work reported before the strip is attached shows up once it is.
    ui.showProgress(true);
    ui.setProgressCaption(QStringLiteral("Load..."));
    ui.setProgressRange(40);
    ui.setProgressValue(12);
    QCOMPARE(ui.progressValue(), 12);
    QVERIFY(!strip->isVisibleTo(&window));
    ui.setProgressStrip(strip);

    auto *caption = window.findChild<QLabel *>(QStringLiteral("lab_Progress"));
    auto *bar = window.findChild<QProgressBar *>(QStringLiteral("ProgB"));
    QVERIFY(caption && bar);
    QVERIFY(strip->isVisibleTo(&window));
    QCOMPARE(caption->text(), QStringLiteral("Load..."));
    QCOMPARE(bar->maximum(), 40);
    QCOMPARE(bar->value(), 12);

    ui.setProgressValue(41); // past the end: the bar stays full
    QCOMPARE(bar->value(), 40);
    ui.showProgress(false);
    QVERIFY(!strip->isVisibleTo(&window));

    // A status text alone brings the strip back, without the bar; it goes when cleared.
    ui.statusMessage(QStringLiteral("\r\n Escape was pressed, refreshing stopped"));
    QVERIFY(strip->isVisibleTo(&window));
    QVERIFY(!bar->isVisibleTo(&window));
    QCOMPARE(strip->statusText(), QStringLiteral("\r\n Escape was pressed, refreshing stopped"));
    ui.statusMessage(QString());
    QVERIFY(!strip->isVisibleTo(&window));

    // An empty job must not turn the bar into a busy indicator.
    ui.showProgress(true);
    ui.setProgressRange(0);
    QVERIFY(bar->maximum() > bar->minimum());
}

void TestDialogs::widgetBusyCursorNests()
{
    QVERIFY(!QApplication::overrideCursor());
    {
        WidgetDialogs ui;
        ui.setBusy(true);
        ui.setBusy(true);
        ui.setBusy(false);
        QVERIFY(QApplication::overrideCursor());
        ui.setBusy(false);
        QVERIFY(!QApplication::overrideCursor());
        ui.setBusy(false); // one too many must not pop someone else's cursor
        QApplication::setOverrideCursor(Qt::CrossCursor);
        ui.setBusy(false);
        QVERIFY(QApplication::overrideCursor());
        QApplication::restoreOverrideCursor();
        ui.setBusy(true); // left on: the object puts it back when it goes
    }
    QVERIFY(!QApplication::overrideCursor());
}

// Only an Esc pressed while a wait watches stops it: one that closed a menu or a box before
// the wait, or between two waits, must not stop the next.
void TestDialogs::widgetEscapeFilter_data()
{
    QTest::addColumn<QString>("when");
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("stops");
    QTest::newRow("Esc during the wait") << "during" << int(Qt::Key_Escape) << true;
    QTest::newRow("another key during the wait") << "during" << int(Qt::Key_A) << false;
    QTest::newRow("Esc before the wait") << "before" << int(Qt::Key_Escape) << false;
    QTest::newRow("Esc between two waits") << "between" << int(Qt::Key_Escape) << false;
}

void TestDialogs::widgetEscapeFilter()
{
    QFETCH(QString, when);
    QFETCH(int, key);
    QFETCH(bool, stops);
    WidgetDialogs ui;
    QWidget target;
    target.show();
    const auto press = [&] {
        QCoreApplication::postEvent(&target, new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier));
        ui.processEvents();
    };
    if (when == u"before")
        press();
    if (when == u"between") {
        ui.watchEscape(true);
        ui.watchEscape(false);
        press();
    }
    ui.watchEscape(true);
    if (when == u"during")
        press();
    QCOMPARE(ui.escapePressed(), stops);
    QVERIFY(!ui.escapePressed()); // read once
    ui.watchEscape(false);
}

FENWORK_TEST(TestDialogs)
#include "tst_dialogs.moc"
