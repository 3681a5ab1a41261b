// The melody box: what its search and its highlight pattern find.
#include "testmain.h"

#include "finding/melodyfragment.h"
#include "frame/regexp.h"

#include <QTest>

using namespace fenwork;

namespace {

// Whether a line is found by the fragment, run as the filter runs it: over a tune's text,
// multi-line, with other lines around it.
bool finds(const QString &fragment, const QString &line, bool startOnly, bool ignoreCase)
{
    RegExp re;
    re.Global = true;
    re.MultiLine = true;
    re.IgnoreCase = ignoreCase;
    QString alternative = melodySearchAlternative(fragment, startOnly);
    alternative.chop(1); // the "|" that joins it to the next condition
    re.Pattern = alternative;
    return re.Execute(QStringLiteral("X:1\r\nK:C\r\n") + line + QStringLiteral("\r\nz4|\r\n")).size() == 1;
}

} // namespace

class TestMelody : public QObject
{
    Q_OBJECT

private slots:
    void search_data()
    {
        QTest::addColumn<QString>("fragment");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("startOnly");
        QTest::addColumn<bool>("ignoreCase");
        QTest::addColumn<bool>("found");
        QTest::newRow("GAB in GA B") << "GAB" << "|GA B c|" << false << false << true;
        QTest::newRow("GAB not in G2 A B") << "GAB" << "|G2 A B c|" << false << false << false;
        QTest::newRow("GAB not across a bar") << "GAB" << "GA|B" << false << false << false;
        QTest::newRow("G?B in GAB") << "G?B" << "GAB" << false << false << true;
        QTest::newRow("G?B not in G2AB") << "G?B" << "G2AB" << false << false << false;
        QTest::newRow("[GA]B in GB") << "[GA]B" << "c GB" << false << false << true;
        QTest::newRow("start only, line begins") << "GAB" << "GAB c|" << true << false << true;
        QTest::newRow("start only, bar first") << "GAB" << "|GAB c|" << true << false << false;
        QTest::newRow("case is octave") << "gab" << "GAB" << false << false << false;
        QTest::newRow("ignore case") << "gab" << "GAB" << false << true << true;
        QTest::newRow("typed bar is an alternative") << "A|B" << "cdeB" << false << false << true;
        QTest::newRow("typed ^ is an anchor, not a sharp") << "^G" << "A^GA" << false << false << false;
    }
    void search()
    {
        QFETCH(QString, fragment);
        QFETCH(QString, line);
        QFETCH(bool, startOnly);
        QFETCH(bool, ignoreCase);
        QFETCH(bool, found);
        QCOMPARE(finds(fragment, line, startOnly, ignoreCase), found);
    }

    void highlight_data()
    {
        QTest::addColumn<QString>("fragment");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("marked");
        QTest::newRow("over lengths, bars, slashes") << "GAB" << "|G2 A/B|c" << QStringList{"G2 A/B|"};
        QTest::newRow("wider than the search") << "GAB" << "G2 A B G A B" << QStringList{"G2 A B ", "G A B"};
        QTest::newRow("class") << "[GA]B" << "AB GB" << QStringList{"AB ", "GB"};
    }
    void highlight()
    {
        QFETCH(QString, fragment);
        QFETCH(QString, line);
        QFETCH(QStringList, marked);
        RegExp re;
        re.Global = true;
        re.Pattern = melodyHighlightPattern(fragment);
        QStringList got;
        for (const RegExpMatch &m : re.Execute(line))
            got.append(m.value);
        QCOMPARE(got, marked);
    }

    void invalidFragments_data()
    {
        QTest::addColumn<QString>("fragment");
        QTest::newRow("unclosed (") << "G(AB";
        QTest::newRow("unopened )") << "GA)";
    }
    void invalidFragments()
    {
        QFETCH(QString, fragment);
        RegExp re;
        re.MultiLine = true;
        re.Pattern = melodySearchAlternative(fragment, false).chopped(1);
        QVERIFY(!re.isValid());
    }
};

FENWORK_TEST(TestMelody)
#include "tst_melody.moc"
