#pragma once
#include <QString>

namespace fenwork {

class AppContext;

// Marks with a pale red background every tune of a file whose X value (the caption up to its
// first "]") another tune of the file shares, letters compared without regard to case. Adds one
// to `count` for each tune marked: callers start it at 0. Runs only when the setting asks for it
// or `forced`; an empty key, or one that no longer names an open file, ends it in silence.
// Marks are never taken off here: a tune loses its mark when its node is rebuilt.
void ShowDoublonsX(AppContext &app, const QString &kFile, bool forced, int &count);

} // namespace fenwork
