#pragma once
// The trash box: deleted tunes with where they came from and when, kept in the user's "trash"
// file across runs, restored to their file or to another open one.
#include <QString>

namespace fenwork {

class AppContext;

// Copies a tune into the box with its two marker lines and saves the box at once.
void moveToTrash(AppContext &app, const QString &kTune);

// What the restore panel shows of a tune in the box.
struct TrashTuneInfo
{
    bool ok = false;      // false: a hand-edited tune without its marker lines
    QString tuneKey;      // the tune's own key, whatever line of it was clicked
    QString caption;      // the tune node's text
    QString origin;       // the path it came from ("<new>" for a file never saved)
    QString deleted;      // date and time of the deletion, as stored
    bool originExists = false;
};
TrashTuneInfo trashTuneInfo(const AppContext &app, const QString &clickedKey);

// Puts a tune of the box back at the end of `kTargetFile`, or, when that is empty, of the file
// at `originPath` (opened when needed). Returns the new tune's key; empty when there was no
// target. The marker lines go first, as the text is taken, even when the target then fails.
QString restoreFromTrash(AppContext &app, const QString &tuneKey, const QString &originPath,
                         const QString &kTargetFile);
// Removes one tune from the box for good.
void deleteFromTrash(AppContext &app, const QString &tuneKey);
// Asks, then removes every tune of the box. False when the user said no.
bool emptyTrash(AppContext &app);
// Writes the box to its file.
void saveTrash(AppContext &app);

// Drops the oldest tunes of the trash box beyond General/TrashMax. Returns whether any went.
bool trimTrashBox(AppContext &app);

} // namespace fenwork
