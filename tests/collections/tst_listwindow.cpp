// The working list in the main window: what it takes in, how it follows the tree, and the
// repetitions box, driven through the window's own menus, keys and drops.
#include "testenv.h"
#include "testmain.h"

#include "app/widgets/mainmenus.h"
#include "app/widgets/mainwindow.h"
#include "collections/choicelist.h"
#include "collections/widgets/choicelistpanel.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/treeops.h"
#include "store/tuneops.h"
#include "store/tunestore.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMimeData>
#include <QTest>
#include <QTreeView>
#include <QUrl>

using namespace fenwork;
using Answer = UserDialogs::Answer;

namespace {

const QByteArray kTunes = "%abc\n%%abc-alias Jigs\nX:1\nT:First\nK:G\nabc|\n\nX:2\nT:Second\nK:D\ndef|\n\n"
                          "X:3\nT:Third\nK:A\nABC|\n";

class Window
{
public:
    Window() { window = test::loadedMainWindow(env); }

    AppContext &app() { return env.app(); }
    ScriptedDialogs &ui() { return env.ui(); }
    ChoiceList &list() { return window->choiceList(); }
    ChoiceListPanel *panel() { return window->choiceListPanel(); }
    QString open(const QString &name)
    {
        ui().pushFileName(env.writeFile(name, kTunes));
        trigger("mnu_openFile");
        return app().selection().fileKey();
    }
    QString tune(const QString &kFile, int n) { return kFile + QStringLiteral("_tune%1").arg(n); }
    bool trigger(const char *name)
    {
        QAction *a = window->menus()->action(QString::fromLatin1(name));
        if (!a || !a->isEnabled())
            return false;
        a->trigger();
        QApplication::processEvents();
        return true;
    }
    // Each tune of the file on the list, through the tune menu.
    void listAll(const QString &kFile)
    {
        for (int n = 1; n <= 3; ++n) {
            window->SimulerNodeClick(tune(kFile, n));
            trigger("mnu_addTuneToLst");
        }
    }
    QString caption() { return panel()->findChild<QLabel *>(QStringLiteral("lab_lstSet"))->text(); }
    QString countCaption(int n)
    {
        return app().text(QStringLiteral("MainForm"), QStringLiteral("<lstTunes>")) + QStringLiteral(" (%1) ").arg(n);
    }
    void drop(QMimeData *mime, int row)
    {
        QTreeView *view = panel()->view();
        const QPoint at = row < 0 ? QPoint(5, view->viewport()->height() - 2)
                                  : view->visualRect(view->model()->index(row, 0)).center();
        QDragEnterEvent enter(at, Qt::MoveAction, mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &enter);
        QDropEvent event(at, Qt::MoveAction, mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
        QApplication::processEvents();
        delete mime;
    }

    test::TestEnv env;
    test::EnvGuard audio { "FENNELWORKS_AUDIO", "file:" + env.path(QStringLiteral("out.wav")).toUtf8() };
    std::unique_ptr<MainWindow> window;
};

} // namespace

class TestListWindow : public QObject
{
    Q_OBJECT
private slots:
    // Whatever takes a tune out of the tree takes it off the list, and the caption follows.
    void followsTheTree_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("left");
        QTest::newRow("delete") << "delete" << 2;
        QTest::newRow("cut") << "cut" << 2;
        QTest::newRow("move to another file") << "move" << 2;
        QTest::newRow("drop on the trash box") << "trash" << 2;
        QTest::newRow("close the file") << "close" << 0;
    }
    void followsTheTree()
    {
        QFETCH(QString, action);
        QFETCH(int, left);
        Window w;
        const QString kB = w.open(QStringLiteral("b.abc"));
        const QString kA = w.open(QStringLiteral("a.abc"));
        w.listAll(kA);
        QCOMPARE(w.caption(), w.countCaption(3));
        const QString second = w.tune(kA, 2);
        w.window->SimulerNodeClick(second);
        if (action == u"delete") {
            w.ui().pushAnswer(Answer::Yes);
            QVERIFY(w.trigger("mnu_delTune1"));
        } else if (action == u"cut") {
            QVERIFY(w.trigger("mnu_cutTune"));
        } else if (action == u"move") {
            dropTune(w.app(), second, w.tune(kB, 1), false);
        } else if (action == u"trash") {
            dropTune(w.app(), second, key::Trash, false);
        } else {
            w.window->SimulerNodeClick(kA);
            QVERIFY(w.trigger("mnu_closeFile"));
        }
        QCOMPARE(w.list().count(), left);
        QVERIFY(!w.list().contains(second));
        QCOMPARE(w.caption(), w.countCaption(left));
    }

    // The list keeps the text a tune had when it came; its key still finds the tune. Adding it
    // again only selects it; Del and the menu take items off.
    void itemsAndCommands()
    {
        Window w;
        const QString kA = w.open(QStringLiteral("a.abc"));
        w.listAll(kA);
        const QString first = w.tune(kA, 1);
        const QString old = w.list().at(0).caption;
        QString text = QStringLiteral("X:1\r\nT:Renamed\r\nK:G\r\nabc|");
        QString same = first;
        w.app().store().AddStringTune(text, kA, false, first, false, same);
        QVERIFY(w.app().tree().find(first)->Text.contains(u"Renamed"));

        w.window->SimulerNodeClick(first);
        QVERIFY(w.trigger("mnu_addTuneToLst"));
        QCOMPARE(w.list().count(), 3);
        QCOMPARE(w.panel()->currentRow(), 0);
        QCOMPARE(w.list().at(0).caption, old);

        w.window->SimulerNodeClick(kA);
        const QModelIndex row = w.panel()->view()->model()->index(0, 0);
        QTest::mouseClick(w.panel()->view()->viewport(), Qt::LeftButton, {},
            w.panel()->view()->visualRect(row).center());
        QCOMPARE(w.app().selection().tuneKey(), first);
        QVERIFY(w.window->menus()->isMenuEnabled(QStringLiteral("mnu_lst")));

        QTest::keyClick(w.panel()->view(), Qt::Key_Delete);
        QCOMPARE(w.list().keys(), QStringList({ w.tune(kA, 2), w.tune(kA, 3) }));
        QVERIFY(w.trigger("mnu_emptyLst"));
        QCOMPARE(w.caption(), w.countCaption(0));
        QVERIFY(!w.window->menus()->isMenuEnabled(QStringLiteral("mnu_lst")));

        // A double click in the tree adds, when the settings say so.
        w.app().ini().set(keys::DblClcIdx, QStringLiteral("2"));
        w.window->SimulerNodeClick(w.tune(kA, 3));
        emit w.window->tree()->nodeDoubleClicked(w.tune(kA, 3));
        QCOMPARE(w.list().keys(), QStringList { w.tune(kA, 3) });
    }

    // Tunes dragged from the tree come in once; rows dragged in the list change the order;
    // files dropped there open.
    void drops()
    {
        Window w;
        const QString kA = w.open(QStringLiteral("a.abc"));
        const auto tuneDrag = [&](int n) {
            auto *mime = new QMimeData;
            mime->setData(QStringLiteral("application/x-fennelworks-tune"), w.tune(kA, n).toUtf8());
            return mime;
        };
        w.drop(tuneDrag(2), -1);
        w.drop(tuneDrag(1), -1);
        w.drop(tuneDrag(3), -1);
        w.drop(tuneDrag(2), -1);
        QCOMPARE(w.list().keys(), QStringList({ w.tune(kA, 2), w.tune(kA, 1), w.tune(kA, 3) }));

        auto *row = new QMimeData;
        row->setData(QStringLiteral("application/x-fennelworks-listrow"), "0");
        w.drop(row, 2);
        QCOMPARE(w.list().keys(), QStringList({ w.tune(kA, 1), w.tune(kA, 3), w.tune(kA, 2) }));

        auto *files = new QMimeData;
        const QString b = w.env.writeFile(QStringLiteral("b.abc"), kTunes);
        files->setUrls({ QUrl::fromLocalFile(b) });
        w.drop(files, 0);
        QVERIFY(IsOpenFile(w.app(), b));
    }

    // Only a whole number from 1 to 999 becomes the repetitions.
    void repetitions_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("kept");
        QTest::newRow("a number") << "5" << 5;
        QTest::newRow("blanks around") << " 7 " << 7;
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
        const QString kA = w.open(QStringLiteral("a.abc"));
        w.listAll(kA);
        w.list().setRepetitions(1, 2);
        w.panel()->setCurrentRow(1);
        w.ui().pushInput(typed);
        QVERIFY(w.trigger("mnu_defineRepTune"));
        QCOMPARE(w.list().at(1).repetitions, kept);
        const QStringList prompts = w.ui().texts(ScriptedDialogs::Kind::Input);
        QCOMPARE(prompts.size(), 1);
        QCOMPARE(prompts.at(0), w.app().text(QStringLiteral("Msg"), QStringLiteral("<nbRepTune>")) + CRLF + CRLF
                + w.list().at(1).caption);
    }
};

FENWORK_TEST(TestListWindow)
#include "tst_listwindow.moc"
