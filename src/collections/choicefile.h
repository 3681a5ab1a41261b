#pragma once
// The working list kept whole between runs in "user/choice.lst": one tune a line, as its file's
// path, its X: number, its repetitions and the list's text of it. The settings file keeps the
// list too, but its values are cut at 254 characters, which a long list outgrows.
#include <QString>
#include <QVector>

namespace fenwork {

class Node;
class Paths;
class WorkspaceTree;
struct ChoiceItem;

// The X: value a tune's caption starts with: "12" for "[12] Title".
QString tuneNumber(const Node *tune);

QString choiceFilePath(const Paths &paths);

// Writes the items still in the tree, atomically. False with `error` when it could not.
bool writeChoiceFile(const QString &path, const WorkspaceTree &tree, const QVector<ChoiceItem> &items,
    QString *error = nullptr);
// The items of the file that name a tune of an open file, in the file's order; lines whose file
// is not open or has no such tune are dropped. `found` is false when there is no file to read.
QVector<ChoiceItem> readChoiceFile(const QString &path, const WorkspaceTree &tree, bool *found = nullptr);

} // namespace fenwork
