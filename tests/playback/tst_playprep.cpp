// Play preparation: the voice check, the tempo search and its quirks, the selection and one-line
// texts, the listening options and the inserted lines.
#include "testmain.h"

#include "frame/strutil.h"
#include "playback/playprep.h"

#include <QTest>

using namespace fenwork;

namespace {

// Lines joined with CR LF, the line end of every text in memory.
QString crlf(const QStringList &lines)
{
    return lines.join(CRLF);
}

QString tune(const QString &tempoLine, const QString &body = QStringLiteral("ABcd|efga|"))
{
    QStringList lines { QStringLiteral("X:1"), QStringLiteral("T:Test") };
    if (!tempoLine.isEmpty())
        lines << tempoLine;
    lines << QStringLiteral("M:4/4") << QStringLiteral("K:G") << body << QString();
    return crlf(lines);
}

// The prepared text with the program block taken out again: what is left is the tune as
// rewritten, plus any inserted Q: line.
QString withoutBlock(const QString &text)
{
    QStringList kept;
    const QStringList lines = text.split(CRLF);
    for (const QString &line : lines) {
        if (!line.startsWith(u"%%MIDI program "))
            kept << line;
    }
    return kept.join(CRLF);
}

PlayText prepare(const QString &text, const PlayOptions &options = {}, const QString &header = {})
{
    PlayInput input;
    input.text = text;
    input.fileHeader = header;
    input.tempoDef = QStringLiteral("100");
    return preparePlayText(input, options);
}

} // namespace

class TestPlayPrep : public QObject
{
    Q_OBJECT

private slots:
    void voiceCheck_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<QString>("selected"); // from voicePos to voiceLineEnd
        QTest::newRow("no voice") << tune("Q:1/4=120") << false << QString();
        QTest::newRow("one voice") << crlf({ "X:1", "T:Solo", "K:G", "V:1 clef=treble", "ABc|", "" }) << true
                                   << QString("V:1 clef=treble");
        QTest::newRow("a comment counts as the second")
            << crlf({ "X:1", "K:G", "% V: later", "V:1", "ABc|", "" }) << false << QString();
        QTest::newRow("a lyric counts as the only one")
            << crlf({ "X:1", "K:G", "ABc|", "w:V:oice", "" }) << true << QString("V:oice");
    }
    void voiceCheck()
    {
        QFETCH(QString, text);
        QFETCH(bool, refused);
        QFETCH(QString, selected);
        const PlayText out = prepare(text);
        QCOMPARE(out.oneVoiceRefused, refused);
        if (refused) {
            QCOMPARE(text.mid(out.voicePos, out.voiceLineEnd - out.voicePos), selected);
            QVERIFY(out.text.isEmpty());
        } else {
            QVERIFY(!out.text.isEmpty());
        }
    }

    void tempo_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("tempoDef");
        QTest::addColumn<QString>("nominal");
        QTest::addColumn<bool>("to100");
        QTest::addColumn<QString>("inserted"); // the Q: line put in, empty for none

        const QString none;
        // clang-format off
        QTest::newRow("tune, bare number reads 0") << tune("Q:90") << none << "100" << "0" << true << none;
        QTest::newRow("after % is a comment") << tune("%Q:1/4=80") << none << "100" << "100" << false << "Q:100";
        QTest::newRow("after \"% \" counts") << tune("% Q:1/4=80") << none << "100" << "80" << true << none;
        QTest::newRow("search goes on behind a commented one") << tune("%Q:1/4=80", "ABc|\r\nQ:1/4=140\r\nd|") << none << "100" << "140" << true << none;
        QTest::newRow("tempoDef when nothing holds Q:") << tune(none) << "%%scale 0.8\r\n" << "72" << "72" << false << "Q:72";
        QTest::newRow("header, = above the Q: line is taken") << tune(none) << "%%text a=3\r\nQ:80\r\n" << "100" << "3" << true << "Q:3";
        QTest::newRow("header, = below the Q: line is not") << tune(none) << "Q:80\r\n%%text a=3\r\n" << "100" << "80" << true << "Q:80";
        QTest::newRow("header, no % check") << tune(none) << "%Q:1/4=66\r\n" << "100" << "66" << true << "Q:66";
        // clang-format on
    }
    void tempo()
    {
        QFETCH(QString, text);
        QFETCH(QString, header);
        QFETCH(QString, tempoDef);
        QFETCH(QString, nominal);
        QFETCH(bool, to100);
        QFETCH(QString, inserted);

        PlayInput input;
        input.text = text;
        input.fileHeader = header;
        input.tempoDef = tempoDef;
        PlayOptions options;
        options.gmProgram = 40;
        const PlayText out = preparePlayText(input, options);
        QCOMPARE(out.nominalTempo, nominal);
        QCOMPARE(out.tempoTo100, to100);

        // The chosen program ends the block behind the first line; the tune's own Q: line stays,
        // an inserted one follows the block.
        const QString afterBlock = QStringLiteral("%%MIDI program 40\r\n")
            + (inserted.isEmpty() ? QString() : inserted + CRLF) + QStringLiteral("T:Test");
        QVERIFY(out.text.startsWith(QStringLiteral("X:1\r\n%%MIDI program 1\r\n")));
        QVERIFY2(out.text.contains(afterBlock), qPrintable(out.text.right(120)));
    }

    void listeningOptions_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<bool>("noChords");
        QTest::addColumn<bool>("noGrace");
        QTest::addColumn<bool>("noRepeats");
        QTest::addColumn<QString>("expected");

        QTest::newRow("nothing ticked")
            << "\"G\"{g}A~Bc:|2de|" << false << false << false << "\"G\"{g}A~Bc:|2de|";
        QTest::newRow("chords") << "\"G\"ABc \"D7\"d2|" << true << false << false << "ABc d2|";
        QTest::newRow("an open quote does not reach the next line")
            << "\"G ABc|\r\nd\"e\"f|" << true << false << false << "\"G ABc|\r\ndf|";
        QTest::newRow("repeats") << "|:ABc:|2de|1fg::ab|]" << false << false << true << "|ABc|de|fg|ab|]";
        QTest::newRow("second ending before the plain sign")
            << "ABc:|2de|" << false << false << true << "ABc|de|";
    }
    void listeningOptions()
    {
        QFETCH(QString, body);
        QFETCH(bool, noChords);
        QFETCH(bool, noGrace);
        QFETCH(bool, noRepeats);
        QFETCH(QString, expected);
        PlayOptions options;
        options.noChords = noChords;
        options.noGrace = noGrace;
        options.noRepeats = noRepeats;
        const PlayText out = prepare(tune("Q:1/4=100", body), options);
        QCOMPARE(withoutBlock(out.text), tune("Q:1/4=100", expected));
        QVERIFY(!out.text.contains(QChar(0)));
    }

    void textChoice_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("selection");
        QTest::addColumn<bool>("oneLine");
        QTest::addColumn<QString>("expected"); // without the program block

        const QString withTempo
            = crlf({ "X:7", "T:Sel", "Q:1/4=150", "K:Ador % mode", "|:ABc d2|", "K:G", "gfe|", "" });
        const QString noKey = crlf({ "X:7", "T:Sel", "Q:1/4=150", "ABc|", "" });
        const QString noTempo = crlf({ "X:7", "T:Sel", "K:D", "ABc|", "" });
        QTest::newRow("selection under X:1 and the first K:, no tempo carried")
            << withTempo << "d2|" << false << crlf({ "X:1", "K:Ador % mode", "d2|", "" });
        QTest::newRow("selection of a tune without tempo gets tempoDef")
            << noTempo << "ABc|" << false << crlf({ "X:1", "Q:100", "K:D", "ABc|", "" });
        QTest::newRow("one line") << withTempo << QString() << true << "CURRENT";
        QTest::newRow("selection wins over one line")
            << withTempo << "gfe" << true << crlf({ "X:1", "K:Ador % mode", "gfe", "" });
    }
    void textChoice()
    {
        QFETCH(QString, text);
        QFETCH(QString, selection);
        QFETCH(bool, oneLine);
        QFETCH(QString, expected);
        PlayInput input;
        input.text = text;
        input.selection = selection;
        input.currentLineTune = crlf({ "X:7", "T:Sel", "K:Ador % mode", "gfe|", "" });
        input.tempoDef = QStringLiteral("100");
        PlayOptions options;
        options.oneLine = oneLine;
        if (expected == u"CURRENT")
            expected = input.currentLineTune;
        QCOMPARE(withoutBlock(preparePlayText(input, options).text), expected);
    }

};

FENWORK_TEST(TestPlayPrep)
#include "tst_playprep.moc"
