// Automatic chords: note tokens and keys, the bar analysis, the choice of chords and their writing.
#include "testmain.h"

#include "tools/notetokens.h"

#include <QTest>

using namespace fenwork;

class TestNoteTokens : public QObject
{
    Q_OBJECT

private slots:
    void tokenise_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("tokens");
        QTest::newRow("lengths and octaves stay") << "A3/2c'B,," << "A3/2 c' B,,";
        QTest::newRow("double sharp is its own token") << "^^F" << "^^ F";
        QTest::newRow("natural and flat take the letter") << "=f_B" << "=f _B";
        QTest::newRow("slur fuses, tuplet mark stands") << "(A(3Bcd" << "(A (3 B c d";
        QTest::newRow("H-Y letters dropped") << "TAuB" << "A B";
        QTest::newRow("rests are tokens") << "z2Z" << "z2 Z";
        QTest::newRow("leading ending digit") << "1A2" << "1 A2";
    }
    void tokenise()
    {
        QFETCH(QString, text);
        QFETCH(QString, tokens);
        QCOMPARE(TokeniseNotes(text), tokens);
    }

    void keys_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("accidentals");
        QTest::addColumn<bool>("known");
        QTest::newRow("G") << "G" << "Gmaj" << "F" << true;
        QTest::newRow("Bb") << "Bb" << "Bbmaj" << "BE" << true;
        QTest::newRow("A Dorian") << "A Dorian" << "Ador" << "F" << true;
        QTest::newRow("ADor") << "ADor" << "Ador" << "F" << true;
        QTest::newRow("Em") << "Em" << "Emin" << "F" << true;
        QTest::newRow("E minor") << "E  minor" << "Emin" << "F" << true;
        QTest::newRow("F# aeolian") << "F# aeolian" << "F#min" << "FCG" << true;
        QTest::newRow("Ionian") << "Eb Ionian" << "Ebmaj" << "BEA" << true;
        QTest::newRow("mixolydian misspelt") << "D myxolydian" << "Dmix" << "F" << true;
        QTest::newRow("lydian") << "Bb Lydian" << "Bblyd" << "B" << true;
        QTest::newRow("tail kept") << "D clef=alto" << "Dmaj clef=alto" << "FC" << true;
        QTest::newRow("mode then tail") << "Amix treble" << "Amix treble" << "FC" << true;
        QTest::newRow("none") << "none" << "none" << "" << false;
        QTest::newRow("unknown tonic") << "HP" << "HPmaj" << "" << false;
        QTest::newRow("seven flats") << "Cb" << "Cbmaj" << "BEADGCF" << true;
        QTest::newRow("seven sharps locrian") << "B#loc" << "B#loc" << "FCGDAEB" << true;
    }
    void keys()
    {
        QFETCH(QString, value);
        QFETCH(QString, key);
        QFETCH(QString, accidentals);
        const QString normalised = normaliseKey(value);
        QCOMPARE(normalised, key);
        QFETCH(bool, known);
        bool found = !known;
        QCOMPARE(keyAccidentals(keyNameOf(normalised), &found), accidentals);
        QCOMPARE(found, known);
    }

    void signature_data()
    {
        QTest::addColumn<QString>("notes");
        QTest::addColumn<QString>("letters");
        QTest::addColumn<QString>("inKey");
        QTest::newRow("sharps, both octaves") << "F c B f" << "FC" << "F^ c^ B f^";
        QTest::newRow("flats") << "B e E A" << "BE" << "B_ e_ E_ A";
        QTest::newRow("no signature") << "F B" << "" << "F B";
    }
    void signature()
    {
        QFETCH(QString, notes);
        QFETCH(QString, letters);
        QFETCH(QString, inKey);
        QCOMPARE(ApplyKeySignature(notes, letters), inKey);
    }

    void heights()
    {
        QVERIFY(pitchHeight(QStringLiteral("c'")) > pitchHeight(QStringLiteral("c")));
        QVERIFY(pitchHeight(QStringLiteral("c''")) > pitchHeight(QStringLiteral("c'")));
        QVERIFY(pitchHeight(QStringLiteral("C,")) < pitchHeight(QStringLiteral("C")));
        QVERIFY(pitchHeight(QStringLiteral("A")) < pitchHeight(QStringLiteral("C")));
        QVERIFY(pitchHeight(QStringLiteral("B")) < pitchHeight(QStringLiteral("c")));
    }
};
FENWORK_TEST(TestNoteTokens)

#include "tst_chords.moc"
