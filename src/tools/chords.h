#pragma once
// Automatic chords: a quoted guitar chord in front of every bar (or half bar) of a tune, chosen
// from which scale letters the bar holds, in the tune's mode. The same tune always gets the same
// chords; the player corrects them by ear.
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

namespace fenwork {

class AppContext;
struct BarRecord;

// The seven degrees of a key name such as "F#min": `letters` the plain letters ("E" for "E#"),
// `chords` the note names with the mode's chord suffixes. Empty when the mode or the tonic is not
// one the chords know.
struct DegreeTable
{
    QStringList letters;
    QStringList chords;
};
DegreeTable degreeTable(const QString &keyName);

// The chord rules of each mode: a chord of `chords`, or "" ("xxx" when `diagnostic`) when no rule
// applies. `notes` is the upper-cased text of the bar or half bar.
QString ChordRulesMajor(
    const QStringList &letters, const QStringList &chords, const QString &notes, bool diagnostic);
QString ChordRulesDorian(
    const QStringList &letters, const QStringList &chords, const QString &notes, bool diagnostic);
QString ChordRulesMixolydian(const QStringList &letters, const QStringList &chords, const QString &notes,
    const QString &previous, bool diagnostic);
// Minor, phrygian, lydian and locrian share one list.
QString ChordRulesCommon(const QStringList &letters, const QStringList &chords, const QString &notes,
    const QString &previous, bool diagnostic);

// The chords of one music line: result[slot][bar], slot 0 and, with `twoPerBar`, slot 1; "" is no
// chord. A line whose key has a mode the rules do not know gives the single element {{"*"}}.
QVector<QStringList> ChooseChords(const QVector<BarRecord> &bars, bool twoPerBar, bool diagnostic);
bool isRefusedLine(const QVector<QStringList> &choice);

// Writes chords into a whole tune (CR LF lines): old quoted strings of music lines go, every bar
// gets its chord. A line in a key the rules cannot handle gets none, and one warning at the end
// says so; `setOwnerVisible`, when given, hides the calling window while it shows. Returns the
// new text, CR LF lines.
QString AddChords(const AppContext &app, const QString &text, bool twoPerBar, bool diagnostic,
    const std::function<void(bool)> &setOwnerVisible = {});

} // namespace fenwork
