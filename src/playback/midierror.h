#pragma once
#include <QString>

namespace fenwork {

class UserDialogs;

// The warning box of a MIDI output that failed: "* * * MIDI Error * * *", the context when
// given, and the reason.
void DisplayErrMidi(UserDialogs &ui, const QString &reason, const QString &context = {});
// Its text.
QString midiErrorText(const QString &reason, const QString &context);

} // namespace fenwork
