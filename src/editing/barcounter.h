#pragma once
// Bar numbers written into a tune as "%%|" comments, so that a long tune can be found by bar.
#include <QString>

namespace fenwork {

// The bars in `textBefore` (CR LF lines): field lines and comments are left out, repeat and double
// bar signs count as one bar line, and a last bar without its line still counts.
int countBars(const QString &textBefore);
// Writes behind every "%%|" marker of `text` (CR LF lines) the number of the bar that follows it.
QString numberBarMarkers(const QString &text);

} // namespace fenwork
