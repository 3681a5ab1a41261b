// The file operations on files opened in the store: fields, reindex, sort, the backup, the
// analysis through a stand-in engraver, and the round trips over the public corpus.
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"
#include "tools/fieldtools.h"
#include "tools/fileanalysis.h"
#include "tools/filetools.h"
#include "tools/reindexsort.h"

#include <QDirIterator>
#include <QFile>
#include <QTest>

using namespace fenwork;

namespace {

struct Fixture
{
    test::TestEnv env;
    QString kFile;
    ToolsBackup backup;

    explicit Fixture(const QByteArray &bytes = {})
    {
        env.app().store().backupOnOpen = false;
        createWorkspaceRoot(env.app());
        if (!bytes.isEmpty())
            open(bytes);
    }
    // Opens one more file, which becomes the one worked on.
    void open(const QByteArray &bytes)
    {
        const QString name = QString::number(++m_files) + QStringLiteral(".abc");
        kFile = env.app().store().FichierOuvrir(env.writeFile(name, bytes), false, true, false);
    }
    int m_files = 0;
    TuneStore &store() { return env.app().store(); }
    QString body() { return store().GetStringFile(kFile, true, false); }
    QStringList labels()
    {
        QStringList out;
        for (const Node *tune : env.app().tree().find(kFile + key::BdyFile)->children())
            out << tune->Text;
        return out;
    }
    // What a save writes, without the disk: saving flushes each file, slow over hundreds.
    QString saved() { return store().GetStringFile(kFile, false, false); }
};

QByteArray crlf(const char *text)
{
    return QByteArray(text).replace("\n", "\r\n");
}

} // namespace

class TestFileTools : public QObject
{
    Q_OBJECT

private slots:
    void fields_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<int>("result");
        QTest::addColumn<QByteArray>("expected"); // the tunes after, empty: unchanged
        const QByteArray two = "X:1\nT:One\nR:reel\nK:G\nR:jig\nabc|\nX:2\nT:Two\nK:D\ndef|\n";
        QTest::newRow("add behind the first T:") << two << "  C:Trad " << 0 << "" << "" << int(FieldResult::Done)
            << crlf("X:1\nT:One\nC:Trad\nR:reel\nK:G\nR:jig\nabc|\n\nX:2\nT:Two\nC:Trad\nK:D\ndef|\n\n");
        QTest::newRow("first, lower case code") << two << "r:hornpipe" << 1 << "" << "" << int(FieldResult::Done)
            << crlf("X:1\nT:One\nr:hornpipe\nK:G\nR:jig\nabc|\n\nX:2\nT:Two\nK:D\ndef|\n\n");
        QTest::newRow("last") << two << "R:polka" << 2 << "" << "" << int(FieldResult::Done)
            << crlf("X:1\nT:One\nR:reel\nK:G\nR:polka\nabc|\n\nX:2\nT:Two\nK:D\ndef|\n\n");
        QTest::newRow("all") << two << "R:x" << 3 << "" << "" << int(FieldResult::Done)
            << crlf("X:1\nT:One\nR:x\nK:G\nR:x\nabc|\n\nX:2\nT:Two\nK:D\ndef|\n\n");
        QTest::newRow("comment added") << two << "%note" << 0 << "2" << "" << int(FieldResult::Done)
            << crlf("X:1\nT:One\nR:reel\nK:G\nR:jig\nabc|\n\nX:2\nT:Two\n%note\nK:D\ndef|\n\n");
        QTest::newRow("range") << QByteArray("X:4\nT:a\nX:5\nT:b\nX:6\nT:c\nX:7\nT:d\nX:8\nT:e\n") << "N:n" << 0
                               << " 5" << "7" << int(FieldResult::Done)
            << crlf("X:4\nT:a\n\nX:5\nT:b\nN:n\n\nX:6\nT:c\nN:n\n\nX:7\nT:d\nN:n\n\nX:8\nT:e\n\n");
        QTest::newRow("nonsense") << two << "Nonsense" << 0 << "" << "" << int(FieldResult::Invalid) << QByteArray();
        QTest::newRow("comment changed") << two << "%x" << 1 << "" << "" << int(FieldResult::CommentStop)
                                         << QByteArray();
        QTest::newRow("no from tune") << two << "N:n" << 0 << "9" << "" << int(FieldResult::NoFromTune)
                                      << QByteArray();
        QTest::newRow("no tunes") << QByteArray("%abc\n") << "N:n" << 0 << "" << "" << int(FieldResult::NoTunes)
                                  << QByteArray();
    }
    void fields()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, line);
        QFETCH(int, action);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(int, result);
        QFETCH(QByteArray, expected);
        Fixture f(file);
        const QString before = f.body();
        QCOMPARE(int(applyFieldToFile(f.env.app(), f.kFile, line, FieldAction(action), from, to, f.backup)), result);
        QCOMPARE(f.body(), expected.isEmpty() ? before : QString::fromUtf8(expected));
        if (expected.isEmpty())
            QVERIFY(f.backup.isEmpty());
    }

    // The store gives every tune a title, so these shapes arise only in the text itself.
    void addWithoutTitle()
    {
        QCOMPARE(applyFieldLine(QStringLiteral("X:3\r\nK:G\r\n"), QStringLiteral("R:jig"), FieldAction::Add),
            QStringLiteral("X:3\r\nR:jig\r\nK:G\r\n"));
        QCOMPARE(applyFieldLine(QStringLiteral("K:G"), QStringLiteral("R:jig"), FieldAction::Add),
            QStringLiteral("X:0\r\nR:jig\r\nK:G"));
        bool changed = true;
        QCOMPARE(applyFieldLine(QStringLiteral("X:1\r\nT:a"), QStringLiteral("R:jig"), FieldAction::ChangeFirst, &changed),
            QStringLiteral("X:1\r\nT:a"));
        QVERIFY(!changed);
    }

    void reindexKeepsTitlesAndRestores()
    {
        Fixture f("X:7\nT:A\nX:3\nT:B\nX:7\nT:C\n");
        const QString before = f.body();
        QVERIFY(reindexFile(f.env.app(), f.kFile, 100, f.backup));
        QCOMPARE(f.labels(), (QStringList { "[100]  A", "[101]  B", "[102]  C" }));
        QVERIFY(f.body().startsWith(QStringLiteral("X:100\r\nT:A\r\n")));
        QCOMPARE(f.backup.restore(f.env.app()), f.kFile);
        QCOMPARE(f.body(), before);
    }

    void sort_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("code1");
        QTest::addColumn<QString>("code2");
        QTest::addColumn<QString>("order"); // the X: numbers after
        QTest::newRow("numbers, zero-padded") << QByteArray("X:10\nT:a\nX:9\nT:b\nX:100\nT:c\n") << "X:" << ""
                                              << "9 10 100";
        QTest::newRow("missing title first") << QByteArray("X:1\nT:b\nX:2\nK:G\nX:3\nT:a\n") << "T:" << ""
                                             << "2 3 1";
        QTest::newRow("first title alone") << QByteArray("X:1\nT:z\nT:a\nX:2\nT:m\n") << "T:" << "" << "2 1";
        // With a second key the titles are read up to the R: line: the last one before it counts.
        QTest::newRow("last title before R:") << QByteArray("X:1\nT:z\nT:a\nR:r\nX:2\nT:m\nR:r\n") << "T:" << "R:"
                                              << "1 2";
        QTest::newRow("case ignored, order kept") << QByteArray("X:1\nT:Abc\nX:2\nT:abc\nX:3\nT:ABC\nX:4\nT:a\n")
                                                  << "T:" << "" << "4 1 2 3";
        QTest::newRow("second key breaks ties") << QByteArray("X:1\nT:a\nR:reel\nX:2\nT:a\nR:jig\n") << "T:" << "R:"
                                                << "2 1";
    }
    void sort()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, code1);
        QFETCH(QString, code2);
        QFETCH(QString, order);
        Fixture f(file);
        QVERIFY(sortFile(f.env.app(), f.kFile, code1, code2, f.backup));
        QStringList numbers;
        for (const QString &label : f.labels())
            numbers << label.mid(1, label.indexOf(u']') - 1);
        QCOMPARE(numbers.join(u' '), order);
    }

    void restoreGivesTheTextBeforeTheLastOperation()
    {
        Fixture f("X:2\nT:b\nX:1\nT:a\n");
        QVERIFY(sortFile(f.env.app(), f.kFile, QStringLiteral("T:"), QString(), f.backup));
        const QString sorted = f.body();
        QVERIFY(reindexFile(f.env.app(), f.kFile, 5, f.backup));
        f.backup.restore(f.env.app());
        QCOMPARE(f.body(), sorted);
        QVERIFY(f.backup.isEmpty());
    }

    // A stand-in engraver: no output for a tune holding "BAD", none ever for "HANG".
    void analysis_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("bad");
        QTest::newRow("all good") << QByteArray("X:1\nT:a\nX:2\nT:b\n") << QStringList();
        QTest::newRow("bad and hanging") << QByteArray("X:1\nT:BAD one\nX:2\nT:b\nX:3\nT:HANG\nX:4\nT:d\n")
                                         << QStringList { "[1]  BAD one", "[3]  HANG" };
    }
    void analysis()
    {
        QFETCH(QByteArray, file);
        QFETCH(QStringList, bad);
        Fixture f(file);
        const QString tool = f.env.writeFile(QStringLiteral("engraver.sh"),
            "#!/bin/sh\ngrep -q HANG \"$1\" && exec sleep 30\ngrep -q BAD \"$1\" && exit 1\n"
            "for a; do out=$a; done\necho ps > \"$out\"\n");
        QFile::setPermissions(tool, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        f.env.app().ini().set(keys::Tool2ps, tool);
        const QString before = f.body();
        FileAnalysis analysis(f.env.app());
        analysis.waitLimit = 300;
        const FileAnalysis::Result result = analysis.run(f.kFile);
        QCOMPARE(result.badTunes, bad);
        QVERIFY(result.error.isEmpty());
        QVERIFY(!result.stopped);
        QCOMPARE(f.body(), before);
    }

    void analysisWithoutEngraver()
    {
        Fixture f("X:1\nT:a\n");
        // A file that is there but cannot run stands for a broken installation.
        f.env.app().ini().set(keys::Tool2ps, f.env.writeFile(QStringLiteral("abcm2ps"), "not a program"));
        const FileAnalysis::Result result = FileAnalysis(f.env.app()).run(f.kFile);
        QVERIFY(!result.error.isEmpty());
        QVERIFY(result.badTunes.isEmpty());
    }

    void analysisStopsOnEscape()
    {
        Fixture f("X:1\nT:a\nX:2\nT:b\n");
        f.env.ui().setEscapePressed(true);
        const FileAnalysis::Result result = FileAnalysis(f.env.app()).run(f.kFile);
        QVERIFY(result.stopped);
        QVERIFY(result.badTunes.isEmpty());
    }

    void corpusRoundTrips()
    {
        const QString corpus = test::corpusDir();
        if (corpus.isEmpty())
            QSKIP("no corpus folder beside the project");
        QDirIterator files(corpus, { QStringLiteral("*.abc") }, QDir::Files, QDirIterator::Subdirectories);
        int count = 0;
        Fixture f;
        while (files.hasNext()) {
            f.open(test::readBytes(files.next()));
            const QString name = files.fileName();
            const QString opened = f.saved();
            QVERIFY2(!cleanFile(f.env.app(), f.kFile, (1u << CleanOptionCount) - 1, f.backup) || !f.backup.isEmpty(),
                qPrintable(name));
            f.backup.restore(f.env.app());
            QVERIFY2(f.saved() == opened, qPrintable(name + QStringLiteral(": clean and restore")));
            if (tuneCount(f.env.app(), f.kFile) == 0)
                continue;
            ++count;

            const QStringList tunesBefore = f.body().split(QStringLiteral("\r\nX:"));
            QVERIFY(reindexFile(f.env.app(), f.kFile, 1000, f.backup));
            const QStringList tunesAfter = f.body().split(QStringLiteral("\r\nX:"));
            QCOMPARE(tunesAfter.size(), tunesBefore.size());
            for (qsizetype i = 1; i < tunesBefore.size(); ++i) {
                const QString &a = tunesBefore.at(i);
                const QString &b = tunesAfter.at(i);
                QVERIFY2(a.mid(a.indexOf(CRLF)) == b.mid(b.indexOf(CRLF)), qPrintable(name));
            }

            QVERIFY(sortFile(f.env.app(), f.kFile, QStringLiteral("T:"), QStringLiteral("K:"), f.backup));
            const QString once = f.saved();
            QVERIFY(sortFile(f.env.app(), f.kFile, QStringLiteral("T:"), QStringLiteral("K:"), f.backup));
            QVERIFY2(f.saved() == once, qPrintable(name + QStringLiteral(": sorted twice")));
        }
        QVERIFY(count > 0);
    }
};

FENWORK_TEST(TestFileTools)
#include "tst_filetools.moc"
