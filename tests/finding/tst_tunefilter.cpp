// The tune filter on a real workspace tree: which tunes pass, what it greys, what it adds to
// the choice list, the messages, and what it marks in a tune's text.
#include "testenv.h"
#include "testmain.h"

#include "collections/choicelist.h"
#include "finding/tunefilter.h"
#include "frame/commandstate.h"
#include "store/filecommands.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QTest>

using namespace fenwork;

namespace {

const QByteArray kTunes =
    "X:1\nT:Morning Reel\nR:reel\nK:D\n|:ABc d2 fe|dB A2:|\n"
    "X:2\nT:The Jig\nR:jig\nK:G\nGAB c2 d|G2 A B3|\nw:la la la\n"
    "X:3\nT:Reel of Two\nT:Second reel title\nK:Ador\n%trad comment\n%%MIDI program 24\n[K:Dor] DEF gab|\n"
    "X:4\nT:Lonely Bb\nC:Anon\nK:Bb\nB,2 b2|\n";

// "T:=reel" sets the T: row; "*=text" the anywhere box; "ABC=text" the melody.
FilterConditions conditionsFrom(const QStringList &settings)
{
    FilterConditions c;
    for (const QString &setting : settings) {
        const qsizetype eq = setting.indexOf(u'=');
        const QString marker = setting.left(eq);
        const QString text = setting.mid(eq + 1);
        if (marker == u"*")
            c.anywhere = text;
        else if (marker == u"ABC")
            c.melody = text;
        else
            c.fields[filterRowOfCaption(marker)] = text;
    }
    return c;
}

QString xOf(const QString &caption)
{
    return caption.mid(1, caption.indexOf(u']') - 1);
}

// The X values of a file's tunes that are not greyed.
QStringList shownTunes(AppContext &app, const QString &kFile)
{
    QStringList shown;
    for (const Node *tune : app.tree().find(kFile + key::BdyFile)->children())
        if (tune->ForeColor != color::TuneLeftOut)
            shown.append(xOf(tune->Text));
    return shown;
}

struct Workspace
{
    test::TestEnv env;
    QString kFile;

    explicit Workspace(const QByteArray &tunes = kTunes)
    {
        createWorkspaceRoot(env.app());
        kFile = open(QStringLiteral("tunes.abc"), tunes);
    }
    QString open(const QString &name, const QByteArray &bytes)
    {
        return env.app().store().FichierOuvrir(env.writeFile(name, bytes), false, true, false);
    }
    AppContext &app() { return env.app(); }
    QString msg(const char *key) { return app().text(QStringLiteral("Msg"), QString::fromLatin1(key)); }
    Node *tune(const QString &x)
    {
        for (Node *t : app().tree().find(kFile + key::BdyFile)->children())
            if (xOf(t->Text) == x)
                return t;
        return nullptr;
    }
};

// A choice list holding `keys` already.
void fill(ChoiceList &list, const QStringList &keys)
{
    for (const QString &key : keys)
        list.add(key, key);
}

} // namespace

class TestTuneFilter : public QObject
{
    Q_OBJECT

private slots:
    void counting_data()
    {
        QTest::addColumn<QStringList>("settings");
        QTest::addColumn<bool>("ignoreCase");
        QTest::addColumn<bool>("invert");
        QTest::addColumn<bool>("startOnly");
        QTest::addColumn<QStringList>("passing");
        // clang-format off
        QTest::newRow("case counts") << QStringList{"T:=reel"} << false << false << false << QStringList{"3"};
        QTest::newRow("ignore case") << QStringList{"T:=reel"} << true << false << false << QStringList{"1", "3"};
        QTest::newRow("two lines for one of two rows") << QStringList{"T:=eel", "R:=reel"} << false << false << false << QStringList{"1", "3"};
        QTest::newRow("inverted") << QStringList{"T:=Reel"} << false << true << false << QStringList{"2", "4"};
        QTest::newRow("live alternative takes any line") << QStringList{"T:=zzz|DEF"} << false << false << false << QStringList{"3"};
        QTest::newRow("inline K: is no K: line") << QStringList{"K:=Dor"} << false << false << false << QStringList{};
        QTest::newRow("K: line") << QStringList{"K:=dor"} << false << false << false << QStringList{"3"};
        QTest::newRow("comment row sees %%MIDI lines") << QStringList{"%=program"} << false << false << false << QStringList{"3"};
        QTest::newRow("question mark") << QStringList{"T:=The ?ig"} << false << false << false << QStringList{"2"};
        QTest::newRow("X: from the caption") << QStringList{"X:=2"} << false << false << false << QStringList{"2"};
        QTest::newRow("anywhere and a row") << QStringList{"*=gab", "T:=Reel"} << false << false << false << QStringList{"3"};
        QTest::newRow("melody not at a line start") << QStringList{"ABC=ABc"} << false << false << true << QStringList{};
        QTest::newRow("melody anywhere in a line, blanks between") << QStringList{"ABC=ABc"} << false << false << false << QStringList{"1", "2"};
        // clang-format on
    }
    void counting()
    {
        QFETCH(QStringList, settings);
        QFETCH(bool, ignoreCase);
        QFETCH(bool, invert);
        QFETCH(bool, startOnly);
        QFETCH(QStringList, passing);
        Workspace w;
        TuneFilter filter(w.app());
        FilterConditions c = conditionsFrom(settings);
        c.ignoreCase = ignoreCase;
        c.invert = invert;
        c.startOnly = startOnly;
        const FilterOutcome outcome = filter.search(c, FilterDomain::AllTunes, FilterResults::LeaveList);
        QCOMPARE(shownTunes(w.app(), w.kFile), passing);
        QStringList found;
        for (const QString &caption : outcome.captions)
            found.append(xOf(caption));
        QCOMPARE(found, passing);
        QCOMPARE(outcome.tested, 4);
        QVERIFY(filter.isActive());
        QCOMPARE(w.app().commands().isEnabled(QStringLiteral("mnu_saveTunesFltr")), !passing.isEmpty());
        QCOMPARE(w.env.ui().busyDepth, 0);
    }

    void domainOfShownTunes()
    {
        Workspace w;
        TuneFilter filter(w.app());
        filter.search(conditionsFrom({"T:=e"}), FilterDomain::AllTunes, FilterResults::LeaveList);
        QCOMPARE(shownTunes(w.app(), w.kFile), (QStringList{"1", "2", "3", "4"}));
        filter.search(conditionsFrom({"R:=*"}), FilterDomain::AllTunes, FilterResults::LeaveList);
        QCOMPARE(shownTunes(w.app(), w.kFile), (QStringList{"1", "2"}));

        // Among the tunes still shown, the inverted search greys those that fit; the grey
        // ones stay grey and are not tested.
        FilterConditions c = conditionsFrom({"R:=jig"});
        c.invert = true;
        const FilterOutcome outcome = filter.search(c, FilterDomain::ShownTunes, FilterResults::LeaveList);
        QCOMPARE(outcome.tested, 2);
        QCOMPARE(shownTunes(w.app(), w.kFile), QStringList{"1"});

        // Searching all tunes again starts from every tune shown.
        filter.search(conditionsFrom({"R:=jig"}), FilterDomain::AllTunes, FilterResults::LeaveList);
        QCOMPARE(shownTunes(w.app(), w.kFile), QStringList{"2"});
    }

    void nothingFound()
    {
        Workspace w;
        TuneFilter filter(w.app());
        int settledCalls = 0;
        filter.settled = [&](bool searched) { settledCalls += searched ? 10 : 1; };
        w.app().commands().setEnabled(QStringLiteral("mnu_saveTunesFltr"), true);
        const FilterOutcome outcome =
            filter.search(conditionsFrom({"T:=nowhere", "*=zz"}), FilterDomain::AllTunes, FilterResults::LeaveList);
        QCOMPARE(outcome.status, FilterOutcome::Status::NothingFound);
        QVERIFY(shownTunes(w.app(), w.kFile).isEmpty());
        QVERIFY(filter.isActive());
        QCOMPARE(settledCalls, 11); // cleared first, then the search's end
        QCOMPARE(w.env.ui().messages(),
                 QStringList{QStringLiteral("zz\r\nT:nowhere\r\n---------\r\n") + w.msg("<noTuneFound>")});
        QCOMPARE(w.env.ui().shown.last().icon, UserDialogs::Icon::Information);
        QVERIFY(!w.app().commands().isEnabled(QStringLiteral("mnu_saveTunesFltr")));
    }

    void invalidPattern_data()
    {
        QTest::addColumn<QStringList>("settings");
        QTest::addColumn<QString>("description");
        QTest::newRow("melody (") << QStringList{"ABC=G(A"} << "ABC:G(A\r\n";
        QTest::newRow("bad among good") << QStringList{"T:=Reel", "K:=(", "w:=la"} << "K:(\r\nT:Reel\r\nw:la\r\n";
    }
    void invalidPattern()
    {
        QFETCH(QStringList, settings);
        QFETCH(QString, description);
        Workspace w;
        TuneFilter filter(w.app());
        filter.search(conditionsFrom({"R:=reel"}), FilterDomain::AllTunes, FilterResults::LeaveList);
        QCOMPARE(shownTunes(w.app(), w.kFile), QStringList{"1"});
        w.env.ui().clear();

        // Among the shown tunes: nothing is touched and the flag stays.
        FilterOutcome outcome = filter.search(conditionsFrom(settings), FilterDomain::ShownTunes, FilterResults::LeaveList);
        QCOMPARE(outcome.status, FilterOutcome::Status::InvalidPattern);
        QCOMPARE(w.env.ui().messages(),
                 QStringList{description + QStringLiteral("---------\r\n") + w.msg("<regexFailed>")});
        QCOMPARE(shownTunes(w.app(), w.kFile), QStringList{"1"});
        QVERIFY(filter.isActive());

        // Over all tunes: the filter was removed before the pattern was tried.
        outcome = filter.search(conditionsFrom(settings), FilterDomain::AllTunes, FilterResults::LeaveList);
        QCOMPARE(outcome.status, FilterOutcome::Status::InvalidPattern);
        QCOMPARE(shownTunes(w.app(), w.kFile).size(), 4);
        QVERIFY(!filter.isActive());
        QVERIFY(filter.ColorerFind(QStringLiteral("T:Reel\r\n"), conditionsFrom(settings)).isEmpty());
    }

    void choiceList_data()
    {
        QTest::addColumn<int>("policy");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("after");
        const QString t1 = QStringLiteral("_file1_tune1"), t3 = QStringLiteral("_file1_tune3");
        // clang-format off
        QTest::newRow("replace") << 0 << QStringList{"_x"} << QStringList{t1, t3};
        QTest::newRow("add") << 1 << QStringList{"_x"} << QStringList{"_x", t1, t3};
        QTest::newRow("add, one already listed is passed over") << 1 << QStringList{t3} << QStringList{t3, t1};
        QTest::newRow("leave") << 2 << QStringList{"_x"} << QStringList{"_x"};
        // clang-format on
    }
    void choiceList()
    {
        QFETCH(int, policy);
        QFETCH(QStringList, before);
        QFETCH(QStringList, after);
        Workspace w;
        TuneFilter filter(w.app());
        ChoiceList list;
        fill(list, before);
        filter.setChoiceList(&list);
        const FilterOutcome outcome = filter.search(conditionsFrom({"T:=eel"}), FilterDomain::AllTunes, FilterResults(policy));
        QCOMPARE(outcome.status, FilterOutcome::Status::Found);
        QCOMPARE(outcome.keys, (QStringList{"_file1_tune1", "_file1_tune3"}));
        QCOMPARE(list.keys(), after);
        QVERIFY(w.env.ui().messages().isEmpty());
    }

    void invertedSearchStopsOnListedTune()
    {
        Workspace w;
        TuneFilter filter(w.app());
        ChoiceList list;
        fill(list, { QStringLiteral("_file1_tune2") });
        filter.setChoiceList(&list);
        w.app().commands().setEnabled(QStringLiteral("mnu_saveTunesFltr"), false);
        FilterConditions c = conditionsFrom({"T:=Reel"});
        c.invert = true;
        const FilterOutcome outcome = filter.search(c, FilterDomain::ShownTunes, FilterResults::AddToList);
        QCOMPARE(outcome.status, FilterOutcome::Status::Failed);
        // Tune 1 greyed, tune 2 already listed stops the walk: 3 and 4 untouched.
        QCOMPARE(shownTunes(w.app(), w.kFile), (QStringList{"2", "3", "4"}));
        QCOMPARE(list.keys(), QStringList{"_file1_tune2"});
        QVERIFY(!filter.isActive());
        QCOMPARE(w.env.ui().messages().size(), 1);
        QVERIFY(w.env.ui().lastMessage().startsWith(QStringLiteral("Context: Search\r\n\r\n")));
        QVERIFY(w.env.ui().lastMessage().contains(QStringLiteral("_file1_tune2")));
        QVERIFY(!w.app().commands().isEnabled(QStringLiteral("mnu_saveTunesFltr")));
    }

    // Trash tunes are never tested nor greyed; files without tunes are passed over.
    void trashAndEmptyFiles()
    {
        Workspace w;
        AppContext &app = w.app();
        app.store().AddStringTune(QStringLiteral("X:9\r\nT:Trash Reel\r\nK:C\r\nC|\r\n"), key::Trash, true);
        QVERIFY(!app.store().createNewFile().isEmpty());
        QVERIFY(!w.open(QStringLiteral("header.abc"), "%abc\nT:a header and no tune\n").isEmpty());
        TuneFilter filter(app);
        ChoiceList list;
        filter.setChoiceList(&list);
        for (const bool invert : {false, true}) {
            FilterConditions none;
            none.invert = invert;
            QCOMPARE(filter.search(none, FilterDomain::AllTunes, FilterResults::ReplaceList).tested, 4);
            QCOMPARE(list.count(), invert ? 0 : 4);
            QCOMPARE(app.tree().find(key::TrashBody)->child(0)->ForeColor, color::TrashTune);
        }
        filter.clear();
        QCOMPARE(app.tree().find(key::TrashBody)->child(0)->ForeColor, color::TrashTune);
        QCOMPARE(shownTunes(app, w.kFile).size(), 4);
    }

    void fileClosedWhileFiltered()
    {
        Workspace w;
        AppContext &app = w.app();
        const QString kSecond = w.open(QStringLiteral("second.abc"), "X:1\nT:Other Reel\nK:C\nC|\n");
        TuneFilter filter(app);
        filter.search(conditionsFrom({"T:=Reel"}), FilterDomain::AllTunes, FilterResults::LeaveList);
        QVERIFY(FichierFermer(app, w.kFile));
        QVERIFY(FichierFermer(app, kSecond));
        QVERIFY(filter.isActive());
        const FilterOutcome outcome =
            filter.search(conditionsFrom({"T:=Reel"}), FilterDomain::ShownTunes, FilterResults::AddToList);
        QCOMPARE(outcome.tested, 0);
        QCOMPARE(outcome.status, FilterOutcome::Status::NothingFound);
        filter.clear();
        QVERIFY(!filter.isActive());

        // A file opened again comes in with every tune shown.
        filter.search(conditionsFrom({"T:=Reel"}), FilterDomain::AllTunes, FilterResults::LeaveList);
        const QString kAgain = w.open(QStringLiteral("tunes.abc"), kTunes);
        QCOMPARE(shownTunes(app, kAgain).size(), 4);
    }

    // The marks in a tune's text: from the boxes as they stand now, once a search has run.
    void colorerFind_data()
    {
        QTest::addColumn<QStringList>("searched");
        QTest::addColumn<QStringList>("current");
        QTest::addColumn<QString>("x");
        QTest::addColumn<QStringList>("marked");
        // clang-format off
        QTest::newRow("row text in its line") << QStringList{"T:=reel"} << QStringList{"T:=reel"} << "3" << QStringList{"reel"};
        QTest::newRow("anywhere wins over the row") << QStringList{"T:=Reel", "*=DEF"} << QStringList{"T:=Reel", "*=DEF"} << "3" << QStringList{"DEF"};
        QTest::newRow("melody over bars and lengths") << QStringList{"ABC=c?d"} << QStringList{"ABC=cd"} << "2" << QStringList{"c2 d|"};
        QTest::newRow("%%MIDI line takes the comment row") << QStringList{"%%MIDI=program"} << QStringList{"%%MIDI=program"} << "3" << QStringList{};
        QTest::newRow("boxes as they stand now") << QStringList{"T:=Reel"} << QStringList{"T:=Morn*g"} << "1" << QStringList{"Morning"};
        QTest::newRow("box no longer a pattern") << QStringList{"T:=Reel"} << QStringList{"T:=(("} << "1" << QStringList{};
        // clang-format on
    }
    void colorerFind()
    {
        QFETCH(QStringList, searched);
        QFETCH(QStringList, current);
        QFETCH(QString, x);
        QFETCH(QStringList, marked);
        Workspace w;
        TuneFilter filter(w.app());
        const QString text = w.app().store().GetStringTune(w.tune(x)->Key, false, 0);
        QVERIFY(filter.ColorerFind(text, conditionsFrom(searched)).isEmpty()); // the filter is off
        filter.search(conditionsFrom(searched), FilterDomain::AllTunes, FilterResults::LeaveList);
        QStringList got;
        for (const HighlightRange &range : filter.ColorerFind(text, conditionsFrom(current)))
            got.append(text.mid(range.start, range.length));
        QCOMPARE(got, marked);
    }
};

FENWORK_TEST(TestTuneFilter)
#include "tst_tunefilter.moc"
