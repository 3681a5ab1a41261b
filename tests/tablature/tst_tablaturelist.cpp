#include "testenv.h"
#include "testmain.h"

#include "frame/ghostscript.h"
#include "scripteddialogs.h"
#include "frame/toolrunner.h"
#include "tablature/tablaturelist.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace fenwork;

namespace {

// A program folder of our own, so that "{app}" pictures can be there or not.
struct ProgramWorld
{
    ProgramWorld()
    {
        QDir().mkpath(program.filePath(QStringLiteral("img")));
        QDir().mkpath(program.filePath(QStringLiteral("lang")));
        QFile::copy(QStringLiteral(FENWORK_DATA_DIR "/lang/English.txt"),
            program.filePath(QStringLiteral("lang/English.txt")));
        QFile(program.filePath(QStringLiteral("img/whistle.bmp"))).open(QIODevice::WriteOnly);
        QFile ini(root.filePath(QStringLiteral("fenwork.ini")));
        if (ini.open(QIODevice::WriteOnly))
            ini.write("[General]\r\nlang=English\r\n");
        app = std::make_unique<AppContext>(Paths(root.path(), program.path()), &dialogs);
    }
    QString writeFormat(const QByteArray &text)
    {
        const QString path = root.filePath(QStringLiteral("test.fmt"));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(text);
        return path;
    }
    QString noTabs() const { return app->text(QStringLiteral("MainForm"), QStringLiteral("<noTabs>")); }

    QTemporaryDir root;
    QTemporaryDir program;
    ScriptedDialogs dialogs;
    std::unique_ptr<AppContext> app;
};

} // namespace

class TestTablatureList : public QObject
{
    Q_OBJECT

private slots:
    void load_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<QStringList>("entries"); // "@" stands for the <noTabs> text
        QTest::addColumn<QString>("blank"); // relative to the program folder
        QTest::newRow("no block") << QByteArray("scale 0.8\r\n%comment\r\n")
                                  << QStringList { "@", "Instrument 1" }
                                  << QStringLiteral("img/blank_std.bmp");
        QTest::newRow("a block") << QByteArray(
            "scale 0.8\r\n%fenwk-begin\r\n%nbholes=6\r\n%<noTabs>\r\n%Whistle D\r\n"
            "%Whistle C\r\n%fenwk-end\r\n%Not me\r\n")
                                 << QStringList { "@", "Whistle D", "Whistle C" }
                                 << QStringLiteral("img/blank_std.bmp");
        QTest::newRow("blank picture beside the program")
            << QByteArray("%fenwk-begin\r\n%blk={app}\\img\\whistle.bmp\r\n%<noTabs>\r\n%fenwk-end\r\n")
            << QStringList { "@" } << QStringLiteral("img/whistle.bmp");
        QTest::newRow("blank picture missing")
            << QByteArray("%fenwk-begin\r\n%blk={app}\\img\\gone.bmp\r\n%<noTabs>\r\n%A\r\n%fenwk-end\r\n")
            << QStringList { "@", "A" } << QStringLiteral("img/blank_std.bmp");
        // A setting of an unknown name is skipped; any line without "=" is an entry, its first
        // character dropped blindly.
        QTest::newRow("unknown setting, comment, odd first character")
            << QByteArray("%fenwk-begin\n%foo=1\n% a comment\nXFlute G\n   %Fife  \n%fenwk-end\n")
            << QStringList { " a comment", "Flute G", "Fife" } << QStringLiteral("img/blank_std.bmp");
        QTest::newRow("no end line") << QByteArray("%fenwk-begin\r\n%<noTabs>\r\n%Low D")
                                     << QStringList { "@", "Low D" } << QStringLiteral("img/blank_std.bmp");
        QTest::newRow("noTabs not first")
            << QByteArray("%fenwk-begin\r\n%Low D\r\n%<noTabs>\r\n%fenwk-end\r\n")
            << QStringList { "Low D", "<noTabs>" } << QStringLiteral("img/blank_std.bmp");
    }

    void load()
    {
        QFETCH(QByteArray, format);
        QFETCH(QStringList, entries);
        QFETCH(QString, blank);
        ProgramWorld world;
        const TablatureList list = LoadTabsList(*world.app, world.writeFormat(format));
        QVERIFY(list.loaded);
        entries.replaceInStrings(QStringLiteral("@"), world.noTabs());
        QCOMPARE(list.entries, entries);
        QCOMPARE(QDir::cleanPath(list.blankPicture), QDir::cleanPath(world.program.filePath(blank)));
    }

    // The shipped format file is one the engraver and the interpreter take, with every tablature.
    void shippedFormatDraws()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("abcm2ps")).isEmpty() || !ghostscriptAvailable())
            QSKIP("abcm2ps or the Ghostscript library is not installed");
        test::TestEnv env;
        const QString format = QStringLiteral(FENWORK_DATA_DIR "/fmt/whistle_new.fmt");
        const TablatureList list = LoadTabsList(env.app(), format);
        QVERIFY(list.entries.size() >= 2);
        ToolRunner &tools = env.app().tools();
        QFile input(tools.inCache(QStringLiteral("tmp.abc")));
        QVERIFY(input.open(QIODevice::WriteOnly));
        input.write(
            "X:1\r\nT:Scale\r\nM:4/4\r\nL:1/8\r\nK:D\r\nA,DEF GABc|^cd^de fgab|c'd'e'2 _B=c^G2|]\r\n");
        input.close();
        for (int row = 0; row < list.entries.size(); ++row) {
            env.app().scoreExtras = tablatureScoreExtras(format, true, row);
            QFile::remove(tools.inCache(QStringLiteral("tmp.ps")));
            QVERIFY(tools.startCommand(
                commandAbc2ps(env.app(), QStringLiteral("tmp.abc"), QStringLiteral("tmp.ps"))));
            QCOMPARE(tools.WaitForDispo(QStringLiteral("tmp.ps"), 6000), QString());
            clearGhostscriptMessages();
            QString error;
            const bool ran = RunGhostscript(
                { QStringLiteral("gs"), QStringLiteral("-dNOPAUSE"), QStringLiteral("-dBATCH"),
                    QStringLiteral("-dSAFER"), QStringLiteral("-sDEVICE=nullpage"),
                    tools.inCache(QStringLiteral("tmp.ps")) },
                &error);
            QVERIFY2(ran, qPrintable(QStringLiteral("row %1: %2").arg(row).arg(error)));
            QVERIFY2(
                !ghostscriptMessages().contains(QStringLiteral("Error")), qPrintable(ghostscriptMessages()));
        }
    }
};

FENWORK_TEST(TestTablatureList)
#include "tst_tablaturelist.moc"
