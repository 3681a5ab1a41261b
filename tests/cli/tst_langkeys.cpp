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
    void listsSectionsInOrder()
    {
        test::CliProcess cli;
        const test::CliRun run = cli.run({ QStringLiteral("langkeys") });
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = QString::fromUtf8(run.out).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.first(), QStringLiteral("Menus\t<abcHlp>"));
        QVERIFY(lines.contains(QStringLiteral("GM\t<gm127>")));
        QVERIFY(lines.contains(QStringLiteral("MainForm\t<chp32>")));
        QVERIFY(lines.contains(QStringLiteral("Options\t<dblClc3>")));
        QStringList sections;
        for (const QString &line : lines)
            if (const QString section = line.section(u'\t', 0, 0); sections.isEmpty() || sections.last() != section)
                sections << section;
        QCOMPARE(sections.removeDuplicates(), 0); // each section comes in one run
        QCOMPARE(sections.mid(0, 4), (QStringList { "Menus", "MainForm", "Mainform", "TTText" }));
        QCOMPARE(sections.last(), QStringLiteral("TTT"));
    }

    void checksAFile_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("file"); // empty: no file of that name
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<bool>("aboutListed"); // whether Menus <about> is among the missing
        QTest::newRow("shipped English") << "English" << QByteArray("@") << 0 << false;
        QTest::newRow("no such file") << "Klingon" << QByteArray() << 2 << false;
        QTest::newRow("one key empty") << "Partial" << QByteArray("[Menus]\n<about>=\n") << 1 << true;
        QTest::newRow("section and key case") << "Cased" << QByteArray("[menus]\n<ABOUT>=About\n") << 1 << false;
    }
    void checksAFile()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, file);
        QFETCH(int, exitCode);
        QFETCH(bool, aboutListed);
        test::CliProcess cli;
        QByteArray appDir;
        if (file != "@") {
            // A program folder of its own, holding the English reference and the file checked.
            QDir().mkpath(cli.path(QStringLiteral("prog/lang")));
            QFile::copy(test::testDataDir() + QStringLiteral("/../data/lang/English.txt"),
                cli.path(QStringLiteral("prog/lang/English.txt")));
            if (!file.isEmpty())
                cli.write(QStringLiteral("prog/lang/") + name + QStringLiteral(".txt"), file);
            appDir = cli.path(QStringLiteral("prog")).toUtf8();
        }
        test::EnvGuard guard("FENNELWORKS_APPDIR", appDir.isEmpty() ? QByteArray() : appDir);
        const test::CliRun run = cli.run({ QStringLiteral("langkeys"), QStringLiteral("--check"), name });
        QCOMPARE(run.exitCode, exitCode);
        const QStringList lines = QString::fromUtf8(run.out).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.contains(QStringLiteral("Menus\t<about>")), aboutListed);
        QCOMPARE(lines.isEmpty(), exitCode != 1);
    }
};

FENWORK_TEST(TestLangKeysCommand)
#include "tst_langkeys.moc"
