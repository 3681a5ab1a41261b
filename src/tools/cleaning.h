#pragma once
// Cleaning of ABC text: fourteen independent rules run over a whole file or a tune as one string.
// They know nothing of music; each simply rewrites what its pattern finds, header lines included.
#include <QString>
#include <QStringList>
#include <functional>

namespace fenwork {

// The options, numbered as their check boxes.
enum CleanOption {
    CleanJoinLines = 0,   // a backslash before the line end
    CleanBlanks = 1,      // runs of blanks
    CleanTabs = 2,
    CleanComments = 3,
    CleanEntities = 4,    // HTML entities and escapes
    CleanFieldBlank = 5,  // the blank behind a field's colon
    CleanBangDecorations = 6,
    CleanPlusDecorations = 7,
    CleanLineEndStars = 8,
    CleanBarBlanks = 9,
    CleanRolls = 10,
    CleanGraceNotes = 11,
    CleanRemarks = 12,    // r: fields
    CleanQuoted = 13,     // chord symbols and annotations
    CleanOptionCount = 14
};

// The order the options run in; later rules depend on what earlier ones removed.
inline constexpr int kCleanOrder[] = { 0, 2, 3, 12, 4, 5, 6, 7, 8, 9, 10, 11, 13, 1 };

// What a run wants to show while it works: the step about to run (1-based, out of `steps`) and
// the progress of a deletion over its matches. Either may be empty.
struct CleanProgress
{
    std::function<void(int step, int steps)> stepStarted;
    std::function<void(int value, int maximum)> matchDone;
};

// Runs the options whose bits are set in `options` (bit n is option n) over `text`, in the fixed
// order. `changed` tells whether any option found something.
QString cleanAbcText(const QString &text, unsigned options, bool *changed = nullptr,
                     const CleanProgress &progress = {});

// The option number of a command-line name ("--comments" -> 3), or -1.
int cleanOptionFromName(const QString &name);
// The command-line names, in option order.
const QStringList &cleanOptionNames();

} // namespace fenwork
