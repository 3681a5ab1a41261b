// The batch companion as a user runs it: a separate process, its output, its exit codes.
#include "cliprocess.h"
#include "testenv.h"
#include "testmain.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

using namespace fenwork;

namespace {

using Cli = test::CliProcess;
using Run = test::CliRun;

// The creator line holds the version and the date: compared as a mark.
QByteArray maskCreator(QByteArray text)
{
    static const QRegularExpression creator(QStringLiteral("%%abc-creator Fennelworks [^\\r\\n]*"));
    return QString::fromUtf8(text).replace(creator, QStringLiteral("@CREATOR@")).toUtf8();
}

const QByteArray kInput
    = "  X:1\nT:One\nK:g\n| 1 abc::\ndef|\n\nX:2\nT:Two\nK:D\nfed|\nX:2\nT:Three\nK:D\nFED|\n";
const QByteArray kNormalized = "%abc\r\n%%abc-alias none\r\n@CREATOR@\r\n\r\n"
                               "X:1\r\nT:One\r\nK:G\r\n|1 abc:|\r\n|:def|\r\n\r\n"
                               "X:2\r\nT:Two\r\nK:D\r\nfed|\r\n\r\n"
                               "X:2\r\nT:Three\r\nK:D\r\nFED|\r\n\r\n\r\n";

} // namespace

class TestCli : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!QFileInfo::exists(QStringLiteral(FENWORK_BINARY_DIR) + QStringLiteral("/fenwork-cli")))
            QSKIP("fenwork-cli is not built");
    }

    // To standard output, to another file or over the input; normalising again changes nothing.
    void normalize_data()
    {
        QTest::addColumn<QString>("target"); // "" standard output, "in" the input itself
        QTest::newRow("standard output") << "";
        QTest::newRow("another file") << "out.abc";
        QTest::newRow("over the input") << "in";
    }
    void normalize()
    {
        QFETCH(QString, target);
        Cli cli;
        const QString in = cli.write(QStringLiteral("t.abc"), kInput);
        const QString out = target.isEmpty() ? QString() : target == u"in" ? in : cli.path(target);
        QStringList arguments { QStringLiteral("normalize"), in };
        if (!out.isEmpty())
            arguments.append(out);
        const Run run = cli.run(arguments);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QByteArray());
        const QByteArray written = out.isEmpty() ? run.out : test::readBytes(out);
        QCOMPARE(maskCreator(written), kNormalized);
        // Opened as the program opens: the backup holds the file as it was.
        QCOMPARE(test::readBytes(in + QStringLiteral(".BAK")), kInput);
        if (out.isEmpty()) {
            QCOMPARE(test::readBytes(in), kInput);
            return;
        }
        QCOMPARE(run.out, QByteArray());
        const Run again = cli.run({ QStringLiteral("normalize"), out });
        QCOMPARE(again.out, test::readBytes(out));
    }

    void treeFormat()
    {
        Cli cli;
        const QString in = cli.write(QStringLiteral("t.abc"), kInput);
        const Run run = cli.run({ QStringLiteral("tree"), in });
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = QString::fromUtf8(run.out).split(u'\n', Qt::SkipEmptyParts);
        static const QRegularExpression shape(QStringLiteral("^(  )*_file1[^\\t ]*\\t[a-z]+\\t[^\\t]*$"));
        for (const QString &line : lines)
            QVERIFY2(shape.match(line).hasMatch(), qPrintable(line));
        QCOMPARE(lines.first(), QStringLiteral("_file1\tfileabc\t[t.abc]"));
        QVERIFY(lines.contains(QStringLiteral("    _file1_hdrFile_lgabc\trem\t%abc")));
        QVERIFY(lines.contains(QStringLiteral("    _file1_tune1\ttune\t[1]  One")));
        // Tree order: the header's lines before the body, the tunes in file order.
        QVERIFY(lines.indexOf(QStringLiteral("    _file1_hdrFile_lgabc\trem\t%abc"))
            < lines.indexOf(QStringLiteral("    _file1_tune1\ttune\t[1]  One")));
        QVERIFY(lines.last().startsWith(QStringLiteral("        _file1_tune3_bdyTune_lg3")));
    }

    void dupxCount_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("doubled") << kInput << QByteArray("[2]  Two\n[2]  Three\n2\n");
        QTest::newRow("none") << QByteArray("X:1\nK:C\nC|\nX:2\nK:C\nD|\n") << QByteArray("0\n");
        QTest::newRow("case of letters")
            << QByteArray("X:a\nT:A\nK:C\nC|\nX:A\nT:B\nK:C\nD|\n") << QByteArray("[a]  A\n[A]  B\n2\n");
    }
    void dupxCount()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, expected);
        Cli cli;
        const Run run = cli.run({ QStringLiteral("dupx"), cli.write(QStringLiteral("d.abc"), input) });
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, expected);
    }

    void failures_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input"); // written as in/f.abc when not empty
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("stderrHolds");
        QTest::newRow("missing file")
            << QStringList { "normalize", "@/missing.abc" } << QByteArray() << 1 << "Context: FichierOuvrir";
        QTest::newRow("blank file") << QStringList { "tree", "@/f.abc" } << QByteArray("    ") << 1 << "";
        QTest::newRow("two alias lines") << QStringList { "normalize", "@/f.abc" }
                                         << QByteArray("%%abc-alias A\n%%abc-alias B\nX:1\nK:C\nC|\n") << 1
                                         << "Context: FichierOuvrir\n\nkFile is empty";
        QTest::newRow("unwritable output")
            << QStringList { "normalize", "@/f.abc", "@/no/such/folder/out.abc" }
            << QByteArray("X:1\nK:C\nC|\n") << 1 << "cannot write";
        QTest::newRow("unknown command") << QStringList { "frobnicate" } << QByteArray() << 2 << "--help";
        QTest::newRow("missing argument") << QStringList { "dupx" } << QByteArray() << 2 << "dupx";
    }
    void failures()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        QFETCH(int, exitCode);
        QFETCH(QString, stderrHolds);
        Cli cli;
        if (!input.isEmpty())
            cli.write(QStringLiteral("f.abc"), input);
        for (QString &argument : arguments)
            argument.replace(QStringLiteral("@/"), cli.path(QStringLiteral("x")).chopped(1));
        const Run run = cli.run(arguments);
        QCOMPARE(run.exitCode, exitCode);
        QVERIFY2(QString::fromUtf8(run.err).contains(stderrHolds), run.err.constData());
        QVERIFY(!run.err.isEmpty());
        QCOMPARE(run.out, QByteArray());
    }

    // Commands that only read leave the file and its backup as they were.
    void readingLeavesBackup_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("tree") << QStringList{ "tree" };
        QTest::newRow("dupx") << QStringList{ "dupx" };
        QTest::newRow("find") << QStringList{ "find", "--field", "T", "One" };
        QTest::newRow("render") << QStringList{ "render", "@", "9", "out.wav" };
    }
    void readingLeavesBackup()
    {
        QFETCH(QStringList, arguments);
        Cli cli;
        const QString in = cli.write(QStringLiteral("t.abc"), kInput);
        const QString bak = cli.write(QStringLiteral("t.abc.BAK"), "the user's own backup");
        if (arguments.contains(QStringLiteral("@")))
            arguments.replace(arguments.indexOf(QStringLiteral("@")), in);
        else
            arguments.insert(1, in);
        cli.run(arguments);
        QCOMPARE(test::readBytes(bak), QByteArray("the user's own backup"));
        QCOMPARE(test::readBytes(in), kInput);
    }

};

FENWORK_TEST(TestCli)
#include "tst_cli.moc"
