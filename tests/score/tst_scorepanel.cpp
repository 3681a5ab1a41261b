#include "scoreworld.h"
#include "testmain.h"

#include "frame/strutil.h"
#include "app/widgets/mainwindow.h"
#include "score/widgets/scorepanel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <functional>

using namespace fenwork;
using namespace fenwork::test;

namespace {

// Dialogs that run a piece of code at the first event pump: a user acting while a refresh waits.
class PumpingDialogs : public ScriptedDialogs
{
public:
    std::function<void()> onPump;
    void processEvents() override
    {
        ScriptedDialogs::processEvents();
        if (onPump) {
            const auto action = std::move(onPump);
            onPump = nullptr;
            action();
        }
    }
};

struct PanelWorld : ScoreWorld
{
    PanelWorld()
    {
        env.app().selection().setTuneKey(tuneKey);
        env.app().selection().setFileKey(fileKey);
        panel.resize(400, 300);
    }
    QString tuneText() { return env.app().store().GetStringTune(tuneKey, false); }
    template <typename T> T *child(const char *name)
    {
        return panel.findChild<T *>(QString::fromLatin1(name));
    }
    QScrollBar *barH() { return child<QScrollBar>("scr_musH"); }
    QScrollBar *barV() { return child<QScrollBar>("scr_musV"); }

    ScorePanel panel { env.app() };
};

} // namespace

class TestScorePanel : public QObject
{
    Q_OBJECT

private slots:
    void tuneShowsPage()
    {
        SKIP_WITHOUT_SCORE_TOOLS();
        PanelWorld world;
        world.panel.showTune(world.tuneText());
        QCOMPARE(world.child<QLineEdit>("txt_page")->text(), QStringLiteral("1"));
        QVERIFY(world.panel.picture().width() > 800);
        QCOMPARE(world.panel.refreshCount(), 1);

        // The zoom is the resolution the page is drawn at.
        world.panel.setZoom(55);
        QVERIFY(qAbs(world.panel.picture().width() - 55 * 827 / 100) < 30);

        // A page that does not exist leaves the page box empty; the down arrow comes back to page 1.
        world.child<QToolButton>("upd_pageUp")->click();
        QVERIFY(world.child<QLineEdit>("txt_page")->text().isEmpty());
        world.child<QToolButton>("upd_pageDown")->click();
        QCOMPARE(world.child<QLineEdit>("txt_page")->text(), QStringLiteral("1"));
        // The arrows step from a typed page: 3, down, is page 2, which this tune has not.
        QTest::keyClicks(world.child<QLineEdit>("txt_page"), QStringLiteral("\b3"));
        world.child<QToolButton>("upd_pageDown")->click();
        QVERIFY(world.child<QLineEdit>("txt_page")->text().isEmpty());
    }

    // With the fit on, a page fills the panel's width without the horizontal bar, as the panel
    // narrows or widens; a zoom chosen on the slider ends the fit.
    void fitsWidth_data()
    {
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("second");
        QTest::newRow("widens") << 480 << 900;
        QTest::newRow("narrows") << 900 << 520;
    }

    void fitsWidth()
    {
        SKIP_WITHOUT_SCORE_TOOLS();
        QFETCH(int, first);
        QFETCH(int, second);
        PanelWorld world;
        world.env.app().ini().setBool(keys::ZoomFit, true);
        world.panel.loadSettings();
        world.panel.resize(first, 500);
        world.panel.show();
        world.panel.showTune(world.tuneText());
        const auto fits = [&world] {
            const int page = world.panel.picture().width();
            return world.barH()->maximum() == 0 && page > world.panel.width() * 3 / 4;
        };
        QTRY_VERIFY2(fits(), qPrintable(QString::number(world.panel.picture().width())));
        const int zoom = world.panel.zoom();
        world.panel.resize(second, 500);
        QTRY_VERIFY(world.panel.zoom() != zoom && fits());

        world.child<QSlider>("sl_Zoom")->triggerAction(QAbstractSlider::SliderPageStepAdd);
        QVERIFY(!world.panel.fitsWidth());
        QVERIFY(!world.env.app().ini().getBool(keys::ZoomFit));
    }

    void escapeKeepsThePicture()
    {
        SKIP_WITHOUT_SCORE_TOOLS();
        PanelWorld world;
        world.panel.showTune(world.tuneText());
        const QImage before = world.panel.picture();
        QVERIFY(!before.isNull());

        // An engraver that takes its time: Esc comes during the wait for it.
        const QString slow = world.env.writeFile(QStringLiteral("abcm2ps"), "#!/bin/sh\nexec sleep 30\n");
        QFile::setPermissions(slow, QFile::permissions(slow) | QFileDevice::ExeOwner);
        world.env.app().ini().set(keys::Tool2ps, slow);
        world.env.ui().setEscapePressed(true, 1);
        world.panel.requestRefresh(world.tuneText() + QStringLiteral("abc|\r\n"));
        QCOMPARE(world.panel.picture(), before);
        QCOMPARE(world.child<QLineEdit>("txt_page")->text(), QStringLiteral("1"));
        QVERIFY(world.env.ui().texts(ScriptedDialogs::Kind::Status).last().endsWith(kScoreEscaped));
    }

    void burstOfChangesCoalesces()
    {
        SKIP_WITHOUT_SCORE_TOOLS();
        PanelWorld world;
        PumpingDialogs dialogs;
        world.env.app().setDialogs(&dialogs);
        const QString text = world.tuneText();
        // Five changes arrive while the first refresh waits for its tools: one more refresh runs,
        // with the last text.
        dialogs.onPump = [&] {
            for (int i = 1; i <= 5; ++i)
                world.panel.requestRefresh(text + QStringLiteral("%change ") + QString::number(i) + CRLF);
        };
        world.panel.requestRefresh(text);
        world.env.app().setDialogs(&world.env.ui());
        QCOMPARE(world.panel.refreshCount(), 2);
        QVERIFY(readAll(world.cache(QStringLiteral("tmp.abc"))).contains(QStringLiteral("%change 5\r\n")));
        QCOMPARE(world.child<QLineEdit>("txt_page")->text(), QStringLiteral("1"));
    }

    // In the window the score shows what the text panel shows, or the blank page: never an
    // edit that was thrown away, nor a tune that has left the panel.
    void followsTheTextPanel_data()
    {
        QTest::addColumn<QString>("step");
        QTest::addColumn<bool>("asked"); // answered Yes
        QTest::addColumn<bool>("blank");
        QTest::newRow("edit cancelled by Esc") << "Esc" << true << false;
        QTest::newRow("edit cancelled by its button") << "cancel" << true << false;
        QTest::newRow("cancelled, another file opened") << "open" << true << true;
        QTest::newRow("file closed") << "mnu_closeFile" << false << true;
        QTest::newRow("tune to the trash") << "mnu_delTune0" << true << true;
        QTest::newRow("tune erased") << "mnu_delTune1" << true << true;
    }
    void followsTheTextPanel()
    {
        QFETCH(QString, step);
        QFETCH(bool, asked);
        QFETCH(bool, blank);
        SKIP_WITHOUT_SCORE_TOOLS();
        TestEnv env;
        // An edit session opens the note output: into a file, never a device.
        const EnvGuard audio("FENNELWORKS_AUDIO", "file:" + env.path(QStringLiteral("out.wav")).toUtf8());
        const std::unique_ptr<MainWindow> window = loadedMainWindow(env);
        ScorePanel *score = window->scorePanel();
        QImage mark(20, 30, QImage::Format_Grayscale8);
        mark.fill(128);
        const QString blankPath = env.writeFile(QStringLiteral("blank.png"), {});
        QVERIFY(mark.save(blankPath));
        score->setBlankPicturePath(blankPath);
        const QString kFile = window->openPath(env.writeFile(QStringLiteral("score.abc"), kScoreFile));
        window->SimulerNodeClick(kFile + QStringLiteral("_tune2"));
        QVERIFY(score->picture().width() > 100);

        auto *editor = window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC"));
        const auto trigger = [](QObject *parent, const QString &name) {
            QAction *action = parent->findChild<QAction *>(name);
            QVERIFY(action && action->isEnabled());
            action->trigger();
        };
        if (asked)
            env.ui().pushAnswer(UserDialogs::Answer::Yes);
        if (step == u"Esc" || step == u"cancel" || step == u"open") {
            QTest::keyClick(editor, Qt::Key_F5);
            editor->moveCursor(QTextCursor::End);
            QTest::keyClicks(editor, QStringLiteral(" zz|"));
            if (step == u"cancel")
                trigger(window->findChild<QToolBar *>(QStringLiteral("tb_edit")), step);
            else
                QTest::keyClick(editor, Qt::Key_Escape);
            QVERIFY(editor->isReadOnly());
            if (step == u"open")
                window->openPath(env.writeFile(QStringLiteral("other.abc"), "X:1\nT:Other\nK:D\nd4|\n"));
        } else {
            trigger(window.get(), step);
        }
        QApplication::processEvents();
        QVERIFY(env.ui().queuesEmpty());
        QCOMPARE(score->picture().size() == mark.size(), blank);
        if (!blank)
            QVERIFY(!readAll(env.app().paths().cacheFolder() + QStringLiteral("/tmp.abc")).contains(u"zz|"));
    }

    void tablatureChoice_data()
    {
        QTest::addColumn<bool>("ticked");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("extras"); // %F: the format file
        QTest::newRow("off") << false << 2 << QString();
        QTest::newRow("second tablature") << true << 2 << QStringLiteral(R"( -F "%F" -T2 )");
    }

    void tablatureChoice()
    {
        QFETCH(bool, ticked);
        QFETCH(int, row);
        QFETCH(QString, extras);
        PanelWorld world;
        const QString format = QStringLiteral(FENWORK_DATA_DIR "/fmt/whistle_new.fmt");
        world.env.app().ini().set(keys::FmtFile, format);
        world.env.app().selection().setTuneKey(QString());
        world.panel.loadSettings();
        auto *list = world.child<QComboBox>("lst_Tabs");
        QVERIFY(list->count() > 2);
        list->setCurrentIndex(row);
        world.child<QCheckBox>("chk_tabs")->setChecked(ticked);
        QCOMPARE(list->isEnabled(), ticked);
        QCOMPARE(world.env.app().scoreExtras, extras.replace(QStringLiteral("%F"), format));
    }
};

FENWORK_TEST(TestScorePanel)
#include "tst_scorepanel.moc"
