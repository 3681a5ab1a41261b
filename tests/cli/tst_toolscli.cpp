// The file tools of the batch companion: arguments, exit codes, what reaches OUT.
#include "cliprocess.h"
#include "testmain.h"

#include <QFileInfo>
#include <QTest>

using namespace fenwork;

class TestToolsCli : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!QFileInfo::exists(QStringLiteral(FENWORK_BINARY_DIR) + QStringLiteral("/fenwork-cli")))
            QSKIP("fenwork-cli is not built");
    }

    void commands_data()
    {
        QTest::addColumn<QStringList>("arguments"); // IN and OUT are put in front, but for analyse
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("inOut"); // what OUT holds, or what standard output or error says
        QTest::newRow("clean needs an option") << QStringList { "clean" } << 2 << QByteArray("option");
        QTest::newRow("clean, unknown option")
            << QStringList { "clean", "--nothing" } << 2 << QByteArray("--nothing");
        QTest::newRow("clean") << QStringList { "clean", "--comments", "--rolls" } << 0
                               << QByteArray("T:b\r\nK:D\r\nAB\r\n");
        QTest::newRow("field") << QStringList { "field", "--all", "K:A", "--from", "2" } << 0
                               << QByteArray("T:b\r\nK:D\r\n~AB % x\r\n\r\nX:2\r\nT:a\r\nK:A\r\n");
        QTest::newRow("field refused")
            << QStringList { "field", "--first", "Nonsense" } << 1 << QByteArray("A field line");
        QTest::newRow("field, no such tune")
            << QStringList { "field", "--add", "N:x", "--from", "9" } << 1 << QByteArray("No tune");
        QTest::newRow("reindex") << QStringList { "reindex", "41" } << 0 << QByteArray("X:42\r\nT:a\r\n");
        QTest::newRow("reindex from 0") << QStringList { "reindex", "0" } << 2 << QByteArray("first number");
        QTest::newRow("sort") << QStringList { "sort", "t:" } << 0
                              << QByteArray("X:2\r\nT:a\r\nK:G\r\nG\r\n\r\nX:1\r\nT:b");
        QTest::newRow("sort, bad key") << QStringList { "sort", "title" } << 2 << QByteArray("field codes");
        QTest::newRow("analyse") << QStringList { "analyse" } << 0 << QByteArray("can be typeset");
    }
    void commands()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, inOut);
        test::CliProcess cli;
        const QString in
            = cli.write(QStringLiteral("in.abc"), "X:1\nT:b\nK:D\n~AB % x\n\nX:2\nT:a\nK:G\nG\n");
        const QString out = cli.path(QStringLiteral("out.abc"));
        QStringList all = arguments.mid(0, 1) << in;
        if (arguments.first() != u"analyse")
            all << out;
        all << arguments.mid(1);
        const test::CliRun run = cli.run(all);
        QCOMPARE(run.exitCode, exitCode);
        QFile written(out);
        if (exitCode == 0 && written.open(QIODevice::ReadOnly))
            QVERIFY2(written.readAll().contains(inOut), run.err.constData());
        else
            QVERIFY2((run.out + run.err).contains(inOut), run.err.constData());
        if (exitCode != 0)
            QVERIFY(!QFileInfo::exists(out));
        // IN is only read when the result goes elsewhere: its folder is left as it was.
        QVERIFY(!QFileInfo::exists(in + QStringLiteral(".BAK")));
    }
};

FENWORK_TEST(TestToolsCli)
#include "tst_toolscli.moc"
