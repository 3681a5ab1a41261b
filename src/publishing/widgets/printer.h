#pragma once
// Printing on the desktop's printers: the pages an export rendered for printing, and raw ABC
// text. The print dialog goes through a hook so that tests can answer it.
#include <QString>

#include <functional>

class QPrinter;
class QWidget;

namespace fenwork {

class AppContext;

// Shows the print dialog for `printer`; false when cancelled. The default runs QPrintDialog.
using PrintDialogHook = std::function<bool(QPrinter &printer, QWidget *parent)>;
void setPrintDialogHook(PrintDialogHook hook);

// Prints "tmp1.prn", "tmp2.prn" ... of the cache folder, each filling a sheet of `paperName`,
// portrait. Returns "" or the error text (shown as "Context: Print").
QString printRenderedPages(AppContext &app, const QString &paperName, QWidget *parent = nullptr);

// Prints the text of a tree key (tune or file) or the given text, long lines wrapped to the
// page. Returns "" or the error text (shown as "Context: PrintRawABC").
QString PrintAbc(AppContext &app, const QString &source, QWidget *parent = nullptr);

} // namespace fenwork
