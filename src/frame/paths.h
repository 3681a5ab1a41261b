#pragma once
#include <QString>

namespace fenwork {

// The three places the program uses: the user root (settings, trash, user data), the program
// folder (read-only data shipped beside the program) and the cache folder for tool scratch files.
// FENNELWORKS_ROOT and FENNELWORKS_APPDIR override the first two; nothing else reads the
// environment for paths.
class Paths
{
public:
    Paths() = default;
    Paths(const QString &userRoot, const QString &programFolder);
    // Root from FENNELWORKS_ROOT or $XDG_DATA_HOME/Fennelworks; program folder from
    // FENNELWORKS_APPDIR, else the data folder beside the executable, else the source tree's.
    static Paths fromEnvironment();

    // All folders are returned without a trailing separator.
    QString userRoot() const { return m_userRoot; }
    QString programFolder() const { return m_programFolder; }
    QString userFolder() const;                  // <root>/user
    QString cacheFolder() const;                 // <root>/user/cache
    QString settingsFile() const;                // <root>/fenwork.ini
    QString trashFile() const;                   // <root>/trash
    QString recoverFile() const;                 // <root>/user/recover_tune.txt
    QString inUser(const QString &relative) const;    // <root>/user/<relative>
    QString inProgram(const QString &relative) const; // <program>/<relative>

private:
    QString m_userRoot;
    QString m_programFolder;
};

// Special folders by their classic numbers: 26 the per-user application data folder,
// 5 the user's documents. Returns the path with exactly one trailing "/", or empty.
enum SpecialFolder { SF_Documents = 5, SF_AppData = 26 };
QString specialFolder(int number);

// base + the first n from 1 for which folder/base+n+extension does not exist; the result has
// no extension. An empty extension tests the bare name. The count was a 16-bit number: past
// `last` there is no free name to give, and the result is empty.
QString uniqueName(const QString &base, const QString &extension, const QString &folder, int last = 32766);

// Files kept by their bare name in one folder of the user root (masks, drones).
// A name that can stand for such a file: no folder part, not "." or "..".
bool isPlainFileName(const QString &name);
// The names of the files in `folder`, sorted regardless of case.
QStringList fileNamesIn(const QString &folder);
// Whether `name` is a plain name of a file in `folder`.
bool namedFileExists(const QString &folder, const QString &name);

} // namespace fenwork
