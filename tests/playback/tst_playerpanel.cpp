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
#include "playback/playsequence.h"
#include "playback/synthengine.h"
#include "playback/wavfile.h"
#include "playback/widgets/mixerpanel.h"
#include "playback/widgets/playerpanel.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include "collections/choicelist.h"

#include <fluidsynth.h>

using namespace fenwork;
using namespace fenwork::test;

namespace {

constexpr int kFlute = 73;

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

    // Makes the panel over the first tune, its synthesiser started.
    void open()
    {
        panel = std::make_unique<PlayerPanel>(env.app());
        PlayerHost host;
        host.text = [this] { return text; };
        host.selectedText = [this] { return selection; };
        host.caret = [] { return qsizetype(0); };
        host.select = [this](qsizetype start, qsizetype length) { selected = { start, length }; };
        host.selectedNodeKey = [this] { return env.app().selection().tuneKey(); };
        host.selectNode = [this](const QString &key) { select(tunes.indexOf(key)); };
        host.choiceList = &choiceList;
        panel->setHost(host);
        if (!tunes.isEmpty())
            select(0);
        panel->synth().start();
    }

    void select(int index)
    {
        AppContext &app = env.app();
        if (index < 0 || index >= tunes.size())
            return;
        app.selection().setTuneKey(tunes.at(index));
        app.selection().setFileKey(kFile);
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
    // However busy the machine, the panel finds the end itself: the limit is only a safety net.
    bool waitStopped()
    {
        return QTest::qWaitFor([this] { return !panel->hasPerformance(); }, 60000);
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
    ChoiceList choiceList;
    std::unique_ptr<PlayerPanel> panel;

private:
    QString m_wav;
};

bool toolsPresent()
{
    return !QStandardPaths::findExecutable(QStringLiteral("abc2midi")).isEmpty()
        && !testSoundFont().isEmpty();
}

} // namespace

class TestPlayerPanel : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        if (!toolsPresent())
            QSKIP("abc2midi or the small SoundFont of install-deps is not installed");
    }

    // The panel's smoke test, listened to: eight quarters at the default tempo of 200, played at
    // 200%, sound for 1.2 s; the panel finds the end itself and goes back to its stopped state.
    void playsForItsLength()
    {
        const double seconds = 1.2;
        Rig rig(tune(1, "Scale", "C D E F|G A B c|]", "M:4/4\r\nL:1/4\r\n"));
        rig.open();
        rig.get<QComboBox>("lst_GMplayer")->setCurrentIndex(kFlute);
        rig.get<QSlider>("scr_Midi0")->setValue(200);
        rig.panel->mnu_playTune();
        QVERIFY(rig.panel->hasPerformance());
        QVERIFY(rig.button(1)->isChecked());
        QVERIFY(rig.button(2)->isEnabled() && rig.button(3)->isEnabled());
        QCOMPARE(rig.get<QLabel>("lab_tunePlay")->text(), rig.env.app().tree().find(rig.tunes.at(0))->Text);
        QCOMPARE(rig.get<QLineEdit>("txt_midi0")->text(), QStringLiteral("400"));
        QVERIFY(rig.waitStopped());
        QVERIFY(rig.stoppedState());
        const Sound sound = rig.finish();
        const double length = sound.soundEnd() - sound.soundStart();
        QVERIFY2(length > seconds - 0.15 && length < seconds + 0.5, qPrintable(QString::number(length)));
    }

    // What goes wrong -> the message it gives; the panel ends stopped every time.
    void badInput_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("key");
        QTest::newRow("abc2midi missing") << "tool" << "<toolMissing>";
        QTest::newRow("tune abc2midi rejects") << "reject" << "<playError>";
        QTest::newRow("corrupt MIDI file") << "midi" << "<badMidi>";
        QTest::newRow("SoundFont missing") << "soundfont" << "<noSoundFont>";
        QTest::newRow("one voice") << "voice" << "<oneVfield>";
    }

    void badInput()
    {
        QFETCH(QString, kind);
        QFETCH(QString, key);
        Rig rig(tune(1, "One", kind == u"voice" ? "V:1\r\nC D E F|]" : "C D E F|]"));
        const QByteArray path = qgetenv("PATH");
        if (kind == u"tool") {
            // The search stops at a setting that names a file, even one that is no program.
            rig.env.app().ini().set(keys::Tool2midi, rig.env.writeFile(QStringLiteral("abc2midi"), "not a program"));
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
        if (kind == u"tool")
            rig.env.app().ini().set(keys::Tool2midi, QString());
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
        QVERIFY(rig.get<QLabel>("img_midiExt")->isVisibleTo(rig.panel.get()));
        // No ABC step: nothing was written for abc2midi.
        QVERIFY(!QFileInfo::exists(
            QDir(rig.env.app().paths().cacheFolder()).filePath(QStringLiteral("tmp.abc"))));
        QVERIFY(rig.waitStopped());
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
        QVERIFY(rig.waitStopped());
        QCOMPARE(rig.shown.mid(0, order.size()), order);
        QVERIFY(!rig.get<QToolButton>("chk_Loop")->isChecked());
        QVERIFY(rig.stoppedState());
    }

    // The list plays an item its number of times, then the next after the pause; Stop in the
    // middle ends the run. Two seconds of the first tune, one of the second.
    void choiceList_data()
    {
        QTest::addColumn<bool>("stopAtSecond");
        QTest::addColumn<double>("fewest");
        QTest::addColumn<double>("most");
        const double whole = 2 * 2.0 + PlaySequence::kPauseMs / 1000.0 + 1.0;
        QTest::newRow("twice, then once") << false << whole - 1.0 << whole + 1.0;
        // However late a busy machine lets the Stop act, the second tune is not heard whole.
        QTest::newRow("stopped at the second") << true << 2 * 2.0 - 1.0 << whole - 0.5;
    }
    void choiceList()
    {
        QFETCH(bool, stopAtSecond);
        QFETCH(double, fewest);
        QFETCH(double, most);
        const char *fields = "M:4/4\r\nL:1/4\r\nQ:1/4=240\r\n";
        Rig rig(tune(1, "First", "C D E F|G A B c|]", fields) + "\r\n" + tune(2, "Second", "c B A G|]", fields));
        rig.open();
        rig.choiceList.add(rig.tunes.at(0), QStringLiteral("First"));
        rig.choiceList.setRepetitions(0, 2);
        rig.choiceList.add(rig.tunes.at(1), QStringLiteral("Second"));
        rig.shown.clear();
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            if (stopAtSecond && rig.shown.size() >= 2)
                rig.panel->pressStop();
        });
        watch.start(20);
        rig.panel->bt_playLst_Click();
        QVERIFY(rig.waitStopped());
        QCOMPARE(rig.shown.mid(0, 2), QList<int>({ 0, 1 }));
        const Sound sound = rig.finish();
        const double length = sound.soundEnd() - sound.soundStart();
        QVERIFY2(length > fewest && length < most, qPrintable(QString::number(length)));
    }
};

FENWORK_TEST(TestPlayerPanel)
#include "tst_playerpanel.moc"
