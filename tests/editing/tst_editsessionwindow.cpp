// The edit session in the main window, driven by keys: starting, typing, undo, the blank-line
// guard, validation into the tree, cancelling with and without changes, the locked editor's
// question, the recovery file, the header session and transposition from the tool bar.
#include "testenv.h"
#include "testmain.h"

#include "editing/editsession.h"
#include "editing/widgets/editcontroller.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/widgets/mainmenus.h"
#include "frame/widgets/mainwindow.h"
#include "store/tunestore.h"
#include "store/widgets/treeview.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <memory>

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
        window = test::loadedMainWindow(env);
        kFile = window->openPath(env.writeFile("reels.abc", kReels));
    }
    ~Window() { window.reset(); }

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
        QVERIFY(w.barAction("ok")->isVisible());
        QVERIFY(!w.barAction("abcedit")->isVisible());

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
        QVERIFY2(
            w.stored(1).endsWith(QStringLiteral("GABc d2B2|cBA\r\n%\r\nG4|\r\n")), qPrintable(w.stored(1)));
        QVERIFY(w.stored(2).contains(QStringLiteral("defg a2|")));
        QCOMPARE(w.editor()->toPlainText(),
            QString(w.stored(1)).replace(QStringLiteral("\r\n"), QStringLiteral("\n")).chopped(1));
        QVERIFY(w.ui().messages().isEmpty());
    }

    void validateWithoutX()
    {
        Window w;
        w.select(w.tuneKey(2));
        w.key(Qt::Key_F5);
        w.editor()->moveCursor(QTextCursor::Start);
        w.key(Qt::Key_Delete); // the "X" goes
        w.key(Qt::Key_F5);
        QCOMPARE(w.ui().messages(),
            QStringList { w.app().text(QStringLiteral("Msg"), QStringLiteral("<Xmissing>")) });
        QVERIFY(w.edit().isEditing());
        QVERIFY(w.stored(2).startsWith(QStringLiteral("X:2")));
    }

    void cancel_data()
    {
        QTest::addColumn<bool>("change");
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<bool>("ends");
        QTest::newRow("unchanged") << false << QList<int> {} << true;
        QTest::newRow("changed, Yes") << true << QList<int> { int(Answer::Yes) } << true;
        QTest::newRow("changed, No") << true << QList<int> { int(Answer::No) } << false;
        QTest::newRow("changed, Cancel") << true << QList<int> { int(Answer::Cancel) } << false;
    }
    void cancel()
    {
        QFETCH(bool, change);
        QFETCH(QList<int>, answers);
        QFETCH(bool, ends);
        Window w;
        w.select(w.tuneKey(2));
        const QString before = w.editor()->toPlainText();
        w.key(Qt::Key_F5);
        if (change) {
            w.moveToEnd();
            QTest::keyClicks(w.editor(), QStringLiteral("b2"));
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
        QTest::qWait(60);
        QVERIFY(!QFile::exists(recover));
    }

    void headerSession()
    {
        Window w;
        w.select(w.kFile + QStringLiteral("_hdrFile"));
        QVERIFY(w.app().currentTuneKey.isEmpty());
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

    void pasteIsOneChange()
    {
        Window w;
        w.select(w.tuneKey(2));
        w.key(Qt::Key_F5);
        w.moveToEnd();
        const QString before = w.editor()->toPlainText();
        QApplication::clipboard()->setText(QStringLiteral("A2|\r\nB2|"));
        w.key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(w.editor()->toPlainText(), before + QStringLiteral("A2|\nB2|"));
        QCOMPARE(
            w.window->findChild<QLabel *>(QStringLiteral("lab_numLigne"))->text(), QStringLiteral("5:4"));
        w.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(w.editor()->toPlainText(), before);
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

FENWORK_TEST(TestEditSessionWindow)
#include "tst_editsessionwindow.moc"
