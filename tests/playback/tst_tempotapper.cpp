// The tempo tapper: instant values from tap intervals, the mean over the sample period, and
// the window's keys.
#include "testenv.h"
#include "testmain.h"

#include "playback/tempotapper.h"
#include "playback/widgets/tempodialog.h"

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

};

FENWORK_TEST(TestTempoTapper)
#include "tst_tempotapper.moc"
