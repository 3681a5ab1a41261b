#pragma once
// The file tools of fenwork-cli: clean, field, reindex, sort and analyse. Each opens IN as the
// program opens a file, works on it as the Tools window does on the whole file, and (except
// analyse) writes the result to OUT as the program saves.
#include <QStringList>

namespace fenwork {

class AppContext;

// Whether `command` is one of these.
bool isToolsCommand(const QString &command);
// Runs it with the arguments after the command name; returns the exit code.
int runToolsCommand(AppContext &app, const QString &command, const QStringList &args);
// The usage text of these commands.
QString toolsCommandHelp();

} // namespace fenwork
