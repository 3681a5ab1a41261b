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
        world.env.app().currentTuneKey.clear();
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
