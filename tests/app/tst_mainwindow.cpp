// The main window in this process, headless: what only the window does (keys, mouse, context
// menus, drops, the wiring of menus and panels), with one smoke test per command family; the
// commands themselves are tested in the core.
#include "testenv.h"
#include "testmain.h"

#include "editing/widgets/editcontroller.h"
#include "collections/choicelist.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "app/widgets/mainmenus.h"
#include "app/widgets/mainstatusbar.h"
#include "app/widgets/mainwindow.h"
#include "playback/widgets/dronepanel.h"
#include "score/widgets/scorepanel.h"
#include "store/treedimmer.h"
#include "store/widgets/explorerpanel.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/widgets/treemodel.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QDialog>
#include <QTabWidget>
#include <QTest>
#include <QSignalSpy>
#include <QTimer>
#include <QUrl>
#include <memory>

using namespace fenwork;
using Answer = UserDialogs::Answer;

namespace {

const QByteArray kJigs = "%abc\n%%abc-alias Jigs\nX:1\nT:First\nK:G\nabc|abc|\n\nX:2\nT:Second\nK:D\ndef|\n\n"
                         "X:3\nT:Third\nK:A\nABC|\n";

// A window over a fresh user root, loaded and shown.
class Window
{
public:
    Window() { window = test::loadedMainWindow(env); }
    ~Window() { window.reset(); }

    AppContext &app() { return env.app(); }
    ScriptedDialogs &ui() { return env.ui(); }
    TreeView *tree() { return window->tree(); }
    QAction *action(const QString &name) { return window->findChild<QAction *>(name); }
    QPlainTextEdit *text() { return window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC")); }
    Node *node(const QString &key) { return app().tree().find(key); }
    QString tune(const QString &kFile, int n) { return kFile + QStringLiteral("_tune%1").arg(n); }

    // Runs a command as its menu item or button would; false when it is disabled.
    bool trigger(const QString &name)
    {
        QAction *a = action(name);
        if (!a || !a->isEnabled())
            return false;
        a->trigger();
        QApplication::processEvents();
        return true;
    }
    QString write(const QString &name, const QByteArray &bytes = kJigs) { return env.writeFile(name, bytes); }
    // Opens files through the open dialog; returns the key of the last one.
    QString open(const QStringList &paths)
    {
        ui().pushFileName(paths.join(u'\n'));
        trigger(QStringLiteral("mnu_openFile"));
        return app().selection().fileKey();
    }
    QString openNew(const QString &name) { return open(QStringList { write(name) }); }

    QString lineKey(const QString &from, const QString &text)
    {
        QString found;
        app().tree().walk(node(from), [&](Node *n) {
            if (n->Text == text)
                found = n->Key;
            return found.isEmpty();
        });
        return found;
    }
    QPoint pointOf(const QString &key)
    {
        tree()->selectKey(key, true);
        QApplication::processEvents();
        const QModelIndex index = tree()->treeModel()->indexOf(node(key));
        tree()->scrollTo(index);
        return tree()->visualRect(index).center();
    }
    void click(const QString &key, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers mods = {})
    {
        // No node current, so that the click itself is what selects (without scrolling away).
        const QPoint at = pointOf(key);
        tree()->selectionModel()->clear();
        QTest::mouseClick(tree()->viewport(), button, mods, at);
        QApplication::processEvents();
    }

    bool menuOn(const char *name) { return window->menus()->isMenuEnabled(QString::fromLatin1(name)); }
    EditController &edit() { return *window->editController(); }

    test::TestEnv env;
    // A session on a tune opens the note output: it sounds into a file, never into a device.
    test::EnvGuard audio { "FENNELWORKS_AUDIO", "file:" + env.path(QStringLiteral("out.wav")).toUtf8() };
    std::unique_ptr<MainWindow> window;
};

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    // Whoever shows the selection hears of every change, closing a file included.
    void selectionFollowsClicksAndClose()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        QSignalSpy changed(&w.app().selection(), &Selection::changed);
        const auto last = [&] { return changed.last().at(0).toString() + u'|' + changed.last().at(1).toString(); };
        w.click(w.tune(kFile, 2));
        QCOMPARE(last(), w.tune(kFile, 2) + u'|' + kFile);
        w.click(kFile);
        QCOMPARE(last(), u'|' + kFile);
        w.click(w.tune(kFile, 3));
        QVERIFY(w.trigger(QStringLiteral("mnu_closeFile")));
        QVERIFY(!w.app().selection().fileKey().startsWith(kFile));
        QVERIFY(!w.app().selection().tuneKey().startsWith(kFile));
        QVERIFY(!last().contains(kFile));
    }

    // Two commands on one key would make the key do nothing at all.
    void noKeyServesTwoCommands()
    {
        Window w;
        QHash<QKeySequence, QString> seen;
        for (QAction *a : w.window->findChildren<QAction *>()) {
            for (const QKeySequence &k : a->shortcuts()) {
                QVERIFY2(!seen.contains(k),
                    qPrintable(k.toString() + QStringLiteral(": ") + seen.value(k) + QStringLiteral(", ")
                        + a->objectName()));
                seen.insert(k, a->objectName());
            }
        }
    }

    void openSeveralFiles()
    {
        Window w;
        const QString a = w.write(QStringLiteral("a.abc"));
        const QString b = w.write(QStringLiteral("b.abc"), "X:1\nT:Only\nK:C\nC|\n");
        const QString kFile = w.open({ a, b });
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::OpenFiles).size(), 1);
        QCOMPARE(w.node(kFile)->Tag, b);
        QCOMPARE(w.window->status()->filePath(), b);
        QCOMPARE(w.tree()->currentKey(), kFile);
        QVERIFY(w.text()->toPlainText().contains(QStringLiteral(" Path     : ") + b));
        QVERIFY(!w.ui().hadUnexpectedPrompts());
    }

    // A click shows the node's text, marks the clicked line and sets the menus. "@" stands for the
    // file's key, "=text" for the line of that text.
    void clickShowsAndEnables_data()
    {
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<QString>("panelStart");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<bool>("tuneMenu");
        QTest::addColumn<bool>("close");
        QTest::newRow("tune") << "@_tune2" << "X:2\nT:Second\nK:D\ndef|" << "" << true << true;
        QTest::newRow("music line") << "=ABC|" << "X:3" << "ABC|" << true << true;
        QTest::newRow("root") << "abc" << "" << "" << false << false;
    }
    void clickShowsAndEnables()
    {
        QFETCH(QString, clicked);
        QFETCH(QString, panelStart);
        QFETCH(QString, selected);
        QFETCH(bool, tuneMenu);
        QFETCH(bool, close);
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        w.tree()->expand(w.tree()->treeModel()->indexOf(w.node(w.tune(kFile, 3))));
        QString key = clicked.startsWith(u'=') ? w.lineKey(kFile, clicked.mid(1)) : clicked;
        key.replace(u'@', kFile);
        QVERIFY2(w.node(key), qPrintable(clicked));
        w.click(key);
        QCOMPARE(w.tree()->currentKey(), key);
        const QString panel = w.text()->toPlainText();
        if (panelStart.isEmpty())
            QVERIFY2(panel.isEmpty(), qPrintable(panel));
        else
            QVERIFY2(panel.startsWith(panelStart), qPrintable(panel));
        QCOMPARE(w.text()->textCursor().selectedText(), selected);
        QCOMPARE(w.window->menus()->isMenuEnabled(QStringLiteral("mnu_Morceau")), tuneMenu);
        QCOMPARE(w.action(QStringLiteral("mnu_closeFile"))->isEnabled(), close);
        QCOMPARE(w.window->status()->filePath(), GetPathFile(w.app(), w.app().selection().fileKey()));
    }

    // The arrows move the selection at once and work on it when the key is let go.
    void keysBrowseOnRelease()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        w.click(w.tune(kFile, 1));
        w.tree()->setFocus();
        QTest::keyPress(w.tree(), Qt::Key_Down);
        QCOMPARE(w.tree()->currentKey(), w.tune(kFile, 2));
        QCOMPARE(w.app().selection().tuneKey(), w.tune(kFile, 1));
        QTest::keyRelease(w.tree(), Qt::Key_Down);
        QCOMPARE(w.app().selection().tuneKey(), w.tune(kFile, 2));
        QVERIFY(w.text()->toPlainText().startsWith(QStringLiteral("X:2")));
        QTest::keyClick(w.tree(), Qt::Key_Home);
        QCOMPARE(w.tree()->currentKey(), key::Root);
        QCOMPARE(w.app().selection().tuneKey(), QString());
        QVERIFY(w.text()->toPlainText().isEmpty());
    }

    void droppedFiles_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<int>("opened");
        QTest::addColumn<QString>("message");
        QTest::newRow("two tune files") << QStringList { "ok.abc", "other.abc" } << 2 << "";
        QTest::newRow("a folder, then a file")
            << QStringList { "folder", "ok.abc" } << 1 << "Context: FichierOuvrir";
    }
    void droppedFiles()
    {
        QFETCH(QStringList, names);
        QFETCH(int, opened);
        QFETCH(QString, message);
        Window w;
        QList<QUrl> urls;
        QString lastFile;
        for (const QString &name : names) {
            QString path = w.env.path(name);
            if (name == u"folder")
                QDir().mkpath(path);
            else
                path = lastFile
                    = w.write(name, name == u"ok.abc" ? kJigs : QByteArray("X:9\nT:Other\nK:C\nC|\n"));
            urls.append(QUrl::fromLocalFile(path));
        }
        QMimeData mime;
        mime.setUrls(urls);
        QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w.tree()->viewport(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(20, 20), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w.tree()->viewport(), &drop);
        QApplication::processEvents();

        QCOMPARE(openFileCount(w.app()), opened);
        QCOMPARE(w.window->status()->filePath(), lastFile);
        const QString said = w.ui().messages().join(u'|');
        QVERIFY2(message.isEmpty() ? said.isEmpty() : said.contains(message), qPrintable(said));
    }

    // Save and save as through the menus: the save button follows the changed state, the node, the
    // status bar and the recent list take the new path.
    void saveAndSaveAs()
    {
        Window w;
        const QString path = w.write(QStringLiteral("s.abc"));
        const QString kFile = w.open({ path });
        w.click(w.tune(kFile, 1));
        QVERIFY(!w.action(QStringLiteral("save"))->isEnabled());
        w.app().store().SetFlagModifFile(kFile);
        QVERIFY(w.action(QStringLiteral("save"))->isEnabled());
        QFile::remove(path);
        QVERIFY(w.trigger(QStringLiteral("save")));
        QVERIFY(test::readAll(path).contains(QStringLiteral("T:Second\r\n")));
        QVERIFY(!w.action(QStringLiteral("save"))->isEnabled());

        const QString copy = w.env.path(QStringLiteral("copy.abc"));
        w.ui().pushFileName(copy, 2);
        QVERIFY(w.trigger(QStringLiteral("mnu_save1")));
        QCOMPARE(w.node(kFile)->Tag, copy);
        QCOMPARE(w.window->status()->filePath(), copy);
        QCOMPARE(w.action(QStringLiteral("mnu_Recents0"))->data().toString(), copy);
        QVERIFY(test::readBytes(copy).contains("T:Second\nK:D\n"));
    }

    // The search panel's smoke test: a search greys the other tunes, brings the tree back, marks what
    // it found in the text and fills the choice list, which loses a closed file's tunes; showing all
    // tunes again undoes the greying.
    void searchMarksWhatItFound()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        auto *tabs = w.window->findChild<QTabWidget *>(QStringLiteral("ongl_G"));
        tabs->setCurrentIndex(1);
        w.window->findChild<QLineEdit *>(QStringLiteral("txt_Chp20"))->setText(QStringLiteral("Second"));
        QTest::mouseClick(w.window->findChild<QPushButton *>(QStringLiteral("bt_Search")), Qt::LeftButton);
        QApplication::processEvents();
        QCOMPARE(tabs->currentIndex(), 0);
        QCOMPARE(w.node(w.tune(kFile, 1))->ForeColor, color::TuneLeftOut);
        QCOMPARE(w.node(w.tune(kFile, 2))->ForeColor, 0);

        w.click(w.tune(kFile, 2));
        const QList<QTextEdit::ExtraSelection> marks = w.text()->extraSelections();
        QCOMPARE(marks.size(), 1);
        QCOMPARE(marks.first().cursor.selectedText(), QStringLiteral("Second"));
        w.click(w.tune(kFile, 1));
        QVERIFY(w.text()->extraSelections().isEmpty());

        auto *list = w.window->findChild<QTreeView *>(QStringLiteral("lst_set"));
        QCOMPARE(list->model()->rowCount(), 1);
        w.window->findChild<QLineEdit *>(QStringLiteral("txt_Chp20"))->setText(QStringLiteral("i"));
        w.window->findChild<QComboBox *>(QStringLiteral("lst_resFind"))->setCurrentIndex(1);
        QTest::mouseClick(w.window->findChild<QPushButton *>(QStringLiteral("bt_Search")), Qt::LeftButton);
        QCOMPARE(w.window->choiceList().keys(),
            (QStringList { w.tune(kFile, 2), w.tune(kFile, 1), w.tune(kFile, 3) }));

        QTest::mouseClick(w.window->findChild<QPushButton *>(QStringLiteral("bt_SupprFltr")), Qt::LeftButton);
        QCOMPARE(w.node(w.tune(kFile, 2))->ForeColor, 0);
        QVERIFY(!w.action(QStringLiteral("mnu_saveTunesFltr"))->isEnabled());

        w.click(kFile);
        QVERIFY(w.trigger(QStringLiteral("mnu_closeFile")));
        QCOMPARE(list->model()->rowCount(), 0);
    }

    // An edit session closes menus off; its end gives back what the selected node calls for, and
    // the next click sets them as for any click. "@" stands for the file's key.
    void commandsAfterSession_data()
    {
        QTest::addColumn<QString>("edited");
        QTest::addColumn<bool>("validate");
        QTest::addColumn<bool>("copied");
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<bool>("tuneMenu");
        QTest::addColumn<bool>("paste");
        QTest::addColumn<bool>("tools");
        QTest::newRow("tune validated") << "@_tune1" << true << false << "" << true << false << true;
        QTest::newRow("tune cancelled, a tune copied")
            << "@_tune1" << false << true << "" << true << true << true;
        QTest::newRow("header validated") << "@_hdrFile" << true << false << "" << false << false << true;
        QTest::newRow("header cancelled, then a tune")
            << "@_hdrFile" << false << true << "@_tune3" << true << true << true;
        QTest::newRow("tune cancelled, then the file")
            << "@_tune1" << false << true << "@" << false << false << true;
        QTest::newRow("tune validated, then the root")
            << "@_tune1" << true << false << "abc" << false << false << false;
        QTest::newRow("tune cancelled, then the trash")
            << "@_tune1" << false << true << "_file0" << false << false << false;
    }
    void commandsAfterSession()
    {
        QFETCH(QString, edited);
        QFETCH(bool, validate);
        QFETCH(bool, copied);
        QFETCH(QString, clicked);
        QFETCH(bool, tuneMenu);
        QFETCH(bool, paste);
        QFETCH(bool, tools);
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        w.window->SimulerNodeClick(w.tune(kFile, 2));
        QVERIFY(!w.action(QStringLiteral("mnu_pasteTune"))->isEnabled());
        if (copied)
            QVERIFY(w.trigger(QStringLiteral("tunecopy")));
        w.window->SimulerNodeClick(QString(edited).replace(u'@', kFile));
        w.edit().abcedit();
        QVERIFY(w.edit().isEditing());
        QVERIFY(!w.menuOn("mnu_Morceau") && !w.menuOn("mnu_Import") && !w.menuOn("mnu_lst"));
        QVERIFY(validate ? w.edit().validate() : w.edit().cancel());
        if (!clicked.isEmpty())
            w.click(QString(clicked).replace(u'@', kFile));

        QCOMPARE(w.menuOn("mnu_Morceau"), tuneMenu);
        QCOMPARE(w.action(QStringLiteral("mnu_pasteTune"))->isEnabled(), paste);
        QCOMPARE(w.action(QStringLiteral("tunepaste"))->isEnabled(), paste);
        QCOMPARE(w.menuOn("mnu_Outils"), tools);
        QVERIFY(w.menuOn("mnu_Import"));
        QVERIFY(!w.menuOn("mnu_lst")); // the choice list is empty
        QCOMPARE(w.node(kFile)->Image, validate ? Pic::FileAbcM : Pic::FileAbc);
    }

    // While a tune is edited the tree greys out around it, a search is refused, and the colours
    // from before (a search's greying) come back at the end.
    void sessionHoldsTheTree()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        const QString t1 = w.tune(kFile, 1);
        w.app().tree().setForeColor(w.node(w.tune(kFile, 2)), color::TuneLeftOut);
        w.window->SimulerNodeClick(t1);
        w.edit().abcedit();
        QCOMPARE(w.node(t1)->ForeColor, TreeDimmer::EditedNode);
        QCOMPARE(w.node(w.lineKey(t1, QStringLiteral("T:First")))->ForeColor, TreeDimmer::EditedLine);
        QCOMPARE(w.node(w.tune(kFile, 3))->ForeColor, color::TuneLeftOut);
        QCOMPARE(w.node(kFile)->ForeColor, color::TuneLeftOut);

        auto *tabs = w.window->findChild<QTabWidget *>(QStringLiteral("ongl_G"));
        tabs->setCurrentIndex(1);
        QCOMPARE(tabs->currentIndex(), 0);
        QCOMPARE(w.ui().messages(),
            QStringList { w.app().text(QStringLiteral("Msg"), QStringLiteral("<closeEdBeforeSearch>")) });
        QCOMPARE(w.app().selection().tuneKey(), t1);

        QVERIFY(w.edit().cancel());
        QCOMPARE(w.node(t1)->ForeColor, 0);
        QCOMPARE(w.node(w.tune(kFile, 2))->ForeColor, color::TuneLeftOut);
        QCOMPARE(w.node(kFile)->ForeColor, color::File);
    }

    void newTuneIsEdited_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("menu") << "mnu_doNew1";
        QTest::newRow("tool bar") << "newtune";
    }
    void newTuneIsEdited()
    {
        QFETCH(QString, command);
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        QVERIFY(w.trigger(command));
        QVERIFY(w.edit().isEditing());
        QCOMPARE(w.app().selection().tuneKey(), w.tune(kFile, 4));
        QVERIFY(w.text()->toPlainText().startsWith(QStringLiteral("X:4")));
        QVERIFY(!w.text()->isReadOnly());
    }

    void toolWindowsOpen_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("dialog");
        QTest::newRow("tempo tapper") << "mnu_toExtras1"
                                      << "f_tempo";
        QTest::newRow("automatic insertions") << "mnu_inserAuto"
                                              << "fp_inser";
    }
    void toolWindowsOpen()
    {
        QFETCH(QString, command);
        QFETCH(QString, dialog);
        Window w;
        QVERIFY(w.trigger(command));
        QVERIFY(w.trigger(command)); // the open window comes forward, no second one
        const QList<QDialog *> shown = w.window->findChildren<QDialog *>(dialog);
        QCOMPARE(shown.size(), 1);
        QVERIFY(shown.first()->isVisible());
    }

    // The quit writes what the controls show now: the drone's lowered pitch, and the normal
    // size's zoom even when the score fills the window.
    void quitWritesLiveControls_data()
    {
        QTest::addColumn<bool>("lowered");
        QTest::addColumn<bool>("full");
        QTest::newRow("pitch lowered, normal size") << true << false;
        QTest::newRow("full panel") << false << true;
    }
    void quitWritesLiveControls()
    {
        QFETCH(bool, lowered);
        QFETCH(bool, full);
        Window w;
        ScorePanel *score = w.window->scorePanel();
        score->setFitWidth(false); // the zoom stays where it is put
        score->setZoom(120);
        if (full) {
            score->setFullPanel(true);
            score->setZoom(200);
        }
        auto *pitch
            = w.window->findChild<DronePanel *>()->findChild<QCheckBox *>(QStringLiteral("chk_pitch"));
        if (lowered)
            pitch->click();
        QVERIFY(w.window->close());
        const IniFile &ini = w.app().ini();
        QCOMPARE(ini.get(keys::Zoom), QStringLiteral("120"));
        if (full)
            QCOMPARE(ini.get(keys::ZoomMax), QStringLiteral("200"));
        QCOMPARE(ini.getBool(keys::DronePitch), lowered);
    }

    // Closing the window asks about the changed file and writes the session; Cancel keeps it all.
    void quitWritesTheSession()
    {
        Window w;
        const QString a = w.write(QStringLiteral("a.abc"));
        const QString kA = w.open({ a });
        w.trigger(QStringLiteral("newabc"));
        w.app().store().SetFlagModifFile(kA);
        w.ui().pushAnswer(Answer::Cancel);
        QVERIFY(w.trigger(QStringLiteral("mnu_Quitter")));
        QVERIFY(w.window->isVisible());
        QVERIFY(w.app().ini().getValue(QStringLiteral("OpenFiles"), QStringLiteral("nbFiles"), {}).isEmpty());

        QFile::remove(a);
        w.ui().pushAnswer(Answer::Yes);
        QVERIFY(w.window->close());
        QVERIFY(!w.window->isVisible());
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question).size(), 2);
        QVERIFY(QFile::exists(a));
        QCOMPARE(w.app().ini().getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), {}), a);
        QVERIFY(w.ui().queuesEmpty());
    }
};

FENWORK_TEST(TestMainWindow)
#include "tst_mainwindow.moc"
