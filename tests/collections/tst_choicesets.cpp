// What the working list makes: sets in a file (whole files as golden pairs), and the list kept
// between runs.
#include "testenv.h"
#include "testmain.h"

#include "collections/choicefile.h"
#include "collections/choicelist.h"
#include "collections/choicesets.h"
#include "collections/listtoabc.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

namespace {

// `count` tunes with closed repeats; `parts` gives each two body parts of its own.
QByteArray tunes(int count, bool parts = false)
{
    QByteArray abc = "%%abc-alias none\n\n";
    for (int i = 1; i <= count; ++i)
        abc += "X:" + QByteArray::number(i) + "\nT:Tune " + QByteArray::number(i) + "\nK:D\n"
            + (parts ? "P:A\n|:abc:|\nP:B\n|:def:|\n\n" : "|:abc:|\n\n");
    return abc;
}

struct Workspace
{
    explicit Workspace(const QByteArray &abc) { createWorkspaceRoot(env.app()), kFile = open("a.abc", abc); }
    QString open(const char *name, const QByteArray &abc)
    {
        return abc.isEmpty() ? QString()
                             : env.app().store().FichierOuvrir(
                                 env.writeFile(QString::fromLatin1(name), abc), false, true, false);
    }
    QStringList tuneKeys(const QString &file)
    {
        QStringList keys;
        for (const Node *tune : env.app().tree().find(file + key::BdyFile)->children())
            keys.append(tune->Key);
        return keys;
    }
    TestEnv env;
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
        QTest::addColumn<int>("listed");
        QTest::addColumn<bool>("withFile");
        QTest::addColumn<bool>("ownParts");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("orderEnd"); // empty: no set made
        QTest::newRow("no current file") << 2 << false << false << "<selectFile>"
                                         << "";
        QTest::newRow("one tune, silently") << 1 << true << false << ""
                                            << "";
        QTest::newRow("two, repetitions in the order line") << 2 << true << false << ""
                                                            << "P:(A)1(B)3";
        QTest::newRow("26 is the most") << 26 << true << false << ""
                                        << "(Y)1(Z)3";
        QTest::newRow("27 refused") << 27 << true << false << "<overSet>"
                                    << "";
        // The X: and each body part of a tune make a letter: after "Z" comes "a".
        QTest::newRow("parts of their own, past Z") << 9 << true << true << ""
                                                    << "(Z)3(a)3";
    }
    void makeSet()
    {
        QFETCH(int, listed);
        QFETCH(bool, withFile);
        QFETCH(bool, ownParts);
        QFETCH(QString, message);
        QFETCH(QString, orderEnd);
        Workspace w(tunes(listed, ownParts));
        AppContext &app = w.env.app();
        for (const QString &key : w.tuneKeys(w.kFile))
            w.list.add(key, QString());
        w.list.setRepetitions(listed - 1, 3);
        const QString kNew = fenwork::makeSet(app, withFile ? w.kFile : QString(), w.list.items());
        QCOMPARE(w.env.ui().messages().join(u'|'),
            message.isEmpty() ? QString() : app.text(QStringLiteral("Msg"), message));
        QCOMPARE(w.tuneKeys(w.kFile).size(), listed + (orderEnd.isEmpty() ? 0 : 1));
        if (orderEnd.isEmpty())
            return;
        const QStringList lines = app.store().GetStringTune(kNew, false, 0).split(CRLF);
        const QString title = app.text(QStringLiteral("MainForm"), QStringLiteral("<setTune>"));
        QCOMPARE(lines.at(1), QStringLiteral("T:") + title);
        QVERIFY2(
            lines.at(2).startsWith(u"P:(A)1") && lines.at(2).endsWith(orderEnd), qPrintable(lines.at(2)));
        QVERIFY(app.tree().find(kNew)->Text.endsWith(QStringLiteral("] ") + title));
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
        const QStringList keys = w.tuneKeys(w.kFile);
        for (int i = 0; i < 2; ++i)
            w.list.add(keys.at(i), w.env.app().tree().find(keys.at(i))->Text);
        w.list.setRepetitions(1, 2);
        QVERIFY(!fenwork::makeSet(w.env.app(), w.kFile, w.list.items()).isEmpty());
        const QString out = w.env.path(QStringLiteral("out.abc"));
        QVERIFY(w.env.app().store().FichierSaveFromKey(w.kFile, out, QString()));
        QString actual = readAll(out);
        actual.replace(w.env.app().creatorLine, QStringLiteral("%%abc-creator"));
        QCOMPARE(actual, readAll(folder + QStringLiteral("/expected.abc")));
    }

    // The list's file: its tunes numbered from 1 in list order, escaped when asked, after the
    // header lines unless they are off; an open file is refused; Yes opens the new one.
    void listFile_data()
    {
        QTest::addColumn<QString>("escapes");
        QTest::addColumn<QString>("noHeader");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain")
            << "0"
            << "0"
            << "%abc\r\n@\r\n\r\nX:1\r\nT:R\u00e9\r\nK:D\r\n\r\nX:2\r\nT:Tune 1\r\nK:D\r\n|:abc:|\r\n\r\n";
        QTest::newRow("escaped, no header")
            << "1"
            << "1"
            << "X:1\r\nT:R\\'e\r\nK:D\r\n\r\nX:2\r\nT:Tune 1\r\nK:D\r\n|:abc:|\r\n\r\n";
    }
    void listFile()
    {
        QFETCH(QString, escapes);
        QFETCH(QString, noHeader);
        QFETCH(QString, expected);
        Workspace w(tunes(1) + "X:7\nT:R\xc3\xa9\nK:D\n");
        AppContext &app = w.env.app();
        app.ini().set(keys::ABCstr, escapes);
        app.ini().set(keys::NoSaveHdrFile, noHeader);
        for (const QString &key : w.tuneKeys(w.kFile))
            w.list.add(key, QString());
        w.list.move(1, 0);
        w.env.ui().pushFileName(GetPathFile(app, w.kFile));
        QVERIFY(mnu_lstToAbc(app, w.list).isEmpty());
        const QString target = w.env.path(QStringLiteral("list.abc"));
        w.env.ui().pushFileName(target);
        w.env.ui().pushAnswer(UserDialogs::Answer::Yes);
        QCOMPARE(mnu_lstToAbc(app, w.list), target);
        QCOMPARE(
            QString::fromUtf8(readBytes(target)).replace(app.creatorLine, QStringLiteral("@")), expected);
        QCOMPARE(GetPathFile(app, app.tree().root()->children().last()->Key), target);
    }

    // The list comes back from its file by path and number, whatever the order of the files; a
    // file gone takes exactly its own items with it; tunes numbered alike are told by caption.
    void keptBetweenRuns_data()
    {
        QTest::addColumn<QString>("reopened");
        QTest::addColumn<QString>("expected");
        QTest::newRow("same files") << "ab"
                                    << "b:[5]  Two x3|a:[1]  Tune 1 x1|a:[3]  Tune 3 x2|b:[5]  One x1";
        QTest::newRow("files reordered") << "ba"
                                         << "b:[5]  Two x3|a:[1]  Tune 1 x1|a:[3]  Tune 3 x2|b:[5]  One x1";
        QTest::newRow("a file gone") << "b"
                                     << "b:[5]  Two x3|b:[5]  One x1";
    }
    void keptBetweenRuns()
    {
        QFETCH(QString, reopened);
        QFETCH(QString, expected);
        Workspace w(tunes(3));
        const QString kB = w.open("b.abc", "X:5\nT:One\nK:D\nabc|\n\nX:5\nT:Two\nK:D\nabc|\n");
        const QStringList a = w.tuneKeys(w.kFile), b = w.tuneKeys(kB);
        for (const auto &[key, reps] :
            { std::pair { b.at(1), 3 }, { a.at(0), 1 }, { a.at(2), 2 }, { b.at(0), 1 } }) {
            w.list.add(key, w.env.app().tree().find(key)->Text);
            w.list.setRepetitions(w.list.count() - 1, reps);
        }
        const QString file = choiceFilePath(w.env.app().paths());
        QVERIFY(writeChoiceFile(file, w.env.app().tree(), w.list.items()));

        Workspace next({});
        AppContext &app = next.env.app();
        for (const QChar name : reopened)
            app.store().FichierOuvrir(w.env.path(QString(name) + QStringLiteral(".abc")), false, true, false);
        QStringList back;
        for (const ChoiceItem &item : readChoiceFile(file, app.tree())) {
            QCOMPARE(app.tree().find(item.key)->Text, item.caption);
            back.append(GetPathFile(app, GetKFile(item.key)).right(5).left(1) + u':' + item.caption
                + QStringLiteral(" x") + QString::number(item.repetitions));
        }
        QCOMPARE(back.join(u'|'), expected);
    }
};

FENWORK_TEST(TestChoiceSets)
#include "tst_choicesets.moc"
