// "fenwork-cli find", called as a function: the batch companion's source is compiled in here,
// since it is no part of the core library.
#include "testenv.h"
#include "testmain.h"

#include "cli/findcommand.cpp"

#include <QTest>
#include <QTextStream>

using namespace fenwork;

namespace {

const QByteArray kFile =
    "X:1\nT:Morning Reel\nR:reel\nK:D\nABc d2|\n"
    "X:2\nT:The Jig\nR:jig\n%%MIDI program 24\nK:G\nGAB c2|\n"
    "X:3\nT:Reel of Two\n%trad\nK:Ador\nG2 A B|\n";

struct Run
{
    int code = -1;
    QString out;
    QString err;
};

Run find(const QStringList &arguments)
{
    Run run;
    QTextStream out(&run.out);
    QTextStream err(&run.err);
    run.code = runFindCommand(arguments, out, err);
    return run;
}

} // namespace

class TestFindCommand : public QObject
{
    Q_OBJECT

private slots:
    void filters_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("out");
        QTest::newRow("no condition") << QStringList{} << "[1]  Morning Reel\n[2]  The Jig\n[3]  Reel of Two\n";
        QTest::newRow("field") << QStringList{"--field", "T:", "Reel"} << "[1]  Morning Reel\n[3]  Reel of Two\n";
        QTest::newRow("two fields") << QStringList{"--field", "T:", "Reel", "--field", "R:", "reel"}
                                    << "[1]  Morning Reel\n";
        QTest::newRow("%%MIDI marker") << QStringList{"--field", "%%MIDI", "program"} << "[2]  The Jig\n";
        QTest::newRow("invert") << QStringList{"--invert", "--field", "T:", "Reel"} << "[2]  The Jig\n";
        QTest::newRow("melody, star as wild card") << QStringList{"--melody", "G*AB"} << "[2]  The Jig\n[3]  Reel of Two\n";
        QTest::newRow("nothing found") << QStringList{"--field", "T:", "Hornpipe"} << "";
    }
    void filters()
    {
        QFETCH(QStringList, options);
        QFETCH(QString, out);
        test::TestEnv env;
        const QString path = env.writeFile(QStringLiteral("tunes.abc"), kFile);
        const Run run = find(QStringList{path} + options);
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, out);
        if (out.isEmpty())
            QVERIFY(run.err.contains(env.app().text(QStringLiteral("Msg"), QStringLiteral("<noTuneFound>"))));
        else
            QCOMPARE(run.err, QString());
    }

    void errors_data()
    {
        QTest::addColumn<QStringList>("arguments"); // "FILE" stands for the test file
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("says");
        QTest::newRow("no file") << QStringList{"--invert"} << 2 << "FILE is missing";
        QTest::newRow("two files") << QStringList{"FILE", "other.abc"} << 2 << "other.abc";
        QTest::newRow("marker without colon") << QStringList{"FILE", "--field", "T", "x"} << 2 << "'T'";
        QTest::newRow("lower-case marker with no row") << QStringList{"FILE", "--field", "t:", "x"} << 2 << "'t:'";
        QTest::newRow("marker twice") << QStringList{"FILE", "--field", "T:", "x", "--field", "T:", "y"} << 2 << "twice";
        QTest::newRow("field without text") << QStringList{"FILE", "--field", "T:"} << 2 << "MARKER and a TEXT";
        QTest::newRow("unknown option") << QStringList{"FILE", "--fast"} << 2 << "--fast";
        QTest::newRow("invalid field") << QStringList{"FILE", "--field", "K:", "(Dor"} << 1 << "<regexFailed>";
        QTest::newRow("invalid melody") << QStringList{"FILE", "--melody", "[GA"} << 1 << "<regexFailed>";
        QTest::newRow("invalid anywhere") << QStringList{"FILE", "--anywhere", "a)"} << 1 << "<regexFailed>";
        QTest::newRow("missing file") << QStringList{"missing.abc"} << 1 << "missing.abc";
    }
    void errors()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QString, says);
        test::TestEnv env;
        const QString path = env.writeFile(QStringLiteral("tunes.abc"), kFile);
        arguments.replaceInStrings(QStringLiteral("FILE"), path);
        if (says.startsWith(u'<'))
            says = env.app().text(QStringLiteral("Msg"), says);
        const Run run = find(arguments);
        QCOMPARE(run.code, code);
        QCOMPARE(run.out, QString());
        QVERIFY2(run.err.contains(says), qPrintable(run.err));
    }

    void emptyFileIsAnError()
    {
        test::TestEnv env;
        const Run run = find({env.writeFile(QStringLiteral("empty.abc"), QByteArray())});
        QCOMPARE(run.code, 1);
        QVERIFY(!run.err.isEmpty());
    }
};

FENWORK_TEST(TestFindCommand)
#include "tst_findcommand.moc"
