// The player panel's arithmetic: the 6/8 factor, the boxes' numbers, the progress slider's scale.
#include "testmain.h"

#include "playback/playerlogic.h"

#include <QTest>

using namespace fenwork;

class TestPlayerLogic : public QObject
{
    Q_OBJECT

private slots:
    void tempoSoundFactor_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("factor");
        QTest::newRow("6/8") << "X:1\r\nM:6/8\r\nK:D\r\nABc|\r\n" << 1.5;
        QTest::newRow("a 3/8= tempo anywhere") << "X:1\r\nM:6/8\r\nQ:3/8=100\r\nK:D\r\nABc|\r\n" << 1.0;
        QTest::newRow("only the first M: counts") << "X:1\r\nM:4/4\r\nK:D\r\nAB|\r\nM:6/8\r\nABc|\r\n" << 1.0;
        QTest::newRow("first of two is 6/8") << "X:1\r\nM:6/8\r\nK:D\r\nABc|\r\nM:2/4\r\nAB|\r\n" << 1.5;
        QTest::newRow("no meter") << "X:1\r\nK:D\r\nABc|\r\n" << 1.0;
    }

    void tempoSoundFactor()
    {
        QFETCH(QString, text);
        QFETCH(double, factor);
        QCOMPARE(player::tempoSoundFactor(text), factor);
    }

    void clampPitch_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("value");
        QTest::addColumn<bool>("rewrite");
        QTest::newRow("in range") << "7" << 7 << false;
        QTest::newRow("above") << "13" << 12 << true;
        QTest::newRow("below") << "-40" << -12 << true;
        QTest::newRow("leading blanks and text") << "  3 up" << 3 << false;
        QTest::newRow("empty") << "" << 0 << false;
    }

    void clampPitch()
    {
        QFETCH(QString, text);
        QFETCH(int, value);
        QFETCH(bool, rewrite);
        bool rewritten = false;
        QCOMPARE(player::clampPitch(text, &rewritten), value);
        QCOMPARE(rewritten, rewrite);
    }

    // A long tune still runs the bar from end to end: the position is scaled by the length.
    void progress_data()
    {
        QTest::addColumn<qint64>("length");
        QTest::addColumn<qint64>("position");
        QTest::addColumn<int>("value");
        QTest::newRow("short tune, middle") << qint64(6144) << qint64(3072) << 3072;
        QTest::newRow("long tune, middle") << qint64(100000) << qint64(50000) << 16383;
        QTest::newRow("long tune, end") << qint64(100000) << qint64(100000) << 32767;
        QTest::newRow("past the end") << qint64(100000) << qint64(200000) << 32767;
        QTest::newRow("empty tune") << qint64(0) << qint64(0) << 0;
    }

    void progress()
    {
        QFETCH(qint64, length);
        QFETCH(qint64, position);
        QFETCH(int, value);
        const int maximum = player::progressMaximum(int(length));
        QVERIFY(maximum <= player::kProgressLimit);
        QCOMPARE(player::progressValue(position, length, maximum), value);
        // And back: a slider value seeks to the place it stands for.
        if (length > 0 && position <= length)
            QVERIFY(qAbs(player::seekPosition(value, maximum, length) - position) <= length / maximum + 1);
    }

    void currentLineAsTune_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("tune");
        const QString text = QStringLiteral("X:3\r\nT:Reel\r\nM:4/4\r\nK:G\r\nGABc dedB|\r\nd2ef gfed|\r\n");
        QTest::newRow("second music line")
            << text << int(text.indexOf(u"d2ef")) + 2 << "X:3\r\nT:Reel\r\nM:4/4\r\nK:G\r\nd2ef gfed|\r\n";
        QTest::newRow("caret at a line's end")
            << text << int(text.indexOf(u"|\r\nd2")) + 1 << "X:3\r\nT:Reel\r\nM:4/4\r\nK:G\r\nGABc dedB|\r\n";
        QTest::newRow("caret in the header") << text << 6 << "X:3\r\nT:Reel\r\nM:4/4\r\nK:G\r\n";
    }

    void currentLineAsTune()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(QString, tune);
        QCOMPARE(player::currentLineAsTune(text, caret), tune);
    }

};

FENWORK_TEST(TestPlayerLogic)
#include "tst_playerlogic.moc"
