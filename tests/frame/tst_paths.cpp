#include "testenv.h"
#include "testmain.h"

#include "frame/paths.h"
#include "frame/settings.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace fenwork;

namespace {

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

} // namespace

class TestPaths : public QObject
{
    Q_OBJECT

private slots:
    void folders()
    {
        const Paths paths(QStringLiteral("/data/root/"), QStringLiteral("/opt/fw//"));
        QCOMPARE(paths.userRoot(), QStringLiteral("/data/root"));
        QCOMPARE(paths.programFolder(), QStringLiteral("/opt/fw"));
        QCOMPARE(paths.settingsFile(), QStringLiteral("/data/root/fenwork.ini"));
        QCOMPARE(paths.trashFile(), QStringLiteral("/data/root/trash"));
        QCOMPARE(paths.cacheFolder(), QStringLiteral("/data/root/user/cache"));
        QCOMPARE(paths.recoverFile(), QStringLiteral("/data/root/user/recover_tune.txt"));
        QCOMPARE(paths.inUser(QStringLiteral("msk/Reels")), QStringLiteral("/data/root/user/msk/Reels"));
        QCOMPARE(
            paths.inProgram(QStringLiteral("/lang/English.txt")), QStringLiteral("/opt/fw/lang/English.txt"));
    }

    void fromEnvironment()
    {
        QTemporaryDir dir;
        const test::EnvGuard root("FENNELWORKS_ROOT", QFile::encodeName(dir.path() + QStringLiteral("/r/")));
        const test::EnvGuard app("FENNELWORKS_APPDIR", QFile::encodeName(dir.path() + QStringLiteral("/app")));
        const Paths paths = Paths::fromEnvironment();
        QCOMPARE(paths.userRoot(), dir.path() + QStringLiteral("/r"));
        QCOMPARE(paths.programFolder(), dir.path() + QStringLiteral("/app"));
    }

    void defaultRootFollowsXdg()
    {
        QTemporaryDir dir;
        const test::EnvGuard root("FENNELWORKS_ROOT", QByteArray());
        const test::EnvGuard data("XDG_DATA_HOME", QFile::encodeName(dir.path()));
        const test::EnvGuard app("FENNELWORKS_APPDIR", QByteArray());
        const Paths paths = Paths::fromEnvironment();
        QCOMPARE(paths.userRoot(), dir.path() + QStringLiteral("/Fennelworks"));
        QVERIFY(!paths.programFolder().isEmpty());
        QVERIFY(QDir(paths.programFolder()).exists());
    }

    void specialFolders()
    {
        QTemporaryDir dir;
        const test::EnvGuard data("XDG_DATA_HOME", QFile::encodeName(dir.path() + QStringLiteral("/")));
        QCOMPARE(specialFolder(SF_AppData), dir.path() + QStringLiteral("/"));
        const QString documents = specialFolder(SF_Documents);
        QVERIFY(documents.endsWith(u'/'));
        QVERIFY(!documents.endsWith(QStringLiteral("//")));
        QCOMPARE(specialFolder(99), QString());
    }

    void uniqueNames_data()
    {
        QTest::addColumn<QStringList>("existing");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("expected");

        QTest::newRow("nothing there") << QStringList() << "abc"
                                       << "NewAbcFile1";
        QTest::newRow("first taken") << QStringList { "NewAbcFile1.abc" } << "abc"
                                     << "NewAbcFile2";
        QTest::newRow("dot given") << QStringList { "NewAbcFile1.abc" } << ".abc"
                                   << "NewAbcFile2";
        QTest::newRow("gap is used") << QStringList { "NewAbcFile1.abc", "NewAbcFile3.abc" } << "abc"
                                     << "NewAbcFile2";
        QTest::newRow("other extension is free") << QStringList { "NewAbcFile1.txt" } << "abc"
                                                 << "NewAbcFile1";
        QTest::newRow("empty extension tests the bare name")
            << QStringList { "NewAbcFile1", "NewAbcFile2.abc" } << ""
            << "NewAbcFile2";
        QTest::newRow("a folder counts") << QStringList { "NewAbcFile1.abc/" } << "abc"
                                         << "NewAbcFile2";
    }
    void uniqueNames()
    {
        QFETCH(QStringList, existing);
        QFETCH(QString, extension);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        for (const QString &name : existing) {
            if (name.endsWith(u'/'))
                QVERIFY(QDir(dir.path()).mkdir(name.chopped(1)));
            else
                touch(dir.filePath(name));
        }
        QCOMPARE(uniqueName(QStringLiteral("NewAbcFile"), extension, dir.path()), expected);
        QCOMPARE(uniqueName(QStringLiteral("NewAbcFile"), extension, dir.path() + u'/'), expected);
    }

    void uniqueNameExhausted()
    {
        QTemporaryDir dir;
        for (int n = 1; n <= 32766; ++n) {
            QFile file(dir.filePath(QStringLiteral("m") + QString::number(n)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QCOMPARE(uniqueName(QStringLiteral("m"), QString(), dir.path()), QString());
        QFile::remove(dir.filePath(QStringLiteral("m32766")));
        QCOMPARE(uniqueName(QStringLiteral("m"), QString(), dir.path()), QStringLiteral("m32766"));
    }

    void toolDefaults()
    {
        QTemporaryDir dir;
        const Paths paths(dir.path(), dir.path());
        QCOMPARE(computedDefault(keys::FmtFile, paths), dir.path() + QStringLiteral("/fmt/whistle_new.fmt"));
        QCOMPARE(computedDefault(keys::TempoDef, paths), QStringLiteral("100"));
        QVERIFY(computedDefault(keys::Tool2ps, paths).endsWith(QStringLiteral("/abcm2ps")));

        // A converter shipped beside the program wins over the one on PATH.
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("tools")));
        const QString shipped = dir.path() + QStringLiteral("/tools/abc2midi");
        touch(shipped);
        // Not executable: it is not taken.
        const QString onPath = QStandardPaths::findExecutable(QStringLiteral("abc2midi"));
        QCOMPARE(computedDefault(keys::Tool2midi, paths),
            onPath.isEmpty() ? QStringLiteral("/usr/bin/abc2midi") : onPath);
        QVERIFY(QFile::setPermissions(shipped, QFile::permissions(shipped) | QFileDevice::ExeOwner));
        QCOMPARE(computedDefault(keys::Tool2midi, paths), shipped);
    }
};

FENWORK_TEST(TestPaths)
#include "tst_paths.moc"
