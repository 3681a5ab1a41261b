// fenwork-cli chords: a tune with its chords on standard output, warnings on standard error.
#include "cliprocess.h"
#include "testmain.h"

#include <QTest>

using namespace fenwork::test;

class TestChordsCommand : public QObject
{
    Q_OBJECT

private slots:
    void chords_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("out");
        QTest::addColumn<bool>("warning");
        const QByteArray tune2 = "X:2\r\nT:b\r\nK:G\r\n";
        QTest::newRow("one a bar, tune by its X: number")
            << QStringList{"t.abc", "2"} << 0 << tune2 + "| \"Em\" G2 B2 c2 e2 |\r\n" << false;
        QTest::newRow("two a bar") << QStringList{"t.abc", "2", "--two"} << 0
                                   << tune2 + "| \"G\" G2 B2 \"C\" c2 e2 |\r\n" << false;
        QTest::newRow("key without chords") << QStringList{"t.abc", "3"} << 0 << QByteArray("X:3\r\nT:(untitled)\r\nK:None\r\nA B c d|\r\n")
                                            << true;
        QTest::newRow("no such tune") << QStringList{"t.abc", "9"} << 1 << QByteArray() << false;
    }
    void chords()
    {
        QFETCH(QStringList, arguments);
        CliProcess cli;
        arguments[0] = cli.write(QStringLiteral("t.abc"), "X:1\nT:a\nK:D\nABcd|\n\nX:2\nT:b\nK:G\n| G2 B2 c2 e2 |\n\n"
                                                          "X:3\nK:none\n\"G\"A B c d|\n");
        const CliRun run = cli.run(QStringList{QStringLiteral("chords")} + arguments);
        QTEST(run.exitCode, "exitCode");
        QTEST(run.out, "out");
        QFETCH(bool, warning);
        QCOMPARE(run.err.startsWith("Warning: "), warning);
    }
};
FENWORK_TEST(TestChordsCommand)

#include "tst_chordscommand.moc"
