// The tempo tapper: instant values from tap intervals, the mean over the sample period, and
// the window's keys.
#include "testenv.h"
#include "testmain.h"

#include "playback/tempotapper.h"
#include "playback/widgets/tempodialog.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QTest>

using namespace fenwork;

class TestTempoTapper : public QObject
{
    Q_OBJECT

private slots:
    void instant_data()
    {
        QTest::addColumn<QList<double>>("taps"); // clock readings, seconds since midnight
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("count");
        QTest::newRow("one second is 60") << QList<double> { 100.0, 101.0 } << "60" << 1;
        QTest::newRow("last interval counts") << QList<double> { 100.0, 101.0, 101.4 } << "150" << 2;
        QTest::newRow("across midnight") << QList<double> { 86399.8, 0.2 } << "0" << 1;
        QTest::newRow("slower than a minute") << QList<double> { 10.0, 130.0 } << "0" << 1;
    }
    void instant()
    {
        QFETCH(QList<double>, taps);
        QFETCH(QString, shown);
        QFETCH(int, count);
        double now = 0;
        TempoTapper tapper([&now] { return now; });
        for (double t : taps) {
            now = t;
            QVERIFY(tapper.tap() != TempoTapper::Tap::DivisionByZero);
        }
        QCOMPARE(tapper.instantText(), shown);
        QCOMPARE(tapper.tapCount(), count);
        QVERIFY(tapper.isRunning());
        QCOMPARE(tapper.meanText(), QStringLiteral(">>>"));
    }

    void tapsTooClose()
    {
        double now = 50.0;
        TempoTapper tapper([&now] { return now; });
        tapper.tap();
        now = 50.004; // rounds to 0 hundredths
        QCOMPARE(tapper.tap(), TempoTapper::Tap::DivisionByZero);
        QCOMPARE(tapper.instantText(), QStringLiteral("---"));
        QCOMPARE(tapper.tapCount(), 1);
        now = 51.004; // measured from the tap that failed
        QCOMPARE(tapper.tap(), TempoTapper::Tap::Measured);
        QCOMPARE(tapper.instantText(), QStringLiteral("60"));
    }

    void mean_data()
    {
        QTest::addColumn<int>("period");
        QTest::addColumn<int>("taps"); // after the first
        QTest::addColumn<QString>("mean");
        QTest::newRow("30 in 15 s") << 15 << 30 << "120";
        QTest::newRow("truncated") << 60 << 97 << "97";
        QTest::newRow("none") << 15 << 0 << "0";
    }
    void mean()
    {
        QFETCH(int, period);
        QFETCH(int, taps);
        QFETCH(QString, mean);
        double now = 0;
        TempoTapper tapper([&now] { return now; });
        tapper.setPeriod(period);
        tapper.tap();
        for (int i = 0; i < taps; ++i) {
            now += 0.4;
            tapper.tap();
        }
        for (int second = 1; second < period; ++second) {
            QVERIFY(!tapper.tick());
            QCOMPARE(tapper.elapsed(), second);
        }
        QCOMPARE(tapper.meanText(), QStringLiteral(">>>"));
        QVERIFY(tapper.tick());
        QCOMPARE(tapper.meanText(), mean);
        QCOMPARE(tapper.elapsed(), 0);
        QCOMPARE(tapper.tapCount(), 0);
    }

    // The window's smoke test: the period slider snaps to its steps, Space taps, Stop resets.
    void window()
    {
        test::TestEnv env;
        double now = 1000.0;
        TempoDialog dialog(env.app(), nullptr, [&now] { return now; });
        auto *tempo = dialog.findChild<QLabel *>("lab_tempo");
        auto *cumul = dialog.findChild<QLabel *>("lab_tempoCumul");
        auto *prg = dialog.findChild<QProgressBar *>("prg");
        auto *period = dialog.findChild<QSlider *>("sld_echantil");
        auto *stop = dialog.findChild<QPushButton *>("bt_stop");
        QVERIFY(tempo && cumul && prg && period && stop);
        period->setValue(22); // between steps: snaps to 20
        QCOMPARE(period->value(), 20);
        QCOMPARE(prg->maximum(), 20);

        dialog.show();
        QTest::keyClick(&dialog, Qt::Key_Space);
        QCOMPARE(cumul->text(), QStringLiteral(">>>"));
        now += 1.0;
        QTest::keyClick(&dialog, Qt::Key_Space);
        QCOMPARE(tempo->text(), QStringLiteral("60"));
        dialog.tm_cumul_Timer();
        QCOMPARE(prg->value(), 1);

        QTest::keyClick(&dialog, Qt::Key_Space); // same instant: a division by zero, reported
        QCOMPARE(env.ui().messages().size(), 1);
        QVERIFY(env.ui().lastMessage().contains(QStringLiteral("Division by zero")));

        stop->click();
        QCOMPARE(tempo->text(), QStringLiteral("---"));
        QCOMPARE(cumul->text(), QStringLiteral("---"));
        QCOMPARE(prg->value(), 0);

        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
    }
};

FENWORK_TEST(TestTempoTapper)
#include "tst_tempotapper.moc"
