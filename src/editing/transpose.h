#pragma once
// Moving a tune by half-tones: abc2abc does the work on a scratch copy in the cache folder.
#include <QString>

namespace fenwork {

class AppContext;

// The half-tones of one step from the box's text: a number, else 0; negative when going down.
int transposeStep(const QString &unitText, bool down);

// Runs abc2abc on `text` moved by `halfTones`; returns the path of its output ("tmp_trs.trs" in
// the cache folder), or empty after the failure was shown. `keepOldFile` leaves the input as
// the last run wrote it.
QString Transpose(AppContext &app, const QString &text, int halfTones, bool keepOldFile = false);

// The whole press of a transpose button: the moved text, or empty when nothing came back.
QString transposeText(AppContext &app, const QString &text, int halfTones);

} // namespace fenwork
