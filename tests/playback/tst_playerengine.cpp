// The player engine heard through the synthesiser, rendered to memory: what sounds, how long and
// how loud, and what is left sounding after a stop.
#include "audiocheck.h"
#include "testenv.h"
#include "testmain.h"

#include "playback/midifileinfo.h"
#include "playback/midiplayer.h"
#include "playback/soundfont.h"
#include "playback/synthengine.h"
#include "playback/synthmidiout.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fluidsynth.h>

using namespace fenwork;
using namespace fenwork::test;

namespace {

constexpr int kA4 = 69;
constexpr int kFlute = 73;

// An engine rendering to memory and its player.
struct Rig
{
    Rig() { engine.setSoundFontSetting(testSoundFont()); }

    SynthEngine engine { SynthEngine::Mode::Offline };
    MidiPlayer player { engine };
    Sound sound;

    // Renders `seconds` more and returns the part rendered now.
    Sound render(double seconds)
    {
        const int frames = int(seconds * SynthEngine::kSampleRate);
        Sound part;
        part.samples.resize(frames * 2);
        constexpr int kBlock = 512;
        for (int done = 0; done < frames; done += kBlock)
            engine.render(part.samples.data() + 2 * done, qMin(kBlock, frames - done));
        sound.samples += part.samples;
        return part;
    }
};

} // namespace

class TestPlayerEngine : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString write(const QString &name, const QByteArray &bytes)
    {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        return path;
    }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }
    // Everything but the file reading and the font choice is listened to.
    void init()
    {
        const QByteArray test = QTest::currentTestFunction();
        if (test != "midiFileInfo" && test != "chooseSoundFont" && testSoundFont().isEmpty())
            QSKIP("the small SoundFont of install-deps (timgm6mb-soundfont) is not installed");
    }

    void midiFileInfo_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<qint64>("lengthTicks");
        QTest::addColumn<double>("seconds");

        // Eight quarters at 120 a minute: four seconds.
        const QByteArray eight = MidiBuilder(120).notes(60, 8, 1).bytes();
        QTest::newRow("eight quarters") << eight << true << qint64(8 * 480) << 4.0;
        QTest::newRow("trailing rest counts")
            << MidiBuilder(120).note(60, 1).note(-1, 3).bytes() << true << qint64(4 * 480) << 2.0;
        QTest::newRow("not MIDI") << QByteArray("X:1\r\nK:C\r\nCDE|\r\n") << false << qint64(0) << 0.0;
        QTest::newRow("track cut short") << eight.left(eight.size() - 5) << false << qint64(0) << 0.0;
        QByteArray smpte = eight;
        smpte[12] = char(0xE7);
        QTest::newRow("SMPTE time") << smpte << false << qint64(0) << 0.0;
        QByteArray noStatus = eight;
        noStatus[23] = 0x00; // the tempo's 0xFF becomes a data byte with no running status
        QTest::newRow("data without status") << noStatus << false << qint64(0) << 0.0;
        QByteArray longDelta = QByteArray("MThd\0\0\0\x06\0\0\0\x01\x01\xE0MTrk\0\0\0\x08", 22);
        longDelta.append("\xFF\xFF\xFF\xFF\x7F\x90\x3C\x40", 8);
        QTest::newRow("delta of five bytes") << longDelta << false << qint64(0) << 0.0;
    }

    void midiFileInfo()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, valid);
        QFETCH(qint64, lengthTicks);
        QFETCH(double, seconds);
        const MidiFileInfo info = readMidiFileInfo(bytes);
        QCOMPARE(info.valid, valid);
        if (!valid) {
            QVERIFY(!info.error.isEmpty());
            return;
        }
        QCOMPARE(info.division, 480);
        QCOMPARE(info.lengthTicks, lengthTicks);
        QVERIFY(qAbs(info.seconds - seconds) < 0.01);
        QCOMPARE(info.channels, quint16(1));
    }

    void chooseSoundFont_data()
    {
        QTest::addColumn<QStringList>("files"); // name:size
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("expected");

        QTest::newRow("largest GM font") << QStringList { "small-GM.sf2:10", "FluidR3_GM.sf2:30",
            "Big.sf2:90" } << QString() << "FluidR3_GM.sf2";
        QTest::newRow("GS and general count") << QStringList { "a_GS.sf2:10", "MuseScore_General.sf3:20" }
                                              << QString() << "MuseScore_General.sf3";
        QTest::newRow("the setting first") << QStringList { "FluidR3_GM.sf2:30", "mine.sf2:5" } << "mine.sf2"
                                           << "mine.sf2";
        QTest::newRow("setting missing") << QStringList { "FluidR3_GM.sf2:30" } << "gone.sf2"
                                         << "FluidR3_GM.sf2";
    }

    void chooseSoundFont()
    {
        QFETCH(QStringList, files);
        QFETCH(QString, setting);
        QFETCH(QString, expected);
        QTemporaryDir folder;
        for (const QString &entry : std::as_const(files)) {
            QFile file(folder.filePath(entry.section(u':', 0, 0)));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(entry.section(u':', 1).toInt(), 'x'));
        }
        const QString chosen = fenwork::chooseSoundFont(
            setting.isEmpty() ? QString() : folder.filePath(setting), { folder.path() });
        QCOMPARE(QFileInfo(chosen).fileName(), expected);
    }

    // A note that began before the transposition changed ends where it began: nothing is left
    // hanging once the tune is over.
    // Samples read as instruments are chosen sound as the whole font loaded at once, from the
    // first note of a cold start, program changes during the tune included.
    void instrumentsLoadedOnDemand_data()
    {
        QTest::addColumn<QString>("font");
        QTest::newRow("small font") << testSoundFont();
        QTest::newRow("large font") << QStringLiteral("/usr/share/sounds/sf2/FluidR3_GM.sf2");
    }

    void instrumentsLoadedOnDemand()
    {
        QFETCH(QString, font);
        if (!QFile::exists(font))
            QSKIP("the large SoundFont (fluid-soundfont-gm) is not installed");
        // As a prepared tune: every program in turn at the start, then the one that is heard.
        MidiBuilder prepared(140, 0, 0);
        for (int program = 1; program < 128; ++program)
            prepared.program(program);
        prepared.program(kFlute).note(kA4, 1).note(72, 1).controller(7, 90).note(76, 1);
        const QString tune = write(QStringLiteral("prepared.mid"), prepared.bytes());
        const QString flute = write(QStringLiteral("flute.mid"),
            MidiBuilder(140, 0, kFlute).note(kA4, 1).note(72, 1).controller(7, 90).note(76, 1).bytes());
        // Another channel switches instruments while the tune plays.
        const auto heard = [&](const QString &file, bool whole) {
            Rig rig;
            rig.engine.setSoundFontSetting(font);
            rig.engine.setWholeSoundFont(whole);
            rig.engine.start();
            rig.player.load(file);
            rig.player.play();
            rig.render(0.6);
            fluid_synth_program_change(rig.engine.synth(), 1, 40);
            fluid_synth_noteon(rig.engine.synth(), 1, 64, 100);
            rig.render(1.5);
            return rig.sound;
        };
        const Sound onDemand = heard(tune, false);
        QVERIFY(onDemand.rms(0, 22050) > 300); // the first note sounds at once
        QVERIFY(onDemand.samples == heard(tune, true).samples);
        QVERIFY(onDemand.samples == heard(flute, true).samples);
    }

    void transpositionKeepsNoteEnds()
    {
        Rig rig;
        QVERIFY(rig.player.load(
            write(QStringLiteral("two.mid"), MidiBuilder(120, 0, 19).note(60, 2).note(62, 2).bytes())));
        QVERIFY(rig.player.play());
        rig.render(0.5);
        rig.player.setTranspose(5);
        rig.render(4.0);
        QCOMPARE(fluid_synth_get_active_voice_count(rig.engine.synth()), 0);
        QVERIFY(rig.sound.soundEnd() < 2.8);
    }

    void masterVolume()
    {
        const QString file
            = write(QStringLiteral("vol.mid"), MidiBuilder(120, 0, kFlute).note(kA4, 4).bytes());
        const auto level = [&file](int hundredthsOfDb) {
            Rig rig;
            rig.player.load(file);
            rig.player.setMasterVolume(hundredthsOfDb);
            rig.player.play();
            return rig.render(1.5).rms(22050, 60000);
        };
        const double quiet = level(25 * 42 - 3000);
        const double loud = level(75 * 42 - 3000);
        QVERIFY(quiet > 0);
        // 21 dB apart: about 11 times the amplitude.
        QVERIFY2(loud / quiet > 7 && loud / quiet < 16, qPrintable(QString::number(loud / quiet)));
    }

    void stopSilencesAtOnce()
    {
        Rig rig;
        // An organ holds its sound as long as the key is down.
        QVERIFY(
            rig.player.load(write(QStringLiteral("long.mid"), MidiBuilder(120, 0, 19).note(60, 16).bytes())));
        QVERIFY(rig.player.play());
        QVERIFY(rig.render(1.0).rms() > 300);
        rig.player.unload();
        const Sound after = rig.render(0.5);
        QVERIFY2(
            after.peak(after.frameAt(0.1)) < 30, qPrintable(QString::number(after.peak(after.frameAt(0.1)))));
        QVERIFY(!rig.player.isPlaying());
    }

    void pauseAndResume()
    {
        Rig rig;
        QVERIFY(rig.player.load(
            write(QStringLiteral("eight2.mid"), MidiBuilder(120, 0, 19).notes(60, 8, 1).bytes())));
        QVERIFY(rig.player.play());
        rig.render(1.0);
        rig.player.stop();
        const int paused = rig.player.position();
        QVERIFY(paused > 1300 && paused < 1700); // about two quarters in
        QVERIFY(!rig.player.isPlaying());
        const Sound quiet = rig.render(1.0);
        QVERIFY(quiet.peak(quiet.frameAt(0.5)) < 30);
        QCOMPARE(rig.player.position(), paused);
        rig.player.setStartPoint(paused);
        QVERIFY(rig.player.play());
        const Sound rest = rig.render(4.0);
        // What was left: about three seconds.
        QVERIFY(rest.soundStart() < 0.05);
        QVERIFY2(qAbs(rest.soundEnd() - 3.0) < 0.4, qPrintable(QString::number(rest.soundEnd())));
    }

    void endlessLoopUntilUnticked()
    {
        Rig rig;
        QVERIFY(rig.player.load(
            write(QStringLiteral("loop.mid"), MidiBuilder(120, 0, kFlute).notes(72, 4, 1).bytes())));
        rig.player.setRepeats(-1);
        QVERIFY(rig.player.play());
        rig.render(7.0);
        QVERIFY(rig.player.isPlaying());
        QVERIFY(rig.sound.soundEnd() > 6.8);
        // Unticked during the fourth pass: that pass is the last.
        rig.player.setRepeats(0);
        rig.render(4.0);
        QVERIFY(!rig.player.isPlaying());
        QVERIFY2(qAbs(rig.sound.soundEnd() - 8.0) < 0.5, qPrintable(QString::number(rig.sound.soundEnd())));
    }

    // An instrument chosen while playing holds when the tune starts over, though the file sets
    // its own at its start.
    void liveProgramHoldsThroughRepeats()
    {
        Rig rig;
        QVERIFY(rig.player.load(
            write(QStringLiteral("prog.mid"), MidiBuilder(120, 0, kFlute).notes(72, 2, 1).bytes())));
        rig.player.setRepeats(2);
        QVERIFY(rig.player.play());
        rig.render(0.5);
        int sfont = 0, bank = 0, program = 0;
        fluid_synth_get_program(rig.engine.synth(), 0, &sfont, &bank, &program);
        QCOMPARE(program, kFlute);
        rig.player.programChange(0, 40);
        rig.render(1.5); // into the second pass
        fluid_synth_get_program(rig.engine.synth(), 0, &sfont, &bank, &program);
        QCOMPARE(program, 40);
        // A new tune starts from the file's own instrument again.
        QVERIFY(rig.player.load(
            write(QStringLiteral("prog2.mid"), MidiBuilder(120, 0, kFlute).note(72, 1).bytes())));
        QVERIFY(rig.player.play());
        rig.render(0.2);
        fluid_synth_get_program(rig.engine.synth(), 0, &sfont, &bank, &program);
        QCOMPARE(program, kFlute);
    }

    void mixerVolumeHoldsAgainstTheFile()
    {
        Rig rig;
        QVERIFY(rig.player.load(write(QStringLiteral("cc.mid"),
            MidiBuilder(120, 0, kFlute)
                .controller(7, 127)
                .note(72, 1)
                .controller(7, 127)
                .note(72, 1)
                .bytes())));
        QVERIFY(rig.player.play());
        rig.render(0.2);
        rig.player.sendMidi(0, 176, 7, 20);
        rig.render(0.6); // past the file's second volume controller
        int value = 0;
        fluid_synth_get_cc(rig.engine.synth(), 0, 7, &value);
        QCOMPARE(value, 20);
    }

    // The drone's channel keeps sounding when a tune is loaded, and the drone's output silences it
    // when closed.
    void shortMessagesBesideTheTune()
    {
        Rig rig;
        SynthMidiOut out(rig.engine);
        QVERIFY(out.open());
        out.shortMsg((0xC0 + 15) | 19 << 8); // church organ
        out.shortMsg((0x90 + 15) | 50 << 8 | 0x7F << 16); // note on
        out.shortMsg((0xB0 + 15) | 0x40 << 8 | 0x7F << 16); // sustain
        QVERIFY(rig.render(0.5).rms() > 300);
        QVERIFY(
            rig.player.load(write(QStringLiteral("beside.mid"), MidiBuilder(120, 0, 0).note(72, 1).bytes())));
        QVERIFY(rig.player.play());
        rig.render(1.0);
        rig.player.unload();
        QVERIFY(rig.render(0.5).rms() > 300);
        out.close();
        const Sound after = rig.render(0.5);
        QVERIFY(after.peak(after.frameAt(0.1)) < 30);
        QCOMPARE(rig.engine.heldChannels(), 0u);
    }
};

FENWORK_TEST(TestPlayerEngine)
#include "tst_playerengine.moc"
