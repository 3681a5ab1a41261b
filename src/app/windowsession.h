#pragma once
// The parts of the main window's load and quit that need no widget: the stored geometry, the
// checks of the settings at load, and the session written back at quit.
#include "collections/choicelist.h"

#include <QRect>
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;
class IniFile;
class WorkspaceTree;

// The window as the settings keep it. Sizes are the toolkit's pixels.
struct WindowGeometry
{
    enum State { Normal = 0, Minimised = 1, Maximised = 2 };
    State state = Normal;
    QRect frame; // left, top, width, height
    int panelX = 0;
    int panelYD = 0;
    int panelYG = 0;
};

// The stored geometry, each value that is missing or no number taken from `defaults`; with
// Window/UseRecordedData other than "1", `defaults` itself.
WindowGeometry readWindowGeometry(const IniFile &ini, const WindowGeometry &defaults);
// Normal: everything. Maximised: the panels only, the frame written empty. Minimised: state 0 and
// all seven values empty, so that the next start takes the defaults.
void writeWindowGeometry(const IniFile &ini, const WindowGeometry &geometry);

// What the load does before any panel exists: makes the user folders (returns those that could
// not be made), gives General/dirDef the documents folder when empty, resets tool and format file
// paths that don't exist on disk to their defaults, and reads the default tempo.
QStringList prepareMainLoad(AppContext &app);

// Settings the window holds for features that keep them between runs; read at load, written back
// at quit so that a value survives a run in which nothing changed it.
struct KeptSettings
{
    QString zoom;
    QString scrollHScore;
    QString seeKbd;
    QString dronePitch;
    QString tablaturesIndex;
};
KeptSettings readKeptSettings(const IniFile &ini);

// The keys of the open files whose changes are not saved, in tree order (the trash box excluded).
QStringList changedFileKeys(const AppContext &app);

// A node's place in the tree's node collection: 1 for the root, then in tree order. The choice
// list is stored this way between runs.
QString tempListContents(const WorkspaceTree &tree, const QStringList &keys);
// The keys at those places; pieces that are no number or lie beyond the tree are dropped.
QStringList tempListKeys(const WorkspaceTree &tree, const QString &contents);


// Everything the quit writes once the questions are answered: recent files, open files, choice
// list, geometry, kept settings, the trash box, the version; then the scratch files go.
struct QuitState
{
    bool reset = false; // the user asked for the settings to be set back to their defaults
    QStringList choiceListKeys;
    QVector<ChoiceItem> choiceItems; // kept whole beside the settings
    WindowGeometry geometry;
    KeptSettings kept;
};
void writeSessionAtQuit(AppContext &app, const QuitState &state);

} // namespace fenwork
