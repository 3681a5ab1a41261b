// The player panel driven as a user drives it, with everything that sounds written in real time
// to a WAV file: what is heard, when, and the state the panel is left in.
#include "audiocheck.h"
#include "testenv.h"
#include "testmain.h"

#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "playback/midiout.h"
#include "playback/midiplayer.h"
#include "playback/soundfont.h"
#include "playback/synthengine.h"
#include "playback/wavfile.h"
#include "playback/widgets/mixerpanel.h"
#include "playback/widgets/playerpanel.h"
#include "playback/widgets/updown.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/widgets/treemodel.h"
#include "store/workspacetree.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>

#include <fluidsynth.h>

using namespace fenwork;
using namespace fenwork::test;

namespace {

constexpr int kFlute = 73;
constexpr int kOrgan = 19;

QByteArray tune(
    int x, const char *title, const char *body, const char *fields = "M:4/4\r\nL:1/4\r\nQ:1/4=120\r\n")
{
    return QByteArray("X:") + QByteArray::number(x) + "\r\nT:" + title + "\r\n" + fields + "K:C\r\n" + body
        + "\r\n";
}

// A panel over a file of tunes, its sound going to a WAV file.
class Rig
{
public:
    explicit Rig(const QByteArray &abc, const QByteArray &audio = {})
    {
        m_wav = env.path(QStringLiteral("sound.wav"));
        QDir().mkpath(QFileInfo(m_wav).absolutePath());
        qputenv("FENNELWORKS_AUDIO", audio.isEmpty() ? ("file:" + m_wav).toUtf8() : audio);
        AppContext &app = env.app();
        // A tempo of 200 where a tune gives none keeps the tests short.
        app.ini().set(keys::TempoDef, QStringLiteral("200"));
        createWorkspaceRoot(app);
        const QString path = env.writeFile(QStringLiteral("tunes.abc"), "%abc\r\n\r\n" + abc);
        kFile = app.store().FichierOuvrir(path, false, true, false);
        if (const Node *body = app.tree().find(kFile + key::BdyFile))
            for (const Node *child : body->children())
                tunes.append(child->Key);
    }
    ~Rig() { qunsetenv("FENNELWORKS_AUDIO"); }

    // Makes the panel; `before` may change settings first.
    void open()
    {
        panel = std::make_unique<PlayerPanel>(env.app());
        PlayerHost host;
        host.text = [this] { return text; };
        host.selectedText = [this] { return selection; };
        host.caret = [] { return qsizetype(0); };
        host.select = [this](qsizetype start, qsizetype length) { selected = { start, length }; };
        host.selectedNodeKey = [this] { return env.app().currentTuneKey; };
        host.selectNode = [this](const QString &key) { select(tunes.indexOf(key)); };
        host.choiceList = [this] { return &choiceList; };
        panel->setHost(host);
        if (!tunes.isEmpty())
            select(0);
        panel->synth().start();
        clock.start(); // the WAV file starts about now
    }

    void select(int index)
    {
        AppContext &app = env.app();
        if (index < 0 || index >= tunes.size())
            return;
        app.currentTuneKey = tunes.at(index);
        app.currentFileKey = kFile;
        text = app.store().GetStringTune(tunes.at(index), true);
        app.commands().setEnabled(QStringLiteral("bt_Midi1"), true);
        shown.append(index);
    }

    template <class T> T *get(const char *name) const
    {
        return panel->findChild<T *>(QString::fromLatin1(name));
    }
    QToolButton *button(int index) const
    {
        return get<QToolButton>(QStringLiteral("bt_Midi%1").arg(index).toLatin1().constData());
    }
    double now() const { return clock.elapsed() / 1000.0; }
    bool waitStopped(int ms)
    {
        return QTest::qWaitFor([this] { return !panel->hasPerformance(); }, ms);
    }
    bool waitPlaying(int ms)
    {
        return QTest::qWaitFor([this] { return panel->player().isPlaying(); }, ms);
    }
    // Ends the panel (the WAV file is closed) and reads what sounded.
    Sound finish()
    {
        panel.reset();
        const WavData wav = readWav(m_wav);
        Sound sound;
        sound.samples = wav.samples;
        sound.rate = wav.sampleRate > 0 ? wav.sampleRate : 44100;
        return sound;
    }
    bool stoppedState()
    {
        return !panel->hasPerformance() && !button(1)->isChecked() && button(2)->isChecked()
            && !button(0)->isEnabled() && !button(3)->isEnabled()
            && get<QLabel>("lab_tunePlay")->text() == u"..."
            && !QFileInfo::exists(QDir(env.app().paths().cacheFolder()).filePath(QStringLiteral("tmp.mid")));
    }

    TestEnv env;
    QString kFile;
    QStringList tunes;
    QString text;
    QString selection;
    QPair<qsizetype, qsizetype> selected { -1, -1 };
    QList<int> shown;
    QTreeWidget choiceList;
    std::unique_ptr<PlayerPanel> panel;
    QElapsedTimer clock;

private:
    QString m_wav;
};

bool toolsPresent()
{
    return !QStandardPaths::findExecutable(QStringLiteral("abc2midi")).isEmpty()
        && !chooseSoundFont(QString()).isEmpty();
}

} // namespace

class TestPlayerPanel : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        if (!toolsPresent())
            QSKIP("abc2midi or a SoundFont is not installed");
    }

    // The slider's percent -> how long eight quarters at the default tempo of 200 sound.
    void playsForItsLength_data()
    {
        QTest::addColumn<int>("percent");
        QTest::addColumn<double>("seconds");
        QTest::newRow("nominal") << 100 << 2.4;
        QTest::newRow("tempo slider at 200%") << 200 << 1.2;
    }

    void playsForItsLength()
    {
        QFETCH(int, percent);
        QFETCH(double, seconds);
        Rig rig(tune(1, "Scale", "C D E F|G A B c|]", "M:4/4\r\nL:1/4\r\n"));
        rig.open();
        rig.get<QComboBox>("lst_GMplayer")->setCurrentIndex(kFlute);
        rig.get<QSlider>("scr_Midi0")->setValue(percent);
        rig.panel->mnu_playTune();
        QVERIFY(rig.panel->hasPerformance());
        QVERIFY(rig.button(1)->isChecked());
        QVERIFY(rig.button(2)->isEnabled() && rig.button(3)->isEnabled());
        QCOMPARE(rig.get<QLabel>("lab_tunePlay")->text(), rig.env.app().tree().find(rig.tunes.at(0))->Text);
        // The box shows the tempo the slider makes of the tune's.
        QCOMPARE(rig.get<QLineEdit>("txt_midi0")->text(), QString::number(200 * percent / 100));
        // The end is found by the panel itself: it goes back to its stopped state.
        QVERIFY(rig.waitStopped(int(seconds * 1000) + 4000));
        QVERIFY(rig.stoppedState());
        const Sound sound = rig.finish();
        const double length = sound.soundEnd() - sound.soundStart();
        QVERIFY2(length > seconds - 0.15 && length < seconds + 0.5, qPrintable(QString::number(length)));
    }

    void transposition()
    {
        Rig rig(tune(1, "A", "A4|]"));
        rig.open();
        rig.get<QComboBox>("lst_GMplayer")->setCurrentIndex(kFlute);
        auto *pitch = rig.get<QLineEdit>("txt_pitchMain");
        pitch->setText(QStringLiteral("20"));
        QCOMPARE(pitch->text(), QStringLiteral("12")); // held to an octave
        rig.panel->mnu_playTune();
        QVERIFY(rig.waitStopped(6000));
        const Sound sound = rig.finish();
        const double start = sound.soundStart();
        const double heard = sound.frequency(start + 0.5, start + 1.5);
        QVERIFY2(qAbs(semitones(880.0, heard)) < 0.3, qPrintable(QString::number(heard)));
    }

    void stopSilencesAtOnce()
    {
        Rig rig(tune(1, "Long", "C16|]"));
        rig.open();
        rig.get<QComboBox>("lst_GMplayer")->setCurrentIndex(kOrgan);
        QSignalSpy stopped(rig.panel.get(), &PlayerPanel::stopped);
        rig.panel->mnu_playTune();
        QTest::qWait(1000);
        const double pressed = rig.now();
        rig.button(2)->click();
        QCOMPARE(stopped.count(), 1);
        QVERIFY(rig.stoppedState());
        QTest::qWait(500);
        const Sound sound = rig.finish();
        QVERIFY(sound.rms(sound.frameAt(pressed - 0.5), sound.frameAt(pressed - 0.1)) > 300);
        const int after = sound.peak(sound.frameAt(pressed + 0.1));
        QVERIFY2(after < 30, qPrintable(QString::number(after)));
    }

    void volumeSlider()
    {
        Rig rig(tune(1, "Long", "C16|]"));
        rig.open();
        rig.get<QComboBox>("lst_GMplayer")->setCurrentIndex(kFlute);
        rig.panel->mnu_playTune();
        QTest::qWait(1000);
        const double lowered = rig.now();
        rig.get<QSlider>("scr_Midi1")->setValue(25);
        QCOMPARE(rig.get<QLineEdit>("txt_midi1")->text(), QStringLiteral("25"));
        QTest::qWait(1000);
        rig.button(2)->click();
        const Sound sound = rig.finish();
        const double loud = sound.rms(sound.frameAt(lowered - 0.6), sound.frameAt(lowered - 0.1));
        const double quiet = sound.rms(sound.frameAt(lowered + 0.3), sound.frameAt(lowered + 0.8));
        QVERIFY2(quiet > 0 && loud / quiet > 6, qPrintable(QStringLiteral("%1 / %2").arg(loud).arg(quiet)));
    }

    // Meter, tempo line, slider -> the factor the sound gets and the tempo the box shows.
    void tempoFactor_data()
    {
        QTest::addColumn<QByteArray>("fields");
        QTest::addColumn<int>("percent");
        QTest::addColumn<double>("factor");
        QTest::addColumn<QString>("shown");
        QTest::newRow("6/8 in eighths")
            << QByteArray("M:6/8\r\nL:1/8\r\nQ:1/8=240\r\n") << 100 << 1.5 << "240";
        QTest::newRow("6/8 at 300%") << QByteArray("M:6/8\r\nL:1/8\r\nQ:1/8=240\r\n") << 300 << 4.5 << "720";
        QTest::newRow("6/8 with a 3/8 tempo")
            << QByteArray("M:6/8\r\nL:1/8\r\nQ:3/8=80\r\n") << 100 << 1.0 << "80";
        QTest::newRow("4/4 at 200%") << QByteArray("M:4/4\r\nL:1/4\r\nQ:1/4=120\r\n") << 200 << 2.0 << "240";
    }

    void tempoFactor()
    {
        QFETCH(QByteArray, fields);
        QFETCH(int, percent);
        QFETCH(double, factor);
        QFETCH(QString, shown);
        Rig rig(tune(1, "Meter", "C8|]", fields.constData()));
        rig.open();
        rig.panel->mnu_playTune();
        QVERIFY(rig.panel->player().isLoaded());
        // A tune with its own Q: plays from 100%; the slider moves from there.
        QCOMPARE(rig.get<QSlider>("scr_Midi0")->value(), 100);
        rig.get<QSlider>("scr_Midi0")->setValue(percent);
        QVERIFY(qAbs(rig.panel->player().masterTempo() - factor) < 1e-6);
        QCOMPARE(rig.get<QLineEdit>("txt_midi0")->text(), shown);
        rig.panel->pressStop();
    }

    void countDown()
    {
        Rig rig(tune(1, "Short", "CDEF|]", "M:4/4\r\nL:1/4\r\nQ:1/4=480\r\n"));
        rig.open();
        auto *delay = rig.get<QLabel>("lab_delay");
        auto *updown = rig.get<UpDown>("ud_Delay");
        updown->upButton()->click();
        updown->upButton()->click();
        QCOMPARE(delay->text(), QStringLiteral("2"));
        // Between the first tick and the second.
        QTimer::singleShot(1400, [&] {
            QVERIFY(!rig.panel->player().isPlaying());
            QCOMPARE(delay->text(), QStringLiteral("1"));
            QCOMPARE(delay->palette().color(QPalette::WindowText), QColor(255, 0, 0));
        });
        const double pressed = rig.now();
        rig.panel->mnu_playTune(); // returns when the count-down is over and the tune starts
        const double started = rig.now() - pressed;
        QVERIFY2(started > 1.8 && started < 2.6, qPrintable(QString::number(started)));
        QCOMPARE(delay->text(), QStringLiteral("0"));
        QCOMPARE(delay->palette().color(QPalette::WindowText), QColor(128, 128, 0));
        QVERIFY(rig.waitStopped(4000));

        // Without the box ticked a count-down happens once; ticked, every play counts down again.
        rig.panel->mnu_playTune();
        QVERIFY(rig.panel->player().isPlaying());
        rig.panel->pressStop();
        rig.get<QCheckBox>("chk_keepDelay")->setChecked(true);
        QTimer::singleShot(300, [&] { QCOMPARE(delay->text(), QStringLiteral("2")); });
        rig.panel->mnu_playTune();
        QCOMPARE(delay->text(), QStringLiteral("0"));
        rig.panel->pressStop();
    }

    void stopDuringCountDownDoesNotPlay()
    {
        Rig rig(tune(1, "Short", "CDEF|]", "M:4/4\r\nL:1/4\r\nQ:1/4=480\r\n"));
        rig.open();
        rig.get<UpDown>("ud_Delay")->upButton()->click();
        rig.get<UpDown>("ud_Delay")->upButton()->click();
        QTimer::singleShot(500, [&] { rig.button(2)->click(); });
        rig.panel->mnu_playTune();
        QVERIFY(rig.stoppedState());
        QVERIFY(!rig.panel->player().isPlaying());
        // The count-down runs out all the same, and nothing plays when it does.
        QTRY_COMPARE_WITH_TIMEOUT(rig.get<QLabel>("lab_delay")->text(), QStringLiteral("0"), 3000);
        QVERIFY(!rig.panel->hasPerformance());
    }

    void loop()
    {
        Rig rig(tune(1, "Short", "CDEF|]", "M:4/4\r\nL:1/4\r\nQ:1/4=480\r\n"));
        rig.open();
        auto *loopBox = rig.get<QToolButton>("chk_Loop");
        loopBox->click();
        rig.panel->mnu_playTune();
        QTest::qWait(2500); // five times the tune
        QVERIFY(rig.panel->player().isPlaying());
        loopBox->click();
        QVERIFY(rig.waitStopped(3000));
    }

    void transportGuards()
    {
        Rig rig(tune(1, "Eight", "C D E F|G A B c|]"));
        rig.open();
        rig.panel->mnu_playTune();
        // A release of Play by the user is undone: only Stop ends playing.
        rig.button(1)->click();
        QVERIFY(rig.button(1)->isChecked());
        QVERIFY(rig.panel->player().isPlaying());

        QTest::qWait(600);
        rig.button(3)->click(); // pause
        QVERIFY(rig.panel->isPaused());
        const int held = rig.panel->player().position();
        QTest::qWait(400);
        QCOMPARE(rig.panel->player().position(), held);
        QVERIFY(rig.panel->hasPerformance());
        rig.button(3)->click(); // resume
        QVERIFY(rig.waitPlaying(1000));
        QTest::qWait(300);
        QVERIFY(rig.panel->player().position() > held);

        // Back to the start.
        rig.button(0)->click();
        QVERIFY(!rig.button(0)->isChecked());
        QTest::qWait(100);
        QVERIFY(rig.panel->player().position() < held);
        rig.panel->pressStop();
        QVERIFY(rig.stoppedState());
        // mnu_playTune works as a play/stop toggle.
        rig.panel->mnu_playTune();
        QVERIFY(rig.panel->hasPerformance());
        rig.panel->mnu_playTune();
        QVERIFY(rig.stoppedState());
    }

    void mixer()
    {
        Rig rig(tune(1, "Eight", "C D E F|G A B c|]"));
        rig.open();
        auto *seeMix = rig.get<QToolButton>("chk_seeMix");
        MixerPanel *mixer = rig.panel->mixer();
        seeMix->click();
        QVERIFY(mixer->isVisibleTo(rig.panel.get()));
        QVERIFY(!mixer->slider(0)->isEnabled());
        rig.panel->mnu_playTune();
        QVERIFY(mixer->slider(0)->isEnabled());
        mixer->slider(0)->setValue(30);
        int value = 0;
        fluid_synth_get_cc(rig.panel->synth().synth(), 0, 7, &value);
        QCOMPARE(value, 30);
        // Hiding the mixer puts every slider back to its top.
        seeMix->click();
        QCOMPARE(mixer->slider(0)->value(), 100);
        fluid_synth_get_cc(rig.panel->synth().synth(), 0, 7, &value);
        QCOMPARE(value, 100);
        rig.panel->pressStop();
        QVERIFY(!mixer->slider(0)->isEnabled());
    }

    void defaultInstrument()
    {
        Rig rig(tune(1, "Eight", "C D E F|G A B c|]"));
        rig.env.app().ini().set(keys::DefaultGM, QStringLiteral("40"));
        rig.open();
        auto *gm = rig.get<QComboBox>("lst_GMplayer");
        QCOMPARE(gm->count(), 128);
        QCOMPARE(gm->currentIndex(), 40);
        QVERIFY(gm->itemText(40).contains(QStringLiteral("Violin")));
        auto *def = rig.get<QToolButton>("bt_gmDef");
        gm->setCurrentIndex(kFlute);
        QTest::mouseClick(def, Qt::RightButton);
        QCOMPARE(rig.env.app().ini().getInt(keys::DefaultGM), kFlute);
        QVERIFY(rig.env.ui().shown.isEmpty());
        gm->setCurrentIndex(3);
        QTest::mouseClick(def, Qt::LeftButton);
        QCOMPARE(gm->currentIndex(), kFlute);
    }

    // What goes wrong -> the message it gives; the panel ends stopped every time.
    void badInput_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("key");
        QTest::newRow("abc2midi missing") << "tool"
                                          << "<playError>";
        QTest::newRow("tune abc2midi rejects") << "reject"
                                               << "<playError>";
        QTest::newRow("corrupt MIDI file") << "midi"
                                           << "<badMidi>";
        QTest::newRow("SoundFont missing") << "soundfont"
                                           << "<noSoundFont>";
        QTest::newRow("one voice") << "voice"
                                   << "<oneVfield>";
    }

    void badInput()
    {
        QFETCH(QString, kind);
        QFETCH(QString, key);
        Rig rig(tune(1, "One", kind == u"voice" ? "V:1\r\nC D E F|]" : "C D E F|]"));
        const QByteArray path = qgetenv("PATH");
        if (kind == u"tool") {
            rig.env.app().ini().set(keys::Tool2midi, QStringLiteral("/nonexistent/abc2midi"));
            qputenv("PATH", "/nonexistent");
        } else if (kind == u"soundfont") {
            rig.env.app().ini().set(
                keys::SoundFont, rig.env.writeFile(QStringLiteral("bad.sf2"), QByteArray(2048, 'x')));
        }
        rig.open();
        if (kind == u"reject")
            rig.text = QStringLiteral("T:No number\r\nK:C\r\nCDE|\r\n");
        if (kind == u"midi")
            rig.panel->playMidiFile(
                rig.env.writeFile(QStringLiteral("bad.mid"), QByteArray("MThd\0\0\0\x06", 8)));
        else
            rig.panel->mnu_playTune();
        qputenv("PATH", path);

        const QStringList messages = rig.env.ui().messages();
        QCOMPARE(messages.size(), 1);
        const QString text = rig.env.app().text(QStringLiteral("Msg"), key);
        QVERIFY(!text.isEmpty());
        QVERIFY2(messages.first().contains(text), qPrintable(messages.first()));
        QVERIFY(rig.stoppedState());
        if (kind == u"voice") {
            // The lone V: line is selected for the user.
            QCOMPARE(rig.text.mid(rig.selected.first, rig.selected.second), QStringLiteral("V:1"));
        }
        // The panel still plays afterwards.
        rig.env.ui().shown.clear();
        if (kind == u"soundfont")
            return; // nothing can sound for this run
        if (kind == u"reject" || kind == u"voice")
            rig.select(0);
        rig.panel->mnu_playTune();
        QVERIFY(kind == u"voice" || rig.panel->player().isPlaying());
        rig.panel->pressStop();
    }

    void noSoundDeviceIsToldOnce()
    {
        Rig rig(tune(1, "Short", "CDEF|]", "M:4/4\r\nL:1/4\r\nQ:1/4=480\r\n"), "none");
        rig.open();
        rig.panel->mnu_playTune();
        QVERIFY(rig.panel->player().isPlaying()); // at real-time pace, silently
        rig.panel->pressStop();
        rig.panel->mnu_playTune();
        rig.panel->pressStop();
        const QString told = rig.env.app().text(QStringLiteral("Msg"), QStringLiteral("<noAudio>"));
        QCOMPARE(rig.env.ui().texts(ScriptedDialogs::Kind::Status).count(told), 1);
        QVERIFY(rig.panel->synth().silentOutput());
    }

    void outsideMidiFile()
    {
        Rig rig(tune(1, "Eight", "C D E F|G A B c|]"));
        rig.open();
        const QString file = rig.env.writeFile(
            QStringLiteral("Outside Tune.mid"), MidiBuilder(240, 0, kFlute).notes(72, 4, 1).bytes());
        rig.env.ui().pushFileName(file);
        rig.panel->mnu_midiExt();
        QVERIFY(rig.panel->player().isPlaying());
        QCOMPARE(rig.get<QLabel>("lab_tunePlay")->text(), QStringLiteral("  Outside Tune.mid"));
        QVERIFY(rig.get<QLabel>("img_midiExt")->isVisibleTo(rig.panel.get()));
        // No ABC step: nothing was written for abc2midi.
        QVERIFY(!QFileInfo::exists(
            QDir(rig.env.app().paths().cacheFolder()).filePath(QStringLiteral("tmp.abc"))));
        QVERIFY(rig.waitStopped(5000));
        QVERIFY(!rig.get<QLabel>("img_midiExt")->isVisibleTo(rig.panel.get()));
    }

    // The quick scan goes on from the current tune through the file and round to its start;
    // the filtered mode passes over greyed tunes.
    void wholeFile_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("greyed");
        QTest::addColumn<QList<int>>("order");
        QTest::newRow("quick scan, round the file") << 2 << 1 << -1 << QList<int> { 1, 2, 0, 1 };
        QTest::newRow("filtered, past a grey tune") << 1 << 0 << 1 << QList<int> { 0, 2, 0 };
    }

    void wholeFile()
    {
        QFETCH(int, mode);
        QFETCH(int, from);
        QFETCH(int, greyed);
        QFETCH(QList<int>, order);
        // Each tune lasts two seconds; the quick scan plays a second of it.
        const char *fields = "M:4/4\r\nL:1/4\r\nQ:1/4=480\r\n";
        const char *body = mode == 2 ? "C D E F|G A B c|c B A G|F E D C|]" : "C D E F|]";
        Rig rig(tune(1, "First", body, fields) + "\r\n" + tune(2, "Second", body, fields) + "\r\n"
            + tune(3, "Third", body, fields));
        QCOMPARE(rig.tunes.size(), 3);
        if (greyed >= 0)
            rig.env.app().tree().find(rig.tunes.at(greyed))->ForeColor = 0xDCDCDC;
        rig.open();
        rig.select(from);
        rig.shown.clear();
        rig.get<QToolButton>("chk_Loop")->setChecked(true);
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            if (rig.shown.size() >= order.size())
                rig.panel->pressStop();
        });
        watch.start(50);
        rig.panel->mnu_PlayFile(mode);
        QCOMPARE(rig.shown.mid(0, order.size()), order);
        QVERIFY(!rig.get<QToolButton>("chk_Loop")->isChecked());
        QVERIFY(rig.stoppedState());
    }

    void choiceList()
    {
        const char *fields = "M:4/4\r\nL:1/4\r\nQ:1/4=480\r\n";
        Rig rig(tune(1, "First", "CDEF|]", fields) + "\r\n" + tune(2, "Second", "CDEF|]", fields) + "\r\n"
            + tune(3, "Third", "CDEF|]", fields));
        rig.open();
        rig.shown.clear();
        // Empty: refused with a message.
        rig.panel->bt_playLst_Click();
        QCOMPARE(rig.env.ui().messages().size(), 1);
        for (int index : { 2, 0 }) {
            auto *item
                = new QTreeWidgetItem(&rig.choiceList, { QStringLiteral("tune"), QStringLiteral("1") });
            item->setData(0, TreeModel::KeyRole, rig.tunes.at(index));
        }
        rig.panel->bt_playLst_Click();
        QCOMPARE(rig.shown, (QList<int> { 2, 0 }));
        QVERIFY(rig.stoppedState());
    }

    void dronePlace()
    {
        Rig rig(tune(1, "Eight", "C D E F|G A B c|]"));
        rig.open();
        auto *drone = new QWidget;
        drone->setObjectName(QStringLiteral("pic_drone"));
        rig.panel->setDronePanel(drone);
        auto *seeDrone = rig.get<QToolButton>("chk_seeDrone");
        QVERIFY(seeDrone);
        QVERIFY(!drone->isVisibleTo(rig.panel.get()));
        seeDrone->click();
        QVERIFY(drone->isVisibleTo(rig.panel.get()));
        seeDrone->click();
        QVERIFY(!drone->isVisibleTo(rig.panel.get()));
        // The output it is given sounds through the player's synthesiser.
        MidiOut &out = rig.panel->midiOut();
        QVERIFY(out.open());
        out.shortMsg(0x9F | 60 << 8 | 100 << 16);
        QTest::qWait(50);
        QVERIFY(fluid_synth_get_active_voice_count(rig.panel->synth().synth()) > 0);
        out.close();
    }

    void nextAndPrevious()
    {
        const char *fields = "M:4/4\r\nL:1/4\r\nQ:1/4=480\r\n";
        Rig rig(tune(1, "First", "CDEF|]", fields) + "\r\n" + tune(2, "Second", "CDEF|]", fields));
        rig.open();
        rig.shown.clear();
        rig.get<QToolButton>("bt_playNextPrev1")->click();
        QCOMPARE(rig.shown, QList<int> { 1 });
        QVERIFY(rig.panel->hasPerformance());
        rig.get<QToolButton>("bt_playNextPrev1")->click(); // no tune after the last: stopped
        QCOMPARE(rig.shown, QList<int> { 1 });
        QVERIFY(rig.stoppedState());
        rig.get<QToolButton>("bt_playNextPrev0")->click();
        QCOMPARE(rig.shown, (QList<int> { 1, 0 }));
        rig.panel->pressStop();
    }
};

FENWORK_TEST(TestPlayerPanel)
#include "tst_playerpanel.moc"
