#include "scoreworld.h"
#include "testmain.h"

#include "frame/strutil.h"
#include "score/widgets/scorepanel.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QScrollBar>
#include <QSlider>
#include <QSplitter>
#include <QTest>
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
        env.app().currentTuneKey = tuneKey;
        env.app().currentFileKey = fileKey;
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
    void controlNames()
    {
        PanelWorld world;
        QCOMPARE(world.panel.objectName(), QStringLiteral("pic_Mus"));
        for (const char *name : { "img_Mus", "scr_musH", "scr_musV", "lab_MusTools", "sl_Zoom", "txt_page",
                 "upd_page", "chk_pauseScore", "bt_seeScore", "chk_tabs", "lst_Tabs", "img_fullScrn" })
            QVERIFY2(world.panel.findChild<QWidget *>(QString::fromLatin1(name)), name);
        QCOMPARE(world.child<QSlider>("sl_Zoom")->minimum(), 50);
        QCOMPARE(world.child<QSlider>("sl_Zoom")->maximum(), 300);
    }

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
    }

    void escapeKeepsThePicture()
    {
        SKIP_WITHOUT_SCORE_TOOLS();
        PanelWorld world;
        world.panel.showTune(world.tuneText());
        const QImage before = world.panel.picture();
        QVERIFY(!before.isNull());

        world.env.app().ini().set(keys::Tool2ps, world.env.path(QStringLiteral("gone/abcm2ps")));
        const test::EnvGuard noPath("PATH", "/nonexistent");
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

    void pauseHoldsRefreshes()
    {
        PanelWorld world;
        world.panel.setPauseVisible(true);
        auto *pause = world.child<QCheckBox>("chk_pauseScore");
        QVERIFY(!pause->isHidden());
        pause->setChecked(true);
        world.panel.requestRefresh(world.tuneText());
        QCOMPARE(world.panel.refreshCount(), 0);
        // The end of the edit session hides and clears the box.
        world.panel.setPauseVisible(false);
        QVERIFY(pause->isHidden());
        QVERIFY(!pause->isChecked());
    }

    void ghostscriptMissingGoesManual()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("abcm2ps")).isEmpty())
            QSKIP("abcm2ps is not installed");
        PanelWorld world;
        const test::EnvGuard missing("FENNELWORKS_GSLIB", "/nonexistent/libgs-missing.so.10");
        resetGhostscriptLibrary();
        world.panel.setPauseVisible(true);
        world.panel.showTune(world.tuneText());
        QVERIFY(!world.child<QToolButton>("bt_seeScore")->isHidden());
        QVERIFY(world.child<QCheckBox>("chk_pauseScore")->isHidden());
        QVERIFY(world.panel.isManualOnly());
        QCOMPARE(world.env.ui().messages().size(), 1);
        // The button tries again.
        world.child<QToolButton>("bt_seeScore")->click();
        QCOMPARE(world.env.ui().messages().size(), 2);
        resetGhostscriptLibrary();
    }

    void arrowKeysAndWheel_data()
    {
        QTest::addColumn<int>("key"); // 0: the wheel, downwards
        QTest::addColumn<int>("presses");
        QTest::addColumn<bool>("vertical");
        QTest::addColumn<QString>("expected"); // a number, "max" or "min"
        QTest::newRow("down once") << int(Qt::Key_Down) << 1 << true << QStringLiteral("150");
        QTest::newRow("down to the end") << int(Qt::Key_Down) << 200 << true << QStringLiteral("max");
        QTest::newRow("left at the start") << int(Qt::Key_Left) << 1 << false << QStringLiteral("min");
        QTest::newRow("wheel") << 0 << 1 << true << QStringLiteral("max");
    }

    void arrowKeysAndWheel()
    {
        QFETCH(int, key);
        QFETCH(int, presses);
        QFETCH(bool, vertical);
        QFETCH(QString, expected);
        PanelWorld world;
        // No tune: the blank page, larger than the panel, still scrolls.
        world.env.app().currentTuneKey.clear();
        world.panel.resize(300, 500);
        world.panel.show();
        world.panel.showTune(QString());
        QScrollBar *bar = vertical ? world.barV() : world.barH();
        QVERIFY(bar->maximum() > 400);
        QVERIFY(bar->maximum() < 1000);
        for (int i = 0; i < presses; ++i) {
            if (key == 0) {
                QWheelEvent wheel(QPointF(50, 50), QPointF(50, 50), QPoint(), QPoint(0, -120), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(
                    world.child<QWidget>("img_Mus")->parentWidget()->parentWidget(), &wheel);
            } else {
                QTest::keyClick(&world.panel, Qt::Key(key));
            }
        }
        const int want = expected == u"max" ? bar->maximum()
            : expected == u"min"            ? bar->minimum()
                                            : expected.toInt();
        QCOMPARE(bar->value(), want);
    }

    void fullPanel_data()
    {
        QTest::addColumn<bool>("saveZoom");
        QTest::addColumn<int>("fullZoom");
        QTest::newRow("a zoom for each size") << true << 130;
        QTest::newRow("one zoom") << false << 100;
    }

    void fullPanel()
    {
        QFETCH(bool, saveZoom);
        QFETCH(int, fullZoom);
        PanelWorld world;
        world.env.app().currentTuneKey.clear(); // blank pages: no tools needed
        world.env.app().ini().setBool(keys::SaveZoom, saveZoom);
        QMainWindow window;
        auto *splitter = new QSplitter(Qt::Vertical);
        splitter->addWidget(new QWidget);
        auto *panel = new ScorePanel(world.env.app());
        splitter->addWidget(panel);
        window.setCentralWidget(splitter);
        window.resize(800, 600);
        window.show();
        panel->setZoom(100);

        panel->findChild<QToolButton *>(QStringLiteral("img_fullScrn"))->click();
        QVERIFY(panel->isFullPanel());
        QCOMPARE(panel->parentWidget(), &window);
        QCOMPARE(panel->geometry(), splitter->geometry());
        QCOMPARE(panel->zoom(), fullZoom);
        QCOMPARE(world.env.app().ini().get(keys::Zoom), QStringLiteral("100"));

        panel->setZoom(fullZoom + 20);
        panel->findChild<QToolButton *>(QStringLiteral("img_fullScrn"))->click();
        QVERIFY(!panel->isFullPanel());
        QCOMPARE(panel->parentWidget(), splitter);
        QCOMPARE(splitter->indexOf(panel), 1);
        QCOMPARE(world.env.app().ini().get(keys::ZoomMax), QString::number(fullZoom + 20));
        QCOMPARE(panel->zoom(), saveZoom ? 100 : fullZoom + 20);
    }

    void tablatureChoice_data()
    {
        QTest::addColumn<bool>("ticked");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("extras"); // %F: the format file
        QTest::newRow("off") << false << 2 << QString();
        QTest::newRow("format only") << true << 0 << QStringLiteral(R"( -F "%F" )");
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
        world.env.app().currentTuneKey.clear();
        world.panel.loadSettings();
        auto *list = world.child<QComboBox>("lst_Tabs");
        QVERIFY(list->count() > 2);
        QCOMPARE(
            list->itemText(0), world.env.app().text(QStringLiteral("MainForm"), QStringLiteral("<noTabs>")));
        list->setCurrentIndex(row);
        world.child<QCheckBox>("chk_tabs")->setChecked(ticked);
        QCOMPARE(list->isEnabled(), ticked);
        QCOMPARE(world.env.app().scoreExtras, extras.replace(QStringLiteral("%F"), format));
    }
};

FENWORK_TEST(TestScorePanel)
#include "tst_scorepanel.moc"
