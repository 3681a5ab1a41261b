// The edit session without widgets: the undo ring, the caret's line as a tune, the blank-line
// rule, validation against a real tree, and transposition through the real abc2abc.
#include "testenv.h"
#include "testmain.h"

#include "editing/autoinsert.h"
#include "editing/barcounter.h"
#include "editing/editsession.h"
#include "editing/transpose.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/toolrunner.h"
#include "store/node.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QFile>
#include <QStandardPaths>
#include <QTest>

using namespace fenwork;
using fenwork::test::TestEnv;

namespace {

const QByteArray kTunes
    = "%abc\r\nX:1\r\nT:First\r\nM:6/8\r\nK:G\r\nGAB cde|\r\n\r\nX:2\r\nT:Second\r\nK:D\r\ndef|\r\n";

} // namespace

class TestEditSessionCore : public QObject
{
    Q_OBJECT
private slots:
    void undoRing_data()
    {
        QTest::addColumn<int>("pushes");
        QTest::addColumn<int>("undos");
        QTest::addColumn<QString>("expected");
        // Each push stores "tN"; "t0" is the text the session began with.
        QTest::newRow("one back") << 3 << 1 << "t2";
        QTest::newRow("back to start") << 3 << 3 << "t0";
        QTest::newRow("past the start") << 3 << 4 << "";
        QTest::newRow("ten changes: the oldest is lost") << 10 << 9 << "t1";
        QTest::newRow("ten changes: one more undo") << 10 << 10 << "";
        QTest::newRow("eleven changes") << 11 << 9 << "t2";
    }
    void undoRing()
    {
        QFETCH(int, pushes);
        QFETCH(int, undos);
        QFETCH(QString, expected);
        UndoRing ring;
        ring.resize(10);
        ring.SetUndo(QStringLiteral("t0"));
        for (int i = 1; i <= pushes; ++i)
            ring.SetUndo(QStringLiteral("t") + QString::number(i));
        QString got;
        for (int i = 0; i < undos; ++i)
            got = ring.GetUndo();
        QCOMPARE(got, expected);
    }

    void undoRingOutsideSession()
    {
        UndoRing ring;
        QVERIFY(!ring.SetUndo(QStringLiteral("a")));
        QCOMPARE(ring.GetUndo(), QString());
        ring.resize(10);
        QVERIFY(!ring.SetUndo(QString())); // an empty editor stores nothing
        QVERIFY(!ring.hasChanges());
        ring.SetUndo(QStringLiteral("a"));
        QVERIFY(!ring.hasChanges());
        ring.SetUndo(QStringLiteral("ab"));
        QVERIFY(ring.hasChanges());
    }

    void lineRules_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("guard");
        QTest::newRow("start of text") << "X:1\nK:G" << 0 << "X:1" << false;
        QTest::newRow("end of a line") << "X:1\nK:G\n" << 3 << "X:1" << false;
        QTest::newRow("empty last line") << "X:1\nK:G\n" << 8 << "" << true;
        QTest::newRow("start of a full line") << "X:1\nK:G" << 4 << "K:G" << true;
        QTest::newRow("middle of a line") << "X:1\nabc|def\n" << 6 << "abc|def" << false;
        QTest::newRow("CR LF text") << "X:1\r\nabc|\r\nK:D" << 7 << "abc|" << false;
        QTest::newRow("empty line between") << "a\n\nb" << 2 << "" << true;
    }
    void lineRules()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(QString, line);
        QFETCH(bool, guard);
        QCOMPARE(currentLine(text, caret), line);
        QCOMPARE(needsBlankLineGuard(text, caret), guard);
    }

    void curLineAsTune()
    {
        TestEnv env;
        const QString kFile
            = env.app().store().FichierOuvrir(env.writeFile("a.abc", kTunes), false, true, false);
        QVERIFY(!kFile.isEmpty());
        const QString kTune = kFile + QStringLiteral("_tune1");
        QVERIFY(env.app().tree().find(kTune));
        const QString text = QStringLiteral("X:1\nT:First\nK:G\nGAB cde|\nBAG FED|\n");
        QCOMPARE(getCurLineAsTune(env.app(), kTune, text, text.indexOf(QStringLiteral("FED"))),
            QStringLiteral("T:First\r\nM:6/8\r\nK:G\r\nBAG FED|\r\n"));
    }

    void validateTune()
    {
        TestEnv env;
        AppContext &app = env.app();
        const QString kFile = app.store().FichierOuvrir(env.writeFile("a.abc", kTunes), false, true, false);
        app.selection().setFileKey(kFile);
        app.selection().setTuneKey(kFile + QStringLiteral("_tune1"));
        EditSession session(app);
        QVERIFY(session.start(app.store().GetStringTune(app.selection().tuneKey(), false)));

        // Without its X: line the text is refused and the session goes on.
        QVERIFY(!session.validate(QStringLiteral("T:First\nK:G\nabc|\n")));
        QCOMPARE(env.ui().messages().size(), 1);
        QCOMPARE(env.ui().lastMessage(), app.text(QStringLiteral("Msg"), QStringLiteral("<Xmissing>")));
        QVERIFY(session.isActive());

        QVERIFY(session.validate(QStringLiteral("  X:1\nT:Changed\nK:A\nABc|\n")));
        QVERIFY(!session.isActive());
        const QString stored = app.store().GetStringTune(kFile + QStringLiteral("_tune1"), false);
        QVERIFY2(stored.contains(QStringLiteral("T:Changed\r\n")), qPrintable(stored));
    }

    void barCount_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("bars");
        QTest::newRow("nothing") << "" << 0;
        QTest::newRow("fields and comments only") << "X:1\r\nT:Reel\r\n% note\r\nK:G" << 0;
        QTest::newRow("two closed bars") << "K:G\r\nabc|def|" << 2;
        QTest::newRow("an open last bar counts") << "abc|def|ga" << 3;
        QTest::newRow("|: starts music, not a field") << "|:abc|def:|" << 2;
        QTest::newRow("| | is one bar line") << "abc| |def|" << 2;
        QTest::newRow("double and triple bars") << "abc||def|||gab|" << 3;
        QTest::newRow("lines are joined") << "abc|def|\r\nP:B\r\n|:gab|cde:|" << 4;
    }
    void barCount()
    {
        QFETCH(QString, text);
        QFETCH(int, bars);
        QCOMPARE(countBars(text), bars);
    }

    // What the program writes must read back the same: quotes, commas, line breaks and all.
    void insertionFileRoundTrip()
    {
        TestEnv env;
        const QList<InsertionEntry> entries { { "tr", "~" }, { "jig", "X:0\r\nM:6/8\r\nK:D\r\n" },
            { "q", "\"Am\",\"G\" and a \"\"" }, { "e", "" }, { "Tr", "!trill!" } };
        const QString path = env.root() + QStringLiteral("/insauto.dat");
        QVERIFY(writeInsAuto(path, entries));
        const QList<InsertionEntry> back = Lire_insAuto(path);
        QCOMPARE(back.size(), entries.size());
        for (int i = 0; i < entries.size(); ++i) {
            QCOMPARE(back.at(i).code, entries.at(i).code);
            QCOMPARE(back.at(i).text, entries.at(i).text);
        }
        QCOMPARE(findInsertion(back, QStringLiteral("Tr")), 4); // case counts
        QVERIFY(Lire_insAuto(env.path(QStringLiteral("none.dat"))).isEmpty());
    }

    // Two half-tones up through the real tool; a stale score file of an earlier run goes with it.
    void transposeWithTool()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("abc2abc")).isEmpty())
            QSKIP("abc2abc is not installed");
        TestEnv env;
        const QString stale = env.app().tools().inCache(QStringLiteral("tmp.ps"));
        QFile(stale).open(QIODevice::WriteOnly);
        const QString moved = transposeText(env.app(), QStringLiteral("X:1\nT:Small\nL:1/8\nK:G\nGABc d2|\n"), 2);
        QVERIFY2(env.ui().messages().isEmpty(), qPrintable(env.ui().messages().join(u'|')));
        QVERIFY2(moved.contains(QStringLiteral("K:A")), qPrintable(moved));
        // The music is the last line; the tool adds fields of its own above it.
        QVERIFY(QString(moved).remove(u'\r').trimmed().section(u'\n', -1).startsWith(u'A'));
        QVERIFY(moved.contains(QStringLiteral("T:Small")));
        QVERIFY(!QFile::exists(stale));
    }

    // Most folk tunes open with a pick-up bar, which the tool finds too short: nothing of its
    // complaint may get into the music, and a step up and back down gives the notes back.
    void transposePickupTune_data()
    {
        QTest::addColumn<int>("halfTones");
        QTest::newRow("up and back") << 2;
        QTest::newRow("down and back") << -5;
    }
    void transposePickupTune()
    {
        QFETCH(int, halfTones);
        if (QStandardPaths::findExecutable(QStringLiteral("abc2abc")).isEmpty())
            QSKIP("abc2abc is not installed");
        const QString file = test::corpusDir() + QStringLiteral("/nottingham/reelsa-c.abc");
        if (!QFile::exists(file))
            QSKIP("the shared corpus is not here");
        QString tune;
        for (const QString &piece : test::readAll(file).split(QStringLiteral("\nX:"))) {
            if (piece.contains(QStringLiteral("T:Angeline The Baker")))
                tune = QStringLiteral("X:") + piece;
        }
        QVERIFY(!tune.isEmpty());
        // The music: the lines after the key, as the tool spaces them.
        const auto music = [](const QString &text) {
            const QStringList lines = QString(text).remove(u'\r').split(u'\n', Qt::SkipEmptyParts);
            qsizetype key = 0;
            while (key < lines.size() && !lines.at(key).startsWith(QStringLiteral("K:")))
                ++key;
            return lines.mid(key + 1);
        };
        TestEnv env;
        const QString moved = transposeText(env.app(), tune, halfTones);
        const QString back = transposeText(env.app(), moved, -halfTones);
        QVERIFY2(env.ui().messages().isEmpty(), qPrintable(env.ui().messages().join(u'|')));
        QVERIFY2(!moved.contains(QStringLiteral("Error")), qPrintable(moved));
        QVERIFY(music(moved) != music(tune));
        QCOMPARE(music(back), music(tune));
    }

    void transposeToolWritesNothing()
    {
        TestEnv env;
        // A tool that ends without output: the wait gives up and the caller gets nothing.
        const QString fake = env.writeFile("silent.sh", "#!/bin/sh\nexit 0\n");
        QFile::setPermissions(fake, QFile::permissions(fake) | QFileDevice::ExeOwner);
        env.app().ini().set(keys::Tool2abc, fake);
        QCOMPARE(transposeText(env.app(), QStringLiteral("X:1\nK:G\nG|\n"), 2), QString());
        QCOMPARE(env.ui().messages(), QStringList { kWaitTimeout });
    }
};

FENWORK_TEST(TestEditSessionCore)
#include "tst_editsessioncore.moc"
