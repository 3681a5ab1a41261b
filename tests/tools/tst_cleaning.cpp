// The cleaning rules on text: each option alone, and the combinations whose order shows.
#include "testmain.h"

#include "tools/cleaning.h"

#include <QTest>

using namespace fenwork;

namespace {
unsigned bits(std::initializer_list<int> options)
{
    unsigned mask = 0;
    for (int option : options)
        mask |= 1u << option;
    return mask;
}
} // namespace

class TestCleaning : public QObject
{
    Q_OBJECT

private slots:
    void options_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<unsigned>("options");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("changed");
        const auto row = [](const char *name, const char *in, std::initializer_list<int> options, const char *out,
                             bool changed) {
            QTest::newRow(name) << QString::fromUtf8(in) << bits(options) << QString::fromUtf8(out) << changed;
        };
        row("joined lines", "abc\\\r\ndef\\x\r\n", { 0 }, "abcdef\\x\r\n", true);
        row("tabs", "a\tb", { 2 }, "a b", true);
        row("comment keeps the char before and the CR", "A B % note\r\nC", { 3 }, "A B \r\nC", true);
        row("whole-line comment leaves an empty line", "%%MIDI program 1\r\n% whole line\r\nC", { 3 },
            "%%MIDI program 1\r\n\r\nC", true);
        row("comment on the last line keeps its last char", "A %xy", { 3 }, "A y", true);
        row("percent at the very start", "%x\r\nA", { 3 }, "%x\r\nA", false);
        row("remark line leaves its LF", "T:a\r\nr:remark\r\nK:G", { 12 }, "T:a\r\n\nK:G", true);
        row("inline remark", "A[r:x]B", { 12 }, "AB", true);
        row("entities", "T:&eacute;t&amp;", { 4 }, "T:\u00e9t&", true);
        row("field blank, first line too", "T: Title\r\nK:  G\r\nw: x", { 5 }, "T:Title\r\nK:G\r\nw:x", true);
        row("bang decorations", "!trill!+fermata+A", { 6 }, "+fermata+A", true);
        row("plus decorations", "!trill!+fermata+A", { 7 }, "!trill!A", true);
        row("both decorations", "!trill!+fermata+A", { 6, 7 }, "A", true);
        // One pass over both patterns: the first opener found wins, which two passes would not give.
        row("both decorations in one pass", "+a!b+c!", { 6, 7 }, "c!", true);
        row("stars, one pass", "abc**\r\nd*", { 8 }, "abc*\r\nd*", true);
        row("bar blanks", "| A |: B :| C ::", { 9 }, "|A|:B:|C::", true);
        row("blank between notes stays", "A B|", { 9 }, "A B|", false);
        row("rolls", "~A~B", { 10 }, "AB", true);
        row("grace notes", "{ag}A{/b}B", { 11 }, "AB", true);
        row("quoted", "\"G\"A\"^x\"B", { 13 }, "AB", true);
        row("blanks", "a    b  c", { 1 }, "a b c", true);
        // Blanks run last: they collapse what tabs, chords and comments left behind.
        row("tab then blanks", "a\t b", { 1, 2 }, "a b", true);
        row("quoted then blanks", "A \"x\" B", { 1, 13 }, "A B", true);
        row("nothing found", "X:1\r\nK:G\r\nABC|", { 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13 },
            "X:1\r\nK:G\r\nABC|", false);
    }
    void options()
    {
        QFETCH(QString, input);
        QFETCH(unsigned, options);
        QFETCH(QString, expected);
        QFETCH(bool, changed);
        bool found = !changed;
        QCOMPARE(cleanAbcText(input, options, &found), expected);
        QCOMPARE(found, changed);
    }

    void stepsCountTheTickedOptions()
    {
        QStringList steps;
        CleanProgress progress;
        progress.stepStarted = [&](int step, int count) { steps << QString::number(step) + u'/' + QString::number(count); };
        cleanAbcText(QStringLiteral("A"), bits({ 1, 6, 7, 13 }), nullptr, progress);
        QCOMPARE(steps, (QStringList { "1/4", "2/4", "3/4", "4/4" }));
    }
};

FENWORK_TEST(TestCleaning)
#include "tst_cleaning.moc"
