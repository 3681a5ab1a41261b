// Building a tune: the split into tune header and body, the T: and K: lines supplied and cleaned,
// captions, line keys, the three ways of placing a tune, includes, and the tune's text read back.
#include "testenv.h"
#include "testmain.h"

#include "frame/strutil.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QTest>

using namespace fenwork;

namespace {

QString crlf(QString text)
{
    return text.replace(u'\n', CRLF);
}

QString lf(QString text)
{
    return text.replace(CRLF, QStringLiteral("\n"));
}

// The lines below a tune as "<key ending> <picture> <text>", the ending taken after the tune key.
QString tuneDump(const AppContext &app, const QString &kTune)
{
    const Node *tune = app.tree().find(kTune);
    if (!tune)
        return QStringLiteral("<no tune>");
    QStringList out;
    for (const Node *part : tune->children())
        for (const Node *line : part->children())
            out << line->Key.mid(kTune.size()) + u' ' + line->imageName() + u' ' + line->Text;
    return out.join(u'\n');
}

// Included lines as "<key ending after the include line> <picture> <text> #<colour>".
QString includedDump(const AppContext &app, const QString &includeKey)
{
    const Node *include = app.tree().find(includeKey);
    if (!include)
        return QStringLiteral("<no include line>");
    QStringList out;
    for (const Node *sibling : include->parent()->children()) {
        if (sibling != include && sibling->Key.startsWith(includeKey))
            out << sibling->Key.mid(includeKey.size()) + u' ' + sibling->imageName() + u' ' + sibling->Text + " #"
                       + QString::number(sibling->ForeColor, 16);
    }
    return out.join(u'\n');
}

} // namespace

class TestTuneBuild : public QObject
{
    Q_OBJECT

    // A file "t.abc" of one tune, beside which the tests put the files they include.
    QString openBase(test::TestEnv &env, const QString &text = QStringLiteral("X:1\nT:first\nK:C\nabc\nw:old\n"))
    {
        createWorkspaceRoot(env.app());
        const QString path = env.writeFile(QStringLiteral("t.abc"), crlf(text).toUtf8());
        return env.app().store().FichierOuvrir(path, false, true, false);
    }

private slots:
    void headerAndBody_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("caption");
        QTest::newRow("music only") << "X:1\nabc"
                                    << "_hdrTune_lg1 propr T:(untitled)\n_hdrTune_lg2 propr K:C\n_bdyTune_lg3 mus abc"
                                    << "[1] (untitled)";
        QTest::newRow("supplied title goes first") << "X:1\n% c\nabc"
                                                   << "_hdrTune_lg2 propr T:(untitled)\n_hdrTune_lg1 rem % c\n"
                                                      "_hdrTune_lg3 propr K:C\n_bdyTune_lg4 mus abc"
                                                   << "[1] (untitled)";
        QTest::newRow("header lines only: no body")
            << "X:1\nT:A\n% only" << "_hdrTune_lg1 propr T:A\n_hdrTune_lg2 rem % only" << "[1]  A";
        QTest::newRow("P:A opens the body")
            << "X:1\nP:A\nabc"
            << "_hdrTune_lg1 propr T:(untitled)\n_hdrTune_lg2 propr K:C\n_bdyTune_lg3 part P:A\n_bdyTune_lg4 mus abc"
            << "[1] (untitled)";
        QTest::newRow("title after music") << "X:1\nK:G\nabc\nT:Part two"
                                           << "_hdrTune_lg2 propr T:(untitled)\n_hdrTune_lg1 propr K:G\n"
                                              "_bdyTune_lg3 mus abc\n_bdyTune_lg4 propr T:Part two"
                                           << "[1]  Part two";
    }
    void headerAndBody()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QFETCH(QString, caption);
        test::TestEnv env;
        const QString kFile = openBase(env);
        const QString kTune = env.app().store().AddStringTune(crlf(text), kFile);
        QCOMPARE(kTune, kFile + "_tune2");
        QCOMPARE(tuneDump(env.app(), kTune), expected);
        const Node *tune = env.app().tree().find(kTune);
        QCOMPARE(tune->Text, caption);
        QCOMPARE(tune->childCount(), expected.contains(QStringLiteral("_bdyTune")) ? 2 : 1);
        QCOMPARE(env.ui().messages(), QStringList());
    }

    // A second "%~~~EX~~~" line repeats a key: the tune stops there, with what it had.
    void repeatedMarker()
    {
        test::TestEnv env;
        const QString kFile = openBase(env);
        const QString kTune =
            env.app().store().AddStringTune(crlf("X:2\n%~~~EX~~~ a\n%~~~EX~~~ b\nT:A\nabc\n"), kFile);
        QCOMPARE(kTune, QString());
        QCOMPARE(env.ui().messages().size(), 1);
        const QString prefix = QStringLiteral("Context: AddStringTune") + CRLF + CRLF;
        QVERIFY2(env.ui().lastMessage().startsWith(prefix), qPrintable(env.ui().lastMessage()));
        QVERIFY(env.ui().lastMessage().size() > prefix.size());
        QCOMPARE(tuneDump(env.app(), kFile + "_tune2"), QStringLiteral("_hdrTune_lgex rem %~~~EX~~~ a"));
    }

    // A bad marker in one tune of a file doesn't stop the others.
    void badTuneInFile()
    {
        test::TestEnv env;
        const QString kFile = openBase(env, "X:1\n%~~~LE~~~\n%~~~LE~~~\nabc\nX:2\nT:B\nabc\n");
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(env.ui().messages().size(), 1);
        QVERIFY(env.ui().lastMessage().startsWith(QStringLiteral("Context: AddStringTune")));
        QCOMPARE(env.app().tree().find(kFile + "_tune2")->Text, QStringLiteral("[2]  B"));
    }

    void placing()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        TuneStore &store = app.store();
        const QString kFile = openBase(env);
        const Node *body = app.tree().find(kFile + "_bdyFile");

        // Before another tune: the first free key, placed in front of it.
        const QString before =
            store.AddStringTune(crlf("X:9\nT:Before\nabc\n"), kFile, false, kFile + "_tune1", true);
        QCOMPARE(before, kFile + "_tune2");
        QCOMPARE(body->child(0)->Key, before);
        QCOMPARE(body->child(1)->Key, kFile + "_tune1");

        // A wanted key: taken when free, refused (and cleared) when not.
        QString text = crlf("X:10\nT:Wanted\nabc\n");
        QString wanted = kFile + "_tune7";
        QCOMPARE(store.AddStringTune(text, kFile, false, {}, false, wanted), kFile + "_tune7");
        QCOMPARE(wanted, kFile + "_tune7");
        wanted = kFile + "_tune1";
        QCOMPARE(store.AddStringTune(text, kFile, false, {}, false, wanted), kFile + "_tune3");
        QCOMPARE(wanted, QString());
        QCOMPARE(body->lastChild()->Key, kFile + "_tune3");

        // Rewriting keeps the node, its key, place, picture and colour; its lines are all new.
        Node *first = app.tree().find(kFile + "_tune1");
        app.tree().setImage(first, Pic::TuneM);
        app.tree().setForeColor(first, 0xDCDCDC);
        QVERIFY(app.tree().find(kFile + "_tune1_bdyTune_lg4"));
        QCOMPARE(store.AddStringTune(crlf("X:7\nT:New\nK:d\nfed\n"), kFile, false, kFile + "_tune1", false),
                 kFile + "_tune1");
        QCOMPARE(app.tree().find(kFile + "_tune1"), first);
        QCOMPARE(first->row(), 1);
        QCOMPARE(first->imageName(), QStringLiteral("tunem"));
        QCOMPARE(first->ForeColor, 0xDCDCDC);
        QCOMPARE(first->Text, QStringLiteral("[7]  New"));
        QCOMPARE(tuneDump(app, first->Key),
                 QStringLiteral("_hdrTune_lg1 propr T:New\n_hdrTune_lg2 propr K:D\n_bdyTune_lg3 mus fed"));
        QVERIFY(!app.tree().find(kFile + "_tune1_bdyTune_lg4"));
        QCOMPARE(body->childCount(), 4);

        // Rewriting a tune that isn't there adds nothing.
        QCOMPARE(store.AddStringTune(crlf("X:8\nabc\n"), kFile, false, kFile + "_tune99", false), QString());
        QCOMPARE(body->childCount(), 4);
    }

    // What GetStringTune gives of a tune with includes, in the header and in the body alike: the
    // include line as stored, the lines it reads for a tool; the failed-include note never.
    void includesReadBack_data()
    {
        QTest::addColumn<bool>("expand");
        QTest::addColumn<QString>("expected");
        QTest::newRow("as stored") << false
                                   << "X:2\nT:A\n%%abc-include inc.abc\n%%abc-include gone.abc\nK:G\nabc\n"
                                      "%%abc-include inc.abc\n";
        QTest::newRow("for a tool") << true << "X:2\nT:A\nw:one\nw:two\nK:G\nabc\nw:one\nw:two\n";
    }
    void includesReadBack()
    {
        QFETCH(bool, expand);
        QFETCH(QString, expected);
        test::TestEnv env;
        env.writeFile("inc.abc", "w:one\r\nw:two\r\n");
        const QString kFile = openBase(env);
        const QString text =
            crlf("X:2\nT:A\n%%abc-include inc.abc\n%%abc-include gone.abc\nK:G\nabc\n%%abc-include inc.abc\n");
        const QString kTune = env.app().store().AddStringTune(text, kFile);
        QCOMPARE(lf(env.app().store().GetStringTune(kTune, expand)), expected);
        QCOMPARE(env.app().tree().find(kTune + "_hdrTune_lg3_err")->ForeColor, 0xB0B0FF);
    }

    // A file that includes itself shows its own lines once and goes no deeper.
    void selfInclude()
    {
        test::TestEnv env;
        const QString kFile =
            openBase(env, QStringLiteral("%abc\n%%abc-include t.abc\nX:1\nT:Self\n%%abc-include t.abc\nK:C\nabc\n"));
        const QString expected = QStringLiteral("_inclg1 rem %abc #ff0000\n"
                                                "_inclg2 include %%abc-include t.abc #ff0000\n"
                                                "_inclg3 propr X:1 #ff0000\n"
                                                "_inclg4 propr T:Self #ff0000\n"
                                                "_inclg5 include %%abc-include t.abc #ff0000\n"
                                                "_inclg6 propr K:C #ff0000\n"
                                                "_inclg7 mus abc #ff0000");
        QCOMPARE(includedDump(env.app(), kFile + "_hdrFile_lg2"), expected);
        QCOMPARE(includedDump(env.app(), kFile + "_tune1_hdrTune_lg2"), expected);
        QCOMPARE(env.ui().messages(), QStringList());
    }

    // A file never saved has no folder: its includes are looked for in the current folder.
    void includeInNewFile()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        createWorkspaceRoot(app);
        env.writeFile("inc.abc", "w:here\r\n");
        const QString kFile = app.store().createNewFile();
        const QString saved = QDir::currentPath();
        QVERIFY(QDir::setCurrent(env.path("")));
        const QString kTune = app.store().AddStringTune(
            crlf("X:1\nT:A\n%%abc-include inc.abc\n%%abc-include gone.abc\nK:G\nabc\n"), kFile);
        QDir::setCurrent(saved);
        QCOMPARE(includedDump(app, kTune + "_hdrTune_lg2"), QStringLiteral("_inclg1 propr w:here #ff0000"));
        QCOMPARE(includedDump(app, kTune + "_hdrTune_lg3"),
                 QStringLiteral("_err noabc % !!! ERR !!! : file not found #b0b0ff"));
    }
};

FENWORK_TEST(TestTuneBuild)
#include "tst_tunebuild.moc"
