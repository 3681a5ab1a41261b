// What the working list makes: sets in a file, the list's ABC file, and the list kept between runs.
#include "testenv.h"
#include "testmain.h"

#include "collections/choicefile.h"
#include "collections/choicelist.h"
#include "collections/choicesets.h"
#include "collections/listtoabc.h"
#include "frame/inifile.h"
#include "frame/selection.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

namespace {

// `count` tunes numbered from `firstX`, each with closed repeats; `parts` gives each tune body parts.
QByteArray tunes(int count, int firstX = 1, bool parts = false)
{
    QByteArray abc = "%abc\n%%abc-alias none\n\n";
    for (int i = 0; i < count; ++i) {
        abc += "X:" + QByteArray::number(firstX + i) + "\nT:Tune " + QByteArray::number(i + 1) + "\nK:D\n";
        abc += parts ? "P:A\n|:abc:|\nP:B\n|:def:|\n\n" : "|:abc:|\n\n";
    }
    return abc;
}

struct Workspace
{
    explicit Workspace(const QByteArray &abc = tunes(3))
    {
        createWorkspaceRoot(env.app());
        if (!abc.isEmpty())
            kFile = open(QStringLiteral("tunes.abc"), abc);
    }
    QString open(const QString &name, const QByteArray &abc)
    {
        return env.app().store().FichierOuvrir(env.writeFile(name, abc), false, true, false);
    }
    QStringList tuneKeys(const QString &file) const
    {
        QStringList keys;
        if (const Node *body = env.app().tree().find(file + key::BdyFile))
            for (const Node *tune : body->children())
                keys.append(tune->Key);
        return keys;
    }
    void listFirst(int count, int repetitions = 1)
    {
        const QStringList keys = tuneKeys(kFile);
        for (int i = 0; i < count && i < keys.size(); ++i) {
            list.add(keys.at(i), env.app().tree().find(keys.at(i))->Text);
            list.setRepetitions(i, repetitions);
        }
    }
    QString msg(const char *key) { return env.app().text(QStringLiteral("Msg"), QString::fromLatin1(key)); }

    mutable TestEnv env;
    QString kFile;
    ChoiceList list;
};

} // namespace

class TestChoiceSets : public QObject
{
    Q_OBJECT
private slots:
    void makeSet_data()
    {
        QTest::addColumn<int>("tuneCount");
        QTest::addColumn<bool>("withFile");
        QTest::addColumn<bool>("ownParts");
        QTest::addColumn<int>("repetitions");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("orderEnd"); // empty: no set made
        QTest::newRow("no current file") << 2 << false << false << 1 << "<selectFile>" << "";
        QTest::newRow("empty list, silently") << 0 << true << false << 1 << "" << "";
        QTest::newRow("one tune, silently") << 1 << true << false << 1 << "" << "";
        QTest::newRow("two, repetitions in the order line") << 2 << true << false << 3 << "" << "P:(A)3(B)3";
        QTest::newRow("26 is the most") << 26 << true << false << 1 << "" << "(Y)1(Z)1";
        QTest::newRow("27 refused") << 27 << true << false << 1 << "<overSet>" << "";
        // Each tune's X: and each of its two body parts make a letter: after "Z" comes "a".
        QTest::newRow("parts of their own, past Z") << 9 << true << true << 1 << "" << "(Z)1(a)1";
    }
    void makeSet()
    {
        QFETCH(int, tuneCount);
        QFETCH(bool, withFile);
        QFETCH(bool, ownParts);
        QFETCH(int, repetitions);
        QFETCH(QString, message);
        QFETCH(QString, orderEnd);
        Workspace w(tunes(qMax(tuneCount, 1), 1, ownParts));
        w.listFirst(tuneCount, repetitions);
        const int before = int(w.tuneKeys(w.kFile).size());
        const QString kNew = fenwork::makeSet(w.env.app(), withFile ? w.kFile : QString(), w.list.items());
        QCOMPARE(w.env.ui().messages(), message.isEmpty() ? QStringList() : QStringList { w.msg(message.toLatin1()) });
        QCOMPARE(w.tuneKeys(w.kFile).size(), before + (orderEnd.isEmpty() ? 0 : 1));
        if (orderEnd.isEmpty()) {
            QVERIFY(kNew.isEmpty());
            return;
        }
        const QStringList lines = w.env.app().store().GetStringTune(kNew, false, 0).split(CRLF);
        const QString title = w.env.app().text(QStringLiteral("MainForm"), QStringLiteral("<setTune>"));
        QCOMPARE(lines.at(1), QStringLiteral("T:") + title);
        QVERIFY2(lines.at(2).startsWith(u"P:(A)") && lines.at(2).endsWith(orderEnd), qPrintable(lines.at(2)));
        QVERIFY(w.env.app().tree().find(kNew)->Text.endsWith(QStringLiteral("] ") + title));
        QCOMPARE(w.list.count(), tuneCount); // the list is left as it was
    }

    // An empty set: in the current file, titled, the file flagged as changed; none without a file.
    void emptySet_data()
    {
        QTest::addColumn<bool>("withFile");
        QTest::newRow("current file") << true;
        QTest::newRow("no file") << false;
    }
    void emptySet()
    {
        QFETCH(bool, withFile);
        Workspace w;
        AppContext &app = w.env.app();
        app.selection().set(QString(), withFile ? w.kFile : QString());
        const QString kNew = createNewSet(app);
        QCOMPARE(kNew.isEmpty(), !withFile);
        QCOMPARE(w.env.ui().messages(), withFile ? QStringList() : QStringList { w.msg("<selectFile>") });
        if (!withFile)
            return;
        QCOMPARE(w.tuneKeys(w.kFile).size(), 4);
        QVERIFY(app.tree().find(w.kFile)->Image == Pic::FileAbcM);
        QVERIFY(app.store().GetStringTune(kNew, false, 0).contains(
            QStringLiteral("\r\nT:") + app.text(QStringLiteral("MainForm"), QStringLiteral("<setTune>")) + CRLF));
    }

    // The whole file after a set of its two tunes, the second played twice, in both forms.
    void compactSet_data()
    {
        QTest::addColumn<QString>("compact");
        QTest::newRow("compact") << "1";
        QTest::newRow("full headers") << "0";
    }
    void compactSet()
    {
        QFETCH(QString, compact);
        const QString folder = testDataDir() + QStringLiteral("/collections/data/set_compact") + compact;
        Workspace w(readBytes(folder + QStringLiteral("/input.abc")));
        w.env.app().ini().set(keys::CompactSet, compact);
        w.listFirst(2);
        w.list.setRepetitions(1, 2);
        QVERIFY(!fenwork::makeSet(w.env.app(), w.kFile, w.list.items()).isEmpty());
        const QString out = w.env.path(QStringLiteral("out.abc"));
        QVERIFY(w.env.app().store().FichierSaveFromKey(w.kFile, out, QString()));
        QString actual = readAll(out);
        actual.replace(w.env.app().creatorLine, QStringLiteral("%%abc-creator"));
        QCOMPARE(actual, readAll(folder + QStringLiteral("/expected.abc")));
    }

    // The list's file numbers its tunes from 1 in list order, escapes letters when asked, and
    // has the header lines unless they are turned off.
    void listFile_data()
    {
        QTest::addColumn<QString>("escapes");
        QTest::addColumn<QString>("noHeader");
        QTest::addColumn<QString>("begins");
        QTest::addColumn<QString>("holds");
        QTest::newRow("plain") << "0" << "0" << "%abc\r\n" << "T:Ré\r\n";
        QTest::newRow("escaped") << "1" << "0" << "%abc\r\n" << "T:R\\'e\r\n";
        QTest::newRow("no header lines") << "0" << "1" << "X:1\r\nT:Ré\r\n" << "X:2\r\nT:Tune 1\r\n";
    }
    void listFile()
    {
        QFETCH(QString, escapes);
        QFETCH(QString, noHeader);
        QFETCH(QString, begins);
        QFETCH(QString, holds);
        Workspace w(tunes(1, 40) + "X:7\nT:Ré\nK:D\nabc|\n");
        const QStringList keys = w.tuneKeys(w.kFile);
        w.list.add(keys.at(1), QStringLiteral("Ré"));
        w.list.add(keys.at(0), QStringLiteral("Tune 1"));
        AppContext &app = w.env.app();
        app.ini().set(keys::ABCstr, escapes);
        app.ini().set(keys::NoSaveHdrFile, noHeader);
        const QString target = w.env.path(QStringLiteral("list.abc"));
        w.env.ui().pushFileName(target);
        w.env.ui().pushAnswer(UserDialogs::Answer::No);
        QCOMPARE(mnu_lstToAbc(app, w.list), target);
        const QString written = QString::fromUtf8(readBytes(target));
        QVERIFY2(written.startsWith(begins), qPrintable(written));
        QVERIFY2(written.contains(holds), qPrintable(written));
        QCOMPARE(written.count(QStringLiteral("\r\nX:")) + (written.startsWith(u"X:") ? 1 : 0), 2);
        QVERIFY(written.indexOf(QStringLiteral("X:1\r\nT:R")) < written.indexOf(QStringLiteral("X:2\r\nT:Tune 1")));
        QVERIFY(!written.contains(QStringLiteral("X:40")) && !written.contains(QStringLiteral("X:7")));
    }

    // An open file is never overwritten; Yes to the question opens the new file.
    void listFileTarget()
    {
        Workspace w;
        w.listFirst(2);
        const QString open = GetPathFile(w.env.app(), w.kFile);
        const QByteArray before = readBytes(open);
        w.env.ui().pushFileName(open);
        QVERIFY(mnu_lstToAbc(w.env.app(), w.list).isEmpty());
        QCOMPARE(readBytes(open), before);
        QVERIFY(w.env.ui().lastMessage().endsWith(w.msg("<openSyn>")));

        const QString fresh = w.env.path(QStringLiteral("fresh.abc"));
        w.env.ui().pushFileName(fresh);
        w.env.ui().pushAnswer(UserDialogs::Answer::Yes);
        QCOMPARE(mnu_lstToAbc(w.env.app(), w.list), fresh);
        QCOMPARE(GetPathFile(w.env.app(), GetKFile(w.env.app().tree().root()->children().last()->Key)), fresh);
    }

    // The list comes back from its file by path and number, whatever the order of the files; a
    // file gone takes exactly its own items with it.
    void keptBetweenRuns_data()
    {
        QTest::addColumn<QStringList>("reopened");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("same files") << QStringList { "a", "b" } << QStringList { "b:Tune 2x3", "a:Tune 1x1", "a:Tune 3x2", "b:Tune 1x1" };
        QTest::newRow("files reordered") << QStringList { "b", "a" } << QStringList { "b:Tune 2x3", "a:Tune 1x1", "a:Tune 3x2", "b:Tune 1x1" };
        QTest::newRow("a file gone") << QStringList { "b" } << QStringList { "b:Tune 2x3", "b:Tune 1x1" };
        QTest::newRow("no file") << QStringList {} << QStringList {};
    }
    void keptBetweenRuns()
    {
        QFETCH(QStringList, reopened);
        QFETCH(QStringList, expected);
        Workspace w(tunes(3, 1));
        // The second file numbers two tunes alike: the caption tells them apart.
        const QString kB = w.open(QStringLiteral("b.abc"), "X:5\nT:Tune 1\nK:D\nabc|\n\nX:5\nT:Tune 2\nK:D\nabc|\n");
        const QStringList a = w.tuneKeys(w.kFile);
        const QStringList b = w.tuneKeys(kB);
        ChoiceList &list = w.list;
        for (const auto &[key, reps] : { std::pair { b.at(1), 3 }, { a.at(0), 1 }, { a.at(2), 2 }, { b.at(0), 1 } }) {
            list.add(key, trimBlanks(w.env.app().tree().find(key)->Text.section(u']', 1)));
            list.setRepetitions(list.count() - 1, reps);
        }
        const QString file = choiceFilePath(w.env.app().paths());
        QVERIFY(writeChoiceFile(file, w.env.app().tree(), list.items()));

        Workspace next(QByteArray {});
        for (const QString &name : reopened)
            next.env.app().store().FichierOuvrir(
                w.env.path(name == u"a" ? QStringLiteral("tunes.abc") : QStringLiteral("b.abc")), false, true, false);
        bool found = false;
        QStringList back;
        for (const ChoiceItem &item : readChoiceFile(file, next.env.app().tree(), &found)) {
            const QString path = GetPathFile(next.env.app(), GetKFile(item.key));
            back.append((path.endsWith(u"b.abc") ? QStringLiteral("b:") : QStringLiteral("a:")) + item.caption + u'x' + QString::number(item.repetitions));
        }
        QVERIFY(found);
        QCOMPARE(back, expected);
    }

    // A list far past what the settings file can hold comes back whole.
    void bigListKeptWhole()
    {
        Workspace w(tunes(2000));
        w.listFirst(2000);
        w.list.setRepetitions(1999, 7);
        const QString file = choiceFilePath(w.env.app().paths());
        QVERIFY(writeChoiceFile(file, w.env.app().tree(), w.list.items()));
        const QVector<ChoiceItem> back = readChoiceFile(file, w.env.app().tree());
        QCOMPARE(back.size(), 2000);
        QCOMPARE(back.last().key, w.list.items().last().key);
        QCOMPARE(back.last().repetitions, 7);
    }
};

FENWORK_TEST(TestChoiceSets)
#include "tst_choicesets.moc"
