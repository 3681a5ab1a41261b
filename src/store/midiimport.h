#pragma once
// MIDI files brought in as ABC tunes through midi2abc.
#include <QString>

namespace fenwork {

class AppContext;

// MIDI to ABC (mnu_impMidi): runs midi2abc on `midiFile` into the cache, waits with the limit
// 6000 and returns the ABC text read whole. A wait that fails is shown as a warning and gives
// an empty text.
QString importMidiText(AppContext &app, const QString &midiFile);
// The same, adding the tunes to the file `kFile` with AddStringTune; returns the key of the
// first tune added, empty on failure.
QString ImportMidi(AppContext &app, const QString &midiFile, const QString &kFile);
// The menu command: asks, picks the MIDI file, imports it into the current file and selects the
// new tune.
void mnu_impMidi(AppContext &app);

} // namespace fenwork
