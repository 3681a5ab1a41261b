// The program as a process: first start, the hand-over from a second start, quit on SIGTERM.
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/singleinstance.h"
#include "app/widgets/startup.h"

#include <QApplication>
#include <QListWidget>
#include <QTimer>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace fenwork;

namespace {

QString programPath()
{
    return QStringLiteral(FENWORK_BINARY_DIR "/fenwork");
}

// Settings that keep every start-up window away, so that the program comes straight to its window.
void writeQuietSettings(const QString &root, const QString &language = QStringLiteral("English"))
{
    const IniFile ini(root + QStringLiteral("/fenwork.ini"));
    ini.set(keys::Lang, language);
    ini.set(keys::FichBak, QStringLiteral("0"));
    ini.set(keys::ShowTips, QStringLiteral("0"));
    ini.set(keys::CheckNewVersion, QStringLiteral("0"));
}

void startProgram(QProcess &process, const QString &root, const QStringList &arguments = {},
                  const QString &programFolder = {}, const QString &workingFolder = {})
{
    if (!workingFolder.isEmpty())
        process.setWorkingDirectory(workingFolder);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("FENNELWORKS_ROOT"), root);
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    if (!programFolder.isEmpty())
        env.insert(QStringLiteral("FENNELWORKS_APPDIR"), programFolder);
    process.setProcessEnvironment(env);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(programPath(), arguments);
}

// An empty hand-over: the running program answers it from its event loop without a word, so an
// answer means that everything it was given before has been dealt with.
bool answers(const QString &root)
{
    return SingleInstance(root).handOver(QString(), 5000);
}

// The window is up once its load made the user folders and the program answers at its socket.
bool waitUntilReady(const QString &root)
{
    return QTest::qWaitFor([&root] { return QDir(root + QStringLiteral("/user/drone")).exists(); }, 60000)
        && QTest::qWaitFor([&root] { return answers(root); }, 60000);
}

// The process catches SIGTERM once its start has installed the handler (bit 15 of SigCgt).
bool catchesTermination(qint64 pid)
{
    for (int i = 0; i < 300; ++i) {
        QFile status(QStringLiteral("/proc/%1/status").arg(pid));
        if (status.open(QIODevice::ReadOnly)) {
            for (const QByteArray &line : status.readAll().split('\n'))
                if (line.startsWith("SigCgt:") && (line.mid(7).trimmed().toULongLong(nullptr, 16) & (1ULL << (SIGTERM - 1))))
                    return true;
        }
        QTest::qWait(20);
    }
    return false;
}

bool quit(QProcess &process)
{
    if (process.processId() <= 0)
        return false;
    ::kill(pid_t(process.processId()), SIGTERM);
    return process.waitForFinished(60000);
}

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private slots:
    void firstStartMakesUserFolders()
    {
        QTemporaryDir root;
        writeQuietSettings(root.path());
        QProcess program;
        startProgram(program, root.path());
        QVERIFY(waitUntilReady(root.path()));
        for (const char *sub : {"user", "user/grp", "user/tmpl", "user/msk", "user/cache", "user/drone"})
            QVERIFY2(QDir(root.filePath(QString::fromLatin1(sub))).exists(), sub);
        QVERIFY(quit(program));
        QCOMPARE(program.exitCode(), 0);
        const IniFile ini(root.filePath(QStringLiteral("fenwork.ini")));
        QVERIFY(!ini.get(keys::Version).isEmpty());
        QCOMPARE(ini.get(keys::NbFiles), QStringLiteral("0"));
    }

    void secondStartHandsItsPathOver()
    {
        QTemporaryDir root;
        writeQuietSettings(root.path());
        const QString tune = root.filePath(QStringLiteral("handed.abc"));
        QFile file(tune);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("%%abc-alias none\nX:1\nT:Handed over\nK:D\nabc|\n");
        file.close();

        QProcess first;
        startProgram(first, root.path());
        QVERIFY(waitUntilReady(root.path()));
        QProcess second;
        startProgram(second, root.path(), {tune});
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(answers(root.path()));
        QVERIFY(quit(first));
        const IniFile ini(root.filePath(QStringLiteral("fenwork.ini")));
        QCOMPARE(ini.get(keys::NbFiles), QStringLiteral("1"));
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), {}), tune);
        QCOMPARE(ini.getValue(QStringLiteral("Recents"), QStringLiteral("R1"), {}), tune);
    }

    // A relative name with apostrophes, given in one folder, opens that very file, not one of the
    // same name where the first instance runs; the session keeps it absolute, so that a start from
    // a third folder reopens it.
    void relativePathFromAnotherFolder_data()
    {
        QTest::addColumn<bool>("handedOver");
        QTest::newRow("command line") << false;
        QTest::newRow("handed over by a second start") << true;
    }
    void relativePathFromAnotherFolder()
    {
        QFETCH(bool, handedOver);
        QTemporaryDir root, here, elsewhere, third;
        writeQuietSettings(root.path());
        const QString name = QStringLiteral("O'Carolan's tunes.abc");
        for (QTemporaryDir *folder : { &here, &elsewhere }) {
            QFile file(folder->filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("%%abc-alias none\nX:1\nT:Planxty\nK:D\nabc|\n");
        }
        const QString wanted = here.filePath(name);
        // The backup is the outward sign that a file is being opened, and of which one.
        const IniFile ini(root.filePath(QStringLiteral("fenwork.ini")));
        ini.set(keys::FichBak, QStringLiteral("1"));
        const auto opened = [&] {
            QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(wanted + QStringLiteral(".BAK")), 30000);
            QTest::qWait(500);
        };

        QProcess first;
        if (handedOver) {
            startProgram(first, root.path(), {}, {}, elsewhere.path());
            QVERIFY(waitUntilReady(root.path()));
            QProcess second;
            startProgram(second, root.path(), { name }, {}, here.path());
            QVERIFY(second.waitForFinished(10000));
            QCOMPARE(second.exitCode(), 0);
        } else {
            startProgram(first, root.path(), { name }, {}, here.path());
        }
        opened();
        QVERIFY(!QFile::exists(elsewhere.filePath(name) + QStringLiteral(".BAK")));
        QVERIFY(quit(first));
        QCOMPARE(ini.get(keys::NbFiles), QStringLiteral("1"));
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), {}), wanted);
        QCOMPARE(ini.getValue(QStringLiteral("Recents"), QStringLiteral("R1"), {}), wanted);

        // The load makes this folder again: the sign that the restart is up.
        QVERIFY(QDir(root.filePath(QStringLiteral("user/drone"))).removeRecursively());
        QProcess again;
        startProgram(again, root.path(), {}, {}, third.path());
        QVERIFY(waitUntilReady(root.path()));
        QVERIFY(quit(again));
        QCOMPARE(ini.get(keys::NbFiles), QStringLiteral("1"));
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), {}), wanted);
    }

    // The files of the last run come back at the next start.
    void lastSessionReopens()
    {
        QTemporaryDir root;
        writeQuietSettings(root.path());
        const QString tune = root.filePath(QStringLiteral("kept.abc"));
        QFile file(tune);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("%%abc-alias none\nX:1\nT:Kept\nK:D\nabc|\n");
        file.close();
        const IniFile ini(root.filePath(QStringLiteral("fenwork.ini")));
        ini.set(keys::NbFiles, QStringLiteral("2"));
        ini.writeValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), root.filePath(QStringLiteral("gone.abc")));
        ini.writeValue(QStringLiteral("OpenFiles"), QStringLiteral("OF2"), tune);
        // The click on the first tune ends the start-up: its score text shows when it is over.
        ini.set(keys::SelFirstTune, QStringLiteral("1"));
        QProcess program;
        startProgram(program, root.path());
        QVERIFY(waitUntilReady(root.path()));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(root.filePath(QStringLiteral("user/cache/tmp.abc"))), 60000);
        QVERIFY(quit(program));
        QCOMPARE(ini.get(keys::NbFiles), QStringLiteral("1"));
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), {}), tune);
    }

    // Broken settings, no language file, a user root nobody may write: the program still starts
    // and quits cleanly.
    void survivesBadSurroundings_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<bool>("noLanguages");
        QByteArray garbage;
        for (int i = 0; i < 4096; ++i)
            garbage.append(char((i * 7919) % 256));
        QTest::newRow("binary settings") << QByteArray("[General]\nlang=English\nFichBak=0\nshowTips=0\n") + garbage
                                        << false;
        QTest::newRow("long lines, duplicate sections")
            << QByteArray("[General]\nlang=English\nFichBak=0\nshowTips=0\n[Window]\nTop=") + QByteArray(100000, '9')
                   + "\n[General]\nlang=Nowhere\n"
            << false;
        QTest::newRow("no language file") << QByteArray("[General]\nlang=English\nFichBak=0\nshowTips=0\n") << true;
    }
    void survivesBadSurroundings()
    {
        QFETCH(QByteArray, settings);
        QFETCH(bool, noLanguages);
        QTemporaryDir root;
        QFile ini(root.filePath(QStringLiteral("fenwork.ini")));
        QVERIFY(ini.open(QIODevice::WriteOnly));
        ini.write(settings);
        ini.close();
        QTemporaryDir programFolder;
        QProcess program;
        startProgram(program, root.path(), {}, noLanguages ? programFolder.path() : QString());
        QVERIFY(waitUntilReady(root.path()));
        QCOMPARE(program.state(), QProcess::Running);
        QVERIFY(quit(program));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    }

    // A new account: no ~/.local/share yet, no settings. The start makes the user root with its
    // parents, asks the language, then shows the first-run window; a termination there ends the
    // start without taking it for an answer.
    void freshHomeReachesFirstRunWindow()
    {
        QTemporaryDir home;
        test::EnvGuard homeVar("HOME", home.path().toUtf8());
        test::EnvGuard rootVar("FENNELWORKS_ROOT", QByteArray());
        test::EnvGuard dataVar("XDG_DATA_HOME", QByteArray());
        QStringList seen;
        QTimer driver;
        driver.setInterval(20);
        QObject::connect(&driver, &QTimer::timeout, [&] {
            QWidget *modal = QApplication::activeModalWidget();
            if (!modal || seen.contains(modal->objectName()))
                return;
            seen << modal->objectName();
            if (auto *list = modal->findChild<QListWidget *>(QStringLiteral("lst_lang")))
                QTest::keyClick(list, Qt::Key_Return);
            else
                ::raise(SIGTERM);
        });
        driver.start();
        const int code = Main({ QStringLiteral("fenwork") });
        driver.stop();

        QCOMPARE(code, 0);
        QCOMPARE(seen, (QStringList { "f_lg", "f_firststart" }));
        const QString root = home.filePath(QStringLiteral(".local/share/Fennelworks"));
        QVERIFY(QFileInfo(root).isDir());
        const IniFile ini(root + QStringLiteral("/fenwork.ini"));
        QCOMPARE(ini.get(keys::Lang), QStringLiteral("English"));
        QCOMPARE(ini.getValue(keys::FichBak.sectionName(), keys::FichBak.keyName(), QStringLiteral("unset")),
                 QStringLiteral("unset"));
    }

    // Logout, kill or timeout while a window waits for an answer: the program ends at once, and
    // once its main window is up it still writes the session back.
    void terminationWhileAWindowWaits_data()
    {
        QTest::addColumn<QByteArray>("settings"); // empty: a fresh home, no settings at all
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("mainWindow"); // the window waits after the main window's load

        const QByteArray quiet = "[General]\nlang=English\nFichBak=0\nshowTips=0\ncheckNewVersion=0\n";
        QTest::newRow("language chooser, fresh home") << QByteArray() << QStringList() << false;
        QTest::newRow("first-run window") << QByteArray("[General]\nlang=English\n") << QStringList() << false;
        QTest::newRow("tips window")
            << QByteArray("[General]\nlang=English\nFichBak=0\ncheckNewVersion=0\n") << QStringList() << true;
        QTest::newRow("message box") << quiet << QStringList { QStringLiteral("/nonexistent/tune.abc") } << true;
    }
    void terminationWhileAWindowWaits()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QStringList, arguments);
        QFETCH(bool, mainWindow);
        QTemporaryDir home;
        const QString root = home.filePath(QStringLiteral(".local/share/Fennelworks"));
        if (!settings.isEmpty()) {
            QVERIFY(QDir().mkpath(root));
            QFile ini(root + QStringLiteral("/fenwork.ini"));
            QVERIFY(ini.open(QIODevice::WriteOnly));
            ini.write(settings);
        }
        QProcess program;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("FENNELWORKS_ROOT"));
        env.remove(QStringLiteral("XDG_DATA_HOME"));
        env.insert(QStringLiteral("HOME"), home.path());
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        program.setProcessEnvironment(env);
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(programPath(), arguments);
        QVERIFY(program.waitForStarted());
        QVERIFY(catchesTermination(program.processId()));
        if (mainWindow)
            QVERIFY(waitUntilReady(root));
        ::kill(pid_t(program.processId()), SIGTERM);
        QVERIFY2(program.waitForFinished(10000), "still running after SIGTERM");
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        QVERIFY(QFileInfo(root).isDir());
        const IniFile ini(root + QStringLiteral("/fenwork.ini"));
        QCOMPARE(ini.get(keys::Version).isEmpty(), !mainWindow);
    }

    // The working list of a big file, with its repetitions, comes back whole at the next start
    // and is written back at the quit: the settings value alone would hold some thirty tunes.
    void bigChoiceListComesBack()
    {
        QTemporaryDir root;
        writeQuietSettings(root.path());
        const QString path = root.filePath(QStringLiteral("big.abc"));
        QByteArray abc = "%%abc-alias none\n", kept;
        for (int i = 1; i <= 2000; ++i) {
            abc += "X:" + QByteArray::number(i) + "\nT:Tune\nK:D\nabc|\n\n";
            kept.prepend(QByteArray::number(i) + '\t' + QByteArray::number(i % 5 + 1) + '\t' + path.toUtf8() + "\tTune\n");
        }
        QDir().mkpath(root.filePath(QStringLiteral("user")));
        const QString list = root.filePath(QStringLiteral("user/choice.lst"));
        // A tune of a file gone is dropped on the way: the file is written anew.
        for (const auto &[name, bytes] : { std::pair { path, abc }, { list, "1\t1\t/gone.abc\tGone\n" + kept } }) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        const IniFile ini(root.filePath(QStringLiteral("fenwork.ini")));
        ini.set(keys::NbFiles, QStringLiteral("1"));
        ini.writeValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), path);
        QProcess program;
        startProgram(program, root.path());
        QVERIFY(waitUntilReady(root.path()));
        QVERIFY(quit(program));
        QCOMPARE(test::readBytes(list), kept);
    }
};

FENWORK_TEST(TestStartup)
#include "tst_startup.moc"
