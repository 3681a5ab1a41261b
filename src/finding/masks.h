#pragma once
// Saved masks: the conditions of the search panel under a name, one file per mask in the
// user's "msk" folder, named exactly as the mask, without extension. Lines, CR LF ended:
//   1       the melody fragment
//   2..34   the field rows 0 to 32
//   35, 36  ignore case, keep the tunes that fail: " 0 " or " 1 "
//   37      the anywhere condition
// Box texts are written as they stand. The melody's start-only box, the domain and the result
// lists are not part of a mask.
#include <QString>
#include <QStringList>

namespace fenwork {

class Paths;
struct FilterConditions;

constexpr int kMaskLineCount = 37;

QString maskFolder(const Paths &paths);
// The names of the saved masks, in alphabetical order.
QStringList maskNames(const Paths &paths);
// The first "NewMask1", "NewMask2" ... that names no saved mask.
QString freeMaskName(const Paths &paths);
bool maskExists(const Paths &paths, const QString &name);

// The file's text for these conditions.
QString maskText(const FilterConditions &conditions);

// Puts a mask's text into `conditions`. A text that ends early is taken as far as it goes:
// missing melody and field lines leave those boxes as they were, missing check box lines
// uncheck them, a missing anywhere line empties that box. Returns what was wrong with the text,
// one sentence each; empty when nothing was.
QStringList applyMaskText(const QString &text, FilterConditions &conditions);

struct MaskLoad
{
    bool opened = false;
    QString error;        // why the file could not be read
    QStringList problems; // from applyMaskText
};
MaskLoad loadMask(const Paths &paths, const QString &name, FilterConditions &conditions);

// Writes the mask, replacing a file of that name. On failure `error` says why.
bool saveMask(const Paths &paths, const QString &name, const FilterConditions &conditions, QString *error = nullptr);
// Deletes the mask's file; a failure is ignored.
void deleteMask(const Paths &paths, const QString &name);

} // namespace fenwork
