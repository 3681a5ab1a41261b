#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/toolrunner.h"
#include "store/midiimport.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

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

// The command of each converter, as its callers build it.
QString commandFor(const AppContext &app, Tool tool)
{
    switch (tool) {
    case Tool::Abc2ps:
        return commandAbc2ps(app, QStringLiteral("tmp.abc"), QStringLiteral("tmp.ps"));
    case Tool::Abc2midi:
        return commandAbc2midi(app, QStringLiteral("tmp.abc"), QStringLiteral("tmp.mid"));
    case Tool::Abc2abc:
        return commandAbc2abc(app, QStringLiteral("tmp.abc"), 2, QStringLiteral("tmp.trs"));
    case Tool::Midi2abc:
        break;
    }
    return commandMidi2abc(app, QStringLiteral("tmp.mid"), QStringLiteral("tmp.abc"));
}

} // namespace

class TestToolRunner : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QStringList>("expected"); // program, arguments...
        QTest::addColumn<QString>("stdoutFile");
        QTest::newRow("quoted with blanks")
            << R"("/opt/my tools/abcm2ps" "tmp.abc" -s0.65 -O "out put.ps")"
            << QStringList { "/opt/my tools/abcm2ps", "tmp.abc", "-s0.65", "-O", "out put.ps" } << QString();
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

    // A converter that cannot run is named, with where it was looked for, not as the system's
    // "execvp" words.
    void missingTool_data()
    {
        QTest::addColumn<int>("tool");
        QTest::addColumn<QString>("name");
        QTest::newRow("abcm2ps") << int(Tool::Abc2ps) << "abcm2ps";
        QTest::newRow("abc2midi") << int(Tool::Abc2midi) << "abc2midi";
        QTest::newRow("abc2abc") << int(Tool::Abc2abc) << "abc2abc";
        QTest::newRow("midi2abc") << int(Tool::Midi2abc) << "midi2abc";
    }
    void missingTool()
    {
        QFETCH(int, tool);
        QFETCH(QString, name);
        TestEnv env;
        // A setting that names a file which is no program: the search ends there.
        const QString notProgram = env.writeFile(name, "not a program");
        const SettingKey *settings[] = { &keys::Tool2ps, &keys::Tool2midi, &keys::Tool2abc, &keys::ToolMidi2abc };
        env.app().ini().set(*settings[tool], notProgram);
        const QString command = commandFor(env.app(), Tool(tool));
        QString error;
        QVERIFY(!env.app().tools().startCommand(command, 0, &error));
        QVERIFY2(error.contains(QStringLiteral("not found: ") + name) && error.contains(notProgram)
                     && error.contains(QStringLiteral("/usr/bin/") + name) && !error.contains(QStringLiteral("execvp")),
                 qPrintable(error));
        QCOMPARE(missingToolText(env.app(), Tool(tool)), error);
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

    void writerEndedWithoutOutput_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("started");
        QTest::newRow("ended without output") << R"(/bin/sh -c "exit 1" "never.ps")" << true;
        QTest::newRow("could not start") << R"("/nonexistent/abcm2ps" "tmp.abc" "never.ps")" << false;
    }
    void writerEndedWithoutOutput()
    {
        QFETCH(QString, command);
        QFETCH(bool, started);
        TestEnv env;
        ToolRunner &tools = env.app().tools();
        QCOMPARE(tools.startCommand(command), started);
        // Waiting for ever would hang: the tool that was to write the file is gone.
        QCOMPARE(tools.WaitForDispo(QStringLiteral("never.ps"), 0), kWaitTimeout);
    }

    void emptyFileTimesOut()
    {
        TestEnv env;
        ToolRunner &tools = env.app().tools();
        QFile empty(tools.inCache(QStringLiteral("empty.ps")));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        QCOMPARE(tools.WaitForDispo(QStringLiteral("empty.ps"), 300), kWaitTimeout);
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

};

FENWORK_TEST(TestToolRunner)
#include "tst_toolrunner.moc"
