#pragma once
#include <QStringList>

class QTextStream;

namespace fenwork {

// fenwork-cli find FILE [--field MARKER TEXT]... [--anywhere TEXT] [--melody FRAGMENT]
//                       [--start-only] [--ignore-case] [--invert]
// Opens FILE as the program opens a file (no alias asked, read-only) and runs the tune filter of
// the search panel over all its tunes; prints the caption of each tune that passes, one a line,
// in file order. MARKER is a field row's label as the panel shows it: "%", "A:" to "Z:", "m:",
// "r:", "s:", "u:", "w:", "%%MIDI". `arguments` are those after the command name. Messages go to
// `err`. Returns 0 when the filter ran (even if no tune passed), 1 when the file could not be
// read or a condition is no valid pattern, 2 for a wrong command line.
int runFindCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

// The usage text of the command.
QString findCommandHelp();

} // namespace fenwork
