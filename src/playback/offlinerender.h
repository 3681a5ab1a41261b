#pragma once
// A MIDI file played through the synthesiser as fast as the machine goes, into a WAV file.
#include <QString>

namespace fenwork {

struct RenderSettings
{
    QString soundFont; // the SoundFont setting; empty: the usual choice
    double tempo = 1.0; // master tempo factor
    int transpose = 0; // half-tones
    int program = -1; // instrument of channel 0 before the file's own; -1 none
    int volume = 150; // master volume in hundredths of a decibel
    double maxTail = 3.0; // seconds of fading sound kept after the last event, at most
};

struct RenderResult
{
    bool ok = false;
    QString error;
    qint64 frames = 0;
    int sampleRate = 0;
    double seconds() const { return sampleRate > 0 ? double(frames) / sampleRate : 0; }
};

// Renders until the tune has ended and its sound died away (or maxTail passed).
RenderResult renderMidiToWav(const QString &midiPath, const QString &wavPath, const RenderSettings &settings);

} // namespace fenwork
