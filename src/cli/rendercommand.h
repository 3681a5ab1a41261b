#pragma once
#include <QStringList>

class QTextStream;

namespace fenwork {

// fenwork-cli render FILE X OUT.wav [--tempo PERCENT] [--transpose HALFTONES] [--program N]
// Prepares tune X of FILE as the Play button does with every listening option off (abc2midi
// makes the MIDI file), then plays it through the synthesiser as fast as the machine goes into
// OUT.wav (16-bit stereo, 44.1 kHz). PERCENT is the tempo slider (25 to 300, default 100; a 6/8
// tune gets the same factor as in the player), HALFTONES the transposition (-12 to 12), N the
// instrument of the melody (0 to 127, default the DefaultGM setting). Prints the seconds of
// sound written. Returns 0 when the file was written, 1 when the tune cannot be found, made or
// rendered, 2 for a wrong command line.
int runRenderCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

QString renderCommandHelp();

} // namespace fenwork
