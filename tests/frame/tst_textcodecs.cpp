#include "testmain.h"

#include "frame/scripteddialogs.h"
#include "frame/textcodecs.h"

#include <QRandomGenerator>
#include <QTest>

using namespace fenwork;

namespace {

// The escape table in the order of its passes: letter, then its escape.
const QList<QPair<QString, QString>> &escapeTable()
{
    static const QList<QPair<QString, QString>> table = [] {
        const QString letters = QStringLiteral("àÀáÁâÂãÃäÄåÅçÇèÈéÉêÊëËìÌíÍîÎïÏñÑòÒóÓôÔöÖõÕøØùÙúÚûÛüÜýÝÿæÆß");
        const QStringList escapes = QStringLiteral(
            "`a `A 'a 'A ^a ^A ~a ~A \"a \"A oa oA ,c ,C `e `E 'e 'E ^e ^E \"e \"E `i `I 'i 'I ^i ^I \"i \"I "
            "~n ~N `o `O 'o 'O ^o ^O \"o \"O ~o ~O /o /O `u `U 'u 'U ^u ^U \"u \"U 'y 'Y \"y ae AE ss")
                                        .split(u' ');
        QList<QPair<QString, QString>> t;
        for (int i = 0; i < letters.size(); ++i)
            t.append({ letters.mid(i, 1), u'\\' + escapes.at(i) });
        return t;
    }();
    return table;
}

// The conversions written as the plain ordered replace-all passes, to hold the real ones against.
QString passesEncode(QString text)
{
    text.replace(QStringLiteral("\\"), QStringLiteral("\\\\"));
    text.replace(QStringLiteral("©"), QStringLiteral("(C)"));
    for (const auto &[letter, escape] : escapeTable())
        text.replace(letter, escape);
    return text;
}

QString passesDecode(QString text)
{
    text.replace(QStringLiteral("\\\\"), QStringLiteral("\\"));
    for (const auto &[letter, escape] : escapeTable())
        text.replace(escape, letter);
    return text;
}

QString passesEntityDecode(QString text)
{
    const QList<QPair<QString, QString>> basic = { { "&quot;", "\"" }, { "&#34;", "\"" }, { "&amp;", "&" },
        { "&#38;", "&" }, { "&lt;", "<" }, { "&#60;", "<" }, { "&gt;", ">" }, { "&#62;", ">" } };
    for (const auto &[before, after] : basic)
        text.replace(before, after);
    for (int code = 160; code <= 255; ++code) {
        const QString letter { QChar(char16_t(code)) };
        text.replace(code == 160 ? QStringLiteral("&nbsp;") : htmlEntityEncode(letter), letter);
        text.replace(QStringLiteral("&#%1;").arg(code), letter);
    }
    return text;
}

QString passesEntityEncode(QString text)
{
    text.replace(QStringLiteral("\""), QStringLiteral("&quot;"));
    text.replace(QStringLiteral("&"), QStringLiteral("&amp;"));
    text.replace(QStringLiteral("<"), QStringLiteral("&lt;"));
    text.replace(QStringLiteral(">"), QStringLiteral("&gt;"));
    for (int code = 160; code <= 255; ++code) {
        const QString letter { QChar(char16_t(code)) };
        text.replace(letter, htmlEntityEncode(letter));
    }
    return text;
}

// Records every value the bar is given.
class ProgressRecorder : public ScriptedDialogs
{
public:
    QList<int> values;
    void setProgressValue(int value) override
    {
        values.append(value);
        ScriptedDialogs::setProgressValue(value);
    }
};

} // namespace

class TestTextCodecs : public QObject
{
    Q_OBJECT

private slots:
    void escapeEncode_data()
    {
        // clang-format off
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("coded");
        QTest::newRow("acute") << "é" << "\\'e";
        QTest::newRow("backslash doubled") << "C:\\a" << "C:\\\\a";
        QTest::newRow("copyright has no way back") << "© 2024" << "(C) 2024";
        QTest::newRow("digraphs") << "Æsop æ ß" << "\\AEsop \\ae \\ss";
        QTest::newRow("ring cedilla slash") << "åÅçÇøØ" << "\\oa\\oA\\,c\\,C\\/o\\/O";
        QTest::newRow("y diaeresis, no capital") << "ÿ" << "\\\"y";
        QTest::newRow("letters outside the table stay") << "¿Ðþ€" << "¿Ðþ€";
        QTest::newRow("escape typed by hand is protected") << "\\'e" << "\\\\'e";
        QTest::newRow("empty") << "" << "";
        // clang-format on
    }
    void escapeEncode()
    {
        QFETCH(QString, text);
        QFETCH(QString, coded);
        QCOMPARE(abcEscapeEncode(text), coded);
    }

    void escapeDecode_data()
    {
        // clang-format off
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("decoded");
        QTest::newRow("acute") << "Caf\\'e" << "Café";
        QTest::newRow("doubled backslash still decodes") << "\\\\'e" << "é";
        QTest::newRow("path") << "C:\\\\a" << "C:\\a";
        QTest::newRow("no pass for (C)") << "(C) Trad." << "(C) Trad.";
        QTest::newRow("three backslashes") << "\\\\\\'e" << "\\é";
        QTest::newRow("unknown pair stays") << "\\'x \\\"Y \\q" << "\\'x \\\"Y \\q";
        QTest::newRow("cut at the end") << "ab\\'" << "ab\\'";
        QTest::newRow("digraphs") << "\\AEsop \\ae \\ss" << "Æsop æ ß";
        QTest::newRow("adjacent") << "\\'e\\`a\\\"u" << "éàü";
        QTest::newRow("empty") << "" << "";
        // clang-format on
    }
    void escapeDecode()
    {
        QFETCH(QString, text);
        QFETCH(QString, decoded);
        QCOMPARE(abcEscapeDecode(text), decoded);
    }

    void escapeRoundTrip_data()
    {
        // clang-format off
        QTest::addColumn<QString>("text");
        QString all;
        for (const auto &[letter, escape] : escapeTable()) {
            QTest::newRow(qPrintable(QStringLiteral("letter ") + letter)) << letter;
            all += letter + u'\\';
        }
        QTest::newRow("every letter with backslashes") << all;
        QTest::newRow("path") << "C:\\a\\b";
        QTest::newRow("NUL kept") << (QStringLiteral("a") + QChar(0) + QStringLiteral("é"));
        // clang-format on
    }
    void escapeRoundTrip()
    {
        QFETCH(QString, text);
        QCOMPARE(abcEscapeDecode(abcEscapeEncode(text)), text);
    }

    // Both conversions are done in one scan; on any text they must equal the ordered passes.
    void escapeSameAsOrderedPasses()
    {
        const QString alphabet = QStringLiteral("\\\\\\'`^~\",/oaeAEsSyYuéß©x");
        QRandomGenerator rng(20240611);
        for (int round = 0; round < 3000; ++round) {
            QString text;
            const int length = rng.bounded(12);
            for (int i = 0; i < length; ++i)
                text += alphabet.at(rng.bounded(int(alphabet.size())));
            QCOMPARE(abcEscapeEncode(text), passesEncode(text));
            QCOMPARE(abcEscapeDecode(text), passesDecode(text));
        }
    }

    void escapeProgress_data()
    {
        // clang-format off
        QTest::addColumn<int>("length");
        QTest::newRow("empty") << 0;
        QTest::newRow("short") << 7;
        QTest::newRow("big") << 300000;
        // clang-format on
    }
    void escapeProgress()
    {
        QFETCH(int, length);
        const QString text(length, u'é');
        for (bool decode : { false, true }) {
            ProgressRecorder ui;
            ui.setProgressValue(30); // left over from an earlier step
            ui.values.clear();
            if (decode)
                abcEscapeDecode(text, &ui);
            else
                abcEscapeEncode(text, &ui);
            QCOMPARE(ui.progress.maximum, 58);
            QList<int> expected { 0 };
            for (int v = 5; v <= 55; v += 5)
                expected.append(v);
            QCOMPARE(ui.values, expected);
        }
    }

    void entityDecode_data()
    {
        // clang-format off
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("decoded");
        QTest::newRow("numeric") << "caf&#233;" << "café";
        QTest::newRow("named") << "caf&eacute;" << "café";
        QTest::newRow("capital named") << "&Eacute;t&eacute;" << "Été";
        QTest::newRow("names are case sensitive") << "&EACUTE;" << "&EACUTE;";
        QTest::newRow("amp first makes lt") << "&amp;lt;" << "<";
        QTest::newRow("quot before amp") << "&amp;quot;" << "&quot;";
        QTest::newRow("numeric amp makes gt") << "&#38;gt;" << ">";
        QTest::newRow("basic") << "&quot;a&quot; &#34;&lt;&#60;&gt;&#62;" << "\"a\" \"<<>>";
        QTest::newRow("nbsp") << "a&nbsp;b&#160;c" << "a\u00a0b\u00a0c";
        QTest::newRow("last") << "&yuml;&#255;&iexcl;" << "ÿÿ¡";
        QTest::newRow("padded number stays") << "&#0233;" << "&#0233;";
        QTest::newRow("beyond Latin-1 stays") << "&euro;&#8364;" << "&euro;&#8364;";
        // clang-format on
    }
    void entityDecode()
    {
        QFETCH(QString, text);
        QFETCH(QString, decoded);
        QCOMPARE(htmlEntityDecode(text), decoded);
    }

    void entityEncode_data()
    {
        // clang-format off
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("coded");
        QTest::newRow("double quote ends doubly coded") << "\"" << "&amp;quot;";
        QTest::newRow("markup") << "a<b>&c" << "a&lt;b&gt;&amp;c";
        QTest::newRow("letters") << "Été ÿ" << "&Eacute;t&eacute; &yuml;";
        QTest::newRow("signs") << "\u00a0©½×" << "&nbsp;&copy;&frac12;&times;";
        QTest::newRow("outside Latin-1 stays") << "€" << "€";
        // clang-format on
    }
    void entityEncode()
    {
        QFETCH(QString, text);
        QFETCH(QString, coded);
        QCOMPARE(htmlEntityEncode(text), coded);
    }

    // Both entity conversions avoid running every pass over the whole text; on any text they
    // must equal the ordered passes.
    void entitySameAsOrderedPasses()
    {
        const QStringList tokens = { "&", "amp;", "#38;", "lt;", "quot;", "#34;", "eacute;", "#233;", "a",
            ";", "#", "gt", "&amp;", "nbsp;", "#160;", "\"", "<", "é", "\u00a0" };
        QRandomGenerator rng(7);
        for (int round = 0; round < 3000; ++round) {
            QString text;
            const int length = rng.bounded(9);
            for (int i = 0; i < length; ++i)
                text += tokens.at(rng.bounded(int(tokens.size())));
            QCOMPARE(htmlEntityDecode(text), passesEntityDecode(text));
            QCOMPARE(htmlEntityEncode(text), passesEntityEncode(text));
        }
        // A stretch longer than the part the decoder looks at.
        const QString longRun
            = QStringLiteral("&amp;#38;eacute;") + QString(40, u'x') + QStringLiteral("&lt;");
        QCOMPARE(htmlEntityDecode(longRun), passesEntityDecode(longRun));
    }

    void entityRoundTrip()
    {
        QString all = QStringLiteral("<&>");
        for (int code = 160; code <= 255; ++code)
            all += QChar(char16_t(code));
        QCOMPARE(htmlEntityDecode(htmlEntityEncode(all)), all);
    }

    void charset_data()
    {
        // clang-format off
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("charset");
        QTest::newRow("iso-8859-2") << "%abc-2.1\r\n%%abc-charset ISO-8859-2\r\n" << "latin2";
        QTest::newRow("iso-8859-15 is not latin1") << "%%abc-charset ISO-8859-15" << "";
        QTest::newRow("iso-8859-10") << "%%abc-charset iso-8859-10" << "";
        QTest::newRow("iso-8859-1") << "%%abc-charset iso-8859-1\r\n" << "latin1";
        QTest::newRow("latin 1 spaced") << "%%abc-charset  Latin 1" << "latin1";
        QTest::newRow("latin2") << "%%abc-charset latin2" << "latin2";
        QTest::newRow("latin9") << "%%abc-charset latin9" << "";
        QTest::newRow("utf-8") << "%%abc-charset utf-8" << "";
        QTest::newRow("LF line ends") << "T:x\n%%abc-charset iso-8859-2\nT:y" << "latin2";
        QTest::newRow("not at line start") << "% %%abc-charset latin1" << "";
        QTest::newRow("unknown then known") << "%%abc-charset cp1250\r\n%%abc-charset latin2" << "latin2";
        QTest::newRow("first answer counts") << "%%abc-charset utf-8\r\n%%abc-charset latin1" << "";
        QTest::newRow("none") << "%abc\r\nX:1" << "";
        QTest::newRow("empty") << "" << "";
        // clang-format on
    }
    void charset()
    {
        QFETCH(QString, header);
        QFETCH(QString, charset);
        QCOMPARE(charsetFromHeader(header), charset);
    }

    void latin2_data()
    {
        // clang-format off
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("charset");
        QTest::addColumn<QString>("folded");
        // Latin-2 bytes as code points: 0xA9 Š, 0xE8 č, 0xB9 š, 0xFE ţ, 0xA2 breve.
        const QString czech = QString::fromLatin1("\xa9\xe8\xb9\xfe\xa2x\xe9");
        QTest::newRow("latin2") << czech << "latin2" << QStringLiteral("Scst x\u00e9");
        QTest::newRow("latin1 leaves it") << czech << "latin1" << czech;
        QTest::newRow("exact name only") << czech << "Latin2" << czech;
        QTest::newRow("bounds") << QString::fromLatin1("\x9a\x9e\xff") << "latin2" << "sz'";
        // clang-format on
    }
    void latin2()
    {
        QFETCH(QString, text);
        QFETCH(QString, charset);
        QFETCH(QString, folded);
        QCOMPARE(latin2Fold(text, charset), folded);
    }
};

FENWORK_TEST(TestTextCodecs)
#include "tst_textcodecs.moc"
