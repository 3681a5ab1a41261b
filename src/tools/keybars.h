#pragma once
// The textual analysis behind automatic chords: what kind of line a tune line is, and for a music
// line, one record a bar with its notes, where its chords go and what key it is in. No note model
// is built: every field is text read from the line.
#include <QString>
#include <QVector>

namespace fenwork {

// Sorts a trimmed tune line: "" (empty), "extField" (%%), "rem" (%), "remField" (r:), "key",
// "L", "meter", "partField" (P: with a one-letter part), "voice", "propField" (any other field)
// or "mus". A K:, L: or M: line stores the trimmed rest of the line in `key`, `unit` or `meter`.
QString ClassifyAbcLine(const QString &line, QString &key, QString &meter, QString &unit);

struct BarRecord
{
    QString rawText;        // the bar as split from the cleaned line, repeat colons still on
    int chordPos = 0;       // 1-based position in the line where the bar's chord goes
    int midPos = 0;         // 1-based position of the second chord of the bar; 0: none
    QString pitches;        // pitch tokens without lengths and rests
    QString pitchesInKey;
    QString notes;          // note tokens with lengths, "*" where the second half begins; "": no chord
    QString notesInKey;
    QString key;            // normalised key ("F#min") and whatever followed it in the K: line
    QString meter;          // "C|" as "2/2", "C" as "4/4"
    QString highest, lowest;
    QString highestInKey, lowestInKey;
    QString firstNote, lastNote;
    QString firstNoteInKey, lastNoteInKey;
    QString frequent;       // the most frequent pitch tokens, in order of first occurrence
    QString frequentInKey;
    QString groupStarts;    // the first note of every blank-separated group
    QString groupStartsInKey;
    bool repeatStart = false;
    bool repeatEnd = false;
    bool firstEnding = false;
    bool secondEnding = false;
    bool pickup = false;    // a pick-up gets no chord
    QString degrees;        // diagnostics only; left empty
};

// One record a bar of a music line (the line as it stands: chord positions are positions in it).
// `pendingRepeatStart` carries a ":|:" at the end of one music line to the start of the next: it
// is read and then set or cleared by every line with text. An empty line or a lone "|" gives one
// empty record. `withDegrees` is accepted for the diagnostic mode, which is not built.
QVector<BarRecord> AnalyseBars(const QString &line, const QString &key, const QString &meter, bool withDegrees,
                               bool &pendingRepeatStart);

} // namespace fenwork
