// The edit session in the main window, driven by keys: starting, typing, undo, the blank-line
// guard, validation into the tree, cancelling with and without changes, the locked editor's
// question, the recovery file and a crash, quitting during a session or with a cut tune, the
// header session and transposition from the tool bar.
#include "testenv.h"
#include "testmain.h"

#include "editing/editsession.h"
#include "editing/widgets/editcontroller.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "app/widgets/mainmenus.h"
#include "app/widgets/mainwindow.h"
#include "playback/widgets/playerpanel.h"
#include "score/widgets/scorepanel.h"
#include "app/session.h"
#include "editing/recovery.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tuneops.h"
#include "store/tunestore.h"
#include "store/widgets/treemodel.h"
#include "store/widgets/treeview.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProcess>
#include <QScopeGuard>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <memory>

#include <csignal>

using namespace fenwork;
using Answer = UserDialogs::Answer;

namespace {

const QByteArray kReels = "%abc\n%%abc-alias Reels\nX:1\nT:First\nM:4/4\nL:1/8\nK:G\nGABc d2B2|\n\n"
                          "X:2\nT:Second\nK:D\ndefg a2|\n";

class Window
{
public:
    Window()
    {
        // The session opens the note output: it must sound into a file, never into a device.
        qputenv("FENNELWORKS_AUDIO", "file:" + env.path(QStringLiteral("out.wav")).toUtf8());
        window = test::loadedMainWindow(env);
        window->resize(1280, 800); // the size of a small laptop screen: the edit bar fits whole
        kFile = window->openPath(env.writeFile("reels.abc", kReels));
    }
    ~Window()
    {
        window.reset();
        qunsetenv("FENNELWORKS_AUDIO");
    }

    AppContext &app() { return env.app(); }
    ScriptedDialogs &ui() { return env.ui(); }
    EditController &edit() { return *window->editController(); }
    QPlainTextEdit *editor() { return window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC")); }
    QAction *barAction(const char *name)
    {
        return window->findChild<QToolBar *>(QStringLiteral("tb_edit"))
            ->findChild<QAction *>(QString::fromLatin1(name));
    }
    QString tuneKey(int n) { return kFile + QStringLiteral("_tune") + QString::number(n); }
    void select(const QString &key)
    {
        window->SimulerNodeClick(key);
        QApplication::processEvents();
    }
    void key(int key, Qt::KeyboardModifiers mods = {})
    {
        QTest::keyClick(editor(), Qt::Key(key), mods);
        QApplication::processEvents();
    }
    void moveToEnd() { editor()->moveCursor(QTextCursor::End); }
    QString stored(int n) { return app().store().GetStringTune(tuneKey(n), false); }
    bool shows(const char *name) { return window->findChild<QWidget *>(QString::fromLatin1(name))->isVisible(); }
    bool expanded(const QString &key)
    {
        TreeView *tree = window->tree();
        return tree->isExpanded(tree->treeModel()->indexOf(app().tree().find(key)));
    }
    bool windowClosedOff()
    {
        return !window->tree()->isEnabled()
            && !window->findChild<QToolBar *>(QStringLiteral("tb_main"))->isEnabled()
            && !window->menus()->menu(QStringLiteral("mnu_Fichier"))->menuAction()->isEnabled();
    }

    test::TestEnv env;
    std::unique_ptr<MainWindow> window;
    QString kFile;
};

} // namespace

class TestEditSessionWindow : public QObject
{
    Q_OBJECT
private slots:
    void wholeSessionByKeys()
    {
        Window w;
        w.select(w.tuneKey(1));
        QVERIFY(w.editor()->isReadOnly());
        QVERIFY(!w.windowClosedOff());

        w.key(Qt::Key_F5);
        QVERIFY(w.edit().isEditing());
        QVERIFY(!w.editor()->isReadOnly());
        QVERIFY(w.windowClosedOff());
        QVERIFY(w.shows("pic_Warning"));
        QVERIFY(w.expanded(w.tuneKey(1)));
        QVERIFY(!w.window->findChild<QToolButton *>(QStringLiteral("bt_playNextPrev1"))->isEnabled());

        w.moveToEnd();
        QTest::keyClicks(w.editor(), QStringLiteral("cBA|"));
        QVERIFY(w.editor()->toPlainText().endsWith(QStringLiteral("d2B2|cBA|")));
        w.key(Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(w.editor()->toPlainText().endsWith(QStringLiteral("d2B2|cBA")));
        QVERIFY(w.barAction("bt_undo")->isEnabled());
        w.moveToEnd();
        w.key(Qt::Key_Return);
        w.key(Qt::Key_Return); // on the empty line: it gets a "%" first
        QTest::keyClicks(w.editor(), QStringLiteral("G4|"));
        QVERIFY2(w.editor()->toPlainText().endsWith(QStringLiteral("cBA\n%\nG4|")),
            qPrintable(w.editor()->toPlainText()));

        w.key(Qt::Key_F5);
        QVERIFY(!w.edit().isEditing());
        QVERIFY(w.editor()->isReadOnly());
        QVERIFY(!w.windowClosedOff());
        QVERIFY(!w.shows("pic_Warning"));
        QVERIFY(w.window->findChild<QToolButton *>(QStringLiteral("bt_playNextPrev1"))->isEnabled());
        QVERIFY2(
            w.stored(1).endsWith(QStringLiteral("GABc d2B2|cBA\r\n%\r\nG4|\r\n")), qPrintable(w.stored(1)));
        QVERIFY(w.stored(2).contains(QStringLiteral("defg a2|")));
        QCOMPARE(w.editor()->toPlainText(),
            QString(w.stored(1)).replace(QStringLiteral("\r\n"), QStringLiteral("\n")).chopped(1));
        QVERIFY(w.ui().messages().isEmpty());
    }

    // The window's shortcuts that would leave the tune must not act while it is edited.
    void windowShortcutsWaitForTheSession()
    {
        Window w;
        w.select(w.tuneKey(1));
        w.key(Qt::Key_F5);
        for (const QKeySequence &keys : { QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W),
                 QKeySequence(QKeySequence::New), QKeySequence(QKeySequence::Open), QKeySequence(QKeySequence::Print) }) {
            QTest::keySequence(w.editor(), keys);
            QApplication::processEvents();
        }
        QVERIFY(w.edit().isEditing());
        QVERIFY(w.app().tree().find(w.kFile));
        // Ctrl+P is the editor's: it plays the tune instead of printing it.
        QTRY_VERIFY(w.window->findChild<PlayerPanel *>()->hasPerformance());
        for (const ScriptedDialogs::Shown &shown : w.ui().shown)
            QVERIFY2(shown.kind == ScriptedDialogs::Kind::Status, qPrintable(shown.text));
        QVERIFY(!w.ui().hadUnexpectedPrompts());
    }

    // The validate button's drop-down: the file on disk gets the text, and "validsave" goes on
    // editing the saved tune.
    void validateAndSave_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("editingAfter");
        QTest::newRow("validsave") << "validsave" << true;
        QTest::newRow("validsavequit") << "validsavequit" << false;
    }
    void validateAndSave()
    {
        QFETCH(QString, action);
        QFETCH(bool, editingAfter);
        Window w;
        w.select(w.tuneKey(2));
        w.key(Qt::Key_F5);
        w.moveToEnd();
        QTest::keyClicks(w.editor(), QStringLiteral("b2"));
        w.barAction(action.toLatin1().constData())->trigger();
        QApplication::processEvents();
        QCOMPARE(w.edit().isEditing(), editingAfter);
        QCOMPARE(w.editor()->isReadOnly(), !editingAfter);
        const QString saved = test::readAll(w.env.path(QStringLiteral("reels.abc")));
        QVERIFY2(saved.contains(QStringLiteral("defg a2|b2")), qPrintable(saved));
        QVERIFY(saved.contains(QStringLiteral("T:First")));
        QCOMPARE(w.app().tree().find(w.kFile)->Image, Pic::FileAbc);
    }

    // Keys that help typing: a bracket comes with its closing one (unless switched off), which a
    // typed closer steps over; Alt+M puts a numbered bar marker at the caret, on a line of its
    // own before music.
    void typingAids_data()
    {
        QTest::addColumn<QString>("closeBrackets");
        QTest::addColumn<bool>("lineStart");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("endsWith");
        QTest::newRow("bracket closed") << "1" << false << "[K:D" << "d2B2|[K:D]";
        QTest::newRow("switched off") << "0" << false << "[K:D" << "d2B2|[K:D";
        QTest::newRow("closer typed over") << "1" << false << "[K:G]A" << "d2B2|[K:G]A";
        QTest::newRow("nested closers typed over") << "1" << false << "{g[K:D]}A" << "d2B2|{g[K:D]}A";
        QTest::newRow("closer of its own") << "1" << false << "A]" << "d2B2|A]";
        QTest::newRow("bar marker") << "1" << false << "alt+M" << "d2B2|%%|2";
        QTest::newRow("bar marker before music") << "1" << true << "alt+M" << "K:G\n%%|1\nGABc d2B2|";
    }
    void typingAids()
    {
        QFETCH(QString, closeBrackets);
        QFETCH(bool, lineStart);
        QFETCH(QString, keys);
        QFETCH(QString, endsWith);
        Window w;
        w.app().ini().set(keys::CloseBrackets, closeBrackets);
        w.select(w.tuneKey(1));
        w.key(Qt::Key_F5);
        w.moveToEnd();
        if (lineStart)
            w.editor()->moveCursor(QTextCursor::StartOfBlock);
        if (keys == u"alt+M")
            w.key(Qt::Key_M, Qt::AltModifier);
        else
            QTest::keyClicks(w.editor(), keys);
        QVERIFY2(w.editor()->toPlainText().endsWith(endsWith), qPrintable(w.editor()->toPlainText()));
    }

    void useTemplate_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("expected");
        // Tune 2 is "X:2 T:Second K:D defg a2|"; its last line is selected before the choice.
        QTest::newRow("Yes replaces the text") << int(Answer::Yes) << "X:0\nT:\nM:6/8\nK:D";
        QTest::newRow("No puts it in place of the selection")
            << int(Answer::No) << "X:2\nT:Second\nK:D\nX:0\nT:\nM:6/8\nK:D";
        QTest::newRow("Cancel leaves the text") << int(Answer::Cancel) << "X:2\nT:Second\nK:D\ndefg a2|";
    }
    void useTemplate()
    {
        QFETCH(int, answer);
        QFETCH(QString, expected);
        Window w;
        QDir().mkpath(w.app().paths().userFolder() + QStringLiteral("/tmpl"));
        QFile jig(w.app().paths().userFolder() + QStringLiteral("/tmpl/Jig.txt"));
        QVERIFY(jig.open(QIODevice::WriteOnly));
        jig.write("  X:0\r\nT:\r\nM:6/8\r\nK:D\r\n");
        jig.close();
        w.select(w.tuneKey(2));
        w.key(Qt::Key_F5);
        auto *list = w.window->findChild<QComboBox *>(QStringLiteral("lst_Mdl"));
        QCOMPARE(list->count(), 2);
        QTextCursor cursor = w.editor()->textCursor();
        cursor.movePosition(QTextCursor::End);
        cursor.movePosition(QTextCursor::StartOfBlock, QTextCursor::KeepAnchor);
        w.editor()->setTextCursor(cursor);
        w.ui().pushAnswer(Answer(answer));
        w.edit().lst_Mdl_Click(0); // the "no choice" entry asks nothing
        w.edit().lst_Mdl_Click(1);
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question).size(), 1);
        QCOMPARE(w.editor()->toPlainText(), answer == int(Answer::Yes) ? QStringLiteral("  ") + expected : expected);
        QCOMPARE(list->currentIndex(), 0);
    }

    void saveTemplate_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("saved");
        QTest::newRow("the first free name") << "Template1" << true;
        QTest::newRow("a name of its own") << "Slide" << true;
        QTest::newRow("taken by a file of another extension") << "Reel" << false;
        QTest::newRow("taken by a template") << "Jig" << false;
    }
    void saveTemplate()
    {
        QFETCH(QString, name);
        QFETCH(bool, saved);
        Window w;
        const QString folder = w.app().paths().userFolder() + QStringLiteral("/tmpl");
        QDir().mkpath(folder);
        for (const char *file : { "/Reel.abc", "/Jig.txt" }) {
            QFile f(folder + QString::fromLatin1(file));
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        w.select(w.tuneKey(2));
        w.key(Qt::Key_F5);
        w.ui().pushInput(name);
        w.barAction("domodel")->trigger();
        const QString stem = name;
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Message).size(), saved ? 0 : 1);
        auto *list = w.window->findChild<QComboBox *>(QStringLiteral("lst_Mdl"));
        QCOMPARE(list->findText(stem) > 0, saved || stem == u"Jig");
        if (saved)
            QCOMPARE(test::readAll(folder + u'/' + stem + QStringLiteral(".txt")), QStringLiteral("X:2\nT:Second\nK:D\ndefg a2|"));
    }

    // F3 turns the code before the caret into its text; Alt+F3 stores a selection under a code.
    void autoInsertion()
    {
        Window w;
        w.select(w.tuneKey(1));
        w.key(Qt::Key_F5);
        w.moveToEnd();
        QTest::keyClicks(w.editor(), QStringLiteral("|A2"));
        QTextCursor cursor = w.editor()->textCursor();
        cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor, 2);
        w.editor()->setTextCursor(cursor);
        w.ui().pushInput(QStringLiteral("with blank")); // refused, asked again
        w.ui().pushInput(QStringLiteral(" a2"));
        w.key(Qt::Key_F3, Qt::AltModifier);
        QCOMPARE(w.ui().messages(), QStringList { w.app().text(QStringLiteral("Msg"), QStringLiteral("<spaceForbid>")) });

        w.moveToEnd();
        QTest::keyClicks(w.editor(), QStringLiteral(" a2"));
        w.key(Qt::Key_F3);
        QVERIFY2(w.editor()->toPlainText().endsWith(QStringLiteral("d2B2||A2 A2")), qPrintable(w.editor()->toPlainText()));
        QTest::keyClicks(w.editor(), QStringLiteral(" A2"));
        w.key(Qt::Key_F3); // codes are told apart by case: "A2" is none
        QCOMPARE(w.ui().messages().size(), 2);
        QVERIFY(w.editor()->toPlainText().endsWith(QStringLiteral("A2 A2")));
        QVERIFY(!w.editor()->textCursor().hasSelection());
    }

    void cancel_data()
    {
        QTest::addColumn<int>("earlierSessions");
        QTest::addColumn<QString>("change"); // "b2": typed; "b2<": typed and erased again
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<bool>("ends");
        QTest::newRow("unchanged") << 0 << "" << QList<int> {} << true;
        QTest::newRow("unchanged, third session") << 2 << "" << QList<int> {} << true;
        QTest::newRow("typed and erased") << 0 << "b2<" << QList<int> {} << true;
        QTest::newRow("changed, Yes") << 0 << "b2" << QList<int> { int(Answer::Yes) } << true;
        QTest::newRow("changed, No") << 0 << "b2" << QList<int> { int(Answer::No) } << false;
        QTest::newRow("changed, Cancel") << 0 << "b2" << QList<int> { int(Answer::Cancel) } << false;
        QTest::newRow("changed, second session, No") << 1 << "b2" << QList<int> { int(Answer::No) } << false;
    }
    void cancel()
    {
        QFETCH(int, earlierSessions);
        QFETCH(QString, change);
        QFETCH(QList<int>, answers);
        QFETCH(bool, ends);
        Window w;
        w.select(w.tuneKey(2));
        const QString before = w.editor()->toPlainText();
        for (int i = 0; i < earlierSessions; ++i) {
            w.key(Qt::Key_F5);
            w.key(Qt::Key_Escape);
        }
        QVERIFY(!w.edit().isEditing());
        w.key(Qt::Key_F5);
        w.moveToEnd();
        QTest::keyClicks(w.editor(), change.left(2));
        if (change.endsWith(u'<')) {
            w.key(Qt::Key_Backspace);
            w.key(Qt::Key_Backspace);
        }
        const QString edited = w.editor()->toPlainText();
        for (int answer : answers)
            w.ui().pushAnswer(Answer(answer));
        w.key(Qt::Key_Escape);
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question).size(), answers.size());
        QVERIFY(!w.ui().hadUnexpectedPrompts());
        QCOMPARE(w.edit().isEditing(), !ends);
        QCOMPARE(w.editor()->toPlainText(), ends ? before : edited);
        QCOMPARE(w.editor()->isReadOnly(), ends);
        QVERIFY(w.stored(2).contains(QStringLiteral("defg a2|\r\n")));
        QVERIFY(!w.stored(2).contains(QStringLiteral("b2")));
    }

    void lockedEditorAsks_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("editing");
        QTest::newRow("Yes starts a session") << int(Answer::Yes) << true;
        QTest::newRow("No leaves it locked") << int(Answer::No) << false;
    }
    void lockedEditorAsks()
    {
        QFETCH(int, answer);
        QFETCH(bool, editing);
        Window w;
        w.select(w.tuneKey(1));
        const QString before = w.editor()->toPlainText();
        w.ui().pushAnswer(Answer(answer));
        w.key(Qt::Key_A);
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question),
            QStringList { w.app().text(QStringLiteral("Msg"), QStringLiteral("<noedit>")) });
        QCOMPARE(w.edit().isEditing(), editing);
        QCOMPARE(w.editor()->toPlainText(), before); // the key itself is not typed
        // Moving the caret is no typing: no question.
        w.key(Qt::Key_Down);
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question).size(), 1);
    }

    void recoveryFileDuringSession()
    {
        Window w;
        w.select(w.tuneKey(1));
        w.key(Qt::Key_F5);
        const QString recover = w.app().paths().recoverFile();
        w.edit().session().recoveryTimer()->setInterval(20);
        w.edit().session().recoveryTimer()->start();
        w.moveToEnd();
        QTest::keyClicks(w.editor(), QStringLiteral("z"));
        QTRY_VERIFY(QFile::exists(recover));
        QTRY_VERIFY(test::readAll(recover).endsWith(QStringLiteral("d2B2|z")));
        w.key(Qt::Key_F5);
        QVERIFY(!QFile::exists(recover));
        // Nothing will write it again.
        QVERIFY(!w.edit().session().recoveryTimer()->isActive());
    }

    // Quitting must not silently drop the text being edited, nor a tune that was cut and never
    // pasted: both ask, and No keeps the program running.
    void quitAsks_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("asked");
        QTest::addColumn<bool>("quits");
        QTest::newRow("session, Yes") << "session" << int(Answer::Yes) << "<editCur>" << true;
        QTest::newRow("session, No") << "session" << int(Answer::No) << "<editCur>" << false;
        QTest::newRow("cut tune, Yes") << "cut" << int(Answer::Yes) << "<clipNotSaved>" << true;
        QTest::newRow("cut tune, No") << "cut" << int(Answer::No) << "<clipNotSaved>" << false;
        QTest::newRow("copied tune") << "copy" << int(Answer::Yes) << "" << true;
    }
    void quitAsks()
    {
        QFETCH(QString, situation);
        QFETCH(int, answer);
        QFETCH(QString, asked);
        QFETCH(bool, quits);
        Window w;
        w.select(w.tuneKey(1));
        if (situation == u"session") {
            w.key(Qt::Key_F5);
            w.edit().session().writeRecovery();
        } else if (situation == u"cut") {
            mnu_cutTune(w.app());
        } else {
            mnu_copyTune(w.app());
        }
        w.ui().clear();
        w.ui().pushAnswer(Answer(answer));
        w.ui().pushAnswer(Answer::No); // "save the changed file?" after a cut
        QCOMPARE(w.window->Form_Unload(), quits);
        const QStringList questions = w.ui().texts(ScriptedDialogs::Kind::Question);
        if (asked.isEmpty()) {
            QVERIFY(questions.isEmpty());
        } else {
            QVERIFY(!questions.isEmpty());
            QVERIFY2(questions.first().startsWith(w.app().text(QStringLiteral("Msg"), asked)),
                qPrintable(questions.first()));
            QVERIFY(questions.first().endsWith(w.app().text(QStringLiteral("Msg"), QStringLiteral("<quitConfirm>"))));
        }
        if (situation == u"session") {
            // Yes ends the run in order: nothing is left for a crash recovery at the next start.
            QCOMPARE(QFile::exists(w.app().paths().recoverFile()), !quits);
            QVERIFY(w.edit().isEditing());
        }
    }

    // Ended by the system (logout, kill): nothing is asked, the text being edited is kept for
    // the next start's recovery, and the changed file is not written behind the user's back.
    void terminationKeepsTheEditedText()
    {
        Window w;
        w.select(w.tuneKey(1));
        mnu_cutTune(w.app()); // a cut tune and a changed file would each ask a question
        w.select(w.tuneKey(2));
        w.key(Qt::Key_F5);
        w.moveToEnd();
        QTest::keyClicks(w.editor(), QStringLiteral("zq"));
        const QString path = w.env.path(QStringLiteral("reels.abc"));
        const QByteArray before = test::readBytes(path);
        w.ui().clear();
        w.window->quitWithoutQuestions();
        QVERIFY(!w.window->isVisible());
        QVERIFY(w.ui().texts(ScriptedDialogs::Kind::Question).isEmpty());
        QVERIFY(test::readAll(w.app().paths().recoverFile()).endsWith(QStringLiteral("zq")));
        QCOMPARE(test::readBytes(path), before);
    }

    // A killed process leaves its last recovery copy behind, and the next start offers it.
    void crashLeavesRecovery()
    {
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("FENWORK_TEST_CLASS"), QStringLiteral("EditCrashChild"));
        env.insert(QStringLiteral("FENWORK_CRASH_CHILD"), QStringLiteral("1"));
        child.setProcessEnvironment(env);
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForStarted());
        QString root;
        for (int i = 0; i < 600 && root.isEmpty(); ++i) {
            child.waitForReadyRead(100);
            while (child.canReadLine()) {
                const QString line = QString::fromUtf8(child.readLine()).trimmed();
                if (line.startsWith(QStringLiteral("READY ")))
                    root = line.mid(6);
            }
        }
        QVERIFY2(!root.isEmpty(), "the child never wrote its recovery copy");
        ::kill(pid_t(child.processId()), SIGKILL);
        QVERIFY(child.waitForFinished(10000));
        const auto removeRoot = qScopeGuard([&root] { QDir(root).removeRecursively(); });

        ScriptedDialogs ui;
        AppContext app(Paths(root, QStringLiteral(FENWORK_DATA_DIR)), &ui);
        app.buildStartupTexts();
        QVERIFY(QFile::exists(app.paths().recoverFile()));
        ui.pushAnswer(UserDialogs::Answer::Yes);
        const RecoveryOffer offer = offerRecovery(app);
        QCOMPARE(offer.open, RecoveryOffer::Open::InProgram);
        QCOMPARE(QFileInfo(offer.keptFile).absolutePath(), app.paths().inUser(QStringLiteral("recovered")));
        QVERIFY2(offer.keptFile.endsWith(QStringLiteral(" First.abc")), qPrintable(offer.keptFile));
        const QStringList asked = ui.texts(ScriptedDialogs::Kind::Question);
        QCOMPARE(asked.size(), 1);
        QVERIFY(asked.first().startsWith(app.text(QStringLiteral("Msg"), QStringLiteral("<recovTune1>"))));
        QVERIFY(asked.first().contains(offer.keptFile));
        QVERIFY(!QFile::exists(app.paths().recoverFile()));
        QCOMPARE(offerRecovery(app).keptFile, QString());

        // A normal quit empties the cache; the recovered text stays, and opens as a file.
        cleanScratchFiles(app.paths());
        QVERIFY2(test::readAll(offer.keptFile).endsWith(QStringLiteral("d2B2|zq")), qPrintable(offer.keptFile));
        createWorkspaceRoot(app);
        const QString kFile = app.store().FichierOuvrir(offer.keptFile, false, true, false);
        QVERIFY(!kFile.isEmpty());
        QVERIFY(app.store().GetStringFile(kFile, true, false).contains(QStringLiteral("d2B2|zq")));
    }

    void headerSession()
    {
        Window w;
        w.select(w.kFile + QStringLiteral("_hdrFile"));
        QVERIFY(w.app().selection().tuneKey().isEmpty());
        w.key(Qt::Key_F5);
        QVERIFY(w.edit().isEditing());
        QCOMPARE(w.edit().session().target(), EditSession::Target::Header);
        w.editor()->selectAll();
        QTest::keyClicks(w.editor(), QStringLiteral("%%scale 0.7"));
        w.key(Qt::Key_F5);
        QVERIFY(!w.edit().isEditing());
        const QString header = w.app().store().GetStringHdrFile(w.kFile, false);
        QVERIFY2(header.startsWith(QStringLiteral("%abc\r\n")), qPrintable(header));
        QVERIFY(header.contains(QStringLiteral("%%scale 0.7\r\n")));
    }

    void transposeFromBar()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("abc2abc")).isEmpty())
            QSKIP("abc2abc is not installed");
        Window w;
        w.select(w.tuneKey(1));
        w.key(Qt::Key_F5);
        w.window->findChild<QSpinBox *>(QStringLiteral("txt_unitTranspose"))->setValue(2);
        w.barAction("bt_Transpose1")->trigger();
        const QString moved = w.editor()->toPlainText();
        QVERIFY2(moved.contains(QStringLiteral("K:A")), qPrintable(moved));
        QVERIFY(moved.contains(QStringLiteral("T:First")));
        // Undo gives the text before the transposition back.
        w.barAction("bt_undo")->trigger();
        QVERIFY(w.editor()->toPlainText().contains(QStringLiteral("K:G")));
    }
};

// Run as a child process by crashLeavesRecovery: edits a tune until the session's own timer has
// written the recovery copy, says where, and waits to be killed.
class EditCrashChild : public QObject
{
    Q_OBJECT
private slots:
    void editUntilKilled()
    {
        if (qEnvironmentVariableIsEmpty("FENWORK_CRASH_CHILD"))
            QSKIP("run by crashLeavesRecovery only");
        auto *w = new Window; // never destroyed: the process is killed
        w->select(w->tuneKey(1));
        w->key(Qt::Key_F5);
        // The session's own timer, at a short interval.
        w->edit().session().recoveryTimer()->setInterval(20);
        w->edit().session().recoveryTimer()->start();
        w->moveToEnd();
        QTest::keyClicks(w->editor(), QStringLiteral("zq"));
        const QString recover = w->app().paths().recoverFile();
        QTRY_VERIFY_WITH_TIMEOUT(test::readAll(recover).endsWith(QStringLiteral("d2B2|zq")), 30000);
        QFile out;
        QVERIFY(out.open(stdout, QIODevice::WriteOnly));
        out.write("READY " + w->env.root().toUtf8() + "\n");
        out.flush();
        QTest::qWait(600000);
    }
};

FENWORK_TEST(TestEditSessionWindow)
FENWORK_TEST(EditCrashChild)
#include "tst_editsessionwindow.moc"
