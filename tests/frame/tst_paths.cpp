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

    void uniqueNames_data()
    {
        QTest::addColumn<QStringList>("existing");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("expected");

        // clang-format off
        QTest::newRow("dot given") << QStringList { "NewAbcFile1.abc" } << ".abc" << "NewAbcFile2";
        QTest::newRow("gap is used") << QStringList { "NewAbcFile1.abc", "NewAbcFile3.abc" } << "abc" << "NewAbcFile2";
        QTest::newRow("empty extension tests the bare name") << QStringList { "NewAbcFile1", "NewAbcFile2.abc" } << "" << "NewAbcFile2";
        QTest::newRow("a folder counts") << QStringList { "NewAbcFile1.abc/" } << "abc" << "NewAbcFile2";
        // clang-format on
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

    void toolDefaults()
    {
        QTemporaryDir dir;
        const Paths paths(dir.path(), dir.path());
        // A converter shipped beside the program wins over the one on PATH, if it may run.
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("tools")));
        const QString shipped = dir.path() + QStringLiteral("/tools/abc2midi");
        touch(shipped);
        const QString onPath = QStandardPaths::findExecutable(QStringLiteral("abc2midi"));
        QCOMPARE(computedDefault(keys::Tool2midi, paths),
            onPath.isEmpty() ? QStringLiteral("/usr/bin/abc2midi") : onPath);
        QVERIFY(QFile::setPermissions(shipped, QFile::permissions(shipped) | QFileDevice::ExeOwner));
        QCOMPARE(computedDefault(keys::Tool2midi, paths), shipped);
    }
};

FENWORK_TEST(TestPaths)
#include "tst_paths.moc"
