// Cut, copy, paste, delete, new tune, parts, clipboard import and the trash box, on real files.
#include "testenv.h"
#include "testmain.h"

#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/clipboard.h"
#include "store/trashbox.h"
#include "store/treeops.h"
#include "store/tuneops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace fenwork;
using Answer = UserDialogs::Answer;

namespace {

const QByteArray kThree = "X:1\nT:One\nK:G\nabc|\n\nX:2\nT:Two\nK:D\ndef|\n\nX:3\nT:Three\nK:A\nABC|\n";

struct Fixture
{
    test::TestEnv env;
    QString kFile;

    explicit Fixture(const QByteArray &bytes = kThree)
    {
        createWorkspaceRoot(env.app());
        kFile = open(QStringLiteral("a.abc"), bytes);
        QObject::connect(&env.app().store(), &TuneStore::nodeSelectionRequested,
            [this](const QString &key) { selected = key; });
    }
    QString open(const QString &name, const QByteArray &bytes)
    {
        return env.app().store().FichierOuvrir(env.writeFile(name, bytes), false, true, false);
    }
    AppContext &app() { return env.app(); }
    QString tune(int m) const { return kFile + QStringLiteral("_tune") + QString::number(m); }
    // "key=X" for each tune of a file, in order.
    QStringList tunes(const QString &file)
    {
        QStringList out;
        for (const Node *t : env.app().tree().find(file + key::BdyFile)->children())
            out.append(t->Key.mid(file.size()) + u'=' + t->Text.mid(1, t->Text.indexOf(u']') - 1));
        return out;
    }
    void current(const QString &kTune)
    {
        env.app().selection().setTuneKey(kTune);
        env.app().selection().setFileKey(GetKFile(kTune));
    }
    QString selected;
};

} // namespace

class TestTuneOps : public QObject
{
    Q_OBJECT

private slots:
    void cutAndPasteKeepsTheKey()
    {
        Fixture f;
        f.current(f.tune(1));
        mnu_cutTune(f.app());
        QCOMPARE(f.tunes(f.kFile), (QStringList { "_tune2=2", "_tune3=3" }));
        QVERIFY(f.app().commands().isEnabled(QStringLiteral("tunepaste")));
        f.current(f.tune(3));
        mnu_pasteTune(f.app());
        QCOMPARE(f.tunes(f.kFile), (QStringList { "_tune2=2", "_tune1=1", "_tune3=3" }));
        QCOMPARE(f.selected, f.tune(1));
        QVERIFY(f.app().store().pendingTune.isEmpty());
        QVERIFY(!f.app().commands().isEnabled(QStringLiteral("tunepaste")));
    }

    // A copy pasted on its own tune comes before it with a new key and the same number.
    void copyAndPasteOnItself()
    {
        Fixture f;
        f.current(f.tune(2));
        mnu_copyTune(f.app());
        mnu_pasteTune(f.app());
        QCOMPARE(f.tunes(f.kFile), (QStringList { "_tune1=1", "_tune4=2", "_tune2=2", "_tune3=3" }));
    }

    void pasteTargets_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("tune body") << "_tune2_bdyTune" << QStringList { "_tune1=1", "_tune2=2", "_tune3=3" };
        QTest::newRow("file") << "" << QStringList { "_tune2=2", "_tune3=3", "_tune1=1" };
    }
    void pasteTargets()
    {
        QFETCH(QString, target);
        QFETCH(QStringList, order);
        Fixture f;
        f.current(f.tune(1));
        mnu_cutTune(f.app());
        CollerTuneSur(f.app(), f.kFile + target, f.app().store().pendingTune);
        QCOMPARE(f.tunes(f.kFile), order);
    }

    // With nothing to paste the command changes nothing: no tune, no changed file.
    void pasteWithNothingPending_data()
    {
        QTest::addColumn<QString>("pending");
        QTest::newRow("nothing") << "";
        QTest::newRow("key without text") << "_file1_tune1\r\n";
        QTest::newRow("blank text") << "_file1_tune1\r\n   ";
    }
    void pasteWithNothingPending()
    {
        QFETCH(QString, pending);
        Fixture f;
        f.current(f.tune(2));
        f.app().store().pendingTune = pending;
        mnu_pasteTune(f.app());
        QCOMPARE(f.tunes(f.kFile), (QStringList { "_tune1=1", "_tune2=2", "_tune3=3" }));
        QCOMPARE(f.app().tree().find(f.kFile)->Image, Pic::FileAbc);
        QVERIFY(!f.app().commands().isEnabled(QStringLiteral("mnu_pasteTune")));
    }

    // The second cut asks; "No" keeps the first pending, yet the second tune is gone all the same.
    void twoCutsInARow()
    {
        Fixture f;
        f.current(f.tune(1));
        mnu_cutTune(f.app());
        f.env.ui().pushAnswer(Answer::No);
        f.current(f.tune(2));
        mnu_cutTune(f.app());
        QCOMPARE(f.env.ui().texts(ScriptedDialogs::Kind::Question).size(), 1);
        QCOMPARE(f.tunes(f.kFile), QStringList { "_tune3=3" });
        QVERIFY(f.app().store().pendingTune.startsWith(f.tune(1) + CRLF));
    }

    void deleteAsksAndGoesToTheTrash()
    {
        Fixture f;
        f.current(f.tune(2));
        f.env.ui().pushAnswer(Answer::No);
        mnu_delTune(f.app(), 0);
        QCOMPARE(f.tunes(f.kFile).size(), 3);

        f.env.ui().pushAnswer(Answer::Yes);
        mnu_delTune(f.app(), 0);
        QCOMPARE(f.tunes(f.kFile), (QStringList { "_tune1=1", "_tune3=3" }));
        QCOMPARE(f.app().tree().find(f.kFile)->Image, Pic::FileAbcM);
        const QString question = f.env.ui().texts(ScriptedDialogs::Kind::Question).last();
        QVERIFY(question.startsWith(QString(80, u'-') + CRLF + CRLF + QStringLiteral("- FILE :") + CRLF + u'\t'));
        QVERIFY(question.endsWith(f.app().text(QStringLiteral("Msg"), QStringLiteral("<tuneToTrash>"))));
        // The trash file is written at once, with the tune and where it came from.
        const QString trash = test::readAll(f.app().paths().trashFile());
        QVERIFY(trash.contains(QStringLiteral("T:Two")));
        QVERIFY(trash.contains(QStringLiteral("%~~~EX~~~") + GetPathFile(f.app(), f.kFile)));
        QCOMPARE(f.selected, f.kFile);

        // Erasing leaves the trash box alone.
        f.current(f.tune(3));
        f.env.ui().pushAnswer(Answer::Yes);
        mnu_delTune(f.app(), 1);
        QCOMPARE(f.tunes(f.kFile), QStringList { "_tune1=1" });
        QCOMPARE(f.app().tree().find(key::TrashBody)->childCount(), 1);
    }

    void newTuneNumber_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("x");
        QTest::newRow("empty file") << QByteArray("%abc\n") << "1";
        QTest::newRow("1 and 3: 3 is taken, 2 is free") << QByteArray("X:1\nK:C\nc|\n\nX:3\nK:C\nc|\n") << "2";
        // "X:3" rules out 3 and "X:21" rules out 2.
        QTest::newRow("a prefix counts") << QByteArray("X:21\nK:C\nc|\n\nX:3\nK:C\nc|\n") << "1";
    }
    void newTuneNumber()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, x);
        Fixture f(file);
        const QString kNew = AddNewTune(f.app(), f.kFile, true);
        const QString text = f.app().store().GetStringTune(kNew, false, 0);
        QVERIFY2(text.startsWith(QStringLiteral("X:") + x + CRLF + QStringLiteral("T:(")), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("K:C")));
    }

    void newTuneFromTemplate()
    {
        Fixture f("%abc\n");
        f.app().ini().set(keys::ModeleDef, QStringLiteral("reel"));
        QVERIFY(QDir().mkpath(f.app().paths().userFolder() + QStringLiteral("/tmpl")));
        QFile file(f.app().paths().userFolder() + QStringLiteral("/tmpl/reel.txt"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("X:9\n  T:Reel  \n\nR:reel\nK:D\n");
        file.close();
        const QString text = f.app().store().GetStringTune(AddNewTune(f.app(), f.kFile, true), false, 0);
        QVERIFY2(text.startsWith(QStringLiteral("X:1\r\nT:Reel\r\nR:reel\r\nK:D")), qPrintable(text));

        f.app().ini().set(keys::ModeleDef, QStringLiteral("gone"));
        AddNewTune(f.app(), f.kFile, true);
        QCOMPARE(f.env.ui().messages().last(), f.app().text(QStringLiteral("Msg"), QStringLiteral("<tmplNotFound>")));
    }

    void partsLettering_data()
    {
        QTest::addColumn<QByteArray>("target");
        QTest::addColumn<QString>("orderLine");
        QTest::addColumn<QStringList>("parts");
        QTest::newRow("after A and B") << QByteArray("X:1\nT:Set\nP:(A)1(B)1\nK:G\nP:A\nabc|\nP:B\ncba|\n")
                                       << "P:(A)1(B)1(C)2(D)2" << QStringList { "P:A", "P:B", "P:C", "P:D" };
        QTest::newRow("after Z comes a") << QByteArray("X:1\nT:Set\nP:(Z)1\nK:G\nP:Z\nabc|\n") << "P:(Z)1(a)2(b)2"
                                         << QStringList { "P:Z", "P:a", "P:b" };
    }
    void partsLettering()
    {
        QFETCH(QByteArray, target);
        QFETCH(QString, orderLine);
        QFETCH(QStringList, parts);
        // The X: line starts the first part, the P: line of the music the second.
        Fixture f(target + "\nX:2\nT:Source\nR:jig\nP:AB\nK:D\n|:def:|\nP:B\nfed|\n");
        AddTuneAsPart(f.app(), f.tune(2), f.tune(1), 2);
        const QStringList lines = f.app().store().GetStringTune(f.tune(1), false, 0).split(CRLF);
        QVERIFY2(lines.contains(orderLine), qPrintable(lines.join(u'|')));
        QStringList seen;
        for (const QString &line : lines)
            if (line.startsWith(QStringLiteral("P:")) && line.size() == 3)
                seen.append(line);
        QCOMPARE(seen, parts);
        // Header fields of the source stay as comments, and its own part line is gone.
        QVERIFY(lines.contains(QStringLiteral("%T:Source")));
        QVERIFY(lines.contains(QStringLiteral("%R:jig")));
        QVERIFY(!lines.contains(QStringLiteral("P:AB")));
        QVERIFY(f.env.ui().messages().isEmpty());
    }

    void partWithoutClosedRepeatWarns()
    {
        Fixture f("X:1\nT:Set\nK:G\nabc|\n\nX:2\nT:Open\nK:D\n|:def|\n");
        AddTuneAsPart(f.app(), f.tune(2), f.tune(1), 1);
        QCOMPARE(f.env.ui().messages(),
            QStringList { f.app().text(QStringLiteral("Msg"), QStringLiteral("<noCloseRepeat>")) });
    }

    void clipboardPieces_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("pieces");
        QTest::newRow("no X:") << "T:Loose\r\nK:G\r\nabc|" << QStringList { "X:0\r\nT:Loose\r\nK:G\r\nabc|" };
        QTest::newRow("text before the first X: is dropped")
            << "hello\r\nX:1\r\nK:G\r\nX:2\r\nK:D" << QStringList { "X:1\r\nK:G\r\n", "X:2\r\nK:D" };
        QTest::newRow("X: inside a line starts a piece")
            << "X:1\r\nK:G\r\nw: see X:5" << QStringList { "X:1\r\nK:G\r\nw: see ", "X:5" };
    }
    void clipboardPieces()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, pieces);
        QCOMPARE(clipboardTunes(text), pieces);
    }

    void importFromClipboard()
    {
        Fixture f;
        f.app().clipboard().setText(QStringLiteral("T:Loose\nabc|\n"));
        f.current(f.tune(1));
        f.env.ui().pushAnswer(Answer::No);
        mnu_impClipboard(f.app());
        QCOMPARE(f.tunes(f.kFile).size(), 3);
        f.env.ui().pushAnswer(Answer::Yes);
        mnu_impClipboard(f.app());
        QCOMPARE(f.tunes(f.kFile).size(), 4);
        QCOMPARE(f.tunes(f.kFile).last(), QStringLiteral("_tune4=0"));
        QCOMPARE(f.app().tree().find(f.tune(4))->Image, Pic::TuneM);
    }

    void dropMovesOrTrashes()
    {
        Fixture f;
        f.current(f.tune(1));
        QVERIFY(!isDraggableTune(f.tune(1) + key::HdrTune));
        // On itself, on a tune whose key holds its own, on a header: nothing.
        dropTune(f.app(), f.tune(1), f.tune(1) + QStringLiteral("_bdyTune"), false);
        dropTune(f.app(), f.tune(1), f.kFile + key::HdrFile, false);
        QCOMPARE(f.tunes(f.kFile).size(), 3);
        dropTune(f.app(), f.tune(1), f.tune(3), false);
        QCOMPARE(f.tunes(f.kFile), (QStringList { "_tune2=2", "_tune1=1", "_tune3=3" }));
        // A drag does not disturb what waits on the clipboard.
        QVERIFY(f.app().store().pendingTune.isEmpty());
        dropTune(f.app(), f.tune(2), key::TrashBody, false);
        QCOMPARE(f.tunes(f.kFile).size(), 2);
        QCOMPARE(f.app().tree().find(key::TrashBody)->childCount(), 1);
        QVERIFY(f.env.ui().texts(ScriptedDialogs::Kind::Question).isEmpty());
    }

    void restoreFromTheTrash()
    {
        Fixture f;
        const QString path = GetPathFile(f.app(), f.kFile);
        DelTune(f.app(), f.tune(2), false, true);
        const QString inTrash = f.app().tree().find(key::TrashBody)->firstChild()->Key;
        const TrashTuneInfo info = trashTuneInfo(f.app(), inTrash + QStringLiteral("_bdyTune_lg1"));
        QVERIFY(info.ok);
        QCOMPARE(info.tuneKey, inTrash);
        QCOMPARE(info.origin, path);
        QVERIFY(info.originExists);
        QVERIFY(!info.deleted.isEmpty());

        // The file was closed meanwhile: it is opened again and marked changed.
        f.app().tree().remove(f.app().tree().find(f.kFile));
        const QString kNew = restoreFromTrash(f.app(), info.tuneKey, info.origin, QString());
        QVERIFY(!kNew.isEmpty());
        const QString kBack = GetKFile(kNew);
        QCOMPARE(f.tunes(kBack).last().section(u'=', 1), QStringLiteral("2"));
        QCOMPARE(f.app().tree().find(kBack)->Image, Pic::FileAbcM);
        const QString text = f.app().store().GetStringTune(kNew, false, 0);
        QVERIFY(!text.contains(QStringLiteral("%~~~")));
        QCOMPARE(f.app().tree().find(key::TrashBody)->childCount(), 0);
        QVERIFY(!test::readAll(f.app().paths().trashFile()).contains(QStringLiteral("T:Two")));
    }

    void emptyTheTrash()
    {
        Fixture f;
        DelTune(f.app(), f.tune(1), false, true);
        DelTune(f.app(), f.tune(2), false, true);
        f.env.ui().pushAnswer(Answer::No);
        QVERIFY(!emptyTrash(f.app()));
        QCOMPARE(f.app().tree().find(key::TrashBody)->childCount(), 2);
        f.env.ui().pushAnswer(Answer::Yes);
        QVERIFY(emptyTrash(f.app()));
        QCOMPARE(f.app().tree().find(key::TrashBody)->childCount(), 0);
    }
};

FENWORK_TEST(TestTuneOps)
#include "tst_tuneops.moc"
