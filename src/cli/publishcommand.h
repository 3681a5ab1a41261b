#pragma once
// fenwork-cli format, tabs and export: the format file, the tablature list and the silent export
// runs of the program, on the core alone.
#include <QStringList>

namespace fenwork {

class AppContext;

namespace cli {

int format(AppContext &app, const QStringList &args);
int tabs(AppContext &app, const QStringList &args);
int exportFile(AppContext &app, const QStringList &args);

QString publishHelp();

} // namespace cli
} // namespace fenwork
