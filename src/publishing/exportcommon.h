#pragma once
// What the exports share: the scope a source names, its text, the names and folders they
// propose, and the numbered files an image export leaves.
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;
class ChoiceList;

// A source beginning with "_" is a tree key: a tune when it holds "_tune", else a file. Any
// other text is ABC to export as it stands (the choice list, the site maker).
enum class ExportScope { File, Tune, List };
ExportScope exportScopeOf(const QString &source);

// The file key a tree key belongs to ("_file3_tune2" -> "_file3").
QString fileKeyOf(const QString &key);

// The choice list's tunes in list order, numbered from 1 whatever their X:, each followed by a
// line end: what the list's exports and printing work on.
QString choiceListText(const AppContext &app, const ChoiceList &list);

// The characters a file name cannot hold on every system, each replaced by "_".
QString safeFileName(QString name);

// The title of a tune text: what follows its first "T:" up to the line end.
QString tuneTitle(const QString &text);

// The folder a save dialog of an export opens in: the last export folder when the setting keeps
// it, else the default folder. rememberExportFolder records (or forgets) the folder of a choice.
QString exportStartFolder(const AppContext &app);
void rememberExportFolder(const AppContext &app, const QString &chosenPath);

// "name.ext" -> "name%d.ext" for Ghostscript: the number goes before the last "." of the file
// name (not of a dotted folder), and a "%" of the path is doubled so that it stays itself.
QString numberedOutputPattern(const QString &target);
// The page files such a pattern produced, in page order ("name1.ext", "name2.ext" ...).
QStringList numberedPages(const QString &target);

} // namespace fenwork
