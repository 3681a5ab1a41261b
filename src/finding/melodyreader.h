#pragma once
// Reading the notes of ABC text into the pitches the melody index holds.
#include "finding/melodyindex.h"

#include <QString>

namespace fenwork {

// The melody of a tune, from its whole text (header and body): the first voice, in playing order
// with its repeats and endings unfolded, the key signature and the accidentals (which hold to
// the bar's end) applied, tied notes made one; grace notes, chord symbols, decorations, rests
// and lyrics left out, and of a chord of notes only its highest.
Melody readTuneMelody(const QString &tuneText);

// A fragment typed as the user remembers it: ABC notes, which may hold "K:" and "L:" lines or
// inline fields of their own. `key` (a K: value, "C" when empty) and `unit` (an L: value, "1/8"
// when empty) are where it starts from.
Melody readMelodyFragment(const QString &fragment, const QString &key = {}, const QString &unit = {});

} // namespace fenwork
