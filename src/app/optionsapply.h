#pragma once
// What the options dialog writes when it is applied, in a fixed order: the language, the default
// template and the programmable keys, the plain settings, then the tools, whose paths are checked.
// The dialog hands over plain values; the settings-changed notice goes out once at the end.
#include <QList>
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;
struct SettingKey;

// The editor's programmable keys, ToucheProgr0 to ToucheProgr5.
inline constexpr int kProgrammableKeys = 6;

struct OptionValues
{
    QString language; // the row chosen, empty when none is
    QString defaultTemplate; // ModeleDef
    QStringList progKeys; // ToucheProgr0 ...
    // The check boxes as "0"/"1", numbers and texts as typed, in the order of the dialog.
    QList<std::pair<const SettingKey *, QString>> plain;
    // VisuBitmap, VisuPdf, Tool2ps, Tool2midi, Tool2abc, ToolMidi2abc, FmtFile.
    QStringList toolPaths;
    // cmd2ps, cmd2midi, cmd2abc, cmdMidi2abc.
    QStringList toolOptions;
};

// The seven tool path keys and the four option keys, in the order of OptionValues.
const QList<const SettingKey *> &optionToolKeys();
const QList<const SettingKey *> &optionCommandKeys();

struct OptionsOutcome
{
    bool ok = true; // false: a step failed, the dialog stays open
    bool languageChanged = false;
    // The tool boxes as they now stand, reset where a path was not found.
    QStringList toolPaths;
    QStringList toolOptions;
};

// Writes everything, shows "<toolNotExist>" for each tool path not found (which falls back to its
// default, the converters with their default options too) and sends the settings-changed notice.
OptionsOutcome applyOptions(AppContext &app, const OptionValues &values);

// The value the tools tab shows for an option string: one blank at each end.
QString paddedOptions(const QString &options);

// A digits-only box left below its floor takes the floor ("1" repeats, "50" tunes in the trash).
QString atLeast(const QString &typed, int floor);

// Ghostscript's font map, the newest version's under `root`; empty when none is there.
QString ghostscriptFontMap(const QString &root = QStringLiteral("/usr/share/ghostscript"));

} // namespace fenwork
