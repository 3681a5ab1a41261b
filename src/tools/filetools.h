#pragma once
// What every file operation of the tools shares: the backup that makes it reversible, the lookup
// of a file by its caption, and the cleaning of a whole file.
#include "tools/cleaning.h"

#include <QString>

namespace fenwork {

class AppContext;

// The text of one file as it stood before the last operation on it. A later operation on any
// file overwrites it; it lives as long as the tools window.
struct ToolsBackup
{
    QString memoKey;
    QString memoName;
    QString memoText;

    // Fills the backup from an open file; false when the key names no file.
    bool SetMemoFile(AppContext &app, const QString &kFile);
    bool isEmpty() const { return memoKey.isEmpty(); }
    void clear() { *this = {}; }
    // Puts the text back into the tree (flagged as changed, shown) and clears the backup.
    // Returns the file's key, empty when there was nothing to restore.
    QString restore(AppContext &app);
};

// The open file whose caption begins, ignoring case, with `caption`: the first in tree order.
QString fileKeyFromCaption(const AppContext &app, const QString &caption);
// The captions of the open files in tree order, the trash box left out.
QStringList openFileCaptions(const AppContext &app);
// Number of tunes of a file, 0 for an unknown key.
int tuneCount(const AppContext &app, const QString &kFile);

// Cleans a whole file: backup first, then the options over its text; the tree changes (and the
// file is flagged) only when something was found. Returns whether it was; `kFile` follows the
// rebuilt file.
bool cleanFile(AppContext &app, QString &kFile, unsigned options, ToolsBackup &backup,
               const CleanProgress &progress = {});

} // namespace fenwork
