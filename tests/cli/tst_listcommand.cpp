// fenwork-cli list2abc and set, as a user runs them: output, messages and exit codes, and every
// corpus file through the list's ABC file.
#include "cliprocess.h"
#include "testenv.h"
#include "testmain.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QTest>

using namespace fenwork;

namespace {

using Cli = test::CliProcess;

const QByteArray kTunes
    = "X:7\nT:Seven\nK:D\n|:abc:|\n\nX:3\nT:Three\nK:G\n|:def:|\n\nX:3\nT:Other three\nK:A\nfed|\n";

// A file's tunes without their X: lines, blank lines and what stands before the first tune.
QStringList tuneLines(const QByteArray &text)
{
    QStringList lines;
    bool inTunes = false;
    for (const QString &line : QString::fromUtf8(text).split(QStringLiteral("\r\n"))) {
        inTunes = inTunes || line.startsWith(u"X:");
        if (inTunes && !line.isEmpty() && !line.startsWith(u"X:"))
            lines.append(line);
    }
    return lines;
}

} // namespace

class TestListCommand : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (!QFileInfo::exists(QStringLiteral(FENWORK_BINARY_DIR "/fenwork-cli")))
            QSKIP("fenwork-cli is not built");
    }

    // "@" stands for the file written by the test, "!" for OUT.
    void commands_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("out"); // what standard output holds
        QTest::addColumn<QString>("err"); // what standard error holds
        QTest::newRow("list in the order given, numbered from 1")
            << QStringList { "list2abc", "-", "@#3", "@:7@2", "@#1" } << 0
            << "X:1\r\nT:Other three\r\nK:A\r\nfed|\r\n\r\nX:2\r\nT:Seven"
            << "";
        QTest::newRow("X: finds the first tune of that number")
            << QStringList { "list2abc", "-", "@:3" } << 0 << "X:1\r\nT:Three\r\n"
            << "";
        QTest::newRow("OUT is one of the files") << QStringList { "list2abc", "@", "@#1" } << 1 << ""
                                                 << "t.abc";
        QTest::newRow("no such tune") << QStringList { "list2abc", "-", "@:9" } << 1 << ""
                                      << "no tune";
        QTest::newRow("no reference") << QStringList { "list2abc", "-", "@" } << 2 << ""
                                      << "FILE:X";
        QTest::newRow("repetitions 0") << QStringList { "list2abc", "-", "@#1@0" } << 2 << ""
                                       << "FILE:X";
        QTest::newRow("a set, its caption")
            << QStringList { "set", "@", "!", "@#1@2", "@#3" } << 0 << "[4] Set of tunes\n"
            << "repeat";
        QTest::newRow("a set of one tune named twice")
            << QStringList { "set", "@", "!", "@#1", "@:7" } << 2 << ""
            << "two";
    }
    void commands()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, out);
        QFETCH(QString, err);
        Cli cli;
        const QString file = cli.write(QStringLiteral("t.abc"), kTunes);
        for (QString &argument : arguments) {
            if (argument.startsWith(u'@'))
                argument.replace(0, 1, file);
            if (argument == u"!")
                argument = cli.path(QStringLiteral("out.abc"));
        }
        const test::CliRun run = cli.run(arguments);
        QCOMPARE(run.exitCode, exitCode);
        QVERIFY2(QString::fromUtf8(run.out).contains(out), run.out.constData());
        QVERIFY2(QString::fromUtf8(run.err).contains(err), run.err.constData());
        if (exitCode == 0 && arguments.first() == u"set") {
            const QString saved = test::readAll(cli.path(QStringLiteral("out.abc")));
            QVERIFY2(saved.contains(QStringLiteral("P:(A)2(B)1\r\n")), qPrintable(saved));
        }
    }

    // Every tune of every corpus file comes out of the list's file as a save writes it. The files
    // are read from copies: normalize leaves a backup copy beside what it opens.
    void corpusThroughTheList()
    {
        const QString corpus = test::corpusDir();
        if (corpus.isEmpty())
            QSKIP("the corpus folder ../shared/corpus is absent");
        Cli cli;
        int files = 0;
        QDirIterator it(corpus, { QStringLiteral("*.abc") }, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = cli.write(QStringLiteral("corpus.abc"), test::readBytes(it.next()));
            const test::CliRun normal = cli.run({ QStringLiteral("normalize"), path });
            QCOMPARE(normal.exitCode, 0);
            const int count = int(QString::fromUtf8(normal.out).count(QStringLiteral("\r\nX:")));
            if (count == 0)
                continue;
            QStringList arguments { QStringLiteral("list2abc"), QStringLiteral("-") };
            for (int n = 1; n <= count; ++n)
                arguments.append(path + QStringLiteral("#%1").arg(n));
            const test::CliRun listed = cli.run(arguments);
            QVERIFY2(listed.exitCode == 0, qPrintable(it.filePath()));
            QVERIFY2(tuneLines(listed.out) == tuneLines(normal.out), qPrintable(it.filePath()));
            ++files;
        }
        QVERIFY(files > 0);
    }
};

FENWORK_TEST(TestListCommand)
#include "tst_listcommand.moc"
