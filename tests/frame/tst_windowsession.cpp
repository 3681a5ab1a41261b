// What the main window's load checks and its quit writes, without the window: the stored geometry,
// tool paths that went missing, the choice list as node places, the trash box limit and the
// open-file list with a file never saved among them.
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "app/session.h"
#include "editing/recovery.h"
#include "frame/settings.h"
#include "app/windowsession.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace fenwork;

namespace {

QString value(const IniFile &ini, const SettingKey &key)
{
    return ini.getValue(key.sectionName(), key.keyName(), QStringLiteral("(missing)"));
}

} // namespace

class TestWindowSession : public QObject
{
    Q_OBJECT

private slots:
    // A path that exists as given keeps its quotes; only one that does not loses them.
    void commandLinePath_data()
    {
        QTest::addColumn<QString>("name"); // a file made under the folder; empty: none
        QTest::addColumn<QString>("argument"); // "@" stands for the folder
        QTest::addColumn<QString>("path");
        QTest::newRow("apostrophes") << "O'Carolan's tunes.abc" << " @/O'Carolan's tunes.abc " << "@/O'Carolan's tunes.abc";
        QTest::newRow("quoted, existing") << "tunes.abc" << "\"@/tunes.abc\"" << "@/tunes.abc";
        QTest::newRow("quotes in a missing path") << "" << "'@/gone.abc'" << "@/gone.abc";
    }
    void commandLinePath()
    {
        QFETCH(QString, name);
        QFETCH(QString, argument);
        QFETCH(QString, path);
        test::TestEnv env;
        if (!name.isEmpty())
            env.writeFile(name, "X:1\n");
        const QString folder = QFileInfo(env.path(QStringLiteral("x"))).absolutePath();
        QCOMPARE(cleanCommandLinePath(argument.replace(u'@', folder)), path.replace(u'@', folder));
    }

    void recoveredName_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("name");
        QTest::newRow("title") << "X:1\r\nT:The Kesh\r\nT:Other\r\nK:G" << "2024-03-05 14.07 The Kesh.abc";
        QTest::newRow("slashes and dots") << "X:1\nT:../a/b: c?\nK:G" << "2024-03-05 14.07 _a_b_ c_.abc";
        QTest::newRow("header, no title") << "%%scale 0.7\r\n" << "2024-03-05 14.07 recovered.abc";
    }
    void recoveredName()
    {
        QFETCH(QString, text);
        QFETCH(QString, name);
        QCOMPARE(recoveredFileName(text, QDateTime(QDate(2024, 3, 5), QTime(14, 7))), name);
    }

    void geometryWritten_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QStringList>(
            "expected"); // WindowState, Top, Left, Width, Height, PanelX, PanelYD, PanelYG
        QTest::newRow("normal") << int(WindowGeometry::Normal)
                                << QStringList { "0", "20", "10", "900", "700", "250", "300", "500" };
        QTest::newRow("maximised keeps the panels only")
            << int(WindowGeometry::Maximised) << QStringList { "2", "", "", "", "", "250", "300", "500" };
        QTest::newRow("minimised keeps nothing")
            << int(WindowGeometry::Minimised) << QStringList { "0", "", "", "", "", "", "", "" };
    }
    void geometryWritten()
    {
        QFETCH(int, state);
        QFETCH(QStringList, expected);
        test::TestEnv env;
        const IniFile &ini = env.app().ini();
        WindowGeometry g;
        g.state = WindowGeometry::State(state);
        g.frame = QRect(10, 20, 900, 700);
        g.panelX = 250;
        g.panelYD = 300;
        g.panelYG = 500;
        writeWindowGeometry(ini, g);
        const QStringList written = { value(ini, keys::WindowState), value(ini, keys::Top),
            value(ini, keys::Left), value(ini, keys::Width), value(ini, keys::Height),
            value(ini, keys::PanelX), value(ini, keys::PanelYD), value(ini, keys::PanelYG) };
        QCOMPARE(written, expected);

        // What was written comes back; what was written empty takes the default.
        WindowGeometry defaults;
        defaults.frame = QRect(1, 2, 3, 4);
        defaults.panelX = 5;
        defaults.panelYD = 6;
        defaults.panelYG = 7;
        const WindowGeometry back = readWindowGeometry(ini, defaults);
        QCOMPARE(int(back.state), state == WindowGeometry::Maximised ? state : 0);
        QCOMPARE(back.frame, state == WindowGeometry::Normal ? g.frame : defaults.frame);
        QCOMPARE(back.panelX, state == WindowGeometry::Minimised ? 5 : 250);
    }

    // A tool path that no longer exists goes back to its default; one that exists stays.
    void loadResetsMissingTools()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        const IniFile &ini = app.ini();
        const QString kept = env.writeFile(QStringLiteral("my-abc2midi"), "#!/bin/sh\n");
        ini.set(keys::Tool2midi, kept);
        ini.set(keys::Tool2ps, QStringLiteral("/nowhere/abcm2ps"));
        ini.set(keys::FmtFile, QStringLiteral("/nowhere/format.fmt"));
        ini.set(keys::TempoDef, QStringLiteral("132"));
        QVERIFY(prepareMainLoad(app).isEmpty());
        QCOMPARE(ini.get(keys::Tool2midi), kept);
        QCOMPARE(ini.get(keys::Tool2ps), computedDefault(keys::Tool2ps, app.paths()));
        QCOMPARE(ini.get(keys::FmtFile), computedDefault(keys::FmtFile, app.paths()));
        QVERIFY(!ini.get(keys::Tool2abc).isEmpty());
        QVERIFY(!ini.get(keys::DirDef).isEmpty());
        QCOMPARE(app.tempoDef, 132);
        QVERIFY(QFileInfo(app.paths().inUser(QStringLiteral("drone"))).isDir());
    }

    void choiceListPlaces()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        createWorkspaceRoot(app);
        app.ini().set(keys::Ask4alias, QStringLiteral("0"));
        const QString file = app.store().FichierOuvrir(
            env.writeFile(QStringLiteral("a.abc"), "X:1\nT:One\nK:C\nC|\n\nX:2\nT:Two\nK:C\nD|\n"), false,
            true, false);
        const QStringList keys = { file + QStringLiteral("_tune2"), file + QStringLiteral("_tune1") };
        const QString contents = tempListContents(app.tree(), keys);
        QCOMPARE(contents.count(u'|'), 1);
        QCOMPARE(tempListKeys(app.tree(), contents), keys);
        // Places that are no number or lie beyond the tree drop out; the others keep their order.
        QCOMPARE(tempListKeys(app.tree(), QStringLiteral("x|99999|") + contents), keys);
        QCOMPARE(tempListContents(app.tree(), {}), QString());
        QCOMPARE(tempListKeys(app.tree(), QStringLiteral("1")), QStringList { key::Root });
    }

    // 53 tunes and a limit of 50: the three oldest go, and the box is written.
    void quitTrimsTheTrash()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        createWorkspaceRoot(app);
        QByteArray tunes;
        for (int i = 1; i <= 53; ++i)
            tunes += "X:" + QByteArray::number(i) + "\nT:T" + QByteArray::number(i) + "\nK:C\nC|\n\n";
        app.store().FichierOuvrir(env.writeFile(QStringLiteral("trash"), tunes), true, true, false);
        QCOMPARE(app.tree().find(key::TrashBody)->childCount(), 53);
        QuitState state;
        writeSessionAtQuit(app, state);
        const Node *body = app.tree().find(key::TrashBody);
        QCOMPARE(body->childCount(), 50);
        QVERIFY(body->firstChild()->Text.startsWith(QStringLiteral("[4]")));
        QFile saved(app.paths().trashFile());
        QVERIFY(saved.open(QIODevice::ReadOnly));
        const QByteArray written = saved.readAll();
        QVERIFY(!written.contains("T:T3\r\n"));
        QVERIFY(written.contains("T:T53\r\n"));
    }

    // Three files open, the second never saved: its place keeps the entry of the last run.
    void quitWritesTheSession()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        createWorkspaceRoot(app);
        const IniFile &ini = app.ini();
        ini.set(keys::Ask4alias, QStringLiteral("0"));
        ini.writeValue(QStringLiteral("OpenFiles"), QStringLiteral("OF2"), QStringLiteral("/old/second.abc"));
        const QString first = env.writeFile(QStringLiteral("first.abc"), "X:1\nT:A\nK:C\nC|\n");
        const QString third = env.writeFile(QStringLiteral("third.abc"), "X:1\nT:C\nK:C\nC|\n");
        app.store().FichierOuvrir(first, false, true, false);
        app.store().createNewFile();
        app.store().FichierOuvrir(third, false, true, false);
        QDir(app.paths().userRoot()).mkpath(QStringLiteral("user/cache"));
        QFile(app.paths().cacheFolder() + QStringLiteral("/tmp.ps")).open(QIODevice::WriteOnly);
        QFile(app.paths().userRoot() + QStringLiteral("/tmp1.bmp")).open(QIODevice::WriteOnly);

        QuitState state;
        state.geometry.frame = QRect(5, 6, 700, 500);
        state.kept = readKeptSettings(ini);
        state.kept.zoom = QStringLiteral("95");
        state.kept.tablaturesIndex = QStringLiteral("-1");
        writeSessionAtQuit(app, state);

        QCOMPARE(ini.get(keys::NbFiles), QStringLiteral("2"));
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), {}), first);
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF2"), {}),
            QStringLiteral("/old/second.abc"));
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF3"), {}), third);
        QCOMPARE(ini.getValue(QStringLiteral("Recents"), QStringLiteral("R1"), {}), third);
        QCOMPARE(ini.getValue(QStringLiteral("Recents"), QStringLiteral("R2"), {}), first);
        QCOMPARE(ini.get(keys::Width), QStringLiteral("700"));
        QCOMPARE(ini.get(keys::Zoom), QStringLiteral("95"));
        QCOMPARE(ini.get(keys::TablaturesIndex), QStringLiteral("0"));
        QVERIFY(!ini.get(keys::Version).isEmpty());
        QVERIFY(QDir(app.paths().cacheFolder()).isEmpty());
        QVERIFY(!QFileInfo::exists(app.paths().userRoot() + QStringLiteral("/tmp1.bmp")));
        // Nothing in the trash box changed: no trash file is written.
        QVERIFY(!QFileInfo::exists(app.paths().trashFile()));
    }

    // The user asked for the settings to be set back: the lists go out empty.
    void quitAfterReset()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        createWorkspaceRoot(app);
        app.ini().set(keys::Ask4alias, QStringLiteral("0"));
        app.store().FichierOuvrir(
            env.writeFile(QStringLiteral("a.abc"), "X:1\nT:A\nK:C\nC|\n"), false, true, false);
        QuitState state;
        state.reset = true;
        writeSessionAtQuit(app, state);
        QCOMPARE(app.ini().get(keys::NbFiles), QStringLiteral("0"));
        QCOMPARE(
            app.ini().getValue(QStringLiteral("Recents"), QStringLiteral("R1"), QStringLiteral("(missing)")),
            QString());
    }
};

FENWORK_TEST(TestWindowSession)
#include "tst_windowsession.moc"
