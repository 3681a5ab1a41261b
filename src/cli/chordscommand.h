#pragma once
#include <QStringList>

namespace fenwork {

class AppContext;

// fenwork-cli chords FILE X [--two]
// Takes the tune whose X: number is X from FILE, opened read-only, writes chords into it (one a
// bar, two with --two) and prints the result on standard output, lines joined by CR LF. The
// warning about lines in a key without chords goes to standard error. Returns 0 when the chords
// were written, 1 when the file could not be read or has no such tune, 2 for a wrong command line.
int runChordsCommand(AppContext &app, const QStringList &arguments);

QString chordsCommandHelp();

} // namespace fenwork
