#pragma once
// Adds or replaces one field line in many tunes of a file at once.
#include <QString>
#include <functional>

namespace fenwork {

class AppContext;
struct ToolsBackup;

enum class FieldAction { Add = 0, ChangeFirst = 1, ChangeLast = 2, ChangeAll = 3 };

enum class FieldResult {
    Done,
    Invalid,      // not a field line ("R:reel") nor a comment ("%...")
    CommentStop,  // a comment line can only be added: nothing was done
    NoTunes,      // the file has none
    NoFromTune,   // no tune label holds the "from" number
};

// One tune's text with `line` added or put in place of the lines of its field code (the first two
// characters, compared ignoring case). `changed` tells whether anything was done.
QString applyFieldLine(const QString &tuneText, const QString &line, FieldAction action, bool *changed = nullptr);

// The field line over the tunes of a file: all of them when `from` and `to` are empty, else from
// the tune whose label holds "[from]" (the first when empty) through the one that holds "[to]"
// (the last when empty). The backup is taken first; the tree changes only on Done.
FieldResult applyFieldToFile(AppContext &app, QString &kFile, const QString &text, FieldAction action,
                             const QString &from, const QString &to, ToolsBackup &backup,
                             const std::function<void(int value, int maximum)> &progress = {});

} // namespace fenwork
