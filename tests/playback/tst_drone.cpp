// The drone: the exact messages it sends, what restarts it, linked notes, saved drones, and the
// panel's switch.
#include "testenv.h"
#include "testmain.h"

#include "playback/drone.h"
#include "playback/midiout.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace fenwork;
using fenwork::test::TestEnv;

namespace {

// Keeps what the drone did to the output as readable lines: "open", "close", or the three
// bytes of a message in hexadecimal.
class RecordingMidiOut : public MidiOut
{
public:
    QStringList log;
    bool failOpen = false;

    bool open(QString *error) override
    {
        log.append(QStringLiteral("open"));
        if (failOpen) {
            if (error)
                *error = QStringLiteral("no MIDI device");
            return false;
        }
        m_open = true;
        return true;
    }
    void close() override
    {
        log.append(QStringLiteral("close"));
        m_open = false;
    }
    bool isOpen() const override { return m_open; }
    void shortMsg(quint32 message) override { log.append(bytes(message)); }
    static QString bytes(quint32 message)
    {
        return QStringLiteral("%1 %2 %3")
            .arg(message & 0xFF, 2, 16, QChar(u'0'))
            .arg(message >> 8 & 0xFF, 2, 16, QChar(u'0'))
            .arg(message >> 16 & 0xFF, 2, 16, QChar(u'0'))
            .toUpper();
    }

private:
    bool m_open = false;
};

// A start: the output opened, each active voice's program, note and sustain, then the volumes.
QStringList start(const QStringList &voices)
{
    return QStringList { "open" } + voices + QStringList { "BF 07 64", "BE 07 64", "BD 07 64" };
}
QStringList restart(const QStringList &voices)
{
    return QStringList { "close" } + start(voices);
}
// Switching on with the default voices and voice 0 alone active.
const QStringList kStartVoice0 = start({ "CF 13 00", "9F 26 7F", "BF 40 7F" });

void writeDroneFile(const Paths &paths, const QString &name, const QByteArray &bytes)
{
    QDir().mkpath(droneFolder(paths));
    QFile file(QDir(droneFolder(paths)).filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class TestDrone : public QObject
{
    Q_OBJECT

private slots:

    // What each action sends, starting from a drone with voice 0 active, on or off.
    void actions_data()
    {
        QTest::addColumn<bool>("startOn");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<bool>("endsOn");

        const QStringList none;
        QTest::newRow("voice clicked while off starts") << false << "voice0 on" << kStartVoice0 << true;
        QTest::newRow("voice clicked while on restarts") << true << "voice1 on"
            << restart({ "CF 13 00", "9F 26 7F", "BF 40 7F", "CE 61 00", "9E 2D 7F", "BE 40 7F" }) << true;
        QTest::newRow("program of silent voice") << true << "program1 40" << none << true;
        QTest::newRow("note of active voice")
            << true << "note0 5" << restart({ "CF 13 00", "9F 29 7F", "BF 40 7F" }) << true;
        QTest::newRow("voice volume") << true << "volume1 50" << QStringList { "BE 07 32" } << true;
        QTest::newRow("switch off") << true << "off" << QStringList { "close" } << false;
    }
    void actions()
    {
        QFETCH(bool, startOn);
        QFETCH(QString, action);
        QFETCH(QStringList, expected);
        QFETCH(bool, endsOn);
        TestEnv env;
        RecordingMidiOut out;
        Drone drone(env.app(), out);
        drone.setVoice(0, { true, 19, 2, 100 });
        if (startOn)
            drone.switchOn();
        out.log.clear();

        const QStringList words = action.split(u' ');
        const QString verb = words.at(0);
        const int voice = verb.right(1).toInt();
        const int value = words.size() > 1 ? words.at(1).toInt() : 0;
        if (verb.startsWith(u"voice"))
            drone.voiceClicked(voice, words.at(1) == u"on");
        else if (verb.startsWith(u"program"))
            drone.programChosen(voice, value);
        else if (verb.startsWith(u"note"))
            QVERIFY(drone.noteChosen(voice, value));
        else if (verb.startsWith(u"volume"))
            drone.setVoiceVolume(voice, value);
        else if (verb == u"off")
            drone.switchOff();
        else
            QFAIL("unknown action");
        QCOMPARE(out.log, expected);
        QCOMPARE(drone.isOn(), endsOn);
        QVERIFY(env.ui().messages().isEmpty());
    }

    // Closing is what silences the held notes: the end of the program must do it, but a drone
    // that is off leaves alone an output that the keyboard of an edit session may hold.
    void closingAtTheEnd()
    {
        TestEnv env;
        RecordingMidiOut out;
        {
            Drone drone(env.app(), out);
            drone.voiceClicked(0, true);
        }
        QCOMPARE(out.log.last(), QStringLiteral("close"));
        out.log.clear();
        out.open(nullptr);
        {
            Drone drone(env.app(), out);
            drone.switchOff();
        }
        QVERIFY(out.isOpen());
        QCOMPARE(out.log, QStringList { "open" });
    }

    void outputFailure()
    {
        TestEnv env;
        RecordingMidiOut out;
        out.failOpen = true;
        Drone drone(env.app(), out);
        drone.setVoice(0, { true, 19, 2, 100 });
        QVERIFY(drone.switchOn());
        QCOMPARE(out.log, QStringList { "open" });
        QCOMPARE(env.ui().messages().size(), 1);
        const QString text = env.ui().messages().at(0);
        QVERIFY(text.contains(QStringLiteral("* * * MIDI Error * * *")));
        QVERIFY(text.contains(QStringLiteral("Context: Drone ON > midiOutOpen")));
        QVERIFY(text.contains(QStringLiteral("no MIDI device")));
    }

    void linkedNotes_data()
    {
        QTest::addColumn<bool>("linked");
        QTest::addColumn<int>("voice");
        QTest::addColumn<int>("index");
        QTest::addColumn<QList<int>>("expected");
        QTest::addColumn<bool>("ok");
        // Notes start at 2, 40, 45.
        QTest::newRow("up together") << true << 0 << 6 << QList<int> { 6, 44, 49 } << true;
        QTest::newRow("past the end stops halfway") << true << 0 << 8 << QList<int> { 8, 46, 45 } << false;
        QTest::newRow("below the start stops at once")
            << true << 1 << 37 << QList<int> { 2, 37, 45 } << false;
    }
    void linkedNotes()
    {
        QFETCH(bool, linked);
        QFETCH(int, voice);
        QFETCH(int, index);
        QFETCH(QList<int>, expected);
        QFETCH(bool, ok);
        TestEnv env;
        RecordingMidiOut out;
        Drone drone(env.app(), out);
        drone.setVoice(0, { false, 19, 2, 100 });
        drone.setVoice(1, { false, 97, 40, 100 });
        drone.setVoice(2, { false, 42, 45, 100 });
        drone.setLinked(linked);
        QCOMPARE(drone.noteChosen(voice, index), ok);
        QCOMPARE((QList<int> { drone.voice(0).note, drone.voice(1).note, drone.voice(2).note }), expected);
        if (ok) {
            QVERIFY(env.ui().messages().isEmpty());
        } else {
            QCOMPARE(env.ui().messages().size(), 1);
            QVERIFY(env.ui().messages().at(0).startsWith(QStringLiteral("Context: LstDroneClick")));
        }
    }

    void fileReading_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QList<int>>("expected"); // the twelve values afterwards
        QTest::addColumn<bool>("ok");
        // Before reading: 1 1 1 1 / 0 2 2 2 / 1 3 3 3
        QTest::newRow("blanks around numbers, LF ends")
            << QByteArray(" 0 \n 5\n6 \n 7 \n1\n8\n9\n10\n0\n11\n12\n13\n")
            << QList<int> { 0, 5, 6, 7, 1, 8, 9, 10, 0, 11, 12, 13 } << true;
        QTest::newRow("ends after voice 0 and a half")
            << QByteArray("0\r\n5\r\n6\r\n7\r\n1\r\n8") << QList<int> { 0, 5, 6, 7, 1, 8, 2, 2, 1, 3, 3, 3 }
            << true;
        QTest::newRow("note past the list stops there")
            << QByteArray("0\n5\n50\n7\n1\n") << QList<int> { 0, 5, 1, 1, 0, 2, 2, 2, 1, 3, 3, 3 } << false;
        QTest::newRow("active must be 0 or 1")
            << QByteArray("2\n") << QList<int> { 1, 1, 1, 1, 0, 2, 2, 2, 1, 3, 3, 3 } << false;
    }
    void fileReading()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QList<int>, expected);
        QFETCH(bool, ok);
        TestEnv env;
        RecordingMidiOut out;
        writeDroneFile(env.app().paths(), QStringLiteral("d"), bytes);
        Drone drone(env.app(), out);
        drone.setVoices(
            { DroneVoice { true, 1, 1, 1 }, DroneVoice { false, 2, 2, 2 }, DroneVoice { true, 3, 3, 3 } });
        QCOMPARE(drone.chooseSaved(QStringLiteral("d")), ok);
        QList<int> values;
        for (const DroneVoice &v : drone.voices())
            values << (v.active ? 1 : 0) << v.program << v.note << v.volume;
        QCOMPARE(values, expected);
        if (ok) {
            QVERIFY(env.ui().messages().isEmpty());
        } else {
            QCOMPARE(env.ui().messages().size(), 1);
            QVERIFY(env.ui().messages().at(0).startsWith(QStringLiteral("Context: OpenDroneData")));
        }
        QVERIFY(out.log.isEmpty()); // the drone was off
    }

};

FENWORK_TEST(TestDrone)
#include "tst_drone.moc"
