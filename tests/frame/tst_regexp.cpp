#include "testmain.h"

#include "frame/regexp.h"

#include <QTest>

using namespace fenwork;

namespace {

// Flags written as letters: g Global, i IgnoreCase, m MultiLine.
void setUp(RegExp &re, const QString &pattern, const QString &flags)
{
    re.Pattern = pattern;
    re.Global = flags.contains(u'g');
    re.IgnoreCase = flags.contains(u'i');
    re.MultiLine = flags.contains(u'm');
}

// Matches as "start:length", which reads well in a failing comparison.
QStringList spans(const QVector<RegExpMatch> &matches)
{
    QStringList out;
    for (const RegExpMatch &m : matches)
        out << QStringLiteral("%1:%2").arg(m.firstIndex).arg(m.length);
    return out;
}

const QString kColouring = QStringLiteral("^[a-zA-Z]:.*$|\\[1|\\[2|\\|1|:\\|2|::|:\\|\\|:|:\\|:|\\|:|:\\||\\["
                                          "\\||\\|\\]|\\||~|\\[\\D.*?\\]|{.*?}|\".*?\"|"
                                          "\\([2-8]|^%%.*$|\\\\$|%.*$");

} // namespace

class TestRegExp : public QObject
{
    Q_OBJECT

private slots:
    void execute_data()
    {
        // clang-format off
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("flags");
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QStringList>("expected");

        const QString ps = QStringLiteral("^%%beginps[\\d\\D\\w\\W\\s\\S]*?^%%endps");
        QTest::newRow("postscript blocks on CR LF") << ps << "gm" << "X:1\r\n%%beginps\r\n/a 1 def\r\n%%endps\r\nabc| 1\r\n%%beginps\r\n%%endps x\r\n" << QStringList { "5:28", "43:18" };
        QTest::newRow("postscript end must start a line") << ps << "gm" << "%%beginps\r\nx %%endps\r\n%%endps" << QStringList { "0:29" };

        const QString repeatField = QStringLiteral("^\\|:\\w:.+?$");
        QTest::newRow("repeat before field stops before CR") << repeatField << "m" << "X:1\r\n|:K:G\r\nabc|\r\n|:T:x\r\n" << QStringList { "5:5" };
        QTest::newRow("repeat before inline field is none") << repeatField << "m" << "|:[K:G]\r\n" << QStringList {};
        QTest::newRow("comment cut keeps CR") << "[^%]%[^%].*$" << "gm" << "A B % note\r\nC" << QStringList { "3:8" };
        QTest::newRow("remark line takes its CR") << "\\[r:.*?\\]|^r:.*$" << "gm" << "x\r\nr:rem\r\ny[r:a]" << QStringList { "3:6", "11:5" };
        QTest::newRow("colouring a field line and bars") << kColouring << "gm" << "K:G % key\r\n|:\"Am\"A2 [K:D] B:|\\\r\n%%MIDI x\r\n" << QStringList { "0:10", "11:2", "13:4", "20:5", "27:2", "29:1", "32:9" };

        QTest::newRow("dot takes CR") << "a.b" << "g" << "a\rb" << QStringList { "0:3" };
        QTest::newRow("dot refuses LF") << "a.b" << "g" << "a\nb" << QStringList {};
        QTest::newRow("line starts after CR LF, CR, LF") << "^" << "gm" << "a\r\nb\rc\nd" << QStringList { "0:0", "3:0", "5:0", "7:0" };
        QTest::newRow("line ends before CR and LF") << "$" << "gm" << "a\r\nb" << QStringList { "1:0", "2:0", "4:0" };
        QTest::newRow("greedy dot to line end takes CR") << "^b.*$" << "gm" << "a\r\nb c\r\nd" << QStringList { "3:4" };
        QTest::newRow("lazy dot to line end leaves CR") << "^b.*?$" << "gm" << "a\r\nb c\r\nd" << QStringList { "3:3" };
        QTest::newRow("caret is subject start only") << "^b" << "g" << "a\nb" << QStringList {};
        QTest::newRow("dollar is subject end only") << "a$" << "g" << "a\n" << QStringList {};
        QTest::newRow("bracket first in a class") << "[]a]" << "g" << "]a" << QStringList { "0:1", "1:1" };
        QTest::newRow("posix class") << "[[:digit:].]+" << "g" << "ab1.2c" << QStringList { "2:3" };
        QTest::newRow("unicode escape") << "\\u00e9|[\\u00e0-\\u00e8]" << "g" << "aéb à" << QStringList { "1:1", "4:1" };
        QTest::newRow("global off gives the first") << "b" << "" << "abcb" << QStringList { "1:1" };
        QTest::newRow("ignore case") << "abc|é" << "gi" << "ABC É" << QStringList { "0:3", "4:1" };
        QTest::newRow("word is ASCII") << "\\w+" << "g" << "aé1" << QStringList { "0:1", "2:1" };
        QTest::newRow("empty matches step on") << "x*" << "g" << "axb" << QStringList { "0:0", "1:1", "2:0", "3:0" };
        QTest::newRow("empty pattern") << "" << "g" << "ab" << QStringList { "0:0", "1:0", "2:0" };
        QTest::newRow("surrogate pair is one character") << "." << "g" << "🎵a" << QStringList { "0:2", "2:1" };
        QTest::newRow("empty match before a surrogate pair") << "x*" << "g" << "🎵" << QStringList { "0:0", "2:0" };
        // clang-format on
    }
    void execute()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, flags);
        QFETCH(QString, subject);
        QFETCH(QStringList, expected);
        RegExp re;
        setUp(re, pattern, flags);
        QVERIFY2(re.isValid(), qPrintable(re.errorText()));
        const QVector<RegExpMatch> matches = re.Execute(subject);
        QCOMPARE(spans(matches), expected);
        for (const RegExpMatch &m : matches)
            QCOMPARE(m.value, subject.mid(m.firstIndex, m.length));
        QCOMPARE(re.Test(subject), !expected.isEmpty());
    }

    void lineStartBetweenMatches()
    {
        // A later search looks behind its start, so "^" does not fire in the middle of a line.
        RegExp re;
        setUp(re, QStringLiteral("^a"), QStringLiteral("gm"));
        QCOMPARE(spans(re.Execute(QStringLiteral("aa\r\naa"))), (QStringList { "0:1", "4:1" }));
    }

    void replace_data()
    {
        // clang-format off
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("flags");
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<QString>("expected");

        QTest::newRow("bars close up") << "\\| *?\\|" << "gm" << "| |a|  |" << "||" << "||a||";
        QTest::newRow("groups") << "(\\w+) (\\w+)" << "g" << "ab cd" << "$2 $1" << "cd ab";
        QTest::newRow("around") << "b" << "g" << "abc" << "$'$`" << "acac";
        QTest::newRow("two digits need the group") << "(a)" << "g" << "a" << "$10" << "a0";
        QTest::newRow("two digits") << "(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)" << "g" << "abcdefghij" << "$10$1" << "ja";
        QTest::newRow("missing group stays") << "(a)" << "g" << "a" << "$3$" << "$3$";
        QTest::newRow("group that did not take part") << "(a)|(b)" << "g" << "b" << "<$1>" << "<>";
        QTest::newRow("empty matches end") << "x*" << "g" << "abc" << "-" << "-a-b-c-";
        QTest::newRow("line starts") << "^" << "gm" << "a\r\nb" << ">" << ">a\r\n>b";
        // clang-format on
    }
    void replace()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, flags);
        QFETCH(QString, subject);
        QFETCH(QString, replacement);
        QFETCH(QString, expected);
        RegExp re;
        setUp(re, pattern, flags);
        QCOMPARE(re.Replace(subject, replacement), expected);
    }

    void invalid_data()
    {
        // clang-format off
        QTest::addColumn<QString>("pattern");
        QTest::newRow("open group") << "G(A";
        QTest::newRow("nothing to repeat") << "*a";
        // clang-format on
    }
    void invalid()
    {
        QFETCH(QString, pattern);
        RegExp re;
        setUp(re, pattern, QStringLiteral("gm"));
        QVERIFY(!re.isValid());
        QVERIFY(!re.errorText().isEmpty());
        QVERIFY(!re.Test(QStringLiteral("GA")));
        QVERIFY(re.Execute(QStringLiteral("GA")).isEmpty());
        QCOMPARE(re.Replace(QStringLiteral("GA"), QStringLiteral("x")), QStringLiteral("GA"));
    }

    void recompilesOnChange()
    {
        RegExp re;
        setUp(re, QStringLiteral("^b$"), QString());
        const QString subject = QStringLiteral("a\r\nB");
        QVERIFY(!re.Test(subject));
        re.MultiLine = true;
        QVERIFY(!re.Test(subject));
        re.IgnoreCase = true;
        QVERIFY(re.Test(subject));
        re.Pattern = QStringLiteral("(");
        QVERIFY(!re.isValid());
        re.Pattern = QStringLiteral("^a$");
        QVERIFY(re.isValid());
        QVERIFY(re.errorText().isEmpty());
        QVERIFY(re.Test(subject));
        re.MultiLine = false;
        QVERIFY(!re.Test(subject));
    }
};

FENWORK_TEST(TestRegExp)
#include "tst_regexp.moc"
