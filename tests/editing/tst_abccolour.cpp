// ABC colouring: the style of every character of typical lines, the caret line and its region,
// and the agreement of the keystroke path with the whole-text path.
#include "testenv.h"
#include "testmain.h"

#include "editing/abccolour.h"
#include "frame/strutil.h"

#include <QDir>
#include <QTest>

using namespace fenwork;

namespace {

// One letter per style, so that a row reads as a picture of its line.
char styleLetter(AbcStyle style)
{
    switch (style) {
    case AbcStyle::Default:
        return '.';
    case AbcStyle::Bar:
        return 'b';
    case AbcStyle::InlineField:
        return 'i';
    case AbcStyle::Quoted:
        return 'q';
    case AbcStyle::Decoration:
        return 'd';
    case AbcStyle::Directive:
        return 'D';
    case AbcStyle::Comment:
        return 'c';
    case AbcStyle::Continuation:
        return 'L';
    case AbcStyle::FieldLetter:
        return 'F';
    case AbcStyle::FieldValue:
        return 'v';
    case AbcStyle::Remark:
        return 'r';
    case AbcStyle::Part:
        return 'p';
    }
    return '?';
}

// The style of each character of `length` characters from `offset`, the ranges laid over
// the default style; fails on ranges that overlap, run backwards or leave the region.
QByteArray paint(const QVector<AbcColourRange> &ranges, qsizetype offset, qsizetype length)
{
    QByteArray styles(length, '.');
    qsizetype last = offset;
    for (const AbcColourRange &r : ranges) {
        if (r.length <= 0 || r.start < last || r.start + r.length > offset + length)
            return "bad range at " + QByteArray::number(r.start);
        for (qsizetype i = r.start; i < r.start + r.length; ++i)
            styles[i - offset] = styleLetter(r.style);
        last = r.start + r.length;
    }
    return styles;
}

// "F2 v3 .1" → "FFvvv."
QByteArray runs(const QByteArray &runList)
{
    QByteArray out;
    const QList<QByteArray> parts = runList.split(' ');
    for (const QByteArray &part : parts) {
        if (!part.isEmpty())
            out += QByteArray(part.mid(1).toInt(), part.at(0));
    }
    return out;
}

} // namespace

class TestAbcColour : public QObject
{
    Q_OBJECT

private slots:
    void lineStyles_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QByteArray>("expected"); // runs of style letters

        QTest::newRow("notes red, bars bold blue") << "|:ABc dEF|G2 z2:|" << runs("b2 .7 b1 .5 b2");
        QTest::newRow("field with comment") << "T:The Dusty Miller % from Kerr" << runs("F2 v17 c11");
        QTest::newRow("field without value") << "K:" << runs("F2");
        QTest::newRow("lower-case field takes the whole line") << "w:la la|la-dy" << runs("F2 v11");
        QTest::newRow("remark keeps its %") << "r:learnt from a fiddler % honest" << runs("F2 r30");
        QTest::newRow("part") << "P:AABB" << runs("F2 p4");
        QTest::newRow("field only at line start") << "ABc T:x" << runs(".7");
        QTest::newRow("directive line") << "%%MIDI program 40" << runs("D17");
        QTest::newRow("comment line") << "% a comment" << runs("c11");
        QTest::newRow("comment behind music") << "ABc|% note" << runs(".3 b1 c6");
        // Styles go by the first two characters of a match, so "%%" behind music is painted
        // as a directive though the expression took it as a comment.
        QTest::newRow("%% behind music") << "ABc %%MIDI x" << runs(".4 D8");
        QTest::newRow("% % behind music is a comment") << "ABc % %x" << runs(".4 c4");
        QTest::newRow("continuation") << "ABc d|\\" << runs(".5 b1 L1");
        QTest::newRow("backslash inside a line") << "AB\\c" << runs(".4");
        QTest::newRow("inline fields") << "[K:D]ABc [M:3/4]" << runs("i5 .4 i7");
        QTest::newRow("endings and thick bars") << "[1ABc:|[2d2|]" << runs("b2 .3 b2 b2 .2 b2");
        QTest::newRow("[| and |]") << "[|ABc|]" << runs("b2 .3 b2");
        QTest::newRow("|1 ending") << "|1AB|2cd" << runs("b2 .2 b1 .3");
        QTest::newRow("bracket chord is inline style") << "[CEG]2 [ceg]" << runs("i5 .2 i5");
        QTest::newRow("[ with a digit other than 1 or 2") << "[3AB" << runs(".4");
        QTest::newRow("quoted chord and annotation") << "\"Am\"A2 \"^fine\"B" << runs("q4 .3 q7 .1");
        QTest::newRow("quote left open") << "\"Am A2" << runs(".6");
        QTest::newRow("roll and grace notes") << "~A2 {ag}B" << runs("d1 .3 d4 .1");
        QTest::newRow("tuplets 2 to 8 only") << "(3ABc (9ABC" << runs("b2 .9");
        QTest::newRow("|: bar, :: field letter") << "|:AB::cd:|" << runs("b2 .2 F2 .2 b2");
        QTest::newRow(":|: and :||:") << "|A:|:B:||:c" << runs("b1 .1 b3 .1 b4 .1");
        QTest::newRow("a note and a colon at line start make a field") << "A:|B" << runs("F2 v2");
        QTest::newRow("empty") << "" << QByteArray();
        QTest::newRow("accented text") << "T:Éire ógánach" << runs("F2 v12");
    }
    void lineStyles()
    {
        QFETCH(QString, line);
        QFETCH(QByteArray, expected);
        QCOMPARE(paint(abcColourRanges(line), 0, line.size()), expected);
    }

    // Line ends belong to the text: a field line's match runs up to the LF, its CR included.
    void lineEnds()
    {
        const QString text = crlfJoin({ "X:1", "K:G", "ABc|", "" });
        QCOMPARE(paint(abcColourRanges(text), 0, text.size()), runs("F2 v2 .1 F2 v2 .1 .3 b1 .2"));
    }

    void caretRegion_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("length");
        const QString text = crlfJoin({ "X:1", "K:G", "ABc|", "de" }); // lines at 0, 5, 10, 16
        QTest::newRow("first line") << text << 2 << 0 << 5;
        QTest::newRow("start of a line") << text << 5 << 5 << 5;
        QTest::newRow("before the line end") << text << 14 << 10 << 6;
        QTest::newRow("last line, no line end") << text << 18 << 16 << 2;
        QTest::newRow("empty last line") << QString("ABc\r\n") << 5 << 5 << 0;
        QTest::newRow("empty text") << QString() << 0 << 0 << 0;
        QTest::newRow("caret past the end") << text << 99 << 16 << 2;
    }
    void caretRegion()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(int, start);
        QFETCH(int, length);
        const TextRegion region = caretLineRegion(text, caret);
        QCOMPARE(region.start, start);
        QCOMPARE(region.length, length);
    }

    // The keystroke path must paint a line exactly as the whole-text path does, at the same
    // positions, and touch nothing outside that line.
    void caretLineAgreesWithWhole_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("sample tune") << crlfJoin(
            { "X:3", "T:The Humours of Fenwick % ours", "r:two parts", "P:AB", "M:6/8", "L:1/8",
                "%%MIDI program 73", "K:Dmix", "P:A", "|:\"D\"A2F ~A2G|[1 FED D3:|[2 FED D2e|]", "P:B",
                "|:fed {g}e2d|(3cBA [K:G]G2 :: \"^rit.\"[DFA]3 \\", "w:la la la", "% end", "" });
        const QString dir = test::corpusDir();
        if (!dir.isEmpty()) {
            QTest::newRow("corpus reels") << corpusText(dir, QStringLiteral("nottingham/reelsa-c.abc"));
            QTest::newRow("corpus decorations") << corpusText(dir, QStringLiteral("abcm2ps/deco.abc"));
        }
    }
    void caretLineAgreesWithWhole()
    {
        QFETCH(QString, text);
        QVERIFY(!text.isEmpty());
        const QByteArray whole = paint(abcColourRanges(text), 0, text.size());
        QVERIFY2(!whole.startsWith("bad"), whole.constData());
        qsizetype caret = 0;
        for (;;) {
            TextRegion region;
            const QVector<AbcColourRange> ranges = abcColourCaretLine(text, caret, &region);
            QCOMPARE(paint(ranges, region.start, region.length), whole.mid(region.start, region.length));
            caret = region.start + region.length;
            if (region.length == 0 || caret >= text.size())
                break;
        }
    }

private:
    static QString crlfJoin(const QStringList &lines) { return lines.join(CRLF); }
    // A corpus file with the line ends the editor holds.
    static QString corpusText(const QString &dir, const QString &name)
    {
        QString text = test::readAll(QDir(dir).filePath(name));
        text.replace(CRLF, QStringLiteral("\n"));
        text.replace(u'\r', u'\n');
        return text.replace(QStringLiteral("\n"), CRLF);
    }
};

FENWORK_TEST(TestAbcColour)
#include "tst_abccolour.moc"
