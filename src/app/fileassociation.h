#pragma once
// Makes the desktop open ".abc" files with this program: a desktop entry for it, the ABC MIME
// type, and that entry as the type's default, all in the user's own folders.
#include <QString>

namespace fenwork {

class AppContext;

// The desktop entry's text for the program at `programPath` ("Exec" quoted as the entry format
// wants it, with "%f").
QString desktopEntryText(const QString &programPath);
// The MIME package that declares text/vnd.abc for "*.abc", a kind of plain text.
QString abcMimePackageText();

// Installs the entry and the type, and makes the entry the type's default; a second run changes
// nothing. Without xdg-mime, or when one of its steps fails, says so in a "Context: AssociateAbc"
// box and returns false.
bool AssociateAbc(AppContext &app, const QString &programPath);

} // namespace fenwork
