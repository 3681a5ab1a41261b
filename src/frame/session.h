#pragma once
// What a start takes from its command line and from the last run's settings.
#include <QString>
#include <QStringList>

#include <functional>

namespace fenwork {

class IniFile;

// The whole argument text is one path: quotes of both kinds are removed wherever they stand,
// then blanks at both ends.
QString cleanCommandLinePath(const QString &argumentText);
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

// The crash signal: a recovery copy left by an edit session that never ended. A copy of it is
// handed to `openInEditor` and the user is told; the original goes once the message is read.
// False when there was nothing to recover.
bool offerRecovery(AppContext &app, const std::function<void(const QString &path)> &openInEditor);

} // namespace fenwork
