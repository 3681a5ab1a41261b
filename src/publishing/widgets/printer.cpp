#include "publishing/widgets/printer.h"

#include "frame/appcontext.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "publishing/exportcommon.h"
#include "publishing/printing.h"
#include "store/tunestore.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QTextDocument>

namespace fenwork {

namespace {

PrintDialogHook &dialogHook()
{
    static PrintDialogHook hook;
    return hook;
}

bool askPrinter(QPrinter &printer, QWidget *parent)
{
    if (dialogHook())
        return dialogHook()(printer, parent);
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace

void setPrintDialogHook(PrintDialogHook hook)
{
    dialogHook() = std::move(hook);
}

QString printRenderedPages(AppContext &app, const QString &paperName, QWidget *parent)
{
    UserDialogs &ui = app.ui();
    ui.setBusy(false);
    QPrinter printer(QPrinter::HighResolution);
    if (!askPrinter(printer, parent))
        return {};
    printer.setPageOrientation(QPageLayout::Portrait);
    printer.setPageSize(QPageSize(sheetMillimetres(paperName), QPageSize::Millimeter));
    printer.setFullPage(true);

    const QStringList pages = printPages(app.tools().cacheFolder());
    ui.setProgressCaption(QStringLiteral("Print"));
    ui.setProgressRange(int(pages.size()));
    ui.setProgressValue(0);
    ui.showProgress(true);
    QString error;
    QPainter painter;
    if (!painter.begin(&printer)) {
        error = QStringLiteral("The printer cannot be opened");
    } else {
        for (int n = 0; n < pages.size(); ++n) {
            const QImage image(pages.at(n));
            if (image.isNull()) {
                error = QStringLiteral("Cannot read ") + pages.at(n);
                break;
            }
            if (n > 0)
                printer.newPage();
            // The page was rendered at the sheet's size: it fills the sheet from the top left.
            painter.drawImage(painter.viewport(), image);
            ui.setProgressValue(n + 1);
            ui.processEvents();
        }
        painter.end();
    }
    ui.showProgress(false);
    if (!error.isEmpty())
        ui.contextError(QStringLiteral("Print"), error);
    return error;
}

QString PrintAbc(AppContext &app, const QString &source, QWidget *parent)
{
    QString text = source;
    if (exportScopeOf(source) == ExportScope::Tune)
        text = app.store().GetStringTune(source, false);
    else if (exportScopeOf(source) == ExportScope::File)
        text = app.store().GetStringFile(source, false, false);
    if (text.isEmpty())
        return {};
    QPrinter printer(QPrinter::HighResolution);
    if (!askPrinter(printer, parent))
        return {};
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(10);
    // The width in characters that the printer's font fits on the page.
    const QFontMetricsF metrics(font, &printer);
    const double pageWidth = printer.pageLayout().paintRectPixels(printer.resolution()).width();
    const int width = qMax(20, int(pageWidth / qMax(1.0, metrics.horizontalAdvance(u'M'))) - 1);
    QTextDocument document;
    document.setDefaultFont(font);
    document.setPlainText(QString(WrapForPrint(text, width)).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    document.print(&printer);
    if (printer.printerState() == QPrinter::Error) {
        const QString error = QStringLiteral("The printer reported an error");
        app.ui().contextError(QStringLiteral("PrintRawABC"), error);
        return error;
    }
    return {};
}

} // namespace fenwork
