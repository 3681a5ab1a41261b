// The working list in the main window, driven through its menus, keys, clicks and drops.
#include "testenv.h"
#include "testmain.h"

#include "app/widgets/mainmenus.h"
#include "app/widgets/mainwindow.h"
#include "collections/choicelist.h"
#include "collections/widgets/choicelistpanel.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/tunestore.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QAction>
#include <QApplication>
#include <QMimeData>
#include <QTest>
#include <QTreeView>

using namespace fenwork;

namespace {

// A window over a file of three tunes, all three on the list through the tune menu.
struct Window
{
    Window()
    {
        window = test::loadedMainWindow(env);
        env.ui().pushFileName(env.writeFile(QStringLiteral("a.abc"),
            "%%abc-alias "
            "A\nX:1\nT:First\nK:G\nabc|\n\nX:2\nT:Second\nK:D\ndef|\n\nX:3\nT:Third\nK:A\nABC|\n"));
        trigger("mnu_openFile");
        kFile = env.app().selection().fileKey();
        for (int n = 1; n <= 3; ++n) {
            window->SimulerNodeClick(tune(n));
            trigger("mnu_addTuneToLst");
        }
    }
    QString tune(int n) const { return kFile + QStringLiteral("_tune%1").arg(n); }
    QStringList tunes(std::initializer_list<int> ns) const
    {
        QStringList keys;
        for (int n : ns)
            keys.append(tune(n));
        return keys;
    }
    void trigger(const char *name) { window->menus()->action(QString::fromLatin1(name))->trigger(); }
    ChoiceList &list() { return window->choiceList(); }
    QTreeView *view() { return window->choiceListPanel()->view(); }
    void drop(const char *type, const QByteArray &data, int row)
    {
        QMimeData mime;
        mime.setData(QString::fromLatin1(type), data);
        const QPoint at = view()->visualRect(view()->model()->index(row, 0)).center();
        QDragEnterEvent enter(at, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view()->viewport(), &enter);
        QDropEvent drop(at, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view()->viewport(), &drop);
    }

    test::TestEnv env;
    std::unique_ptr<MainWindow> window;
    QString kFile;
};

} // namespace

class TestListWindow : public QObject
{
    Q_OBJECT
private slots:
    // A tune keeps the text it came with and its key still finds it; a tune listed again, by
    // the menu or a drag from the tree, is only selected; rows dragged in the list move; Del
    // removes; an empty list closes its menu; a double click in the tree adds when set so.
    void gatherAndOrder()
    {
        Window w;
        QString text = QStringLiteral("X:1\r\nT:Renamed\r\nK:G\r\nabc|");
        QString same = w.tune(1);
        w.env.app().store().AddStringTune(text, w.kFile, false, w.tune(1), false, same);
        w.window->SimulerNodeClick(w.tune(1));
        w.trigger("mnu_addTuneToLst");
        w.drop("application/x-fennelworks-tune", w.tune(1).toUtf8(), 2);
        QCOMPARE(w.list().keys(), w.tunes({ 1, 2, 3 }));
        QCOMPARE(w.list().at(0).caption, QStringLiteral("[1]  First"));

        w.drop("application/x-fennelworks-listrow", "0", 2);
        QCOMPARE(w.list().keys(), w.tunes({ 2, 3, 1 }));
        w.window->SimulerNodeClick(w.kFile);
        QTest::mouseClick(w.view()->viewport(), Qt::LeftButton, {},
            w.view()->visualRect(w.view()->model()->index(2, 0)).center());
        QCOMPARE(w.env.app().selection().tuneKey(), w.tune(1));
        QVERIFY(w.window->menus()->isMenuEnabled(QStringLiteral("mnu_lst")));

        QTest::keyClick(w.view(), Qt::Key_Delete);
        QCOMPARE(w.list().keys(), w.tunes({ 2, 3 }));
        w.trigger("mnu_emptyLst");
        QVERIFY(!w.window->menus()->isMenuEnabled(QStringLiteral("mnu_lst")));
        w.env.app().ini().set(keys::DblClcIdx, QStringLiteral("2"));
        w.window->SimulerNodeClick(w.tune(3));
        emit w.window->tree()->nodeDoubleClicked(w.tune(3));
        QCOMPARE(w.list().keys(), w.tunes({ 3 }));
    }

    // Only a whole number from 1 to 999 becomes the repetitions.
    void repetitions_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("kept");
        QTest::newRow("a number") << " 7 " << 7;
        QTest::newRow("zero") << "0" << 2;
        QTest::newRow("a letter") << "x" << 2;
        QTest::newRow("below zero") << "-2" << 2;
        QTest::newRow("a fraction") << "2.5" << 2;
        QTest::newRow("too many") << "1000" << 2;
        QTest::newRow("cancel") << "" << 2;
    }
    void repetitions()
    {
        QFETCH(QString, typed);
        QFETCH(int, kept);
        Window w;
        w.list().setRepetitions(1, 2);
        w.window->choiceListPanel()->setCurrentRow(1);
        w.env.ui().pushInput(typed);
        w.trigger("mnu_defineRepTune");
        QCOMPARE(w.list().at(1).repetitions, kept);
        QCOMPARE(w.env.ui().texts(ScriptedDialogs::Kind::Input),
            QStringList { w.env.app().text(QStringLiteral("Msg"), QStringLiteral("<nbRepTune>")) + CRLF + CRLF
                + QStringLiteral("[2]  Second") });
    }
};

FENWORK_TEST(TestListWindow)
#include "tst_listwindow.moc"
