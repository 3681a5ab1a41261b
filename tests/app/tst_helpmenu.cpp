// The help menu's rows, our help pages and the window-wide Alt+arrow keys.
#include "testenv.h"
#include "testmain.h"

#include "app/helplinks.h"
#include "app/widgets/helpwindow.h"
#include "app/widgets/mainwindow.h"
#include "store/widgets/treeview.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/version.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QLabel>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QUrl>

using namespace fenwork;

namespace {

// Catches what would go to the desktop's browser, mailer or file manager.
class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    UrlCatcher()
    {
        for (const char *scheme : { "file", "mailto", "http", "https" })
            QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), this, "open");
    }
    ~UrlCatcher() override
    {
        for (const char *scheme : { "file", "mailto", "http", "https" })
            QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
    }
    QList<QUrl> opened;
public slots:
    void open(const QUrl &url) { opened.append(url); }
};

} // namespace

class TestHelpMenu : public QObject
{
    Q_OBJECT

private slots:
    // A row that needs an address works once one is set, and is unavailable without.
    void rowsReachTheDesktop_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("contact");
        QTest::addColumn<QString>("expected"); // empty: the row is unavailable
        const QString subject = QStringLiteral("?subject=Fennelworks%20") + versionText();
        QTest::newRow("translate") << "mnu_hlp_item3" << "" << "" << "@lang";
        QTest::newRow("contact") << "mnu_hlp_item4" << "" << "tunes@example.org"
                                 << QStringLiteral("mailto:tunes@example.org") + subject;
        QTest::newRow("contact unset") << "mnu_hlp_item4" << "http://127.0.0.1:9" << "" << "";
        QTest::newRow("web site") << "mnu_hlp_item5" << "http://127.0.0.1:8123/" << ""
                                  << "http://127.0.0.1:8123/fenwk.php";
        QTest::newRow("bare host") << "mnu_hlp_item5" << "updates.example.org" << ""
                                   << "https://updates.example.org/fenwk.php";
        QTest::newRow("web site unset") << "mnu_hlp_item5" << "" << "x@example.org" << "";
        QTest::newRow("context help waits") << "mnu_hlp_item2" << "" << "" << "";
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
        UrlCatcher catcher;
        QAction *action = window->findChild<QAction *>(row);
        QVERIFY(action);
        QCOMPARE(action->isEnabled(), !expected.isEmpty());
        if (expected.isEmpty())
            return;
        action->trigger();
        QCOMPARE(catcher.opened.size(), 1);
        if (expected == u"@lang")
            QCOMPARE(catcher.opened.first(), QUrl::fromLocalFile(env.app().paths().inProgram(QStringLiteral("lang"))));
        else
            QCOMPARE(catcher.opened.first().toString(QUrl::FullyEncoded), expected);
    }

    // Every topic the program opens has its anchor, in each language's pages.
    void everyTopicHasItsAnchor_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << "English";
        QTest::newRow("French") << "Français";
    }
    void everyTopicHasItsAnchor()
    {
        QFETCH(QString, language);
        test::TestEnv env;
        QList<int> topics { 101, kTempoHelpTopic };
        for (int t = 103; t <= 130; ++t)
            topics << t;
        for (int t = 140; t <= 147; ++t)
            topics << t;
        for (int topic : std::as_const(topics)) {
            const QUrl url = helpUrl(env.app().paths(), language, topic);
            const QString page = test::readAll(url.toLocalFile());
            QVERIFY2(page.contains(QStringLiteral("id=\"%1\"").arg(url.fragment())), qPrintable(url.toString()));
        }
        QVERIFY(helpUrl(env.app().paths(), language).toLocalFile().contains(
            language == u"English" ? QStringLiteral("/help/en/") : QStringLiteral("/help/fr/")));
    }

    // Our window shows the page at its topic, and back returns to the page before.
    void helpWindowOpensAtTopic()
    {
        test::TestEnv env;
        auto window = test::loadedMainWindow(env);
        window->findChild<QAction *>(QStringLiteral("mnu_hlp_item1"))->trigger();
        auto *help = window->findChild<HelpWindow *>();
        QVERIFY(help && help->isVisible());
        QVERIFY(help->currentUrl().toLocalFile().endsWith(QStringLiteral("/index.html")));
        window->openHelp(124);
        QCOMPARE(help->currentUrl().fragment(), QStringLiteral("t124"));
        QVERIFY(help->currentUrl().toLocalFile().endsWith(QStringLiteral("/abc.html")));
        help->findChild<QAction *>(QStringLiteral("bt_back"))->trigger();
        QVERIFY(help->currentUrl().toLocalFile().endsWith(QStringLiteral("/index.html")));
        QCOMPARE(window->findChildren<HelpWindow *>().size(), 1);
    }

    void aboutShowsVersionAndContact()
    {
        test::TestEnv env;
        env.app().ini().set(keys::ContactAddress, QStringLiteral("tunes@example.org"));
        auto window = test::loadedMainWindow(env);
        QString version;
        QString contact;
        QTimer::singleShot(0, [&] {
            auto *about = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            QVERIFY(about && about->objectName() == u"f_about");
            version = about->findChild<QLabel *>(QStringLiteral("lab_version"))->text();
            contact = about->findChild<QLabel *>(QStringLiteral("lab_contact"))->text();
            about->accept();
        });
        window->findChild<QAction *>(QStringLiteral("mnu_hlp_item0"))->trigger();
        QCOMPARE(version, versionText());
        QVERIFY(contact.contains(QStringLiteral("tunes@example.org")));
    }

    // Alt with an arrow moves a player slider by 2 on release; the arrow alone does not.
    void altArrowsMoveSliders_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("alt");
        QTest::addColumn<QString>("slider");
        QTest::addColumn<int>("delta");
        QTest::newRow("alt left") << int(Qt::Key_Left) << true << "scr_Midi0" << -2;
        QTest::newRow("alt right") << int(Qt::Key_Right) << true << "scr_Midi0" << 2;
        QTest::newRow("alt up") << int(Qt::Key_Up) << true << "scr_Midi1" << 2;
        QTest::newRow("alt down") << int(Qt::Key_Down) << true << "scr_Midi1" << -2;
        QTest::newRow("plain right") << int(Qt::Key_Right) << false << "scr_Midi0" << 0;
    }
    void altArrowsMoveSliders()
    {
        QFETCH(int, key);
        QFETCH(bool, alt);
        QFETCH(QString, slider);
        QFETCH(int, delta);
        test::TestEnv env;
        auto window = test::loadedMainWindow(env);
        auto *moved = window->findChild<QSlider *>(slider);
        const int before = moved->value();
        QWidget *target = window->tree();
        target->setFocus();
        const Qt::KeyboardModifiers mods = alt ? Qt::AltModifier : Qt::NoModifier;
        QTest::keyPress(target, Qt::Key(key), mods);
        QCOMPARE(moved->value(), before);
        QTest::keyRelease(target, Qt::Key(key), mods);
        QCOMPARE(moved->value(), before + delta);
    }
};

FENWORK_TEST(TestHelpMenu)
#include "tst_helpmenu.moc"
