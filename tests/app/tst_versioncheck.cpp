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

using namespace fenwork;

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
            { "-m", "http.server", QString::number(m_port), "--bind", "127.0.0.1", "--directory",
                m_served.path() });
        if (!m_server.waitForStarted())
            QSKIP("python3 is not there to serve the version file");
        const auto listening = [this] {
            QTcpSocket socket;
            socket.connectToHost(QHostAddress::LocalHost, quint16(m_port));
            return socket.waitForConnected(100);
        };
        QTRY_VERIFY_WITH_TIMEOUT(listening(), 10000);
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
        // The file served, or how the server fails: "@404", "@hang" (takes the connection and never
        // answers), "@closed" (nobody listens), "@offline" (the system knows it has no network),
        // "@unset" (no server set).
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("current");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<QString>("shown"); // a key of Msg, "offer <version>", or nothing
        QTest::newRow("same") << QByteArray("[v]\nv=\"1.5.3\"\n") << "1.5.3" << false << "<chkOk>";
        QTest::newRow("more digits") << QByteArray("[v]\nv=\"1.5.10\"\n") << "1.5.3" << false
                                     << "offer 1.5.10";
        QTest::newRow("fewer digits") << QByteArray("[v]\nv=\"1.9.9\"\n") << "1.10.0" << false << "<chkOk>";
        QTest::newRow("blank ends it")
            << QByteArray("[v]\nv=\"2.0.1 beta\"\n") << "1.5.3" << false << "offer 2.0.1";
        QTest::newRow("crlf") << QByteArray("[v]\r\nv=\"2.0.1\"\r\n") << "1.5.3" << false << "offer 2.0.1";
        QTest::newRow("no quote") << QByteArray("[v]\n1.6.0\n") << "1.5.3" << false << "offer 1.6.0";
        QTest::newRow("one line") << QByteArray("v=\"9.9.9\"") << "1.5.3" << false << "<chkOk>";
        QTest::newRow("404") << QByteArray("@404") << "1.5.3" << false << "<chkFail>";
        QTest::newRow("hanging server") << QByteArray("@hang") << "1.5.3" << false << "<chkFail>";
        QTest::newRow("closed port") << QByteArray("@closed") << "1.5.3" << false << "<chkFail>";
        QTest::newRow("disconnected") << QByteArray("@offline") << "1.5.3" << false << "<disconnected>";
        QTest::newRow("no server") << QByteArray("@unset") << "1.5.3" << false << "";
        QTest::newRow("silent, none newer") << QByteArray("[v]\nv=\"1.5.3\"\n") << "1.5.3" << true << "";
        QTest::newRow("silent, 404") << QByteArray("@404") << "1.5.3" << true << "";
        QTest::newRow("silent, newer")
            << QByteArray("[v]\nv=\"1.6.0\"\n") << "1.5.3" << true << "offer 1.6.0";
    }
    void answers()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, current);
        QFETCH(bool, silent);
        QFETCH(QString, shown);
        const bool served = !file.startsWith('@');
        QFile ver(m_served.filePath(QStringLiteral("inc/fenwk.ver")));
        ver.remove();
        if (served)
            QVERIFY(ver.open(QIODevice::WriteOnly) && ver.write(file) == file.size());
        ver.close();
        QTcpServer hanging;
        QList<QTcpSocket *> held;
        int port = file == "@closed" ? freePort() : m_port;
        if (file == "@hang") {
            QVERIFY(hanging.listen(QHostAddress::LocalHost));
            port = hanging.serverPort();
            connect(
                &hanging, &QTcpServer::newConnection, this, [&] { held << hanging.nextPendingConnection(); });
        }
        test::TestEnv env;
        env.app().ini().set(keys::UpdateServer,
            file == "@unset" ? QString() : QStringLiteral("http://127.0.0.1:%1").arg(port));
        env.ui().pushAnswer(UserDialogs::Answer::Yes);
        m_opened.clear();

        VersionCheck check(env.app());
        check.currentVersion = current;
        check.timeoutMs = 500;
        check.knownDisconnected = [&] { return file == "@offline"; };
        QSignalSpy finished(&check, &VersionCheck::finished);
        check.CheckVersion(silent);
        QVERIFY(finished.wait(15000));

        QStringList texts;
        for (const auto &one : std::as_const(env.ui().shown))
            if (one.kind == ScriptedDialogs::Kind::Message || one.kind == ScriptedDialogs::Kind::Question)
                texts << one.text;
        const auto msg = [&](const QString &key) { return env.app().text(QStringLiteral("Msg"), key); };
        QStringList expected;
        if (shown == u"<chkOk>")
            expected << msg(shown) + QStringLiteral("\r\n") + current;
        else if (shown.startsWith(u'<'))
            expected << msg(shown);
        else if (!shown.isEmpty())
            expected << msg(QStringLiteral("<newVersion>")) + "\r\n\r\n"
                    + msg(QStringLiteral("<currentVersion>")) + "\t: " + current + "\r\n"
                    + msg(QStringLiteral("<versionDispo>")) + "\t: " + shown.mid(6) + "\r\n\r\n"
                    + msg(QStringLiteral("<newVer2>"));
        QCOMPARE(texts, expected);
        // Yes to the offer opens the download page.
        QCOMPARE(m_opened.size(), shown.startsWith(u"offer") ? 1 : 0);
        if (!m_opened.isEmpty())
            QCOMPARE(m_opened.first(),
                QUrl(QStringLiteral("http://127.0.0.1:%1/fenw2.php?ex=").arg(port) + current));
        QCOMPARE(QFile::exists(env.app().paths().cacheFolder() + QStringLiteral("/tmp.ver")), served);
        QCOMPARE(env.ui().busyDepth, 0);
    }

private:
    QTemporaryDir m_served;
    QProcess m_server;
    int m_port = 0;
    QList<QUrl> m_opened;
};

FENWORK_TEST(TestVersionCheck)
#include "tst_versioncheck.moc"
