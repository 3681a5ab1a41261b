#include "scoreworld.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/toolrunner.h"

#include <QFile>
#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

namespace {

QString status(const QString &text)
{
    return CRLF + u' ' + text;
}

// Makes the library missing for one scope.
class NoGhostscript
{
public:
    NoGhostscript()
        : m_env("FENNELWORKS_GSLIB", "/nonexistent/libgs-missing.so.10")
    {
        resetGhostscriptLibrary();
    }
    ~NoGhostscript() { resetGhostscriptLibrary(); }

private:
    test::EnvGuard m_env;
};

} // namespace

class TestScoreRefresh : public QObject
{
    Q_OBJECT

private slots:
    void scoreText_data()
    {
        QTest::addColumn<bool>("useHdr");
        QTest::addColumn<bool>("oneLine");
        QTest::addColumn<QString>("expected"); // "@" stands for the file's header
        QTest::newRow("header and tune") << true << false << QStringLiteral("@\r\nTUNE");
        QTest::newRow("header and current line") << true << true << QStringLiteral("@\r\nLINE");
        // Without the header the one-line box has no effect.
        QTest::newRow("no header, one line") << false << true << QStringLiteral("TUNE");
    }

    void scoreText()
    {
        QFETCH(bool, useHdr);
        QFETCH(bool, oneLine);
        QFETCH(QString, expected);
        ScoreWorld world;
        world.env.app().ini().setBool(keys::UseHdr, useHdr);
        ScoreSource source = world.source();
        source.editorText = QStringLiteral("TUNE");
        source.oneLine = oneLine;
        source.currentLineTune = QStringLiteral("LINE");
        const QString text = ScoreRefresher(world.env.app()).scoreText(source);
        const qsizetype header = expected.indexOf(u'@');
        if (header < 0) {
            QCOMPARE(text, expected);
        } else {
            QVERIFY2(text.startsWith(QStringLiteral("%abc\r\n")), qPrintable(text));
            QVERIFY2(text.endsWith(QStringLiteral("%%scale 0.9\r\n") + expected.mid(header + 1)),
                qPrintable(text));
        }
    }

    void nothingToShow_data()
    {
        QTest::addColumn<bool>("noTune");
        QTest::newRow("no tune selected") << true;
        QTest::newRow("empty editor") << false;
    }

    void nothingToShow()
    {
        QFETCH(bool, noTune);
        ScoreWorld world;
        ScoreRefresher refresher(world.env.app());
        const QString blank = world.env.writeFile(QStringLiteral("blank.png"), {});
        QImage white(20, 30, QImage::Format_Grayscale8);
        white.fill(Qt::white);
        white.save(blank);
        refresher.setBlankPicture(blank);
        ScoreSource source = world.source();
        (noTune ? source.tuneKey : source.editorText).clear();
        int page = 3;
        const ScoreOutcome outcome = refresher.PartitionRefresh(source, kScoreTarget, 110, page, false);
        QCOMPARE(int(outcome.picture), int(ScoreOutcome::Picture::Blank));
        QCOMPARE(outcome.image.size(), QSize(20, 30));
        QCOMPARE(int(outcome.pageText), int(ScoreOutcome::PageText::Unchanged));
        QCOMPARE(outcome.attempts, 0);
        QVERIFY(!QFile::exists(world.cache(QStringLiteral("tmp.abc"))));
        QVERIFY(world.env.ui().shown.isEmpty());
    }

    void failures_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("page");
        QTest::addColumn<QString>("text"); // empty: the tune itself
        QTest::addColumn<bool>("speaks");
        QTest::newRow("page beyond the last") << kScoreTarget << 5 << QString() << true;
        QTest::newRow("invalid ABC") << kScoreTarget << 1 << QStringLiteral("no music here at all\r\n")
                                     << true;
        // Another picture fails the same way without a word.
        QTest::newRow("other target") << QStringLiteral("img_preview") << 5 << QString() << false;
    }

    void failures()
    {
        SKIP_WITHOUT_SCORE_TOOLS();
        QFETCH(QString, target);
        QFETCH(int, page);
        QFETCH(QString, text);
        QFETCH(bool, speaks);
        ScoreWorld world;
        ScoreRefresher refresher(world.env.app());
        ScoreSource source = world.source();
        if (!text.isEmpty())
            source.editorText = text;
        const ScoreOutcome outcome = refresher.PartitionRefresh(source, target, 110, page, false);
        QCOMPARE(outcome.attempts, 2);
        QCOMPARE(int(outcome.picture), int(ScoreOutcome::Picture::Blank));
        QCOMPARE(int(outcome.pageText), int(ScoreOutcome::PageText::Cleared));
        const QStringList expected
            = speaks ? QStringList { status(kScoreRetry), status(kScoreInvalid) } : QStringList {};
        QCOMPARE(world.env.ui().texts(ScriptedDialogs::Kind::Status), expected);
        QVERIFY(world.env.ui().messages().isEmpty());
    }

    // A missing engraver is named, not taken for invalid ABC; the box comes once, the strip each time.
    void engraverMissing()
    {
        ScoreWorld world;
        const QString notProgram = world.env.writeFile(QStringLiteral("abcm2ps"), "not a program");
        world.env.app().ini().set(keys::Tool2ps, notProgram);
        ScoreRefresher refresher(world.env.app());
        int page = 1;
        for (int i = 0; i < 2; ++i) {
            const ScoreOutcome outcome = refresher.PartitionRefresh(world.source(), kScoreTarget, 110, page, false);
            QCOMPARE(int(outcome.picture), int(ScoreOutcome::Picture::Blank));
        }
        const QStringList said = world.env.ui().messages();
        QCOMPARE(said.size(), 1);
        QVERIFY2(said.first().contains(QStringLiteral("abcm2ps")) && said.first().contains(notProgram),
                 qPrintable(said.first()));
        QVERIFY(!world.env.ui().texts(ScriptedDialogs::Kind::Status).join(u'|').contains(kScoreInvalid));
    }

    void ghostscriptMissing()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("abcm2ps")).isEmpty())
            QSKIP("abcm2ps is not installed");
        ScoreWorld world;
        NoGhostscript missing;
        ScoreRefresher refresher(world.env.app());
        int page = 1;
        ScoreOutcome outcome = refresher.PartitionRefresh(world.source(), kScoreTarget, 110, page, false);
        QVERIFY(outcome.ghostscriptMissing);
        QCOMPARE(int(outcome.picture), int(ScoreOutcome::Picture::Unchanged));
        QVERIFY(refresher.manualOnly());
        const QString gsdllErr = world.env.app().text(QStringLiteral("Msg"), QStringLiteral("<gsdllErr>"));
        QVERIFY(!gsdllErr.startsWith(u'<'));
        QCOMPARE(world.env.ui().messages(), QStringList { gsdllErr });
        QCOMPARE(world.env.ui().texts(ScriptedDialogs::Kind::Status),
            QStringList { world.env.app().text(QStringLiteral("Msg"), QStringLiteral("<gsDegrad>")) });

        // From now on only a forced refresh runs, and it fails the same way.
        world.env.ui().clear();
        outcome = refresher.PartitionRefresh(world.source(), kScoreTarget, 110, page, false);
        QVERIFY(outcome.skipped);
        QCOMPARE(outcome.attempts, 0);
        QVERIFY(world.env.ui().shown.isEmpty());
        outcome = refresher.PartitionRefresh(world.source(), kScoreTarget, 110, page, true);
        QVERIFY(outcome.ghostscriptMissing);
        QCOMPARE(world.env.ui().messages(), QStringList { gsdllErr });
    }

    // PostScript that Ghostscript refuses is shown as the refresh's own box, once per attempt.
    void ghostscriptRefuses()
    {
        if (!ghostscriptAvailable())
            QSKIP("the Ghostscript library is not installed");
        ScoreWorld world;
        const QString engraver = world.env.writeFile(QStringLiteral("abcm2ps"),
            "#!/bin/sh\nfor out; do :; done\nprintf '%%!PS\\n/x nosuchop\\n' > \"$out\"\n");
        QFile::setPermissions(engraver, QFile::permissions(engraver) | QFileDevice::ExeOwner);
        const QString realEngraver = world.env.app().ini().get(keys::Tool2ps);
        world.env.app().ini().set(keys::Tool2ps, engraver);
        ScoreRefresher refresher(world.env.app());
        int page = 1;
        const ScoreOutcome outcome = refresher.PartitionRefresh(world.source(), kScoreTarget, 110, page, false);
        QCOMPARE(outcome.attempts, 2);
        QCOMPARE(int(outcome.picture), int(ScoreOutcome::Picture::Blank));
        const QStringList shown = world.env.ui().messages();
        QCOMPARE(shown.size(), 2);
        for (const QString &box : shown) {
            QVERIFY2(box.contains(QStringLiteral("nosuchop")), qPrintable(box));
            QVERIFY(box.endsWith(CRLF + CRLF + QStringLiteral("Context: PartitionRefresh")));
        }

        // The kept interpreter that failed does not spoil the next tune.
        if (QStandardPaths::findExecutable(QStringLiteral("abcm2ps")).isEmpty())
            return;
        world.env.app().ini().set(keys::Tool2ps, realEngraver);
        const ScoreOutcome next = refresher.PartitionRefresh(world.source(), kScoreTarget, 110, page, false);
        QCOMPARE(int(next.picture), int(ScoreOutcome::Picture::Page));
        QCOMPARE(next.attempts, 1);
    }

    // The kept interpreter draws every page as a new interpreter for each tune would, whatever
    // the tunes before it defined; pages are numbered from 1 each time.
    void keptInterpreterSamePages_data() { corpusRows({ "nottingham/slip.abc", "abcm2ps/sample.abc" }); }

    void keptInterpreterSamePages()
    {
        QFETCH(QString, file);
        if (!QFile::exists(file))
            QSKIP("the shared corpus is not here");
        SKIP_WITHOUT_SCORE_TOOLS();
        ScoreWorld world;
        QString kFile;
        const Node *body = openTunes(world, file, &kFile);
        QVERIFY(body);
        ScoreRefresher kept(world.env.app());
        ScoreRefresher fresh(world.env.app());
        fresh.setKeepInterpreter(false);
        const auto pages = [&](ScoreRefresher &refresher, const ScoreSource &source, int resolution) {
            int page = 1;
            refresher.PartitionRefresh(source, kScoreTarget, resolution, page, false);
            QList<QImage> images;
            for (int n = 1; QFile::exists(world.cache(QStringLiteral("tmp%1.bmp").arg(n))); ++n)
                images.append(QImage(world.cache(QStringLiteral("tmp%1.bmp").arg(n))));
            return images;
        };
        int compared = 0;
        for (const Node *tune : body->children()) {
            ScoreSource source;
            source.fileKey = kFile;
            source.tuneKey = tune->Key;
            source.editorText = world.env.app().store().GetStringTune(tune->Key, false);
            // A change of zoom between tunes makes the interpreter anew.
            const int resolution = compared % 3 == 2 ? 90 : 110;
            const QList<QImage> warm = pages(kept, source, resolution);
            const QList<QImage> cold = pages(fresh, source, resolution);
            QCOMPARE(warm.size(), cold.size());
            for (qsizetype i = 0; i < warm.size(); ++i)
                QVERIFY2(warm.at(i) == cold.at(i), qPrintable(tune->Text + QStringLiteral(" page ") + QString::number(i + 1)));
            compared += int(warm.size());
        }
        QVERIFY(compared > 0);
    }

    void corpusTunes_data()
    {
        corpusRows({ "tuneworks/abc2_1601_boys-of-bluehill.abc", "nottingham/reelsa-c.abc" });
    }

    void corpusTunes()
    {
        QFETCH(QString, file);
        if (!QFile::exists(file))
            QSKIP("the shared corpus is not here");
        SKIP_WITHOUT_SCORE_TOOLS();
        ScoreWorld world;
        QString kFile;
        const Node *body = openTunes(world, file, &kFile);
        QVERIFY(body);
        ScoreSource source;
        source.fileKey = kFile;
        source.tuneKey = body->child(0)->Key;
        source.editorText = world.env.app().store().GetStringTune(source.tuneKey, false);
        ScoreRefresher refresher(world.env.app());
        int page = 1;
        const ScoreOutcome outcome = refresher.PartitionRefresh(source, kScoreTarget, 110, page, false);
        QCOMPARE(int(outcome.picture), int(ScoreOutcome::Picture::Page));
        QCOMPARE(outcome.attempts, 1);
    }
private:
    // One row a corpus file, read where it lies (opened read-only: nothing is written beside it).
    static void corpusRows(std::initializer_list<const char *> names)
    {
        QTest::addColumn<QString>("file");
        const QString corpus = corpusDir();
        if (corpus.isEmpty())
            QSKIP("the shared corpus is absent");
        for (const char *name : names)
            QTest::newRow(name) << corpus + u'/' + QString::fromLatin1(name);
    }
    // The body node of the file's tunes, when it has any.
    static const Node *openTunes(ScoreWorld &world, const QString &file, QString *kFile)
    {
        *kFile = world.env.app().store().FichierOuvrir(file, false, true, true);
        const Node *body = world.env.app().tree().find(*kFile + key::BdyFile);
        return body && body->childCount() > 0 ? body : nullptr;
    }
};

FENWORK_TEST(TestScoreRefresh)
#include "tst_scorerefresh.moc"
