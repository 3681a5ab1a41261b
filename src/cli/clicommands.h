#pragma once
// The commands of fenwork-cli. Each takes its arguments after the command name, writes its
// result to standard output and its messages to standard error, and returns the exit code.
#include <QStringList>

namespace fenwork {

class AppContext;

namespace cli {

enum ExitCode { Ok = 0, Failed = 1, Usage = 2 };

// The help text, all commands explained.
QString helpText();

int normalize(AppContext &app, const QStringList &args);
int tree(AppContext &app, const QStringList &args);
int dupx(AppContext &app, const QStringList &args);

// Writes text to standard output as UTF-8 (error output: writeErr).
void writeOut(const QString &text);
void writeErr(const QString &text);

} // namespace cli
} // namespace fenwork
