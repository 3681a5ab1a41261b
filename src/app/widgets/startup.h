#pragma once
#include <QStringList>

namespace fenwork {

// The program's start: settings, language, first run, one instance, crash recovery, the main
// window, the command line or the last session. Returns the process exit code.
int Main(const QStringList &arguments);

} // namespace fenwork
