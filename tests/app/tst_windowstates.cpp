// The main window in its passing states: a quit while the score (F10) or the text (Ctrl+W) has
// the whole window keeps the splitter positions of the normal view; a file handed over during an
// edit session waits for its end.
#include "testenv.h"
#include "testmain.h"

#include "app/widgets/mainwindow.h"
#include "editing/widgets/editcontroller.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QAction>
#include <QApplication>
#include <QSplitter>
#include <QTest>

using namespace fenwork;

class TestWindowStates : public QObject
{
    Q_OBJECT

private slots:
    void normalPositionsKept_data()
    {
        QTest::addColumn<QStringList>("keys");
        QTest::newRow("F10") << QStringList { "key_F10" };
        QTest::newRow("Ctrl+W") << QStringList { "key_CtrlW" };
        QTest::newRow("both") << QStringList { "key_F10", "key_CtrlW" };
        QTest::newRow("Ctrl+W twice") << QStringList { "key_CtrlW", "key_CtrlW" };
    }
    void normalPositionsKept()
    {
        QFETCH(QStringList, keys);
        test::TestEnv env;
        auto window = test::loadedMainWindow(env);
        window->resize(1200, 800);
        QApplication::processEvents();
        const auto splitter
            = [&](const char *name) { return window->findChild<QSplitter *>(QString::fromLatin1(name)); };
        splitter("lab_dragV")->setSizes({ 330, 860 });
        splitter("lab_dragHG")->setSizes({ 420, 300 });
        splitter("lab_dragHD")->setSizes({ 240, 460 });
        QApplication::processEvents();
        const QList<int> normal = { splitter("lab_dragV")->sizes().value(0),
            splitter("lab_dragHG")->sizes().value(0), splitter("lab_dragHD")->sizes().value(0) };
        for (const QString &key : std::as_const(keys)) {
            window->findChild<QAction *>(key)->trigger();
            QApplication::processEvents();
        }
        QVERIFY(window->Form_Unload());
        const IniFile &ini = env.app().ini();
        QCOMPARE(
            (QList<int> { ini.getInt(keys::PanelX), ini.getInt(keys::PanelYG), ini.getInt(keys::PanelYD) }),
            normal);
    }

    void handOverDuringEdit_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("validate");
        QTest::newRow("apostrophes, validated") << "O'Carolan's Draught.abc" << true;
        QTest::newRow("cancelled") << "reels.abc" << false;
    }
    void handOverDuringEdit()
    {
        QFETCH(QString, name);
        QFETCH(bool, validate);
        test::TestEnv env;
        auto window = test::loadedMainWindow(env);
        const QString edited
            = window->openPath(env.writeFile(QStringLiteral("jigs.abc"), "X:1\nT:First\nK:G\nabc|\n"));
        window->SimulerNodeClick(edited + QStringLiteral("_tune1"));
        window->editController()->abcedit();
        QVERIFY(window->editController()->isEditing());
        const int files = env.app().tree().find(QStringLiteral("abc"))->childCount();

        const QString handed = env.writeFile(name, "X:1\nT:Planxty\nK:D\nd2|\n");
        window->openHandedOver(handed);
        QCOMPARE(env.app().tree().find(QStringLiteral("abc"))->childCount(), files);
        QVERIFY(validate ? window->editController()->validate() : window->editController()->cancel());
        QCOMPARE(env.app().tree().find(QStringLiteral("abc"))->childCount(), files + 1);
        QCOMPARE(GetPathFile(env.app(), env.app().selection().fileKey()), handed);
        QVERIFY(env.ui().messages().isEmpty());
    }
};

FENWORK_TEST(TestWindowStates)
#include "tst_windowstates.moc"
