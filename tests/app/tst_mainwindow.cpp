// The main window in this process, headless: its controls by name, opening files, clicks on the
// tree and what they show and enable, the keys, the context menus, dropped files, the file
// commands with their questions, the recent list, and the quit that writes the session.
#include "testenv.h"
#include "testmain.h"

#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/widgets/mainmenus.h"
#include "frame/widgets/mainstatusbar.h"
#include "frame/widgets/mainwindow.h"
#include "store/widgets/explorerpanel.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/widgets/treemodel.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
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
    Window()
    {
        window = test::loadedMainWindow(env);
    }
    ~Window() { window.reset(); }

    AppContext &app() { return env.app(); }
    ScriptedDialogs &ui() { return env.ui(); }
    const IniFile &ini() { return env.app().ini(); }
    TreeView *tree() { return window->tree(); }
    QAction *action(const QString &name) { return window->findChild<QAction *>(name); }
    QPlainTextEdit *text() { return window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC")); }
    QString caption() { return window->findChild<QLabel *>(QStringLiteral("lab_ttr"))->text(); }
    Node *node(const QString &key) { return app().tree().find(key); }
    QString msg(const char *key) { return app().text(QStringLiteral("Msg"), QString::fromLatin1(key)); }

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
        return app().currentFileKey;
    }
    QString openNew(const QString &name, const QByteArray &bytes = kJigs)
    {
        return open(QStringList { write(name, bytes) });
    }

    // The key of the first node below `from` with this text.
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

    test::TestEnv env;
    std::unique_ptr<MainWindow> window;
};

// The popup open while `show` runs, and whether `watched` was visible in it.
struct PopupSeen
{
    QString name;
    bool watchedVisible = false;
};
PopupSeen whilePopupOpen(Window &w, const QString &watched, const std::function<void()> &show)
{
    PopupSeen seen;
    QTimer::singleShot(50, [&] {
        if (QWidget *popup = QApplication::activePopupWidget()) {
            seen.name = popup->objectName();
            if (QAction *a = w.action(watched))
                seen.watchedVisible = a->isVisible();
            popup->close();
        }
    });
    show();
    QApplication::processEvents();
    return seen;
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    // Tests and readers find the controls by the names the menus and panels are known by.
    void controlsByName()
    {
        Window w;
        QStringList missing;
        for (const char *name : { "tr_ABC", "txt_ABC", "lab_ttr", "lst_set", "tb_lstSet", "ongl_G",
                 "pic_explor", "pic_search", "pic_Ref", "pic_Player", "pic_Mus", "img_Mus", "scr_musH",
                 "scr_musV", "stBar", "kversion", "kfich", "ktree", "pic_Progress", "ProgB", "lab_Progress",
                 "tb_main", "lab_dragV", "lab_dragHD", "lab_dragHG", "mnu_Fichier", "mnu_New", "mnu_doNew3",
                 "mnu_openFile", "mnu_openGrp", "mnu_save0", "mnu_save1", "mnu_SaveAll", "mnu_saveTunesFltr",
                 "mnu_saveSelTunes1", "mnu_closeFile", "mnu_closeAll", "mnu_PlayFile2",
                 "mnu_ExportFileViaGS3", "mnu_fileExportNet1", "mnu_printAbcFile", "mnu_Recents3",
                 "mnu_Quitter", "mnu_Morceau", "mnu_delTune1", "mnu_ExportTuneViaGS2", "mnu_lst",
                 "mnu_Import", "mnu_midiExt", "mnu_Outils", "mnu_toExtras2", "mnu_shellConsole3",
                 "mnu_Options", "mnu_hlp", "mnu_hlp_item6", "open", "grpopen", "save", "saveall", "scanrep",
                 "newabc", "closeabc", "closeallabc", "toolsf", "extract", "newtune", "tunedel", "tunecut",
                 "tunecopy", "tunepaste", "print", "printtune", "printfile", "printlst", "tomidi", "topdf",
                 "topdftune", "topdffile", "topdflst", "playfile", "playall", "playselect", "quickscan" })
            if (!w.window->findChild<QObject *>(QString::fromLatin1(name)))
                missing.append(QString::fromLatin1(name));
        QCOMPARE(missing, QStringList());
    }

    // After the load nothing is selected: what needs a node waits, what does not works, and
    // what does not exist yet stays off.
    void enabledAfterLoad_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("open") << "mnu_openFile" << true;
        QTest::newRow("open button") << "open" << true;
        QTest::newRow("new file") << "mnu_doNew0" << true;
        QTest::newRow("new file button") << "newabc" << true;
        QTest::newRow("close all") << "mnu_closeAll" << true;
        QTest::newRow("quit") << "mnu_Quitter" << true;
        QTest::newRow("save as") << "mnu_save1" << false;
        QTest::newRow("close") << "mnu_closeFile" << false;
        QTest::newRow("save all, no file") << "mnu_SaveAll" << false;
        QTest::newRow("save filtered") << "mnu_saveTunesFltr" << false;
    }
    void enabledAfterLoad()
    {
        QFETCH(QString, name);
        QFETCH(bool, enabled);
        Window w;
        QVERIFY(w.action(name));
        QCOMPARE(w.action(name)->isEnabled(), enabled);
        QVERIFY(!w.window->menus()->isMenuEnabled(QStringLiteral("mnu_Morceau")));
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

    void loadShowsVersionAndRoot()
    {
        Window w;
        QVERIFY(w.window->windowTitle().startsWith(QStringLiteral("Fennelworks 0.")));
        QCOMPARE(w.window->findChild<QLabel *>(QStringLiteral("kversion"))->text(), w.window->windowTitle());
        QCOMPARE(w.node(key::Root)->Text, QStringLiteral("Fennelworks (0 file)"));
        QVERIFY(w.node(QStringLiteral("_file0_hdrFile_lgIDpoubelle")));
        QCOMPARE(w.caption(), QStringLiteral("Fennelworks"));
        QVERIFY(w.text()->isReadOnly());
        QVERIFY(QFontInfo(w.text()->font()).fixedPitch());
        // The locked text is told apart from an ordinary editable box by its background.
        QVERIFY(w.text()->palette().color(QPalette::Base) != QApplication::palette().color(QPalette::Base));
    }

    void openSeveralFiles()
    {
        Window w;
        const QString a = w.write(QStringLiteral("a.abc"));
        const QString b = w.write(QStringLiteral("b.abc"), "X:1\nT:Only\nK:C\nC|\n");
        const QString kFile = w.open({ a, b });
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::OpenFiles).size(), 1);
        QCOMPARE(w.ui().shown.first().title, w.msg("<openABCfile>"));
        QCOMPARE(w.node(kFile)->Tag, b);
        QCOMPARE(w.window->status()->filePath(), b);
        QCOMPARE(w.tree()->currentKey(), kFile);
        QVERIFY(w.text()->toPlainText().startsWith(QStringLiteral("\n ------ ABC FILE -------")));
        QVERIFY(w.text()->toPlainText().contains(QStringLiteral(" Path     : ") + b));
        QCOMPARE(w.node(key::Root)->Text, QStringLiteral("Fennelworks (2 files)"));
        QCOMPARE(w.action(QStringLiteral("mnu_Recents0"))->data().toString(), b);
        QCOMPARE(w.action(QStringLiteral("mnu_Recents1"))->data().toString(), a);
        QVERIFY(w.action(QStringLiteral("mnu_Recents1"))->isVisible());
        QVERIFY(!w.action(QStringLiteral("mnu_Recents2"))->isVisible());
        QVERIFY(w.action(QStringLiteral("mnu_closeFile"))->isEnabled());
        QVERIFY(w.action(QStringLiteral("saveall"))->isEnabled());
        QVERIFY(!w.ui().hadUnexpectedPrompts());
    }

    void doubledNumbersAfterOpening_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("warned");
        const QByteArray doubled = "X:1\nT:A\nK:C\nC|\n\nX:2\nT:B\nK:C\nD|\n\nX:2\nT:C\nK:C\nE|\n";
        QTest::newRow("doubled, check on") << "1" << doubled << true;
        QTest::newRow("doubled, check off") << "0" << doubled << false;
        QTest::newRow("all different") << "1" << kJigs << false;
    }
    void doubledNumbersAfterOpening()
    {
        QFETCH(QString, setting);
        QFETCH(QByteArray, file);
        QFETCH(bool, warned);
        Window w;
        w.ini().set(keys::ShowDoublons, setting);
        const QString path = w.write(QStringLiteral("d.abc"), file);
        const QString kFile = w.open({ path });
        QVERIFY(!kFile.isEmpty());
        const QString warning
            = path + CRLF + CRLF + w.app().text(QStringLiteral("MSG"), QStringLiteral("<dblXinFile>"));
        QCOMPARE(w.ui().messages().contains(warning), warned);
        QCOMPARE(w.node(kFile + QStringLiteral("_tune3"))->BackColor == color::DuplicateX, warned);
    }

    // "@" stands for the file's key, "=text" for the line of that text.
    void clickShowsAndEnables_data()
    {
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<QString>("panelStart");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<bool>("tuneMenu");
        QTest::addColumn<bool>("close");
        QTest::addColumn<bool>("saveAs");
        QTest::newRow("tune") << "@_tune2"
                              << "X:2\nT:Second\nK:D\ndef|"
                              << ""
                              << "[2]  Second" << true << true << true;
        QTest::newRow("title line") << "=T:First"
                                    << "X:1\nT:First"
                                    << "T:First"
                                    << "[1]  First" << true << true << true;
        QTest::newRow("music line") << "=ABC|"
                                    << "X:3"
                                    << "ABC|"
                                    << "[3]  Third" << true << true << true;
        QTest::newRow("file header line") << "=%%abc-alias Jigs"
                                          << "%abc\n"
                                          << "%%abc-alias Jigs"
                                          << "Fennelworks" << false << true << true;
        QTest::newRow("file") << "@"
                              << "\n ------ ABC FILE"
                              << ""
                              << "Fennelworks" << false << true << true;
        QTest::newRow("file body") << "@_bdyFile"
                                   << ""
                                   << ""
                                   << "Fennelworks" << false << true << true;
        QTest::newRow("trash header") << "_file0_hdrFile"
                                      << ""
                                      << ""
                                      << "Fennelworks" << false << false << true;
        QTest::newRow("root") << "abc"
                              << ""
                              << ""
                              << "Fennelworks" << false << false << false;
    }
    void clickShowsAndEnables()
    {
        QFETCH(QString, clicked);
        QFETCH(QString, panelStart);
        QFETCH(QString, selected);
        QFETCH(QString, caption);
        QFETCH(bool, tuneMenu);
        QFETCH(bool, close);
        QFETCH(bool, saveAs);
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        // Expanding the tunes first, so that their lines can be clicked.
        for (int i = 1; i <= 3; ++i)
            w.tree()->expand(
                w.tree()->treeModel()->indexOf(w.node(kFile + QStringLiteral("_tune%1").arg(i))));
        w.tree()->expand(w.tree()->treeModel()->indexOf(w.node(kFile + key::HdrFile)));
        QString key = clicked.startsWith(u'=') ? w.lineKey(kFile, clicked.mid(1)) : clicked;
        key.replace(u'@', kFile);
        QVERIFY2(w.node(key), qPrintable(clicked));
        w.click(key);
        QCOMPARE(w.tree()->currentKey(), key);
        QCOMPARE(w.window->findChild<QLabel *>(QStringLiteral("ktree"))->text(), key);
        const QString panel = w.text()->toPlainText();
        if (panelStart.isEmpty())
            QVERIFY2(panel.isEmpty(), qPrintable(panel));
        else
            QVERIFY2(panel.startsWith(panelStart), qPrintable(panel));
        QCOMPARE(w.text()->textCursor().selectedText(), selected);
        QCOMPARE(w.caption(), caption);
        QCOMPARE(w.window->menus()->isMenuEnabled(QStringLiteral("mnu_Morceau")), tuneMenu);
        QCOMPARE(w.action(QStringLiteral("mnu_closeFile"))->isEnabled(), close);
        QCOMPARE(w.action(QStringLiteral("closeabc"))->isEnabled(), close);
        QCOMPARE(w.action(QStringLiteral("mnu_save1"))->isEnabled(), saveAs);
        QCOMPARE(w.window->status()->filePath(), GetPathFile(w.app(), w.app().currentFileKey));
    }

    // The arrows move the selection at once and work on it when the key is let go.
    void keysBrowseOnRelease()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        const QString first = kFile + QStringLiteral("_tune1");
        w.click(first);
        QCOMPARE(w.app().currentTuneKey, first);
        w.tree()->setFocus();
        QTest::keyPress(w.tree(), Qt::Key_Down);
        QCOMPARE(w.tree()->currentKey(), kFile + QStringLiteral("_tune2"));
        QCOMPARE(w.app().currentTuneKey, first);
        QVERIFY(w.text()->toPlainText().startsWith(QStringLiteral("X:1")));
        QTest::keyRelease(w.tree(), Qt::Key_Down);
        QCOMPARE(w.app().currentTuneKey, kFile + QStringLiteral("_tune2"));
        QVERIFY(w.text()->toPlainText().startsWith(QStringLiteral("X:2")));
        // Home moves to the root: a move by any key is a click when the key is let go.
        QTest::keyClick(w.tree(), Qt::Key_Home);
        QCOMPARE(w.tree()->currentKey(), key::Root);
        QCOMPARE(w.app().currentTuneKey, QString());
        QVERIFY(w.text()->toPlainText().isEmpty());
    }

    void ctrlClickMarksAndSavesTheRest()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        w.click(kFile + QStringLiteral("_tune1"));
        QVERIFY(!w.action(QStringLiteral("mnu_saveTunesFltr"))->isEnabled());
        w.click(kFile + QStringLiteral("_tune2"), Qt::LeftButton, Qt::ControlModifier);
        QCOMPARE(w.node(kFile + QStringLiteral("_tune2"))->ForeColor, color::TuneLeftOut);
        // Marking is no selection: the tune clicked before stays current.
        QCOMPARE(w.app().currentTuneKey, kFile + QStringLiteral("_tune1"));
        QVERIFY(w.action(QStringLiteral("mnu_saveTunesFltr"))->isEnabled());

        const QString out = w.env.path(QStringLiteral("kept.abc"));
        w.ui().pushFileName(out);
        w.ui().pushAnswer(Answer::No);
        QVERIFY(w.trigger(QStringLiteral("mnu_saveTunesFltr")));
        const QString written = test::readAll(out);
        QVERIFY2(written.contains(QStringLiteral("X:1\r\nT:First")), qPrintable(written));
        QVERIFY(written.contains(QStringLiteral("X:2\r\nT:Third")));
        QVERIFY(!written.contains(QStringLiteral("Second")));
    }

    void contextMenus_data()
    {
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<QString>("menu");
        QTest::newRow("tune") << "@_tune1"
                              << "mnu_Morceau";
        QTest::newRow("file") << "@"
                              << "mnu_Fichier";
        QTest::newRow("root") << "abc"
                              << "mnu_Fichier";
    }
    void contextMenus()
    {
        QFETCH(QString, clicked);
        QFETCH(QString, menu);
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        QString key = clicked;
        key.replace(u'@', kFile);
        w.click(key, Qt::RightButton);
        QCOMPARE(w.tree()->currentKey(), key);
        const QPoint at = w.pointOf(key);
        const PopupSeen seen = whilePopupOpen(w, QStringLiteral("mnu_openFile"), [&] {
            QContextMenuEvent event(QContextMenuEvent::Mouse, at, w.tree()->viewport()->mapToGlobal(at));
            QApplication::sendEvent(w.tree()->viewport(), &event);
        });
        QCOMPARE(seen.name, menu);
        // The file menu as a context menu leaves out opening; the menu bar's keeps it.
        if (menu == u"mnu_Fichier")
            QVERIFY(!seen.watchedVisible);
        QVERIFY(w.action(QStringLiteral("mnu_openFile"))->isVisible());
        QVERIFY(w.action(QStringLiteral("mnu_Recents0"))->isVisible());
    }

    void doubleClickClearsTheMark()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        w.tree()->expand(w.tree()->treeModel()->indexOf(w.node(kFile + QStringLiteral("_tune1"))));
        const QString title = w.lineKey(kFile, QStringLiteral("T:First"));
        w.click(title);
        QCOMPARE(w.text()->textCursor().selectedText(), QStringLiteral("T:First"));
        QTest::mouseDClick(w.tree()->viewport(), Qt::LeftButton, {}, w.pointOf(title));
        QVERIFY(!w.text()->textCursor().hasSelection());
    }

    void droppedFiles_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<int>("opened");
        QTest::addColumn<QString>("message");
        QTest::newRow("a tune file") << QStringList { "ok.abc" } << 1 << "";
        QTest::newRow("two tune files") << QStringList { "ok.abc", "other.abc" } << 2 << "";
        QTest::newRow("a folder, then a file")
            << QStringList { "folder", "ok.abc" } << 1 << "Context: FichierOuvrir";
        // A file with no X: line opens empty, with a warning.
        QTest::newRow("a binary file") << QStringList { "noise.bin" } << 1 << "<lackingX>";
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
            QString path;
            if (name == u"folder") {
                path = w.env.path(name);
                QDir().mkpath(path);
            } else if (name.endsWith(u".bin")) {
                QByteArray noise;
                for (int i = 0; i < 5000; ++i)
                    noise.append(char((i * 7919 + 13) % 256));
                path = lastFile = w.write(name, noise);
            } else {
                path = lastFile
                    = w.write(name, name == u"ok.abc" ? kJigs : QByteArray("X:9\nT:Other\nK:C\nC|\n"));
            }
            urls.append(QUrl::fromLocalFile(path));
        }
        auto *mime = new QMimeData;
        mime->setUrls(urls);
        QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w.tree()->viewport(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(20, 20), Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w.tree()->viewport(), &drop);
        QApplication::processEvents();
        delete mime;

        QCOMPARE(openFileCount(w.app()), opened);
        if (opened > 0)
            QCOMPARE(w.window->status()->filePath(), lastFile);
        const QString expected = message.startsWith(u'<') ? w.msg(qPrintable(message)) : message;
        if (expected.isEmpty())
            QVERIFY2(w.ui().messages().isEmpty(), qPrintable(w.ui().messages().join(u'|')));
        else
            QVERIFY2(
                w.ui().messages().join(u'|').contains(expected), qPrintable(w.ui().messages().join(u'|')));
    }

    void saveAndSaveAs()
    {
        Window w;
        const QString path = w.write(QStringLiteral("s.abc"));
        const QString kFile = w.open({ path });
        w.click(kFile + QStringLiteral("_tune1"));
        QVERIFY(!w.action(QStringLiteral("save"))->isEnabled());
        w.app().store().SetFlagModifFile(kFile);
        QVERIFY(w.action(QStringLiteral("save"))->isEnabled());
        QFile::remove(path);
        QVERIFY(w.trigger(QStringLiteral("save")));
        QVERIFY(test::readAll(path).contains(QStringLiteral("T:Second\r\n")));
        QCOMPARE(w.node(kFile)->Image, Pic::FileAbc);
        QVERIFY(!w.action(QStringLiteral("save"))->isEnabled());

        // Save as, Unix line ends: the node and the status bar take the new path, the recent list too.
        const QString copy = w.env.path(QStringLiteral("copy.abc"));
        w.ui().pushFileName(copy, 2);
        QVERIFY(w.trigger(QStringLiteral("mnu_save1")));
        QCOMPARE(w.node(kFile)->Tag, copy);
        QCOMPARE(w.window->status()->filePath(), copy);
        QCOMPARE(w.action(QStringLiteral("mnu_Recents0"))->data().toString(), copy);
        const QByteArray bytes = test::readBytes(copy);
        QVERIFY(bytes.contains("T:Second\nK:D\n"));
        QVERIFY(!bytes.contains("T:Second\r\n"));
    }

    void newFileThenClose()
    {
        Window w;
        QVERIFY(w.trigger(QStringLiteral("newabc")));
        const QString kFile = w.app().currentFileKey;
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(w.node(kFile)->Tag, QStringLiteral("<new>"));
        QCOMPARE(w.tree()->currentKey(), kFile);
        w.app().store().SetFlagModifFile(kFile);
        w.ui().pushAnswer(Answer::No);
        QVERIFY(w.trigger(QStringLiteral("mnu_closeFile")));
        const QStringList questions = w.ui().texts(ScriptedDialogs::Kind::Question);
        QCOMPARE(questions.size(), 1);
        QVERIFY(questions.first().startsWith(w.msg("<fileModified>") + CRLF + CRLF));
        QVERIFY(!w.node(kFile));
        QCOMPARE(w.tree()->currentKey(), key::Root);
        QCOMPARE(w.window->status()->filePath(), QString());
        QCOMPARE(w.node(key::Root)->Text, QStringLiteral("Fennelworks (0 file)"));
        QVERIFY(!w.action(QStringLiteral("mnu_closeFile"))->isEnabled());
    }

    void closeAllStopsAtCancel()
    {
        Window w;
        const QString a = w.openNew(QStringLiteral("a.abc"));
        const QString b = w.openNew(QStringLiteral("b.abc"));
        w.app().store().SetFlagModifFile(a);
        w.app().store().SetFlagModifFile(b);
        w.ui().pushAnswer(Answer::Cancel);
        QVERIFY(w.trigger(QStringLiteral("closeallabc")));
        QCOMPARE(openFileCount(w.app()), 2);
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question).size(), 1);
        w.ui().pushAnswer(Answer::No);
        w.ui().pushAnswer(Answer::No);
        QVERIFY(w.trigger(QStringLiteral("mnu_closeAll")));
        QCOMPARE(openFileCount(w.app()), 0);
        QVERIFY(w.ui().queuesEmpty());
    }

    void recentFiles()
    {
        Window w;
        const QString a = w.write(QStringLiteral("a.abc"));
        const QString b = w.write(QStringLiteral("b.abc"));
        w.open({ a });
        w.open({ b });
        w.trigger(QStringLiteral("mnu_closeAll"));
        QCOMPARE(openFileCount(w.app()), 0);
        // The older one comes back and is selected; the list puts it first.
        QVERIFY(w.trigger(QStringLiteral("mnu_Recents1")));
        QCOMPARE(w.window->status()->filePath(), a);
        QCOMPARE(w.action(QStringLiteral("mnu_Recents0"))->data().toString(), a);
        // A file gone from the disk leaves the list with a word.
        QFile::remove(b);
        QVERIFY(w.trigger(QStringLiteral("mnu_Recents1")));
        QCOMPARE(w.ui().lastMessage(), w.msg("<fileNotFound>"));
        QVERIFY(!w.action(QStringLiteral("mnu_Recents1"))->isVisible());
        QCOMPARE(openFileCount(w.app()), 1);
    }

    void tabStartsFromNoSelection()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        w.click(kFile + QStringLiteral("_tune1"));
        auto *tabs = w.window->findChild<QTabWidget *>(QStringLiteral("ongl_G"));
        tabs->setCurrentIndex(1);
        QCOMPARE(w.app().currentTuneKey, QString());
        QCOMPARE(w.app().currentFileKey, QString());
        QCOMPARE(tabs->currentWidget()->objectName(), QStringLiteral("pic_search"));
    }

    // A search greys the other tunes, brings the tree back, and what it found is marked in the text.
    void searchMarksWhatItFound()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("jigs.abc"));
        auto *tabs = w.window->findChild<QTabWidget *>(QStringLiteral("ongl_G"));
        const qint64 idleIcon = tabs->tabIcon(1).cacheKey();
        tabs->setCurrentIndex(1);
        w.window->findChild<QLineEdit *>(QStringLiteral("txt_Chp20"))->setText(QStringLiteral("Second"));
        QTest::mouseClick(w.window->findChild<QPushButton *>(QStringLiteral("bt_Search")), Qt::LeftButton);
        QApplication::processEvents();
        QCOMPARE(tabs->currentIndex(), 0);
        QCOMPARE(w.node(kFile + QStringLiteral("_tune1"))->ForeColor, color::TuneLeftOut);
        QCOMPARE(w.node(kFile + QStringLiteral("_tune2"))->ForeColor, 0);
        QVERIFY(tabs->tabIcon(1).cacheKey() != idleIcon);
        QVERIFY(w.action(QStringLiteral("mnu_saveTunesFltr"))->isEnabled());

        w.click(kFile + QStringLiteral("_tune2"));
        const QList<QTextEdit::ExtraSelection> marks = w.text()->extraSelections();
        QCOMPARE(marks.size(), 1);
        QCOMPARE(marks.first().cursor.selectedText(), QStringLiteral("Second"));
        w.click(kFile + QStringLiteral("_tune1"));
        QVERIFY(w.text()->extraSelections().isEmpty());

        // The result replaced the choice list; "add" keeps what is listed and lists a tune once.
        auto *list = w.window->findChild<QTreeWidget *>(QStringLiteral("lst_set"));
        QCOMPARE(list->topLevelItemCount(), 1);
        QCOMPARE(list->topLevelItem(0)->text(1), QStringLiteral("1"));
        w.window->findChild<QLineEdit *>(QStringLiteral("txt_Chp20"))->setText(QStringLiteral("i"));
        w.window->findChild<QComboBox *>(QStringLiteral("lst_resFind"))->setCurrentIndex(1);
        QTest::mouseClick(w.window->findChild<QPushButton *>(QStringLiteral("bt_Search")), Qt::LeftButton);
        QCOMPARE(w.window->explorer()->choiceListKeys(),
            (QStringList { kFile + QStringLiteral("_tune2"), kFile + QStringLiteral("_tune1"), kFile + QStringLiteral("_tune3") }));
        QVERIFY(w.window->findChild<QLabel *>(QStringLiteral("lab_lstSet"))->text().endsWith(QStringLiteral(" (3) ")));

        // Closing the file takes its tunes out of the list.
        w.click(kFile);
        QVERIFY(w.trigger(QStringLiteral("mnu_closeFile")));
        QCOMPARE(list->topLevelItemCount(), 0);
    }

    // Yes saves the changed file, a new file that never changed is not asked about and is not
    // reopened, and everything of the session is written.
    void quitWritesTheSession()
    {
        Window w;
        const QString a = w.write(QStringLiteral("a.abc"));
        const QString b = w.write(QStringLiteral("b.abc"));
        w.open({ a });
        const QString kB = w.open({ b });
        w.trigger(QStringLiteral("newabc"));
        w.app().store().SetFlagModifFile(kB);
        QFile::remove(b);
        QFile(w.app().paths().cacheFolder() + QStringLiteral("/tmp.abc")).open(QIODevice::WriteOnly);
        w.ui().pushAnswer(Answer::Yes);
        QVERIFY(w.window->close());
        QVERIFY(!w.window->isVisible());

        const QStringList questions = w.ui().texts(ScriptedDialogs::Kind::Question);
        QCOMPARE(questions.size(), 1);
        QVERIFY(questions.first().startsWith(w.node(kB)->Text + CRLF + CRLF + w.msg("<fileModified>")));
        QVERIFY(QFile::exists(b));
        const IniFile &ini = w.ini();
        QCOMPARE(ini.get(keys::NbFiles), QStringLiteral("2"));
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF1"), {}), a);
        QCOMPARE(ini.getValue(QStringLiteral("OpenFiles"), QStringLiteral("OF2"), {}), b);
        QCOMPARE(ini.getValue(QStringLiteral("Recents"), QStringLiteral("R1"), {}), b);
        QCOMPARE(ini.get(keys::Width), QString::number(w.window->width()));
        QCOMPARE(ini.get(keys::PanelX),
            QString::number(w.window->findChild<QSplitter *>(QStringLiteral("lab_dragV"))->sizes().first()));
        QCOMPARE(ini.get(keys::TempListContents), QString());
        QVERIFY(!ini.get(keys::Version).isEmpty());
        QVERIFY(QDir(w.app().paths().cacheFolder()).isEmpty());
        QVERIFY(w.ui().queuesEmpty());
    }

    void quitCancelledKeepsEverything()
    {
        Window w;
        const QString kFile = w.openNew(QStringLiteral("a.abc"));
        w.app().store().SetFlagModifFile(kFile);
        w.ui().pushAnswer(Answer::Cancel);
        QVERIFY(w.trigger(QStringLiteral("mnu_Quitter")));
        QVERIFY(w.window->isVisible());
        QCOMPARE(w.ini().getValue(
                     QStringLiteral("OpenFiles"), QStringLiteral("nbFiles"), QStringLiteral("(none)")),
            QStringLiteral("(none)"));
        QCOMPARE(w.node(kFile)->Image, Pic::FileAbcM);
    }

    // The geometry and the zoom of the last run come back, and go out again at quit.
    void lastRunComesBackAndGoesOut()
    {
        test::TestEnv env;
        const IniFile &ini = env.app().ini();
        ini.set(keys::Width, QStringLiteral("700"));
        ini.set(keys::Height, QStringLiteral("520"));
        ini.set(keys::PanelX, QStringLiteral("260"));
        ini.set(keys::Zoom, QStringLiteral("120"));
        MainWindow window(env.app());
        window.MainLoad();
        window.show();
        QApplication::processEvents();
        QCOMPARE(window.width(), 700);
        QCOMPARE(window.findChild<QSplitter *>(QStringLiteral("lab_dragV"))->sizes().first(), 260);
        QVERIFY(window.close());
        QCOMPARE(ini.get(keys::Width), QStringLiteral("700"));
        QCOMPARE(ini.get(keys::PanelX), QStringLiteral("260"));
        QCOMPARE(ini.get(keys::Zoom), QStringLiteral("120"));
    }
};

FENWORK_TEST(TestMainWindow)
#include "tst_mainwindow.moc"
