// f_export over its format file: what the controls read is what they write, the choices come
// back to the export, and the preview shows the pages.
#include "publishworld.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "publishing/formatmodel.h"
#include "publishing/widgets/exportdialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTest>
#include <QTreeWidget>

using namespace fenwork;
using namespace fenwork::test;

namespace {

// A format touching every control the dialog has.
const QString kFullFormat = QStringLiteral(
    "topmargin 1cm\r\nbotmargin 1.5cm\r\nleftmargin 2cm\r\nrightmargin 0.5cm\r\nscale 0.9\r\nstaffwidth 18cm\r\n"
    "staffsep 40pt\r\npagewidth 21.6cm\r\npageheight 35.6cm\r\nlandscape 1\r\nheader L\tC\tR\r\n"
    "headerfont Times-Roman 12\r\nfooter \t$P\t\r\nfooterfont Courier 9\r\noneperpage 1\r\nsplittune 1\r\n"
    "printtempo 0\r\ncontinueall 1\r\n#addtablature 9\r\ntitleleft 1\r\ntitlefont Palatino-Bold 20\r\n"
    "subtitlefont Helvetica 14\r\nwithxrefs 1\r\naligncomposer 0\r\ncomposerfont Times-Italic 11\r\n"
    "composerspace 0.3cm\r\nprintparts 0\r\npartsspace 0.4cm\r\nvoicefont Symbol 10\r\nwordsfont Courier-Bold 10\r\n"
    "vocalspace 0.6cm\r\nvocalfont Helvetica-Narrow 13\r\n### HAND WRITTEN COMMANDS ###\r\nbarsperstaff 4\r\n");

QString formatPath(TestEnv &env)
{
    return env.app().paths().inUser(QStringLiteral("format.fmt"));
}

} // namespace

class TestExportDialog : public QObject
{
    Q_OBJECT
private slots:
    // Opening reads format.fmt into the controls; Export writes them back unchanged.
    void controlsKeepTheFormat()
    {
        TestEnv env;
        QVERIFY(QDir().mkpath(env.app().paths().userFolder()));
        QFile file(formatPath(env));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(kFullFormat.toUtf8());
        file.close();
        ExportDialogRequest request;
        request.extension = QStringLiteral("PNG");
        request.resolution = 120;
        ExportDialog dialog(env.app(), request);
        dialog.findChild<QLineEdit *>(QStringLiteral("txt_resol"))->setText(QStringLiteral("200"));
        dialog.findChild<QPushButton *>(QStringLiteral("bt_ok"))->click();
        QCOMPARE(readAll(formatPath(env)), kFullFormat);
        const ExportDialogAnswer answer = dialog.answer();
        QCOMPARE(answer.paperName, QStringLiteral("legal"));
        QCOMPARE(answer.extension, QStringLiteral("png"));
        QCOMPARE(answer.resolution, 200);
        QVERIFY(answer.addTabs);
        QCOMPARE(answer.tabsRow, 9); // beyond the two default rows, kept as read
    }

    // Direct printing keeps its resolution for the next time; Reset forgets the format.
    void directPrintThenReset()
    {
        TestEnv env;
        ExportDialogRequest request;
        request.extension = QStringLiteral("PDF");
        {
            ExportDialog dialog(env.app(), request);
            QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("lab_infoDoc"))->text(),
                     env.app().text(QStringLiteral("Msg"), QStringLiteral("<exportFile>")));
            dialog.findChild<QRadioButton *>(QStringLiteral("opt_export1"))->click();
            dialog.findChild<QLineEdit *>(QStringLiteral("txt_resol"))->setText(QStringLiteral("150"));
            dialog.findChild<QPushButton *>(QStringLiteral("bt_ok"))->click();
            QCOMPARE(dialog.answer().extension, QStringLiteral("prn"));
            QCOMPARE(env.app().ini().get(keys::PrintResolution), QStringLiteral("150"));
        }
        QVERIFY(QFileInfo::exists(formatPath(env)));
        ExportDialog dialog(env.app(), request);
        dialog.findChild<QPushButton *>(QStringLiteral("bt_reinit"))->click();
        QVERIFY(!QFileInfo::exists(formatPath(env)));
        QVERIFY(dialog.answer().paperName.isEmpty());
    }

    // The preview engraves the dialog's input and steps through its pages; a failure shows its
    // picture and no page number. Set FENWORK_SHOT_DIR to keep a picture of every panel.
    void previewAndPanels()
    {
        TestEnv env;
        ExportDialogRequest request;
        request.extension = QStringLiteral("PDF");
        request.scope = ExportScope::Tune;
        request.inputPath = env.writeFile(QStringLiteral("long.abc"), tuneBook(1, 20));
        ExportDialog dialog(env.app(), request);
        dialog.resize(1280, 800);
        dialog.show();
        dialog.Preview(false, false, 2);
        QCOMPARE(dialog.previewPageCount(), 2);
        QCOMPARE(dialog.findChild<QSpinBox *>(QStringLiteral("upd_page"))->value(), 2);
        QVERIFY(!dialog.findChild<QLabel *>(QStringLiteral("img_preView"))->pixmap().isNull());

        const QString shots = qEnvironmentVariable("FENWORK_SHOT_DIR");
        auto *tree = dialog.findChild<QTreeWidget *>(QStringLiteral("tr_fmt"));
        auto *panels = dialog.findChild<QStackedWidget *>(QStringLiteral("pic_fmt"));
        QTreeWidgetItemIterator it(tree);
        int shown = 0;
        for (; *it; ++it) {
            const QString key = (*it)->data(0, Qt::UserRole).toString();
            if (!key.startsWith(u'k'))
                continue;
            tree->setCurrentItem(*it);
            QCOMPARE(panels->currentWidget()->objectName(), QStringLiteral("pic_fmt") + key.mid(1));
            ++shown;
            if (!shots.isEmpty())
                dialog.grab().save(QDir(shots).filePath(QStringLiteral("f_export_") + key + QStringLiteral(".png")));
        }
        QCOMPARE(shown, 8);

        env.writeFile(QStringLiteral("long.abc"), "not music at all");
        QFile::remove(request.inputPath);
        dialog.Preview(false, false, 1);
        QCOMPARE(dialog.previewPageCount(), 0);
        QVERIFY(!dialog.findChild<QLabel *>(QStringLiteral("img_preView"))->pixmap().isNull()); // the failure picture
        QCOMPARE(dialog.findChild<QSpinBox *>(QStringLiteral("upd_page"))->text().trimmed(), QString());
    }
};

FENWORK_TEST(TestExportDialog)
#include "tst_exportdialog.moc"
