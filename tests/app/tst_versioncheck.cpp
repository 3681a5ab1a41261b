// The version check against a real HTTP server on 127.0.0.1.
#include "testenv.h"
#include "testmain.h"

#include "app/versioncheck.h"
#include "frame/inifile.h"
#include "frame/settings.h"

#include <QDesktopServices>
#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace fenwork;
using Kind = ScriptedDialogs::Kind;

namespace {

int freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

} // namespace

class TestVersionCheck : public QObject
{
    Q_OBJECT
public slots:
    void openUrl(const QUrl &url) { m_opened.append(url); }

private slots:
    void initTestCase()
    {
        QDir().mkpath(m_served.filePath(QStringLiteral("inc")));
        m_port = freePort();
        m_server.start(QStringLiteral("python3"),
            { QStringLiteral("-m"), QStringLiteral("http.server"), QString::number(m_port), QStringLiteral("--bind"),
                QStringLiteral("127.0.0.1"), QStringLiteral("--directory"), m_served.path() });
        if (!m_server.waitForStarted())
            QSKIP("python3 is not there to serve the version file");
        // Ready once it takes a connection.
        for (int i = 0; i < 100; ++i) {
            QTcpSocket socket;
            socket.connectToHost(QHostAddress::LocalHost, quint16(m_port));
            if (socket.waitForConnected(100))
                break;
            QTest::qWait(50);
        }
        QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "openUrl");
    }
    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
        m_server.kill();
        m_server.waitForFinished();
    }

    void answers_data()
    {
        QTest::addColumn<QByteArray>("file"); // null: no file on the server (404)
        QTest::addColumn<QString>("current");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<QString>("shown"); // "ok", "fail", "offer <version>" or "" for nothing
        QTest::newRow("same") << QByteArray("[v]\nv=\"1.5.3\"\n") << "1.5.3" << false << "ok";
        QTest::newRow("more digits") << QByteArray("[v]\nv=\"1.5.10\"\n") << "1.5.3" << false << "offer 1.5.10";
        QTest::newRow("fewer digits") << QByteArray("[v]\nv=\"1.9.9\"\n") << "1.10.0" << false << "ok";
        QTest::newRow("blank ends it") << QByteArray("[v]\nv=\"2.0.1 released\"\n") << "1.5.3" << false
                                       << "offer 2.0.1";
        QTest::newRow("crlf") << QByteArray("[v]\r\nv=\"2.0.1\"\r\n") << "1.5.3" << false << "offer 2.0.1";
        QTest::newRow("no quote") << QByteArray("[v]\n1.6.0\n") << "1.5.3" << false << "offer 1.6.0";
        QTest::newRow("one line") << QByteArray("v=\"9.9.9\"") << "1.5.3" << false << "ok";
        QTest::newRow("404") << QByteArray() << "1.5.3" << false << "fail";
        QTest::newRow("silent, none newer") << QByteArray("[v]\nv=\"1.5.3\"\n") << "1.5.3" << true << "";
        QTest::newRow("silent, 404") << QByteArray() << "1.5.3" << true << "";
        QTest::newRow("silent, newer") << QByteArray("[v]\nv=\"1.6.0\"\n") << "1.5.3" << true << "offer 1.6.0";
    }
    void answers()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, current);
        QFETCH(bool, silent);
        QFETCH(QString, shown);
        QFile::remove(m_served.filePath(QStringLiteral("inc/fenwk.ver")));
        if (!file.isNull()) {
            QFile ver(m_served.filePath(QStringLiteral("inc/fenwk.ver")));
            QVERIFY(ver.open(QIODevice::WriteOnly));
            ver.write(file);
        }
        test::TestEnv env;
        env.app().ini().set(keys::UpdateServer, QStringLiteral("http://127.0.0.1:%1").arg(m_port));
        env.ui().pushAnswer(UserDialogs::Answer::Yes);
        m_opened.clear();
        const QStringList texts = run(env, current, silent);
        const auto msg = [&](const char *key) { return env.app().text(QStringLiteral("Msg"), QString::fromLatin1(key)); };
        if (shown.isEmpty()) {
            QVERIFY2(texts.isEmpty(), qPrintable(texts.join(u'|')));
        } else if (shown == u"ok") {
            QCOMPARE(texts, QStringList { msg("<chkOk>") + QStringLiteral("\r\n") + current });
        } else if (shown == u"fail") {
            QCOMPARE(texts, QStringList { msg("<chkFail>") });
        } else {
            const QString offered = shown.mid(6);
            QCOMPARE(texts.size(), 1);
            QCOMPARE(texts.first(), msg("<newVersion>") + QStringLiteral("\r\n\r\n") + msg("<currentVersion>")
                    + QStringLiteral("\t: ") + current + QStringLiteral("\r\n") + msg("<versionDispo>")
                    + QStringLiteral("\t: ") + offered + QStringLiteral("\r\n\r\n") + msg("<newVer2>"));
            QCOMPARE(m_opened, (QList<QUrl> { QUrl(QStringLiteral("http://127.0.0.1:%1/fenw2.php?ex=%2").arg(m_port).arg(current)) }));
        }
        QCOMPARE(QFile::exists(env.app().paths().cacheFolder() + QStringLiteral("/tmp.ver")), !file.isNull());
    }

    // No answer in time, nobody listening, no network, no server: a failure or nothing.
    void unreachable_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("shown");
        QTest::newRow("hanging server") << "hang" << "<chkFail>";
        QTest::newRow("closed port") << "closed" << "<chkFail>";
        QTest::newRow("disconnected") << "offline" << "<disconnected>";
        QTest::newRow("no server set") << "unset" << "";
    }
    void unreachable()
    {
        QFETCH(QString, how);
        QFETCH(QString, shown);
        test::TestEnv env;
        QTcpServer hanging;
        QList<QTcpSocket *> held;
        int port = freePort();
        if (how == u"hang") {
            QVERIFY(hanging.listen(QHostAddress::LocalHost));
            port = hanging.serverPort();
            connect(&hanging, &QTcpServer::newConnection, this, [&] { held << hanging.nextPendingConnection(); });
        }
        env.app().ini().set(keys::UpdateServer, how == u"unset" ? QString() : QStringLiteral("http://127.0.0.1:%1").arg(port));
        const QStringList texts = run(env, QStringLiteral("1.0.0"), false, how == u"offline");
        QCOMPARE(texts, shown.isEmpty() ? QStringList() : QStringList { env.app().text(QStringLiteral("Msg"), shown) });
        QCOMPARE(env.ui().busyDepth, 0);
    }

private:
    // Runs one check to its end; the texts shown, of every kind.
    QStringList run(test::TestEnv &env, const QString &current, bool silent, bool offline = false)
    {
        VersionCheck check(env.app());
        check.currentVersion = current;
        check.timeoutMs = 500;
        check.knownDisconnected = [offline] { return offline; };
        QSignalSpy finished(&check, &VersionCheck::finished);
        check.CheckVersion(silent);
        if (!finished.wait(15000))
            return { QStringLiteral("no end") };
        QStringList texts;
        for (const auto &shown : std::as_const(env.ui().shown))
            if (shown.kind == Kind::Message || shown.kind == Kind::Question)
                texts << shown.text;
        return texts;
    }

    QTemporaryDir m_served;
    QProcess m_server;
    int m_port = 0;
    QList<QUrl> m_opened;
};

FENWORK_TEST(TestVersionCheck)
#include "tst_versioncheck.moc"
