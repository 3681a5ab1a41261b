// The format file through fenwork-cli format and tabs: what a user's hand-written lines become
// after a trip through the export dialog, and what the engraver makes of the result.
#include "../cli/cliprocess.h"
#include "testenv.h"
#include "testmain.h"

#include <QProcess>
#include <QTest>

using namespace fenwork::test;

namespace {

QByteArray crlf(const char *lines)
{
    return QByteArray(lines).replace("\n", "\r\n");
}

} // namespace

class TestFormatFile : public QObject
{
    Q_OBJECT
private slots:
    void roundTrip_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("expected");
        const QByteArray fixed = crlf("scale 0.75\npagewidth 21cm\npageheight 29.7cm\n");
        const QByteArray composer = crlf("aligncomposer 1\n");
        QTest::newRow("missing file: initial values") << QByteArray() << QByteArray(fixed + composer);
        QTest::newRow("scale and staffsep") << crlf("scale 0.7\nstaffsep 12pt\n")
                                            << crlf("scale 0.7\nstaffsep 12pt\npagewidth 21cm\npageheight 29.7cm\n"
                                                    "aligncomposer 1\n");
        QTest::newRow("comments dropped, unknown kept below the mark")
            << crlf("% mine\n/ also mine\nvocalspace 1cm\nbarsperstaff 4\n")
            << QByteArray(fixed + composer + crlf("vocalspace 1cm\n### HAND WRITTEN COMMANDS ###\nbarsperstaff 4\n"));
        QTest::newRow("header centre blank, footer none")
            << crlf("header L\t\tR\nfooter L\t\tR\n")
            << QByteArray(fixed + crlf("header L\t \tR\nfooter L\t\tR\n") + composer);
        // A font name read back loses its "-": it comes back as a new list entry, and writing
        // it turns the blanks into "-" again, bold and italic boxes untouched.
        QTest::newRow("fonts: bold, italic, size, unknown")
            << crlf("titlefont Times-Roman-Bold 14\nvocalfont Helvetica-Oblique\ncomposerfont Foo-Bar 99\n")
            << QByteArray(fixed + crlf("titlefont Times-Roman-Bold 14\naligncomposer 1\n"
                                       "composerfont Foo-Bar 99\nvocalfont Helvetica-Oblique\n"));
        QTest::newRow("lengths: comma, no value, tabs")
            << crlf("topmargin 1,5cm\nbotmargin\nleftmargin\t2cm\n")
            << QByteArray(crlf("topmargin 1cm\nbotmargin 0cm\nleftmargin 2cm\n") + fixed + composer);
        QTest::newRow("everything below ### kept as it stands")
            << crlf("landscape 1\n###\n% kept\n  indented\npageheight 35.6cm\n")
            << crlf("scale 0.75\npagewidth 21cm\npageheight 29.7cm\nlandscape 1\naligncomposer 1\n"
                    "### HAND WRITTEN COMMANDS ###\n% kept\n  indented\npageheight 35.6cm\n");
        QTest::newRow("musiconly is written, not read")
            << crlf("musiconly 1\n") << QByteArray(fixed + composer + crlf("### HAND WRITTEN COMMANDS ###\nmusiconly 1\n"));
        QTest::newRow("switches and paper")
            << crlf("pageheight 27.9cm\noneperpage 1\nsplittune 1\nprinttempo 0\ncontinueall 1\n#addtablature 12\n"
                    "titleleft 1\nwithxrefs 1\naligncomposer -1\nprintparts 0\n")
            << crlf("scale 0.75\npagewidth 21.6cm\npageheight 27.9cm\noneperpage 1\nsplittune 1\nprinttempo 0\n"
                    "continueall 1\n#addtablature 12\ntitleleft 1\nwithxrefs 1\naligncomposer -1\nprintparts 0\n");
        QTest::newRow("out of range scale") << crlf("scale 3\n")
                                            << crlf("scale 1.5\npagewidth 21cm\npageheight 29.7cm\naligncomposer 1\n");
    }
    void roundTrip()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, expected);
        CliProcess cli;
        const QString in = input.isEmpty() ? cli.path(QStringLiteral("none.fmt")) : cli.write(QStringLiteral("in.fmt"), input);
        const QString out = cli.path(QStringLiteral("out.fmt"));
        CliRun run = cli.run({ QStringLiteral("format"), in, out });
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(readBytes(out), expected);
        // A second trip changes nothing.
        const QString again = cli.path(QStringLiteral("again.fmt"));
        QCOMPARE(cli.run({ QStringLiteral("format"), out, again }).exitCode, 0);
        QCOMPARE(readBytes(again), expected);
        // The engraver takes every file the dialog writes.
        const QString abc = cli.write(QStringLiteral("t.abc"), crlf("X:1\nT:T\nM:4/4\nL:1/8\nK:G\nGABc dedB|\n"));
        QProcess engraver;
        engraver.start(QStringLiteral("abcm2ps"), { abc, QStringLiteral("-F"), out, QStringLiteral("-O"),
                                                    cli.path(QStringLiteral("t.ps")) });
        QVERIFY(engraver.waitForFinished(30000));
        const QByteArray said = engraver.readAllStandardError() + engraver.readAllStandardOutput();
        QVERIFY2(engraver.exitCode() == 0 && !said.contains("rror"), said.constData());
    }

    void failures_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("format to a missing folder") << QStringList { "format", "@none.fmt", "@no/such/out.fmt" };
        QTest::newRow("tabs of a missing file") << QStringList { "tabs", "@none.fmt" };
    }
    void failures()
    {
        QFETCH(QStringList, arguments);
        CliProcess cli;
        for (QString &argument : arguments) {
            if (argument.startsWith(u'@'))
                argument = cli.path(argument.mid(1));
        }
        const CliRun run = cli.run(arguments);
        QCOMPARE(run.exitCode, 1);
        QVERIFY(!run.err.isEmpty());
    }

    // "{app}\\" and "{app}/" both name the program's folder; a missing picture gives the standard.
    void tabs_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<QString>("rows");
        QTest::addColumn<QString>("blank");
        QTest::newRow("no block: two default rows") << crlf("scale 0.7\n") << "No tablature\nInstrument 1"
                                                    << "/img/blank_std.bmp";
        QTest::newRow("block with rows")
            << crlf("%fenwk-begin\n%blk={app}\\img\\preview.bmp\n%<noTabs>\n%Whistle D\n%Flute G\n%fenwk-end\n%Not me\n")
            << "No tablature\nWhistle D\nFlute G" << "/img/preview.bmp";
        QTest::newRow("unknown setting ignored, comment taken for a row, first character dropped blindly")
            << crlf("%fenwk-begin\n%foo=1\n%blk={app}/img/preview.bmp\n% a comment\nXWhistle\n%fenwk-end\n")
            << " a comment\nWhistle" << "/img/preview.bmp";
        QTest::newRow("no end mark, missing picture") << crlf("x\n%fenwk-begin\n%blk={app}\\img\\whistle.bmp\n%<noTabs>\n%Pipe A\n")
                                                      << "No tablature\nPipe A" << "/img/blank_std.bmp";
    }
    void tabs()
    {
        QFETCH(QByteArray, format);
        QFETCH(QString, rows);
        QFETCH(QString, blank);
        CliProcess cli;
        const CliRun run = cli.run({ QStringLiteral("tabs"), cli.write(QStringLiteral("t.fmt"), format) });
        QCOMPARE(run.exitCode, 0);
        QStringList lines = QString::fromUtf8(run.out).split(u'\n', Qt::SkipEmptyParts);
        const QString last = lines.takeLast();
        QCOMPARE(lines.join(u'\n'), rows);
        QVERIFY2(last.startsWith(QStringLiteral("blank: /")) && last.endsWith(blank) && !last.contains(u'{')
                     && !last.contains(u'\\'),
                 qPrintable(last));
    }
};

FENWORK_TEST(TestFormatFile)
#include "tst_formatfile.moc"
