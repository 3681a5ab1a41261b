#pragma once
// The arithmetic of the player panel, kept apart from the widgets so that it can be checked.
#include <QString>
#include <QStringList>

namespace fenwork {

class Language;

namespace player {

// The progress slider holds 16-bit values.
constexpr int kProgressLimit = 32767;
// The quick scan plays about two bars of each tune (music time, 768 to the quarter note).
constexpr int kQuickScanLength = 6000;
// Text colours of the count-down (0xBBGGRR): counting, and done.
constexpr int kCountingColour = 255;
constexpr int kCountedColour = 32896;
// A node greyed out by the filter.
constexpr int kFilteredOutColour = 0xDCDCDC;

// The sound is 1.5 times faster than the slider says when the tune's first M: is in eighths,
// unless the text has a "3/8=" tempo anywhere: the figure shown stays the slider's.
double tempoSoundFactor(const QString &tuneText);
// The tempo shown in the tempo box: the nominal tempo times the slider's percent, rounded.
int shownTempo(const QString &nominalTempo, int percent);
// Master volume in hundredths of a decibel: slider 0 is -30 dB, 100 is +12 dB.
constexpr int masterVolume(int slider)
{
    return slider * 42 - 3000;
}
// A half-tone count typed in the pitch box, held to -12..12. `rewrite` is set when the box must
// show the clamped value.
int clampPitch(const QString &text, bool *rewrite = nullptr);
// The progress slider's maximum for a tune's length.
constexpr int progressMaximum(int length)
{
    return length > kProgressLimit ? kProgressLimit : length;
}
// Where the progress slider stands for a position, and the position a slider value asks for.
int progressValue(qint64 position, qint64 length, int maximum);
int seekPosition(int value, int maximum, qint64 length);
// The 128 General MIDI instrument names of the language, "<gm0>" to "<gm127>".
QStringList gmInstrumentNames(const Language &lang);
// A small tune of the field lines before the music and the line that holds `caret`.
QString currentLineAsTune(const QString &text, qsizetype caret);

} // namespace player
} // namespace fenwork
