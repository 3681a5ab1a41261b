// The help menu's rows, our help pages and the window-wide Alt+arrow keys.
#include "testenv.h"
#include "testmain.h"

#include "app/helplinks.h"
#include "app/widgets/helpwindow.h"
#include "app/widgets/mainwindow.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/version.h"
#include "store/widgets/treeview.h"

#include <QAction>
#include <QDesktopServices>
#include <QSlider>
#include <QTest>

using namespace fenwork;

class TestHelpMenu : public QObject
{
    Q_OBJECT
public slots:
    void openUrl(const QUrl &url) { m_opened.append(url); }

private slots:
    void initTestCase()
    {
        for (const char *scheme : { "file", "mailto", "http", "https" })
            QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), this, "openUrl");
    }
    void cleanupTestCase()
    {
        for (const char *scheme : { "file", "mailto", "http", "https" })
            QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
    }

    // A row that needs an address works once one is set, and is unavailable without.
    void rowsReachTheDesktop_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("contact");
        QTest::addColumn<QString>("expected"); // empty: the row is unavailable
        // clang-format off
        QTest::newRow("translate") << "mnu_hlp_item3" << "" << "" << "@lang";
        QTest::newRow("contact") << "mnu_hlp_item4" << "" << "tunes@example.org" << "mailto:tunes@example.org?subject=Fennelworks%20" + versionText();
        QTest::newRow("contact unset") << "mnu_hlp_item4" << "http://127.0.0.1:9" << "" << "";
        QTest::newRow("web site") << "mnu_hlp_item5" << "http://127.0.0.1:8123/" << "" << "http://127.0.0.1:8123/fenwk.php";
        QTest::newRow("bare host") << "mnu_hlp_item5" << "example.org" << "" << "https://example.org/fenwk.php";
        QTest::newRow("web site unset") << "mnu_hlp_item5" << "" << "x@example.org" << "";
        QTest::newRow("version unset") << "mnu_hlp_item6" << "" << "x@example.org" << "";
        QTest::newRow("context help waits") << "mnu_hlp_item2" << "" << "" << "";
        // clang-format on
    }
    void rowsReachTheDesktop()
    {
        QFETCH(QString, row);
        QFETCH(QString, server);
        QFETCH(QString, contact);
        QFETCH(QString, expected);
        test::TestEnv env;
        env.app().ini().set(keys::UpdateServer, server);
        env.app().ini().set(keys::ContactAddress, contact);
        auto window = test::loadedMainWindow(env);
        m_opened.clear();
        QAction *action = window->findChild<QAction *>(row);
        QCOMPARE(action->isEnabled(), !expected.isEmpty());
        if (expected.isEmpty())
            return;
        action->trigger();
        if (expected == u"@lang")
            expected = QUrl::fromLocalFile(env.app().paths().inProgram(QStringLiteral("lang"))).toString();
        QCOMPARE(m_opened.value(0).toString(QUrl::FullyEncoded), expected);
    }

    // Every topic the program opens has its anchor, in each language's pages.
    void everyTopicHasItsAnchor_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("folder");
        QTest::newRow("English") << "English"
                                 << "/help/en/";
        QTest::newRow("French") << "Français"
                                << "/help/fr/";
    }
    void everyTopicHasItsAnchor()
    {
        QFETCH(QString, language);
        QFETCH(QString, folder);
        test::TestEnv env;
        QList<int> topics { 101, kTempoHelpTopic };
        for (int t = 103; t <= 147; ++t)
            if (t <= 130 || t >= 140)
                topics << t;
        for (int topic : std::as_const(topics)) {
            const QUrl url = helpUrl(env.app().paths(), language, topic);
            QVERIFY(url.toLocalFile().contains(folder));
            QVERIFY2(
                test::readAll(url.toLocalFile()).contains(QStringLiteral("id=\"%1\"").arg(url.fragment())),
                qPrintable(url.toString()));
        }
    }

    // Our window shows the page at its topic, and back returns to the page before.
    void helpWindowOpensAtTopic()
    {
        test::TestEnv env;
        auto window = test::loadedMainWindow(env);
        window->findChild<QAction *>(QStringLiteral("mnu_hlp_item1"))->trigger();
        auto *help = window->findChild<HelpWindow *>();
        QVERIFY(help && help->isVisible());
        window->openHelp(124);
        QVERIFY(help->currentUrl().toString().endsWith(QStringLiteral("/abc.html#t124")));
        help->findChild<QAction *>(QStringLiteral("bt_back"))->trigger();
        QVERIFY(help->currentUrl().toString().endsWith(QStringLiteral("/index.html")));
        QCOMPARE(window->findChildren<HelpWindow *>().size(), 1);
    }

    // Alt with an arrow moves a player slider by 2 on release; the arrow alone does not.
    void altArrowsMoveSliders_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("mods");
        QTest::addColumn<QString>("slider");
        QTest::addColumn<int>("delta");
        QTest::newRow("alt left") << int(Qt::Key_Left) << int(Qt::AltModifier) << "scr_Midi0" << -2;
        QTest::newRow("alt right") << int(Qt::Key_Right) << int(Qt::AltModifier) << "scr_Midi0" << 2;
        QTest::newRow("alt up") << int(Qt::Key_Up) << int(Qt::AltModifier) << "scr_Midi1" << 2;
        QTest::newRow("alt down") << int(Qt::Key_Down) << int(Qt::AltModifier) << "scr_Midi1" << -2;
        QTest::newRow("plain right") << int(Qt::Key_Right) << int(Qt::NoModifier) << "scr_Midi0" << 0;
    }
    void altArrowsMoveSliders()
    {
        QFETCH(int, key);
        QFETCH(int, mods);
        QFETCH(QString, slider);
        QFETCH(int, delta);
        test::TestEnv env;
        auto window = test::loadedMainWindow(env);
        auto *moved = window->findChild<QSlider *>(slider);
        const int before = moved->value();
        QTest::keyPress(window->tree(), Qt::Key(key), Qt::KeyboardModifiers(mods));
        QCOMPARE(moved->value(), before);
        QTest::keyRelease(window->tree(), Qt::Key(key), Qt::KeyboardModifiers(mods));
        QCOMPARE(moved->value(), before + delta);
    }

private:
    QList<QUrl> m_opened;
};

FENWORK_TEST(TestHelpMenu)
#include "tst_helpmenu.moc"
