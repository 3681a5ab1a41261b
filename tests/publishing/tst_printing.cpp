// Printing, with the print dialog answered by a PDF printer.
#include "publishworld.h"
#include "testmain.h"

#include "frame/ghostscript.h"
#include "frame/toolrunner.h"
#include "publishing/gsexport.h"
#include "publishing/printing.h"
#include "publishing/widgets/printer.h"

#include <QDir>
#include <QImage>
#include <QPrinter>
#include <QRegularExpression>
#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

namespace {

// The print dialog answered: print to `pdf`.
void printTo(const QString &pdf)
{
    setPrintDialogHook([pdf](QPrinter &printer, QWidget *) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
        return true;
    });
}

// Every page of a PDF at 72 dpi: its size in points and whether it holds any ink.
QList<QPair<QSize, bool>> renderPdf(const QString &pdf, const QString &folder)
{
    QList<QPair<QSize, bool>> pages;
    const QString pattern = QDir(folder).filePath(QStringLiteral("p%d.png"));
    RunGhostscript({ QStringLiteral("gs"), QStringLiteral("-dNOPAUSE"), QStringLiteral("-dBATCH"), QStringLiteral("-dSAFER"),
                     QStringLiteral("-r72"), QStringLiteral("-sDEVICE=pnggray"), QStringLiteral("-sOutputFile=") + pattern, pdf });
    for (const QString &file : numberedPages(QDir(folder).filePath(QStringLiteral("p.png")))) {
        const QImage image = QImage(file).convertToFormat(QImage::Format_Grayscale8);
        const uchar *bits = image.constBits();
        pages.append({ image.size(), std::any_of(bits, bits + image.sizeInBytes(), [](uchar v) { return v < 128; }) });
    }
    return pages;
}

} // namespace

class TestPrinting : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { setPrintDialogHook({}); }

    void wrap_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("wrapped");
        QTest::newRow("short lines stay") << "ab cd\r\n\r\nef" << 10 << "ab cd\r\n\r\nef";
        QTest::newRow("split at the last blank") << "aaa bbb ccc ddd" << 8 << "aaa bbb\r\nccc ddd";
        QTest::newRow("no blank: cut at the width") << QString(25, u'x') << 10
                                                    << QString(10, u'x') + "\r\n" + QString(10, u'x') + "\r\n" + QString(5, u'x');
        QTest::newRow("LF lines") << "aaaa bbbb\ncc" << 5 << "aaaa\r\nbbbb\r\ncc";
    }
    void wrap()
    {
        QFETCH(QString, text);
        QFETCH(int, width);
        QFETCH(QString, wrapped);
        QCOMPARE(WrapForPrint(text, width), wrapped);
    }

    // Each rendered page fills one sheet of the paper asked for.
    void renderedPages_data()
    {
        QTest::addColumn<QString>("paper");
        QTest::addColumn<QSize>("points");
        QTest::newRow("a4") << "a4" << QSize(595, 842);
        QTest::newRow("letter") << "letter" << QSize(612, 791);
        QTest::newRow("legal") << "legal" << QSize(612, 1009);
    }
    void renderedPages()
    {
        QFETCH(QString, paper);
        QFETCH(QSize, points);
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("long.abc"), tuneBook(1, 20));
        GsExporter exporter(env.app());
        QString ext = QStringLiteral("prn"), target = QStringLiteral("silent");
        int resolution = 60;
        QCOMPARE(exporter.ExportViaGs(kFile, ext, target, resolution), QString());
        const int rendered = int(printPages(env.app().tools().cacheFolder()).size());
        QCOMPARE(rendered, 2);
        const QString pdf = env.path(QStringLiteral("printed.pdf"));
        QDir().mkpath(env.path(QString()));
        printTo(pdf);
        QCOMPARE(printRenderedPages(env.app(), paper), QString());
        const auto pages = renderPdf(pdf, env.path(QString()));
        QCOMPARE(pages.size(), rendered);
        for (const auto &[size, inked] : pages) {
            QVERIFY2(qAbs(size.width() - points.width()) <= 2 && qAbs(size.height() - points.height()) <= 2,
                     qPrintable(QStringLiteral("%1x%2").arg(size.width()).arg(size.height())));
            QVERIFY(inked);
        }
        QCOMPARE(env.ui().captionHistory.contains(QStringLiteral("Print")), true);
    }

    // A line of 300 characters without a blank is cut to the page, not lost past its edge.
    void rawTextLongLine()
    {
        TestEnv env;
        const QString pdf = env.path(QStringLiteral("abc.pdf"));
        QDir().mkpath(env.path(QString()));
        printTo(pdf);
        QCOMPARE(PrintAbc(env.app(), QStringLiteral("X:1\r\nT:Long\r\n") + QString(300, u'G') + QStringLiteral("\r\n")), QString());
        const auto pages = renderPdf(pdf, env.path(QString()));
        QCOMPARE(pages.size(), 1);
        QVERIFY(pages.first().second);
    }
};

FENWORK_TEST(TestPrinting)
#include "tst_printing.moc"
