// fenwork-cli render as a user runs it, listened to: how long the tune sounds, at what pitch,
// and what the command says when something is missing.
#include "../playback/audiocheck.h"
#include "cliprocess.h"
#include "testenv.h"
#include "testmain.h"

#include "playback/wavfile.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

namespace {

// Renders with the batch companion and reads the WAV file back as sound.
class Renderer : public CliProcess
{
public:
    // What the tests hear does not hang on the larger fonts a machine may hold.
    Renderer()
    {
        QFile ini(root() + QStringLiteral("/fenwork.ini"));
        if (ini.open(QIODevice::WriteOnly))
            ini.write("[Player]\r\nSoundFont=" + QFile::encodeName(testSoundFont()) + "\r\n");
    }
    CliRun run(const QStringList &arguments, const QByteArray &pathVariable = {}) const
    {
        return CliProcess::run(QStringList { QStringLiteral("render") } + arguments, pathVariable);
    }
    Sound sound(const QString &wavPath) const
    {
        const WavData wav = readWav(wavPath);
        Sound sound;
        sound.samples = wav.samples;
        sound.rate = wav.sampleRate;
        return sound;
    }
};

const QByteArray kTunes = "%abc\r\n\r\n"
                          "X:1\r\nT:Scale\r\nM:4/4\r\nL:1/4\r\nQ:1/4=120\r\nK:C\r\nC D E F|G A B c|]\r\n\r\n"
                          "X:2\r\nT:Long A\r\nM:4/4\r\nL:1/4\r\nQ:1/4=120\r\nK:C\r\nA4|]\r\n\r\n"
                          "X:3\r\nT:Jig\r\nM:6/8\r\nL:1/8\r\nQ:1/8=240\r\nK:G\r\nGAB cde|dcB AGF|]\r\n\r\n"
                          "X:4\r\nT:One voice\r\nM:4/4\r\nL:1/4\r\nK:C\r\nV:1\r\nCDEF|]\r\n";

} // namespace

class TestRender : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("abc2midi")).isEmpty())
            QSKIP("abc2midi is not installed");
        if (testSoundFont().isEmpty())
            QSKIP("the small SoundFont of install-deps (timgm6mb-soundfont) is not installed");
    }

    // Tune, options -> seconds of sound.
    void length_data()
    {
        QTest::addColumn<QString>("x");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<double>("seconds");
        QTest::newRow("eight quarters at 120") << "1" << QStringList() << 4.0;
        QTest::newRow("tempo 200% halves it") << "1" << QStringList { "--tempo", "200" } << 2.0;
        // Twelve eighths at 240 would take three seconds: tunes in eighths play 1.5 times faster.
        QTest::newRow("the 6/8 factor") << "3" << QStringList() << 2.0;
    }

    void length()
    {
        QFETCH(QString, x);
        QFETCH(QStringList, options);
        QFETCH(double, seconds);
        Renderer renderer;
        const QString abc = renderer.write(QStringLiteral("tunes.abc"), kTunes);
        const QString wav = renderer.path(QStringLiteral("out.wav"));
        const CliRun run
            = renderer.run(QStringList { abc, x, wav } + options + QStringList { "--program", "73" });
        QVERIFY2(run.exitCode == 0, run.err.constData());
        const Sound sound = renderer.sound(wav);
        QCOMPARE(sound.rate, 44100);
        // What the command prints is the file's length.
        QVERIFY(qAbs(run.out.trimmed().toDouble() - sound.seconds()) < 0.02);
        QVERIFY(sound.soundStart() < 0.1);
        const double end = sound.soundEnd();
        QVERIFY2(end > seconds - 0.15 && end < seconds + 0.6, qPrintable(QString::number(end)));
        // Rendering stops once the sound has died away, not seconds later.
        QVERIFY(sound.seconds() < end + 3.1);
    }

    void transposition_data()
    {
        QTest::addColumn<QString>("halfTones");
        QTest::addColumn<double>("frequency");
        QTest::newRow("as written") << "0" << 440.0;
        QTest::newRow("an octave up") << "12" << 880.0;
    }

    void transposition()
    {
        QFETCH(QString, halfTones);
        QFETCH(double, frequency);
        Renderer renderer;
        const QString abc = renderer.write(QStringLiteral("tunes.abc"), kTunes);
        const QString wav = renderer.path(QStringLiteral("a.wav"));
        const CliRun run = renderer.run({ abc, "2", wav, "--transpose", halfTones, "--program", "73" });
        QVERIFY2(run.exitCode == 0, run.err.constData());
        const Sound sound = renderer.sound(wav);
        const double heard = sound.frequency(0.5, 1.5);
        QVERIFY2(qAbs(semitones(frequency, heard)) < 0.3, qPrintable(QString::number(heard)));
    }

    // What is wrong -> exit code and a word of the message.
    void failures_data()
    {
        QTest::addColumn<QStringList>("arguments"); // FILE is %f, OUT is %o
        QTest::addColumn<QString>("setup");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("said");
        QTest::newRow("no such tune") << QStringList { "%f", "9", "%o" } << "" << 1 << "X:9";
        QTest::newRow("no such file") << QStringList { "%f.gone", "1", "%o" } << "" << 1 << "";
        QTest::newRow("one voice") << QStringList { "%f", "4", "%o" } << "" << 1 << "V:";
        QTest::newRow("abc2midi missing") << QStringList { "%f", "1", "%o" } << "tool" << 1 << "not found: abc2midi";
        QTest::newRow("PATH without the tools") << QStringList { "%f", "1", "%o" } << "no PATH" << 0 << "";
        QTest::newRow("SoundFont missing")
            << QStringList { "%f", "1", "%o" } << "soundfont" << 1 << "SoundFont";
        QTest::newRow("output not writable")
            << QStringList { "%f", "1", "/nonexistent/dir/out.wav" } << "" << 1 << "out.wav";
        QTest::newRow("tempo out of range")
            << QStringList { "%f", "1", "%o", "--tempo", "400" } << "" << 2 << "--tempo";
        QTest::newRow("unknown option") << QStringList { "%f", "1", "%o", "--loud" } << "" << 2 << "--loud";
        QTest::newRow("missing OUT") << QStringList { "%f", "1" } << "" << 2 << "OUT.wav";
    }

    void failures()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, setup);
        QFETCH(int, exitCode);
        QFETCH(QString, said);
        Renderer renderer;
        const QString abc = renderer.write(QStringLiteral("tunes.abc"), kTunes);
        const QString wav = renderer.path(QStringLiteral("out.wav"));
        for (QString &argument : arguments)
            argument.replace(QStringLiteral("%f"), abc).replace(QStringLiteral("%o"), wav);
        QByteArray pathVariable;
        if (setup == u"tool" || setup == u"no PATH") {
            // A setting naming a file that is no program is where the search stops; a setting
            // naming nothing falls back to PATH, then to /usr/bin.
            const QString tool = setup == u"tool" ? renderer.write(QStringLiteral("abc2midi"), "not a program")
                                                  : QStringLiteral("/nonexistent/abc2midi");
            QFile ini(renderer.root() + QStringLiteral("/fenwork.ini"));
            QVERIFY(ini.open(QIODevice::WriteOnly));
            ini.write("[Tools]\r\nTool2midi=" + tool.toUtf8() + "\r\n");
            pathVariable = "/nonexistent";
        } else if (setup == u"soundfont") {
            const QString font = renderer.write(QStringLiteral("broken.sf2"), QByteArray(4096, 'x'));
            QFile ini(renderer.root() + QStringLiteral("/fenwork.ini"));
            QVERIFY(ini.open(QIODevice::WriteOnly));
            ini.write("[Player]\r\nSoundFont=" + font.toUtf8() + "\r\n");
        }
        const CliRun run = renderer.run(arguments, pathVariable);
        QCOMPARE(run.exitCode, exitCode);
        QVERIFY2(run.err.contains(said.toUtf8()), run.err.constData());
        QVERIFY2(!run.err.contains("Check its text"), run.err.constData());
        if (exitCode == 1 && setup != u"")
            QVERIFY(!QFileInfo::exists(wav) || QFileInfo(wav).size() <= 44);
    }

    void corpusTune()
    {
        const QString corpus = corpusDir();
        if (corpus.isEmpty())
            QSKIP("the shared corpus is absent");
        const QString original = corpus + QStringLiteral("/nottingham/jigs.abc");
        if (!QFileInfo::exists(original))
            QSKIP("nottingham/jigs.abc is not in the corpus");
        Renderer renderer;
        // A copy: nothing is ever written beside the corpus.
        const QString file = renderer.write(QStringLiteral("jigs.abc"), readBytes(original));
        const QString normal = renderer.path(QStringLiteral("n.wav"));
        const QString fast = renderer.path(QStringLiteral("f.wav"));
        CliRun run = renderer.run({ file, "1", normal });
        QVERIFY2(run.exitCode == 0, run.err.constData());
        run = renderer.run({ file, "1", fast, "--tempo", "200" });
        QVERIFY2(run.exitCode == 0, run.err.constData());
        const Sound a = renderer.sound(normal);
        const Sound b = renderer.sound(fast);
        QVERIFY(a.soundEnd() > 10);
        QVERIFY(a.rms() > 100);
        const double ratio = (b.soundEnd() - b.soundStart()) / (a.soundEnd() - a.soundStart());
        QVERIFY2(qAbs(ratio - 0.5) < 0.05, qPrintable(QString::number(ratio)));
    }
};

FENWORK_TEST(TestRender)
#include "tst_render.moc"
