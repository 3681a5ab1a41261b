// Export through the engraver and Ghostscript, with the real tools and library.
#include "publishworld.h"
#include "testmain.h"

#include "frame/ghostscript.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/toolrunner.h"
#include "publishing/formatmodel.h"
#include "publishing/gsexport.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

namespace {

// Answers the export dialog with `answer` (an empty paper name is Cancel).
struct ScriptedHost : ExportDialogHost
{
    ExportDialogAnswer answer { QStringLiteral("a4"), QStringLiteral("pdf") };
    int calls = 0;
    ExportDialogAnswer showExportDialog(const ExportDialogRequest &) override { return ++calls, answer; }
};

// The pages of a PDF, counted by rendering each to a tiny picture.
int pdfPages(const QString &path, const QString &folder)
{
    const QString pattern = QDir(folder).filePath(QStringLiteral("count%d.bmp"));
    if (!RunGhostscript({ QStringLiteral("gs"), QStringLiteral("-dNOPAUSE"), QStringLiteral("-dBATCH"),
                          QStringLiteral("-dSAFER"), QStringLiteral("-r5"), QStringLiteral("-sDEVICE=bmpgray"),
                          QStringLiteral("-sOutputFile=") + pattern, path }))
        return -1;
    return int(numberedPages(QDir(folder).filePath(QStringLiteral("count.bmp"))).size());
}

// The pages abcm2ps itself says it wrote for `abc`.
int engraverPages(const QString &abc, const QString &folder)
{
    QProcess engraver;
    engraver.setWorkingDirectory(folder);
    engraver.start(QStringLiteral("abcm2ps"), { abc, QStringLiteral("-O"), QStringLiteral("own.ps") });
    engraver.waitForFinished(60000);
    const QRegularExpressionMatch m
        = QRegularExpression(QStringLiteral("\\((\\d+) page")).match(QString::fromUtf8(engraver.readAllStandardOutput()));
    return m.hasMatch() ? m.captured(1).toInt() : -1;
}

} // namespace

class TestGsExport : public QObject
{
    Q_OBJECT
private slots:
    void init() { resetGhostscriptLibrary(); }
    void cleanup() { resetGhostscriptLibrary(); }

    // The page number goes before the extension of the file name, never into a dotted folder,
    // and a "%" of the path stays itself for Ghostscript.
    void outputPattern_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("pattern");
        QTest::newRow("plain") << "/home/u/x.png" << "/home/u/x%d.png";
        QTest::newRow("dotted folder") << "/home/u/.local/x.png" << "/home/u/.local/x%d.png";
        QTest::newRow("dotted folder, no extension") << "/home/u/.local/x" << "/home/u/.local/x%d";
        QTest::newRow("two dots") << "/t/a.b.jpg" << "/t/a.b%d.jpg";
        QTest::newRow("percent") << "/t/50%/a%d.bmp" << "/t/50%%/a%%d%d.bmp";
        QTest::newRow("accent") << "/t/é/é.png" << "/t/é/é%d.png";
    }
    void outputPattern()
    {
        QFETCH(QString, target);
        QFETCH(QString, pattern);
        QCOMPARE(numberedOutputPattern(target), pattern);
    }

    void defaultName_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("name");
        QTest::newRow("forbidden characters") << "Reel: The A/B" << "Reel_ The A_B.pdf";
        QTest::newRow("cut at 20") << "The Lark in the Morning" << "The Lark in the Morn.pdf";
        QTest::newRow("cut before replacing") << "A|B<C>D?E*F\"G\\H:I/J/K" << "A_B_C_D_E_F_G_H_I_J_.pdf";
        QTest::newRow("no title") << "" << "Tune.pdf";
    }
    void defaultName()
    {
        QFETCH(QString, title);
        QFETCH(QString, name);
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("t.abc"),
                                       "X:1\r\nT:" + title.toUtf8() + "\r\nM:4/4\r\nK:G\r\nGABc|\r\n");
        QCOMPARE(GsExporter::defaultName(env.app(), tuneKeyAt(env, kFile, 0), QStringLiteral("pdf")), name);
        QCOMPARE(GsExporter::defaultName(env.app(), kFile, QStringLiteral("png")), QStringLiteral("t.png"));
        QCOMPARE(GsExporter::defaultName(env.app(), QStringLiteral("X:1"), QStringLiteral("png")), QStringLiteral("NewFile"));
    }

    // A silent run of a whole book: the PDF has the pages the engraver reports, and nothing is
    // said to the user.
    void pdfHasTheEngraversPages()
    {
        TestEnv env;
        const QByteArray book = tuneBook(30, 5);
        const QString kFile = openBook(env, QStringLiteral("book.abc"), book);
        GsExporter exporter(env.app());
        QString ext = QStringLiteral("pdf"), target = env.path(QStringLiteral("out/book.pdf")), abc;
        QDir().mkpath(env.path(QStringLiteral("out")));
        int resolution = 0;
        QCOMPARE(exporter.ExportViaGs(kFile, ext, target, resolution), QString());
        const int expected = engraverPages(env.path(QStringLiteral("book.abc")), env.path(QString()));
        QVERIFY(expected > 1);
        QCOMPARE(pdfPages(target, env.path(QStringLiteral("out"))), expected);
        QCOMPARE(env.ui().messages(), QStringList());
        QCOMPARE(env.ui().unexpectedPrompts, 0);
        QCOMPARE(readBytes(env.path(QStringLiteral("book.abc"))), book);
    }

    void twoPagesOfPictures_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("png") << "name.png";
        QTest::newRow("jpg in a dotted folder with % and é") << ".dot%é/na%me.jpg";
    }
    void twoPagesOfPictures()
    {
        QFETCH(QString, name);
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("long.abc"), tuneBook(1, 20));
        // The user's format names A4 (the engraver's own default is Letter).
        QVERIFY(!BuildFormat(FormatModel(), env.app().paths().inUser(QStringLiteral("format.fmt"))).isEmpty());
        const QString target = env.path(QStringLiteral("out/") + name);
        QDir().mkpath(QFileInfo(target).absolutePath());
        GsExporter exporter(env.app());
        QString ext = QFileInfo(name).suffix(), out = target;
        int resolution = 0;
        QCOMPARE(exporter.ExportViaGs(tuneKeyAt(env, kFile, 0), ext, out, resolution), QString());
        const QString stem = target.left(target.lastIndexOf(u'.'));
        const QString suffix = target.mid(target.lastIndexOf(u'.'));
        QCOMPARE(exporter.written(), QStringList({ stem + u'1' + suffix, stem + u'2' + suffix }));
        QVERIFY(!QFileInfo::exists(target));
        const QImage page(stem + u'1' + suffix);
        QVERIFY(page.isGrayscale());
        // 120 dots per inch is the default for pictures: an A4 page is 992 pixels wide.
        QVERIFY2(qAbs(page.width() - 992) < 10, qPrintable(QString::number(page.width())));
    }

    void cancelledDialogLeavesOnlyTheInput()
    {
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("t.abc"), tuneBook(1));
        ScriptedHost host;
        host.answer = {};
        GsExporter exporter(env.app(), &host);
        QString ext = QStringLiteral("pdf"), target;
        int resolution = 0;
        QCOMPARE(exporter.ExportViaGs(kFile, ext, target, resolution), QString());
        QCOMPARE(host.calls, 1);
        QCOMPARE(QDir(env.app().tools().cacheFolder()).entryList(QDir::Files), QStringList { QStringLiteral("tmp_exp.abc") });
        QCOMPARE(QDir(env.path(QString())).entryList(QDir::Files), QStringList { QStringLiteral("t.abc") });
    }

    // With the dialog: the save dialog's title and filter, the folder remembered, and the
    // question to view the file.
    void dialogRun()
    {
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("t.abc"), tuneBook(1));
        ScriptedHost host;
        host.answer.extension = QStringLiteral("png");
        GsExporter exporter(env.app(), &host);
        const QString target = env.path(QStringLiteral("chosen/x.png"));
        QDir().mkpath(env.path(QStringLiteral("chosen")));
        env.ui().pushFileName(target);
        env.ui().pushAnswer(UserDialogs::Answer::No);
        QString ext = QStringLiteral("pdf"), out;
        int resolution = 0;
        QCOMPARE(exporter.ExportViaGs(kFile, ext, out, resolution), QString());
        QCOMPARE(ext, QStringLiteral("png"));
        QCOMPARE(out, target);
        QVERIFY(QFileInfo::exists(env.path(QStringLiteral("chosen/x1.png"))));
        const auto &shown = env.ui().shown;
        auto save = std::find_if(shown.begin(), shown.end(), [](const auto &s) { return s.kind == ScriptedDialogs::Kind::SaveFile; });
        QVERIFY(save != shown.end());
        QCOMPARE(save->title, QStringLiteral("PNG export of the file"));
        QCOMPARE(save->filters, QStringList { QStringLiteral("PNG picture (*.png)") });
        const QStringList questions = env.ui().texts(ScriptedDialogs::Kind::Question);
        QCOMPARE(questions, QStringList { QStringLiteral("Do you want to view the exported file PNG [") + target
                                          + QStringLiteral("] ?") });
        QCOMPARE(exportStartFolder(env.app()), env.path(QStringLiteral("chosen")));
    }

    // Row 2 of the tablature list makes the engraver draw the second tablature of FmtFile.
    void tablatureRow()
    {
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("t.abc"), tuneBook(1, 1));
        const QByteArray procs = "/tabhOne{pop}!\r\n/tabnOne{pop pop pop}!\r\n/tabbOne{pop pop pop pop}!\r\n"
                                 "/tabhTwo{pop}!\r\n/tabnTwo{pop pop pop}!\r\n/tabbTwo{pop pop pop pop}!\r\n";
        env.app().ini().set(keys::FmtFile,
                            env.writeFile(QStringLiteral("tabs.fmt"),
                                          "%fenwk-begin\r\n%<noTabs>\r\n%Whistle D\r\n%Flute G\r\n%fenwk-end\r\n"
                                          "beginps\r\n" + procs + "endps\r\n"
                                          "tablature #1 pitch=D 0 0 40 tabhOne tabnOne tabbOne\r\n"
                                          "tablature #2 pitch=G 0 0 40 tabhTwo tabnTwo tabbTwo\r\n"));
        ScriptedHost host;
        host.answer.addTabs = true;
        host.answer.tabsRow = 2;
        GsExporter exporter(env.app(), &host);
        env.ui().pushFileName(env.path(QStringLiteral("t.pdf")));
        QString ext = QStringLiteral("pdf"), target;
        int resolution = 0;
        QCOMPARE(exporter.ExportViaGs(kFile, ext, target, resolution), QString());
        const QByteArray ps = readBytes(env.app().tools().inCache(QStringLiteral("tmp_exp.ps")));
        QCOMPARE(ps.count("tabnOne"), 1); // its definition only
        QVERIFY(ps.count("tabnTwo") > 1);
    }

    // A file in the latin2 character set is folded before the engraver sees it.
    void latin2Folded()
    {
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("l2.abc"),
                                       "%%abc-charset latin2\r\n\r\nX:1\r\nT:\xa9\xe8uma\r\nK:G\r\nGABc|\r\n");
        GsExporter exporter(env.app());
        QString ext = QStringLiteral("pdf"), target = env.path(QStringLiteral("l2.pdf"));
        int resolution = 0;
        QCOMPARE(exporter.ExportViaGs(tuneKeyAt(env, kFile, 0), ext, target, resolution), QString());
        QVERIFY(readAll(env.app().tools().inCache(QStringLiteral("tmp_exp.abc"))).contains(QStringLiteral("T:Scuma")));
    }

    void failures_data()
    {
        QTest::addColumn<QString>("failure");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("message");
        QTest::newRow("no Ghostscript library") << "gslib" << kGsFailure
                                                << "The Ghostscript library cannot be loaded, so the score cannot be drawn. "
                                                   "Install Ghostscript to see it.";
        QTest::newRow("no engraver") << "abcm2ps" << "not found: abcm2ps" << "Context: ExportViaGs";
        QTest::newRow("unwritable folder") << "folder" << kGsFailure << "";
    }
    void failures()
    {
        QFETCH(QString, failure);
        QFETCH(QString, answer);
        QFETCH(QString, message);
        TestEnv env;
        const QByteArray book = tuneBook(2);
        const QString kFile = openBook(env, QStringLiteral("t.abc"), book);
        EnvGuard gslib("FENNELWORKS_GSLIB", failure == u"gslib" ? QByteArray("libnothing.so") : QByteArray());
        if (failure == u"abcm2ps")
            env.app().ini().set(keys::Tool2ps, env.writeFile(QStringLiteral("abcm2ps"), "not a program"));
        const QString target = failure == u"folder" ? env.path(QStringLiteral("no/such/out.pdf")) : env.path(QStringLiteral("out.pdf"));
        GsExporter exporter(env.app());
        QString ext = QStringLiteral("pdf"), out = target;
        int resolution = 0;
        const QString result = exporter.ExportViaGs(kFile, ext, out, resolution);
        QVERIFY2(result.contains(answer), qPrintable(result));
        const QString shown = env.ui().messages().join(u'|');
        QVERIFY2(message.isEmpty() ? shown.isEmpty() : shown.contains(message), qPrintable(shown));
        QCOMPARE(exporter.ghostscriptMissing(), failure == u"gslib");
        if (failure == u"gslib")
            QVERIFY(env.ui().texts(ScriptedDialogs::Kind::Status).contains(
                env.app().text(QStringLiteral("Msg"), QStringLiteral("<gsDegrad>"))));
        QVERIFY(!QFileInfo::exists(target));
        QCOMPARE(readBytes(env.path(QStringLiteral("t.abc"))), book);
    }
};

FENWORK_TEST(TestGsExport)
#include "tst_gsexport.moc"
