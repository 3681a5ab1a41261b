// The program as a process: first start, the hand-over from a second start, quit on SIGTERM.
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"

#include <QDir>
#include <QFile>
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

// The window is up once its load made the user folders and the instance socket listens.
bool waitUntilReady(const QString &root)
{
    for (int i = 0; i < 600; ++i) {
        if (QDir(root + QStringLiteral("/user/drone")).exists()) {
            QTest::qWait(300);
            return true;
        }
        QTest::qWait(100);
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
        QTest::qWait(500);
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
        QProcess program;
        startProgram(program, root.path());
        QVERIFY(waitUntilReady(root.path()));
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
};

FENWORK_TEST(TestStartup)
#include "tst_startup.moc"
