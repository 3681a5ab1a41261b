#include "testmain.h"

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

} // namespace

class TestTextCodecs : public QObject
{
    Q_OBJECT

private slots:
    // Conversions where the order of the passes shows; the comparisons with the ordered passes
    // below cover every other text. "abc+"/"abc-" escape and unescape, "html+"/"html-" the entities.
    void conversions_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("result");
        // clang-format off
        QTest::newRow("backslash doubled") << "abc+" << "C:\\a" << "C:\\\\a";
        QTest::newRow("copyright has no way back") << "abc+" << "© 2024" << "(C) 2024";
        QTest::newRow("letters outside the table stay") << "abc+" << "¿Ðþ€" << "¿Ðþ€";
        QTest::newRow("escape typed by hand is protected") << "abc+" << "\\'e" << "\\\\'e";
        QTest::newRow("doubled backslash still decodes") << "abc-" << "\\\\'e" << "é";
        QTest::newRow("three backslashes") << "abc-" << "\\\\\\'e" << "\\é";
        QTest::newRow("cut at the end") << "abc-" << "ab\\'" << "ab\\'";
        QTest::newRow("double quote ends doubly coded") << "html+" << "\"" << "&amp;quot;";
        QTest::newRow("outside Latin-1 stays") << "html+" << "€" << "€";
        QTest::newRow("names are case sensitive") << "html-" << "&EACUTE;" << "&EACUTE;";
        QTest::newRow("amp first makes lt") << "html-" << "&amp;lt;" << "<";
        QTest::newRow("quot before amp") << "html-" << "&amp;quot;" << "&quot;";
        QTest::newRow("padded number stays") << "html-" << "&#0233;" << "&#0233;";
        QTest::newRow("beyond Latin-1 stays") << "html-" << "&euro;&#8364;" << "&euro;&#8364;";
        // clang-format on
    }
    void conversions()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(QString, result);
        const QString out = kind == u"abc+" ? abcEscapeEncode(text)
            : kind == u"abc-"               ? abcEscapeDecode(text)
            : kind == u"html+"              ? htmlEntityEncode(text)
                                            : htmlEntityDecode(text);
        QCOMPARE(out, result);
    }

    void roundTrips()
    {
        QString letters;
        for (const auto &[letter, escape] : escapeTable())
            letters += letter + u'\\';
        const QString nul = QStringLiteral("a") + QChar(0) + u'é';
        for (const QString &text : { letters, QStringLiteral("C:\\a\\b"), nul })
            QCOMPARE(abcEscapeDecode(abcEscapeEncode(text)), text);
        QString latin = QStringLiteral("<&>");
        for (int code = 160; code <= 255; ++code)
            latin += QChar(char16_t(code));
        QCOMPARE(htmlEntityDecode(htmlEntityEncode(latin)), latin);
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

    void charset_data()
    {
        // clang-format off
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("charset");
        QTest::newRow("iso-8859-2") << "%abc-2.1\r\n%%abc-charset ISO-8859-2\r\n" << "latin2";
        QTest::newRow("iso-8859-15 is not latin1") << "%%abc-charset ISO-8859-15" << "";
        QTest::newRow("iso-8859-1") << "%%abc-charset iso-8859-1\r\n" << "latin1";
        QTest::newRow("latin 1 spaced") << "%%abc-charset  Latin 1" << "latin1";
        QTest::newRow("not at line start") << "% %%abc-charset latin1" << "";
        QTest::newRow("unknown then known") << "%%abc-charset cp1250\r\n%%abc-charset latin2" << "latin2";
        QTest::newRow("first answer counts") << "%%abc-charset utf-8\r\n%%abc-charset latin1" << "";
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
