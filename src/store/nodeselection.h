#pragma once
// What a click on a node of the workspace tree means: which tune and file become current, what the
// text panel shows, which commands work. Worked out here without widgets; the window shows it.
#include <QList>
#include <QString>

namespace fenwork {

class AppContext;

// The columns of the enabling table: every key kind falls in one.
enum class SelectionColumn { Trash, Tune, FileHeader, File, Root, None };
SelectionColumn selectionColumn(const QString &key);

// What the text panel receives.
enum class PanelContent { Unchanged, Empty, Text, FileInformation };

struct NodeSelection
{
    SelectionColumn column = SelectionColumn::None;
    // The current keys after the click (left as they were for a key of no known kind).
    QString tuneKey;
    QString fileKey;
    PanelContent content = PanelContent::Unchanged;
    QString text; // PanelContent::Text: the tune or file header, CR LF lines
    QString line; // the clicked node's text, to mark in the panel when selectLine
    bool selectLine = false;
    bool colour = false; // the panel's text is ABC to colour
    bool score = false; // the score follows the panel
    bool trashPanel = false; // a tune of the trash box: its panel shows
    QString caption; // the tune's caption, or the program's name
};

// Works out a click on `key` without changing anything. An unknown key gives column None.
NodeSelection describeNodeClick(const AppContext &app, const QString &key);

// The facts beside the key kind that some commands depend on.
struct SelectionFacts
{
    bool fileChanged = false; // the current file's picture is a changed one
    bool trashHoldsTune = false;
    bool tunePending = false; // a cut or copied tune waits to be pasted
};
SelectionFacts selectionFacts(const AppContext &app, const NodeSelection &selection);

struct CommandSwitch
{
    QString name; // control name as the command state knows it: "mnu_save0", "tunecut" ...
    bool enabled;
};
// The commands a click enables or disables, for a column; None touches nothing.
QList<CommandSwitch> selectionCommands(SelectionColumn column, const SelectionFacts &facts);

// Makes the click's keys current and sets the command states.
void applyNodeClick(AppContext &app, const NodeSelection &selection);

// One line of a file's information block and its colour (0xBBGGRR).
struct InfoLine
{
    QString text;
    int color;
};
constexpr int kInfoColor = 0xFF0000; // blue: the file itself
constexpr int kBackupInfoColor = 0x969696; // grey: its backup copy
// The information block shown for a file node: its alias, path, size and date, and those of its
// ".BAK" copy. What cannot be known (a file never saved, or gone) leaves its line without a value.
QList<InfoLine> fileInformation(const AppContext &app, const QString &kFile);

// Where the first copy of `line` stands in the panel's text, or -1 (an empty line is not looked
// for: it would mark nothing).
qsizetype lineSelectionStart(const QString &panelText, const QString &line);

// Ctrl and a click: marks or unmarks tunes for the commands that work on the tunes shown. On a tune
// it toggles; on a file or its body the first tune decides for all, or with `eachOnItsOwn` every
// tune toggles by itself. Keys in the trash box and header, body and line keys change no mark.
// Any such click enables saving the tunes shown (mnu_saveTunesFltr).
void toggleTuneMarks(AppContext &app, const QString &key, bool eachOnItsOwn);

} // namespace fenwork
