#pragma once
// Reorganising a file: new X: numbers in tree order, and tunes ordered by one or two fields.
#include <QString>
#include <QStringList>
#include <functional>

namespace fenwork {

class AppContext;
class Node;
struct ToolsBackup;

// The field codes a sort can use, in the order of the sort boxes, each with its label key of the
// section "MainForm".
struct SortField
{
    const char *code;
    const char *labelKey;
};
const QList<SortField> &sortFields();

// Numbers the tunes of a file from `start` on, in tree order: only the labels change, the X: line
// of a tune follows its label. False when the file has no tunes.
bool reindexFile(AppContext &app, const QString &kFile, int start, ToolsBackup &backup);

// The sort key of one tune for a field code ("T:", "X:" ...): the lowered line of that field,
// "---" when there is none, or for "X:" the label's number zero-padded to twelve digits.
// With two codes, the lines are read until both are found, so a field met again before the
// other one replaces the earlier value.
QString sortKeyOf(const Node *tune, const QString &code1, const QString &code2, QString *key2);

// The sort string of a tune: the first key cut to 80 characters and padded to 81, then the second.
QString sortString(const QString &key1, const QString &key2);

// Reorders the tunes of a file by the two codes (`code2` may be empty). Tunes with equal keys keep
// their order, so sorting a sorted file changes nothing. `phase` is told when the sorting is done
// and the file is being rebuilt. False when the file has no tunes.
bool sortFile(AppContext &app, QString &kFile, const QString &code1, const QString &code2, ToolsBackup &backup,
              const std::function<void(int value, int maximum)> &progress = {},
              const std::function<void()> &reorganising = {});

} // namespace fenwork
