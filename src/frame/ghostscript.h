#pragma once
// The Ghostscript library, called in-process. The library is loaded on first use; when it
// cannot be loaded every call fails with an error text holding "gsdll", which the score refresh
// takes as the sign to fall back to manual refreshing.
#include <QString>
#include <QStringList>

namespace fenwork {

// Runs one interpreter instance over `arguments` (the first is a program name the interpreter
// ignores): new instance, stdio callbacks, init with the arguments, exit, delete. Returns whether
// the run succeeded. `error`, when given, receives the load error (holding "gsdll") or, on a
// failed run, the interpreter's code and messages. The instance is run in the current folder.
bool RunGhostscript(const QStringList &arguments, QString *error = nullptr);

// What the interpreter printed (stdout and stderr callbacks), gathered across calls until
// cleared.
QString ghostscriptMessages();
void clearGhostscriptMessages();

// Whether the library is (or can be) loaded; `error` as above. FENNELWORKS_GSLIB names another
// library file than "libgs.so.10".
bool ghostscriptAvailable(QString *error = nullptr);

// Forgets a loaded or failed library so that the next call tries again (tests switch
// FENNELWORKS_GSLIB between runs).
void resetGhostscriptLibrary();

} // namespace fenwork
