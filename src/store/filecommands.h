#pragma once
// The file commands of the main window (save, save as, save all, save the selected tunes, close,
// close all, open a recent file) as plain functions on the application context, so that the
// window only forwards its menu clicks and tests reach the logic directly.
//
// Selecting a node after a command goes through TuneStore::selectNode, which the window sets.
#include <QString>
#include <functional>

namespace fenwork {

class AppContext;

// Saves a file. Mode 0 writes to its path; mode 1 (and any file never saved) asks for a new path
// and line end. The trash box saves to its own file in mode 0 and to a copy in mode 1; it keeps
// its picture and caption. A failed write is shown as "Context: FichierEnregistrer" and leaves
// the file's state as it was. Returns true when the file was written.
bool FichierEnregistrer(AppContext &app, const QString &kFile, int mode);

// Closes a file, asking about unsaved changes. "Yes" on a file never saved runs the save as of
// that same file (not of the current one); a cancelled or failed save keeps the file open, so
// no answer loses the changes unasked. Returns true when the file was closed.
bool FichierFermer(AppContext &app, const QString &kFile);

// mnu_save(0) save, mnu_save(1) save as, on the current file.
void mnu_save(AppContext &app, int index);
// Saves every changed file; read-only ones are tried on their own path like the others.
void mnu_SaveAll(AppContext &app);
// Writes the selected tunes (0: of the current file, 1: of all files) renumbered from 1 to a
// new file, and offers to open it.
void mnu_saveSelTunes(AppContext &app, int index);
// Close commands. `afterClose` runs once files were closed (the window prunes its choice list
// there). mnu_closeAll stops at the first file the user keeps; it returns true when all closed.
bool mnu_closeFile(AppContext &app, const std::function<void()> &afterClose = {});
bool mnu_closeAll(AppContext &app, const std::function<void()> &afterClose = {});
// Opens the recent file at `index`; a file gone from the disk leaves the list.
void mnu_Recents(AppContext &app, int index);

} // namespace fenwork
