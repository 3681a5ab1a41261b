#pragma once
// fenwork-cli list2abc and set: a working list given as tune references on the command line,
// written as the list's ABC file or made into a set.
#include <QStringList>

namespace fenwork {

class AppContext;

QString listCommandHelp();
int runList2AbcCommand(AppContext &app, const QStringList &args);
int runSetCommand(AppContext &app, const QStringList &args);

} // namespace fenwork
