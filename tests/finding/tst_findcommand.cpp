// "fenwork-cli find", called as a function: the batch companion's source is compiled in here,
// since it is no part of the core library.
#include "testenv.h"
#include "testmain.h"

#include "cli/findcommand.cpp"
#include "cli/readingcontext.cpp" // once in this executable: the similar command's test uses it too

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

    void errors_data()
    {
        QTest::addColumn<QStringList>("arguments"); // "FILE" stands for the test file
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("says");
        QTest::newRow("no file") << QStringList{"--invert"} << 2 << "FILE is missing";
        QTest::newRow("marker without colon") << QStringList{"FILE", "--field", "T", "x"} << 2 << "'T'";
        QTest::newRow("unknown option") << QStringList{"FILE", "--fast"} << 2 << "--fast";
        QTest::newRow("invalid field") << QStringList{"FILE", "--field", "K:", "(Dor"} << 1 << "<regexFailed>";
        QTest::newRow("missing file") << QStringList{"missing.abc"} << 1 << "missing.abc";
        QTest::newRow("empty file") << QStringList{"EMPTY"} << 1 << "";
    }
    void errors()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QString, says);
        test::TestEnv env;
        const QString path = env.writeFile(QStringLiteral("tunes.abc"), kFile);
        arguments.replaceInStrings(QStringLiteral("FILE"), path);
        const QString empty = env.writeFile(QStringLiteral("empty.abc"), QByteArray());
        arguments.replaceInStrings(QStringLiteral("EMPTY"), empty);
        if (says.startsWith(u'<'))
            says = env.app().text(QStringLiteral("Msg"), says);
        const Run run = find(arguments);
        QCOMPARE(run.code, code);
        QCOMPARE(run.out, QString());
        QVERIFY2(!run.err.isEmpty() && run.err.contains(says), qPrintable(run.err));
    }
};

FENWORK_TEST(TestFindCommand)
#include "tst_findcommand.moc"
