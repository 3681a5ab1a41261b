#pragma once
// What a start takes from its command line and from the last run's settings.
#include <QString>
#include <QStringList>


namespace fenwork {

class IniFile;

// The whole argument text is one path. A path that exists as given (blanks at both ends trimmed)
// is taken as it is; otherwise quotes of both kinds are removed wherever they stand, then blanks
// at both ends.
QString cleanCommandLinePath(const QString &argumentText);
// The warning shown when the path of a command line, or one handed over by a second start, is no
// file that can be opened.
QString commandLineNotOpened(const QString &path);
// Joins argv[1..] with blanks, as the one-string command line it stands for.
QString commandLineText(const QStringList &arguments);

// The files to reopen: "OF1".."OFn" of the open-file list, n from "nbFiles", only when reopening
// is on. Entries that are empty are dropped; files that vanished are kept (the caller skips them
// silently).
QStringList sessionFilesToRestore(const IniFile &ini);

} // namespace fenwork

namespace fenwork {

class AppContext;
class Paths;

// Makes user/, user/grp, user/tmpl, user/msk, user/cache and user/drone where missing. Returns the
// folders that could not be made.
QStringList ensureUserFolders(const Paths &paths);

// Writes the open-file list at quit: "nbFiles" and "OF1".."OFn". A file never saved lowers the
// count and leaves its entry as it was; `reset` writes a count of 0 at the end.
void writeOpenFiles(AppContext &app, bool reset);

// Deletes tmp* files directly under the user root and everything in the cache folder.
void cleanScratchFiles(const Paths &paths);

} // namespace fenwork
