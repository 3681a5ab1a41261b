#pragma once
// From the tune in the editor to "tmp.mid": the listening options rewrite the text, the program
// block and a tempo go in, abc2midi converts.
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;

struct PlayOptions
{
    bool noChords = false;  // chk_noChords
    bool noGrace = false;   // chk_noGrace
    bool noRepeats = false; // chk_noRepeats
    bool oneLine = false;   // chk_OneLine(1)
    int gmProgram = 0;      // lst_GMplayer's index
};

struct PlayInput
{
    QString text;             // txt_ABC as it stands
    QString selection;        // its selected text; the caller empties it for a tune header
    QString currentLineTune;  // getCurLineAsTune, used when oneLine is set and nothing is selected
    QString fileHeader;       // GetStringHdrFile of the current file
    QString tempoDef;         // the "Player"/"tempoDef" setting
};

struct PlayText
{
    // Exactly one "V:": the tune is not played; select from voicePos to voiceLineEnd.
    bool oneVoiceRefused = false;
    qsizetype voicePos = -1;
    qsizetype voiceLineEnd = -1;
    QString nominalTempo;    // for the Tag of txt_midi(0)
    bool tempoTo100 = false; // scr_Midi(0) goes back to 100
    QString text;            // what goes to "tmp.abc"
};

// Every line of `text` that begins with "M:", in order.
QStringList GetM(const QString &text);

PlayText preparePlayText(const PlayInput &input, const PlayOptions &options);

// Writes "tmp.abc" in the cache folder, starts abc2midi on it without waiting and waits for
// "tmp.mid" with the limit 6000. Returns WaitForDispo's answer ("" when the file is ready).
QString convertToMidi(AppContext &app, const QString &text);

} // namespace fenwork
