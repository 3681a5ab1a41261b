#pragma once
// From the tune in the editor to "tmp.mid": the listening options rewrite the text, the program
// block and a tempo go in, abc2midi converts.
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;

struct PlayOptions
{
    bool noChords = false; // chk_noChords
    bool noGrace = false; // chk_noGrace
    bool noRepeats = false; // chk_noRepeats
    bool oneLine = false; // chk_OneLine(1)
    int gmProgram = 0; // lst_GMplayer's index
};

struct PlayInput
{
    QString text; // txt_ABC as it stands
    QString selection; // its selected text; the caller empties it for a tune header
    QString currentLineTune; // getCurLineAsTune, used when oneLine is set and nothing is selected
    QString fileHeader; // GetStringHdrFile of the current file
    QString tempoDef; // the "Player"/"tempoDef" setting
};

struct PlayText
{
    // Exactly one "V:": the tune is not played; select from voicePos to voiceLineEnd.
    bool oneVoiceRefused = false;
    qsizetype voicePos = -1;
    qsizetype voiceLineEnd = -1; // position of the line break ending that line, or the text's size
    QString nominalTempo; // for the Tag of txt_midi(0)
    bool tempoTo100 = false; // scr_Midi(0) goes back to 100
    QString text; // what goes to "tmp.abc"
};

// Every line of `text` that begins with "M:", in order.
QStringList GetM(const QString &text);

// The rewritten tune: voice check, tempo, selection or current line, chords and grace notes,
// repeats, the inserted Q: line and the program block. Pure text work; nothing is written.
PlayText preparePlayText(const PlayInput &input, const PlayOptions &options);

// "%%MIDI program 1" to "%%MIDI program 127", each with CR LF, then "%%MIDI program <program>"
// without a line end: every program occurs in the MIDI file, so the player can switch instrument
// while playing; the last line is the one that counts.
QString midiProgramBlock(int program);

// The number at the start of `text` the way the tempo fields are read: blanks, tabs and line
// feeds are skipped wherever they stand, then an optional sign, digits and one decimal point;
// anything else ends it. No number gives 0.
double tempoNumber(QStringView text);

// Writes "tmp.abc" in the cache folder, starts abc2midi on it without waiting and waits for
// "tmp.mid" with the limit 6000. Returns WaitForDispo's answer ("" when the file is ready), or
// the reason when the scratch file cannot be written or the tool cannot be started. One attempt:
// the caller prepares and converts again once after a failed wait.
QString convertToMidi(AppContext &app, const QString &text);

} // namespace fenwork
