#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/toolrunner.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTest>

using namespace fenwork;
using fenwork::test::TestEnv;

namespace {

bool haveTool(const char *name)
{
    return !QStandardPaths::findExecutable(QString::fromLatin1(name)).isEmpty();
}

void makeExecutable(const QString &path)
{
    QFile file(path);
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
}

} // namespace

class TestToolRunner : public QObject
{
    Q_OBJECT

private slots:
    void commandShapes_data()
    {
        QTest::addColumn<QString>("options"); // for abcm2ps; null: the default
        QTest::addColumn<QString>("extras");
        QTest::addColumn<QStringList>("expected"); // abcm2ps, abc2midi, abc2abc, midi2abc; %T the tool
        const QStringList others { R"("%T" "in.abc" -o "out")", R"("%T" "in.abc" -t -3 > "out")",
            R"("%T" -f "in.abc" -o "out")" };
        QTest::newRow("defaults") << QString() << QString()
                                  << QStringList { R"("%T" "in.abc" -s0.65 -O "out")" } + others;
        QTest::newRow("format and tablature before the options")
            << QString() << R"( -F "/my fmt/w.fmt" -T2 )"
            << QStringList { R"("%T" "in.abc" -F "/my fmt/w.fmt" -T2  -s0.65 -O "out")" } + others;
        QTest::newRow("options trimmed, blanks put back") << QStringLiteral(
            "   -O   ") << QString() << QStringList { R"("%T" "in.abc" -O "out")" } + others;
    }

    void commandShapes()
    {
        QFETCH(QString, options);
        QFETCH(QString, extras);
        QFETCH(QStringList, expected);
        TestEnv env;
        AppContext &app = env.app();
        if (!options.isNull())
            app.ini().set(keys::Cmd2ps, options);
        app.scoreExtras = extras;
        const QString in = QStringLiteral("in.abc"), out = QStringLiteral("out");
        const QStringList commands { commandAbc2ps(app, in, out), commandAbc2midi(app, in, out),
            commandAbc2abc(app, in, -3, out), commandMidi2abc(app, in, out) };
        const Tool tools[] = { Tool::Abc2ps, Tool::Abc2midi, Tool::Abc2abc, Tool::Midi2abc };
        for (int i = 0; i < 4; ++i)
            QCOMPARE(commands.at(i),
                QString(expected.at(i)).replace(QStringLiteral("%T"), toolPath(app, tools[i])));
    }

    void parse_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QStringList>("expected"); // program, arguments...
        QTest::addColumn<QString>("stdoutFile");
        QTest::newRow("quoted with blanks")
            << R"("/opt/my tools/abcm2ps" "tmp.abc" -s0.65 -O "out put.ps")"
            << QStringList { "/opt/my tools/abcm2ps", "tmp.abc", "-s0.65", "-O", "out put.ps" } << QString();
        QTest::newRow("redirect") << R"("abc2abc" "in.abc" -t 2 > "tmp_trs.trs")"
                                  << QStringList { "abc2abc", "in.abc", "-t", "2" }
                                  << QStringLiteral("tmp_trs.trs");
        QTest::newRow("redirect glued")
            << R"("abc2midi" "a.abc" >"log file.txt")" << QStringList { "abc2midi", "a.abc" }
            << QStringLiteral("log file.txt");
        QTest::newRow("quoted > is an argument")
            << R"(prog ">" x)" << QStringList { "prog", ">", "x" } << QString();
    }

    void parse()
    {
        QFETCH(QString, command);
        QFETCH(QStringList, expected);
        QFETCH(QString, stdoutFile);
        const ParsedCommand parsed = parseCommand(command);
        QCOMPARE(QStringList { parsed.program } + parsed.arguments, expected);
        QCOMPARE(parsed.stdoutFile, stdoutFile);
    }

    void waitsForTheWriterToEnd()
    {
        TestEnv env;
        ToolRunner &tools = env.app().tools();
        // The file exists and is not empty long before the writer is done with it.
        QVERIFY(tools.startCommand(
            QStringLiteral(R"(/bin/sh -c "printf a > out.txt; sleep 0.4; printf b >> out.txt")")));
        QCOMPARE(tools.WaitForDispo(QStringLiteral("out.txt"), 6000), QString());
        QCOMPARE(test::readBytes(tools.inCache(QStringLiteral("out.txt"))), QByteArray("ab"));
        QVERIFY(env.ui().eventPumps() > 0);
    }

    void writerEndedWithoutOutput()
    {
        TestEnv env;
        ToolRunner &tools = env.app().tools();
        QVERIFY(tools.startCommand(QStringLiteral(R"(/bin/sh -c "exit 1" "never.ps")")));
        // Waiting for ever would hang: the tool that was to write the file has ended.
        QCOMPARE(tools.WaitForDispo(QStringLiteral("never.ps"), 0), kWaitTimeout);
    }

    void emptyFileTimesOut()
    {
        TestEnv env;
        ToolRunner &tools = env.app().tools();
        QFile empty(tools.inCache(QStringLiteral("empty.ps")));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(tools.WaitForDispo(QStringLiteral("empty.ps"), 300), kWaitTimeout);
        QVERIFY(clock.elapsed() >= 250);
    }

    void escapeEndsTheWait()
    {
        TestEnv env;
        env.ui().setEscapePressed(true, 3);
        // A limit of 0 waits for ever: only Esc ends it.
        QCOMPARE(env.app().tools().WaitForDispo(QStringLiteral("never.ps"), 0), kWaitEscape);
        QCOMPARE(env.ui().escapeChecks(), 4);
    }

    void importMidi()
    {
        if (!haveTool("abc2midi") || !haveTool("midi2abc"))
            QSKIP("abc2midi or midi2abc is not installed");
        TestEnv env;
        ToolRunner &tools = env.app().tools();
        const QString abc = env.writeFile(
            QStringLiteral("in tune.abc"), "X:1\nT:Slide\nM:6/8\nL:1/8\nK:G\nGAB c2d|e3 d3|]\n");
        const QString mid = env.path(QStringLiteral("in tune.mid"));
        QVERIFY(tools.startCommand(commandAbc2midi(env.app(), abc, mid)));
        QCOMPARE(tools.WaitForDispo(mid, 6000), QString());

        const QString kFile = env.app().store().createNewFile();
        const QString kTune = ImportMidi(env.app(), mid, kFile);
        QVERIFY2(!kTune.isEmpty(), qPrintable(env.ui().messages().join(u'|')));
        const QString text = env.app().store().GetStringTune(kTune, false);
        QVERIFY2(text.contains(QStringLiteral("M: 6/8")) || text.contains(QStringLiteral("M:6/8")),
            qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("K:G")));
    }

    void console()
    {
        TestEnv env;
        const QString log = env.path(QStringLiteral("console.log"));
        const QString terminal = env.writeFile(QStringLiteral("term.sh"),
            "#!/bin/sh\npwd > \"" + log.toUtf8() + ".tmp\"\nfor a in \"$@\"; do echo \"$a\" >> \""
                + log.toUtf8() + ".tmp\"; done\nmv \"" + log.toUtf8() + ".tmp\" \"" + log.toUtf8() + "\"\n");
        makeExecutable(terminal);
        const QByteArray old = qgetenv("TERMINAL");
        qputenv("TERMINAL", terminal.toUtf8());
        QString error;
        const bool started = env.app().tools().openConsole(1, &error);
        qputenv("TERMINAL", old);
        if (old.isEmpty())
            qunsetenv("TERMINAL");
        QVERIFY2(started, qPrintable(error));
        QTRY_VERIFY(QFile::exists(log));
        const QStringList lines = test::readAll(log).split(u'\n', Qt::SkipEmptyParts);
        QVERIFY(lines.size() >= 2);
        QString folder;
        consoleCommand(env.app(), 1, &folder);
        QCOMPARE(QDir(lines.first()).canonicalPath(), QDir(folder).canonicalPath());
        QCOMPARE(lines.at(1), QStringLiteral("-e"));
        QVERIFY(lines.last().contains(toolPath(env.app(), Tool::Abc2ps)));
    }
};

FENWORK_TEST(TestToolRunner)
#include "tst_toolrunner.moc"
