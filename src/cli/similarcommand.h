#pragma once
#include <QStringList>

class QTextStream;

namespace fenwork {

// fenwork-cli similar FILE FRAGMENT [--key K] [--unit L] [--rhythm] [--top N]
// fenwork-cli similar FILE --queries QFILE [--top N]
// Opens FILE read-only and ranks its tunes by how well FRAGMENT (ABC notes, in any key, with a
// wrong, missing or extra note) aligns with their melody. The first form prints the N best (10
// by default), best first, as SCORE<TAB>POSITION<TAB>CAPTION, POSITION being the tune's place in
// the file from 1. The second reads one query a line, KEY<TAB>FRAGMENT, and prints a line per
// query of the N best as POSITION:SCORE separated by blanks; the time spent searching goes to
// `err` at the end. Returns 0 when the search ran, 1 when a file could not be read or a fragment
// holds too few notes, 2 for a wrong command line.
int runSimilarCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

QString similarCommandHelp();

} // namespace fenwork
