// Automatic chords: note tokens and keys, the bar analysis, the choice of chords and their writing.
#include "testenv.h"
#include "testmain.h"
#include "app/widgets/mainmenus.h"
#include "app/widgets/mainwindow.h"
#include "editing/widgets/editcontroller.h"
#include "tools/chords.h"
#include "tools/keybars.h"
#include "tools/notetokens.h"
#include "tools/widgets/toolsdialog.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
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
        QTest::newRow("mixolydian misspelt") << "D myxolydian" << "Dmix" << "F" << true;
        QTest::newRow("tail kept") << "D clef=alto" << "Dmaj clef=alto" << "FC" << true;
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
};
FENWORK_TEST(TestNoteTokens)

class TestKeyBars : public QObject
{
    Q_OBJECT

private slots:
    void classify_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("type");
        QTest::newRow("key, rest trimmed") << "K: Bb dorian" << "key";
        QTest::newRow("directive") << "%%MIDI program 1" << "extField";
        QTest::newRow("comment") << "% K:D" << "rem";
        QTest::newRow("one-letter part") << "P:A" << "partField";
        QTest::newRow("part sequence") << "P:ABAB" << "propField";
        QTest::newRow("voice") << "V:1" << "voice";
        QTest::newRow("music") << "|:GA|B2" << "mus";
    }
    void classify()
    {
        QFETCH(QString, line);
        QFETCH(QString, type);
        QString key = QStringLiteral("C"), meter, unit;
        QCOMPARE(ClassifyAbcLine(line, key, meter, unit), type);
        QCOMPARE(key, type == u"key" ? QStringLiteral("Bb dorian") : QStringLiteral("C"));
    }

    // Per bar: notes, chord position, middle position and flags (P pick-up, S and E repeat start
    // and end, 1 and 2 endings, "-" none), bars joined by " | ".
    void bars_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("pendingIn");
        QTest::addColumn<QString>("notes");
        QTest::addColumn<QString>("positions");
        QTest::addColumn<QString>("flags");
        QTest::addColumn<bool>("pendingOut");
        QTest::newRow("halves of four") << "| A2 B2 c2 d2 |" << false << "A2 B2 * c2 d2" << "2/8" << "-" << false;
        QTest::newRow("first half empty") << "A6 B2|" << false << "* A6 B2" << "1/0" << "-" << false;
        QTest::newRow("pick-up") << "GA | B2 c2 d2 e2 |" << false << "G * A | B2 c2 * d2 e2" << "1/2 | 5/11" << "P | -"
                                 << false;
        QTest::newRow("short second bar") << "B2 c2 d2 e2 | GA |" << false << "B2 c2 * d2 e2 | G * A" << "1/6 | 14/16"
                                          << "- | -" << false;
        QTest::newRow("one note") << "B2 c2 d2 e2 | A8 |" << false << "B2 c2 * d2 e2 | * A8" << "1/6 | 14/0"
                                  << "- | P" << false;
        QTest::newRow("chord in brackets: one note left, field in brackets")
            << "[CEG]2 c2 | [K:D] d2 e2" << false << " | d2 * e2" << "1/0 | 12/21" << "P | -" << false;
        QTest::newRow("rests only") << "z4 z4 | A2 B2" << false << " | A2 * B2" << "1/3 | 8/11" << "- | -" << false;
        QTest::newRow("repeat start carried, handed on")
            << "A B c d | e f g a ::" << true << "A B * c d | e f * g a" << "1/4 | 10/14" << "S | E" << true;
        QTest::newRow("repeat start on a bar line") << "| A B c d |" << true << "A B * c d" << "2/6" << "S" << false;
        QTest::newRow("tuplet") << "(3ABc d2 e2 |" << false << "(3 A B c * d2 e2" << "1/6" << "-" << false;
        QTest::newRow("endings") << "|1 A B c d :|2 e f g a |]" << false << "A B * c d | e f * g a" << "2/7 | 15/19"
                                 << "E1 | 2" << false;
        QTest::newRow("lengths digit by digit") << "A3/2 B/ c// d12" << false << "A3/2 B/ * c// d12" << "1/8" << "-"
                                                << false;
        QTest::newRow("ornaments, graces, decorations") << "~A {g}B !trill!c Td" << false << "A B * c d" << "1/8"
                                                        << "-" << false;
    }
    void bars()
    {
        QFETCH(QString, line);
        QFETCH(bool, pendingIn);
        bool pending = pendingIn;
        const QVector<BarRecord> records = AnalyseBars(line, QStringLiteral("C"), QStringLiteral("4/4"), false, pending);
        QStringList notes, positions, flags;
        for (const BarRecord &bar : records) {
            notes << bar.notes;
            positions << QStringLiteral("%1/%2").arg(bar.chordPos).arg(bar.midPos);
            QString f = QString(bar.pickup ? "P" : "") + (bar.repeatStart ? "S" : "") + (bar.repeatEnd ? "E" : "")
                + (bar.firstEnding ? "1" : "") + (bar.secondEnding ? "2" : "");
            flags << (f.isEmpty() ? QStringLiteral("-") : f);
        }
        QTEST(notes.join(QLatin1String(" | ")), "notes");
        QTEST(positions.join(QLatin1String(" | ")), "positions");
        QTEST(flags.join(QLatin1String(" | ")), "flags");
        QTEST(pending, "pendingOut");
    }
};
FENWORK_TEST(TestKeyBars)

class TestChords : public QObject
{
    Q_OBJECT

private slots:
    void degrees_data()
    {
        QTest::addColumn<QString>("keyName");
        QTest::addColumn<QString>("chords");
        QTest::newRow("Cmaj") << "Cmaj" << "C Dm Em F G Am Bmdim";
        QTest::newRow("C#maj") << "C#maj" << "C# D#m E#m F# G# A#m B#mdim";
        QTest::newRow("Gbmaj") << "Gbmaj" << "Gb Abm Bbm Cb Db Ebm Fmdim";
        QTest::newRow("Amin") << "Amin" << "Am Bdim C Dm Em F G";
        QTest::newRow("Gmix") << "Gmix" << "G Am Bmdim C D7 Em F";
        QTest::newRow("D#dor") << "D#dor" << "D#m E#m F# G# A#m B# C#";
        QTest::newRow("G#dor") << "G#dor" << "G#m A#m B C# D#m E#mdim F#";
        QTest::newRow("Ebphr") << "Ebphr" << "Ebm Fb Gb Abm Bbm Cb Dbm";
        QTest::newRow("Fblyd") << "Fblyd" << "Fb Gbm Abm Bbm Cb Dbm Ebm";
        QTest::newRow("B#loc") << "B#loc" << "B#m C# D#m E#m F# G# A#m";
        QTest::newRow("tonic not of the mode") << "Cbmin" << "";
        QTest::newRow("unknown tonic") << "HPmaj" << "";
    }
    void degrees()
    {
        QFETCH(QString, keyName);
        const DegreeTable table = degreeTable(keyName);
        QTEST(table.chords.join(QLatin1Char(' ')), "chords");
        for (int k = 0; k < table.letters.size(); ++k)
            QCOMPARE(table.letters.at(k), table.chords.at(k).left(1));
    }

    // One line under a key, through the whole run: old quoted strings out, chords in.
    void addChords_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("two");
        QTest::addColumn<QString>("result");
        QTest::addColumn<bool>("warned");
        QTest::newRow("G major tonic") << "G" << "B2 d2 g2 b2|" << false << " \"G\" B2 d2 g2 b2|" << false;
        QTest::newRow("C and E only") << "G" << "C2 E2 C2 E2|" << false << " \"C\" C2 E2 C2 E2|" << false;
        QTest::newRow("minor, previous chord") << "Am" << "B2 d2 g2 b2 | A2 c2 e2 c2|" << false
                                               << " \"G\" B2 d2 g2 b2 | \"G\" A2 c2 e2 c2|" << false;
        QTest::newRow("minor, first note") << "Am" << "A2 B2 g2 B2|" << false << " \"Am\" A2 B2 g2 B2|" << false;
        QTest::newRow("dorian, first note") << "A dorian" << "B2 B2 B2 B2|" << false << " \"Bm\" B2 B2 B2 B2|"
                                            << false;
        QTest::newRow("mixolydian, previous chord") << "Gmix" << "F2 A2 c2 A2 | G2 B2 G2 B2|" << false
                                                    << " \"F\" F2 A2 c2 A2 | \"F\" G2 B2 G2 B2|" << false;
        QTest::newRow("rests only") << "Amix" << "\"D\" z8|" << false << " z8|" << false;
        QTest::newRow("accidental counts as its letter") << "C" << "^c2 e2 ^c2 e2|" << false
                                                          << " \"C\" ^c2 e2 ^c2 e2|" << false;
        QTest::newRow("pick-up") << "G" << "D | G2 B2 d2 B2|" << false << "D | \"G\" G2 B2 d2 B2|" << false;
        QTest::newRow("two a bar") << "G" << "| G2 B2 c2 e2 |" << true << "| \"G\" G2 B2 \"C\" c2 e2 |" << false;
        QTest::newRow("two a bar, first half empty") << "D" << "A6 B2|" << true << " \"G\" A6 B2|" << false;
        QTest::newRow("key none") << "none" << "\"G\" A B c d|" << false << " A B c d|" << true;
        QTest::newRow("unknown tonic") << "HP" << "G2 B2 d2 B2|" << false << "G2 B2 d2 B2|" << false;
    }
    void addChords()
    {
        QFETCH(QString, key);
        QFETCH(QString, line);
        QFETCH(bool, two);
        QFETCH(QString, result);
        test::TestEnv env;
        const QString head = QStringLiteral("X:1\r\nT:t\r\nM:4/4\r\nK:") + key + QStringLiteral("\r\n");
        // A second line in the same key: one warning stands for all refused lines.
        const QString out = AddChords(env.app(), head + line + QStringLiteral("\r\n") + line, two, false);
        QCOMPARE(out, head + result + QStringLiteral("\r\n") + result);
        QFETCH(bool, warned);
        QCOMPARE(env.ui().messages(),
                 warned ? QStringList{env.app().text(QStringLiteral("Tools"), QStringLiteral("<keyNotHdl>"))}
                        : QStringList());
    }

    // The chords button of the tune tools: two a bar into the edit panel; the warning about a
    // key without chords is shown while the window stands aside, and the window comes back.
    void toolsWindow()
    {
        test::TestEnv env;
        qputenv("FENNELWORKS_AUDIO", "file:" + env.path(QStringLiteral("out.wav")).toUtf8());
        std::unique_ptr<MainWindow> window = test::loadedMainWindow(env);
        const QString kFile = window->openPath(
            env.writeFile("t.abc", "X:1\nT:a\nK:G\n| G2 B2 c2 e2 |\n\nX:2\nT:b\nK:none\n\"G\"ABcd|\n"));
        const auto chordsOn = [&](int tune, bool two) {
            window->SimulerNodeClick(kFile + QStringLiteral("_tune") + QString::number(tune));
            window->editController()->abcedit();
            QApplication::processEvents();
            window->menus()->action(QStringLiteral("mnu_fileTools1"))->trigger();
            auto *dialog = window->findChild<ToolsDialog *>();
            QVERIFY(dialog);
            dialog->findChild<QRadioButton *>(QStringLiteral("opt_nbChords") + QString::number(two ? 1 : 0))->click();
            dialog->findChild<QPushButton *>(QStringLiteral("bt_addChords"))->click();
            QVERIFY(dialog->isVisible());
        };
        QPlainTextEdit *panel = window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC"));
        chordsOn(1, true);
        QVERIFY2(panel->toPlainText().contains(QLatin1String("| \"G\" G2 B2 \"C\" c2 e2 |")), qPrintable(panel->toPlainText()));
        QVERIFY(env.ui().messages().isEmpty());
        window->editController()->validate();
        QApplication::processEvents();
        chordsOn(2, false);
        QVERIFY2(!panel->toPlainText().contains(u'"'), qPrintable(panel->toPlainText()));
        QCOMPARE(env.ui().messages(), QStringList{env.app().text(QStringLiteral("Tools"), QStringLiteral("<keyNotHdl>"))});
        window.reset();
        qunsetenv("FENNELWORKS_AUDIO");
    }

    // Real tunes: every note, bar line and field stays, whatever chords come.
    void corpus()
    {
        const QString folder = test::corpusDir() + QStringLiteral("/nottingham");
        if (!QDir(folder).exists())
            QSKIP("the Nottingham collection of the shared corpus is not there");
        test::TestEnv env;
        static const QRegularExpression quotedOrBlank(QStringLiteral("\"[^\"\\n]*\"| "));
        const auto bare = [](QString text) { return text.remove(quotedOrBlank); };
        int tunes = 0;
        for (const QString &name : QDir(folder).entryList({QStringLiteral("*.abc")})) {
            const QString text = test::readAll(folder + u'/' + name).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
            for (const QString &tune : text.split(QRegularExpression(QStringLiteral("\n(?=X:)")))) {
                const QString crlf = QString(tune).replace(u'\n', QStringLiteral("\r\n"));
                for (bool two : {false, true}) {
                    const QString out = AddChords(env.app(), crlf, two, false);
                    QCOMPARE(bare(out).replace(QStringLiteral("\r\n"), QStringLiteral("\n")), bare(tune));
                }
                ++tunes;
            }
        }
        QVERIFY(tunes > 1000);
        QCOMPARE(env.ui().messages(), QStringList());
    }
};
FENWORK_TEST(TestChords)

#include "tst_chords.moc"
