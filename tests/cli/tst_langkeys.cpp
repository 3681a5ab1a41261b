// fenwork-cli langkeys: the vocabulary, and the check of a language file against it.
#include "cliprocess.h"
#include "testenv.h"
#include "testmain.h"

#include <QDir>
#include <QTest>

using namespace fenwork;

class TestLangKeysCommand : public QObject
{
    Q_OBJECT

private slots:
    // Sections in their fixed order, each in one run, keys sorted, the families spelled out.
    void listsTheVocabulary()
    {
        const test::CliRun run = test::CliProcess().run({ QStringLiteral("langkeys") });
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = QString::fromUtf8(run.out).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.first(), QStringLiteral("Menus\t<abcHlp>"));
        QStringList sections;
        for (const QString &line : lines)
            if (const QString section = line.section(u'\t', 0, 0);
                sections.value(sections.size() - 1) != section)
                sections << section;
        QCOMPARE(sections.removeDuplicates(), 0);
        QCOMPARE(sections.mid(0, 4), (QStringList { "Menus", "MainForm", "Mainform", "TTText" }));
        for (const char *line : { "GM\t<gm127>", "MainForm\t<chp32>", "Options\t<dblClc3>", "Tips\t<1>" })
            QVERIFY2(lines.contains(QString::fromLatin1(line)), line);
    }

    void checksAFile_data()
    {
        QTest::addColumn<QByteArray>("file"); // empty: no such file
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<bool>("aboutListed"); // whether Menus <about> is among the missing
        QTest::newRow("no such file") << QByteArray() << 2 << false;
        QTest::newRow("one key empty") << QByteArray("[Menus]\n<about>=\n") << 1 << true;
        QTest::newRow("section and key case") << QByteArray("[menus]\n<ABOUT>=About\n") << 1 << false;
    }
    void checksAFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, exitCode);
        QFETCH(bool, aboutListed);
        // A program folder of its own, holding the English reference and the file checked.
        test::CliProcess cli;
        QDir().mkpath(cli.path(QStringLiteral("prog/lang")));
        QFile::copy(test::testDataDir() + QStringLiteral("/../data/lang/English.txt"),
            cli.path(QStringLiteral("prog/lang/English.txt")));
        if (!file.isEmpty())
            cli.write(QStringLiteral("prog/lang/Test.txt"), file);
        test::EnvGuard guard("FENNELWORKS_APPDIR", cli.path(QStringLiteral("prog")).toUtf8());
        const test::CliRun run
            = cli.run({ QStringLiteral("langkeys"), QStringLiteral("--check"), QStringLiteral("Test") });
        QCOMPARE(run.exitCode, exitCode);
        QCOMPARE(run.out.contains("Menus\t<about>\n"), aboutListed);
        QCOMPARE(run.out.isEmpty(), exitCode != 1);
    }
};

FENWORK_TEST(TestLangKeysCommand)
#include "tst_langkeys.moc"
