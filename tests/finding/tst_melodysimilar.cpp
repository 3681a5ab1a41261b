// Finding a tune by its melody: the notes read from ABC, the ranking, the batch command, and the
// recall on fragments cut from a real collection, as written, transposed and with a note wrong.
#include "testenv.h"
#include "testmain.h"

#include "cli/similarcommand.cpp"
#include "collections/choicelist.h"
#include "finding/melodyreader.h"
#include "finding/melodysimilar.h"
#include "finding/widgets/filterpanel.h"
#include "frame/strutil.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QTest>
#include <QTextStream>

using namespace fenwork;

namespace {

QVector<int> pitchesOf(const Melody &m)
{
    return QVector<int>(m.pitches.begin(), m.pitches.end());
}

Melody melodyOf(const QVector<int> &pitches)
{
    Melody m;
    for (int p : pitches)
        m.append(p, 0.125f);
    return m;
}

// Pitches written back as ABC in C major, a bar line after each note so that no sign holds over.
QString abcOf(const QVector<int> &pitches)
{
    static const char *const names[12] = { "C", "^C", "D", "^D", "E", "F", "^F", "G", "^G", "A", "^A", "B" };
    QString out;
    for (int p : pitches) {
        const int octave = p / 12 - 5; // 0: the octave of middle C
        const QString name = QString::fromLatin1(names[p % 12]);
        out += octave >= 1 ? name.toLower() + QString(octave - 1, u'\'') : name + QString(-octave, u',');
        out += u'|';
    }
    return out;
}

// Two bars of a tune's first music as written, with its key and unit: from the second bar on,
// the first two that hold eight notes or more (fewer is a phrase that many tunes share).
struct Fragment
{
    int position = 0; // in tree order, from 1
    QString text, key, unit;
};

bool cutFragment(const QString &tune, Fragment &fragment)
{
    QString music;
    bool body = false;
    for (QString line : tune.split(QStringLiteral("\r\n"))) {
        line = trimBlanks(line);
        if (line.size() > 1 && line.at(1) == u':' && line.at(0).isLetter()) {
            // A second voice or a change of key ends what is taken.
            if (body && (line.startsWith(u'K') || line.startsWith(u'V')))
                break;
            if (line.startsWith(u'K'))
                fragment.key = line.mid(2), body = true;
            else if (line.startsWith(u'L'))
                fragment.unit = line.mid(2);
            continue;
        }
        if (body && !line.startsWith(u'%'))
            music += line.remove(u'\\') + u' ';
    }
    const QStringList bars = music.split(u'|');
    for (int b = 1; b + 1 < bars.size(); ++b) {
        const QString two = bars.at(b) + u'|' + bars.at(b + 1);
        if (two.contains(u':') || two.contains(u'[') || trimBlanks(bars.at(b)).isEmpty())
            continue;
        if (readMelodyFragment(two, fragment.key, fragment.unit).size() >= 8) {
            fragment.text = two;
            return true;
        }
    }
    return false;
}

struct Corpus
{
    test::TestEnv env;
    MelodySimilar similar { env.app() };
    QVector<Fragment> fragments;
};

// The Nottingham collection opened file by file, and 60 fragments from tunes spread over it.
Corpus *nottingham()
{
    static std::unique_ptr<Corpus> corpus;
    if (corpus)
        return corpus.get();
    const QDir dir(test::corpusDir() + QStringLiteral("/nottingham"));
    if (test::corpusDir().isEmpty() || !dir.exists())
        return nullptr;
    corpus = std::make_unique<Corpus>();
    AppContext &app = corpus->env.app();
    createWorkspaceRoot(app);
    app.store().backupOnOpen = false;
    for (const QString &name : dir.entryList({ QStringLiteral("*.abc") }, QDir::Files, QDir::Name))
        app.store().FichierOuvrir(dir.filePath(name), false, true, true);
    QStringList keys;
    const Node *root = app.tree().root();
    for (int f = 1; f < root->childCount(); ++f)
        for (const Node *tune : root->child(f)->child(1)->children())
            keys.append(tune->Key);
    const int step = int(keys.size()) / 60;
    for (int i = 0; corpus->fragments.size() < 60 && i < keys.size(); i += step) {
        Fragment fragment;
        for (int k = i; k < keys.size() && fragment.text.isEmpty(); ++k) {
            fragment.position = k + 1;
            cutFragment(app.store().GetStringTune(keys.at(k), false, 0), fragment);
        }
        if (!fragment.text.isEmpty())
            corpus->fragments.append(fragment);
    }
    return corpus.get();
}

int runSimilar(const QStringList &arguments, QString *out, QString *err)
{
    QTextStream o(out);
    QTextStream e(err);
    return runSimilarCommand(arguments, o, e);
}

} // namespace

class TestMelodySimilar : public QObject
{
    Q_OBJECT

private slots:
    void reader_data()
    {
        QTest::addColumn<QString>("abc");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVector<int>>("pitches");
        QTest::addColumn<QVector<float>>("lengths"); // empty: not checked
        const QVector<float> any;
        QTest::newRow("octaves") << "C, C c c'"
                                 << "" << QVector<int> { 48, 60, 72, 84 } << any;
        QTest::newRow("Ador sharpens F") << "EFGA"
                                         << "Ador" << QVector<int> { 64, 66, 67, 69 } << any;
        QTest::newRow("Bm") << "Bcde"
                            << "Bm" << QVector<int> { 71, 73, 74, 76 } << any;
        QTest::newRow("Emix") << "EFGA"
                              << "Emix" << QVector<int> { 64, 66, 68, 69 } << any;
        QTest::newRow("Bb major") << "B_EE"
                                  << "Bb" << QVector<int> { 70, 63, 63 } << any;
        QTest::newRow("natural holds to the bar's end") << "F=FF|F"
                                                        << "G" << QVector<int> { 66, 65, 65, 66 } << any;
        QTest::newRow("sign holds for its octave only") << "^Ff^^F"
                                                        << "" << QVector<int> { 66, 77, 67 } << any;
        QTest::newRow("tie across a bar is one note")
            << "A2-|A2 B"
            << "" << QVector<int> { 69, 71 } << QVector<float> { 0.5f, 0.125f };
        QTest::newRow("tie with the sign carried") << "^G2-|G B"
                                                   << "" << QVector<int> { 68, 71 } << any;
        QTest::newRow("triplet") << "(3ABc d"
                                 << "" << QVector<int> { 69, 71, 72, 74 }
                                 << QVector<float> { 0.125f / 1.5f, 0.125f / 1.5f, 0.125f / 1.5f, 0.125f };
        QTest::newRow("broken rhythm")
            << "A>B c<d"
            << "" << QVector<int> { 69, 71, 72, 74 } << QVector<float> { 0.1875f, 0.0625f, 0.0625f, 0.1875f };
        QTest::newRow("lengths and unit")
            << "[L:1/4]A/2 B3/2 c//"
            << "" << QVector<int> { 69, 71, 72 } << QVector<float> { 0.125f, 0.375f, 0.0625f };
        QTest::newRow("extras left out") << "\"G\"{g}!trill!A ~B .c z2 x [CEG] (3:2:3DEF"
                                         << "" << QVector<int> { 69, 71, 72, 67, 62, 64, 65 } << any;
        QTest::newRow("repeat unfolded") << "|:AB:|c"
                                         << "" << QVector<int> { 69, 71, 69, 71, 72 } << any;
        QTest::newRow("endings") << "|:A|1B:|2c|"
                                 << "" << QVector<int> { 69, 71, 69, 72 } << any;
        QTest::newRow("first voice only") << "V:1\nAB\nV:2\ncd\nV:1\nE [V:2]g"
                                          << "" << QVector<int> { 69, 71, 64 } << any;
        QTest::newRow("key change inline") << "F[K:D]F"
                                           << "" << QVector<int> { 65, 66 } << any;
        QTest::newRow("lyrics and comments") << "AB % cd\nw:la la\nc"
                                             << "" << QVector<int> { 69, 71, 72 } << any;
        QTest::newRow("nothing musical") << "\"Am\" !fermata! z4|]"
                                         << "" << QVector<int> {} << any;
    }
    void reader()
    {
        QFETCH(QString, abc);
        QFETCH(QString, key);
        QFETCH(QVector<int>, pitches);
        QFETCH(QVector<float>, lengths);
        const Melody m = readMelodyFragment(abc, key);
        QCOMPARE(pitchesOf(m), pitches);
        for (int i = 0; i < lengths.size(); ++i)
            QVERIFY2(qAbs(m.lengths.at(i) - lengths.at(i)) < 1e-4f, qPrintable(QString::number(i)));
    }

    // A whole tune: the header's meter gives the unit, the body starts at K:.
    void tuneHeader()
    {
        const Melody m = readTuneMelody(QStringLiteral("X:1\r\nT:ABC\r\nM:2/4\r\nK:D\r\nFA d|\r\n"));
        QCOMPARE(pitchesOf(m), (QVector<int> { 66, 69, 74 }));
        QCOMPARE(m.lengths.value(0), 0.0625f);
    }

    void ranking_data()
    {
        QTest::addColumn<QVector<int>>("query");
        QTest::addColumn<int>("first");
        const QVector<int> tune = { 62, 64, 66, 67, 69, 71, 69, 67, 66, 64 };
        QTest::newRow("as written") << tune.mid(2, 6) << 1;
        QTest::newRow("transposed") << QVector<int> { 59, 60, 62, 64, 62, 60 } << 1;
        QTest::newRow("an octave up") << QVector<int> { 78, 79, 81, 83, 81, 79 } << 1;
        QTest::newRow("one note wrong") << QVector<int> { 66, 67, 70, 71, 69, 67 } << 1;
        QTest::newRow("one note missing") << QVector<int> { 66, 67, 71, 69, 67 } << 1;
        QTest::newRow("one note added") << QVector<int> { 66, 67, 69, 68, 71, 69, 67 } << 1;
        QTest::newRow("equal scores keep order") << QVector<int> { 60, 60, 60, 60 } << 0;
    }
    void ranking()
    {
        QFETCH(QVector<int>, query);
        QFETCH(int, first);
        MelodyIndex index;
        index.build(
            { melodyOf({ 60, 60, 60, 60, 62, 64 }), melodyOf({ 62, 64, 66, 67, 69, 71, 69, 67, 66, 64 }),
                melodyOf({ 60, 60, 60, 60, 67, 69 }), melodyOf({ 62, 64, 65, 67, 69, 71, 69, 67, 65, 64 }) });
        const QVector<MelodyMatch> found = index.search(melodyOf(query), {});
        QVERIFY(!found.isEmpty());
        QCOMPARE(found.first().entry, first);
    }

    void rhythmCounts()
    {
        MelodyIndex index;
        Melody even = melodyOf({ 60, 62, 64, 65, 67 });
        Melody dotted = even;
        dotted.lengths[0] = dotted.lengths[2] = 0.1875f;
        index.build({ even, dotted });
        MelodySearchOptions options;
        QCOMPARE(index.search(dotted, options).first().entry, 0); // a tie, kept in order
        options.rhythm = true;
        QCOMPARE(index.search(dotted, options).first().entry, 1);
        QCOMPARE(index.search(dotted, options).first().ratio, 1.0);
        QVERIFY(index.search(melodyOf({ 60, 62 }), options).isEmpty());
    }

    void command_data()
    {
        QTest::addColumn<QStringList>("arguments"); // "FILE" stands for the test file
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        QTest::newRow("ranked, equal scores in file order")
            << QStringList { "FILE", "E F G A", "--key", "Ador", "--top", "2" } << 0
            << "100.0\t1\t[1]  First\n100.0\t2\t[2]  Second\n"
            << "";
        QTest::newRow("fragment longer than any tune")
            << QStringList { "FILE", "DEF GAB c d e f g a", "--key", "D", "--top", "1" } << 0
            << "\t1\t[1]  First\n"
            << "";
        QTest::newRow("empty fragment") << QStringList { "FILE", "" } << 1 << ""
                                        << "at least three notes";
        QTest::newRow("unreadable fragment") << QStringList { "FILE", "hello world" } << 1 << ""
                                             << "at least three notes";
        QTest::newRow("no fragment") << QStringList { "FILE" } << 2 << ""
                                     << "FILE and FRAGMENT";
        QTest::newRow("bad top") << QStringList { "FILE", "ABC", "--top", "0" } << 2 << ""
                                 << "--top";
        QTest::newRow("queries") << QStringList { "FILE", "--queries", "QUERIES", "--top", "1" } << 0
                                 << "1:100.0\n2:100.0\n\n"
                                 << "3 queries over 2 tunes";
    }
    void command()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QString, out);
        QFETCH(QString, err);
        test::TestEnv env;
        const QString file = env.writeFile(QStringLiteral("t.abc"),
            "X:1\nT:First\nK:D\nDEF GAB|c2 d2|]\n\nX:2\nT:Second\nK:Ador\nEFGA B2 e2|]\n");
        const QString queries = env.writeFile(QStringLiteral("q.txt"), "G\tG A B c\nD\tA B e\n\tz\n");
        arguments.replaceInStrings(QStringLiteral("QUERIES"), queries);
        arguments.replaceInStrings(QStringLiteral("FILE"), file);
        const test::EnvGuard root("FENNELWORKS_ROOT", env.root().toUtf8());
        QString o, e;
        QCOMPARE(runSimilar(arguments, &o, &e), code);
        QVERIFY2(out.startsWith(u'\t') ? o.endsWith(out) && o.count(u'\n') == 1 : o == out, qPrintable(o));
        QVERIFY2(e.contains(err), qPrintable(e));
    }

    // The panel's similar mode fills the list best first and greys the rest; off, the melody
    // box is the text fragment of the filter as before.
    void panel_data()
    {
        QTest::addColumn<bool>("similar");
        QTest::addColumn<QString>("fragment");
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<QString>("message");
        QTest::newRow("ranked, another key")
            << true << "[K:D] E D E F" << QStringList { "Turn", "Scale" } << "";
        QTest::newRow("too few notes") << true << "A B" << QStringList {} << "<similarTooFew>";
        QTest::newRow("mode off: text fragment") << false << "DCDE" << QStringList { "Turn" } << "";
        QTest::newRow("mode off: no transposition") << false << "EDEF" << QStringList {} << "<noTuneFound>";
    }
    void panel()
    {
        QFETCH(bool, similar);
        QFETCH(QString, fragment);
        QFETCH(QStringList, listed);
        QFETCH(QString, message);
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        const QString kFile = env.app().store().FichierOuvrir(
            env.writeFile(QStringLiteral("m.abc"),
                "X:1\nT:Scale\nK:C\nCDEF GABc|\n\nX:2\nT:Arpeggio\nK:C\nCEGc egc'e'|\n\n"
                "X:3\nT:Turn\nK:C\nGFED CDEF|\n"),
            false, true, false);
        FilterPanel panel(env.app());
        ChoiceList list;
        panel.filter().setChoiceList(&list);
        panel.findChild<QCheckBox *>(QStringLiteral("chk_similar"))->setChecked(similar);
        auto *box = panel.findChild<QLineEdit *>(QStringLiteral("txt_mus"));
        box->setText(fragment);
        QTest::keyClick(box, Qt::Key_Return);
        QStringList captions;
        for (const ChoiceItem &item : list.items())
            captions.append(item.caption.mid(item.caption.lastIndexOf(u' ') + 1));
        QCOMPARE(captions, listed);
        QStringList shown;
        for (const Node *tune : env.app().tree().find(kFile + key::BdyFile)->children())
            if (tune->ForeColor != color::TuneLeftOut)
                shown.append(tune->Text.mid(tune->Text.lastIndexOf(u' ') + 1));
        shown.sort();
        listed.sort();
        // A fragment too short to look for leaves the tree as it was.
        const QStringList all { "Arpeggio", "Scale", "Turn" };
        QCOMPARE(shown, message == u"<similarTooFew>" ? all : listed);
        const QStringList messages = env.ui().messages();
        QCOMPARE(messages.size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty())
            QVERIFY2(messages.first().endsWith(env.app().text(QStringLiteral("Msg"), message)),
                qPrintable(messages.first()));
    }

    void recall_data()
    {
        QTest::addColumn<QString>("change"); // "written", "t<semitones>", "changed", "missing", "added"
        QTest::addColumn<int>("first"); // fragments whose tune comes first, of 60
        QTest::addColumn<int>("topFive");
        QTest::newRow("as written") << "written" << 57 << 59;
        for (int t = -5; t <= 6; ++t)
            QTest::newRow(qPrintable(QStringLiteral("transposed %1").arg(t)))
                << QStringLiteral("t%1").arg(t) << 57 << 59;
        QTest::newRow("one note moved a step") << "changed" << 54 << 59;
        // A missing or an added note turns some fragments into a phrase other tunes hold whole.
        QTest::newRow("one note missing") << "missing" << 52 << 58;
        QTest::newRow("one note added") << "added" << 52 << 57;
    }
    void recall()
    {
        QFETCH(QString, change);
        QFETCH(int, first);
        QFETCH(int, topFive);
        Corpus *corpus = nottingham();
        if (!corpus)
            QSKIP("the Nottingham collection of the shared corpus is not there");
        QCOMPARE(corpus->fragments.size(), 60);
        int firsts = 0, fives = 0;
        QStringList missed;
        for (int k = 0; k < corpus->fragments.size(); ++k) {
            const Fragment &f = corpus->fragments.at(k);
            SimilarQuery query;
            query.fragment = f.text;
            query.key = f.key;
            query.unit = f.unit;
            query.options.top = 2000;
            if (change != u"written") {
                QVector<int> p = pitchesOf(readMelodyFragment(f.text, f.key, f.unit));
                const int mid = int(p.size()) / 2;
                if (change.startsWith(u't'))
                    for (int &pitch : p)
                        pitch += change.mid(1).toInt();
                else if (change == u"changed")
                    p[mid] += k % 2 ? -1 : 2;
                else if (change == u"missing")
                    p.remove(mid);
                else
                    p.insert(mid, p.at(mid) + 3);
                query = { abcOf(p), QString(), QString(), query.options };
            }
            // Tunes that share the fragment's score share its place: count those above it.
            const QVector<SimilarTune> found = corpus->similar.search(query);
            const auto at = std::find_if(
                found.begin(), found.end(), [&f](const SimilarTune &t) { return t.position == f.position; });
            const auto above = at == found.end()
                ? found.size()
                : std::count_if(
                    found.begin(), at, [&at](const SimilarTune &t) { return t.score > at->score; });
            firsts += above == 0;
            fives += above < 5;
            if (above != 0)
                missed.append(QString::number(f.position));
        }
        qInfo("%s: first %d/60, among five %d/60; missed %s", qPrintable(change), firsts, fives,
            qPrintable(missed.join(u' ')));
        QVERIFY2(firsts >= first, qPrintable(QString::number(firsts)));
        QVERIFY2(fives >= topFive, qPrintable(QString::number(fives)));
    }
};

FENWORK_TEST(TestMelodySimilar)
#include "tst_melodysimilar.moc"
