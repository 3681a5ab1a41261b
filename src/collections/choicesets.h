#pragma once
// Sets made from the working list: one new tune in a file, each listed tune one or more of its
// parts, lettered A to Z, in list order with the item's repetitions.
#include <QString>
#include <QVector>

namespace fenwork {

class AppContext;
class ChoiceList;
struct ChoiceItem;

// The letters A to Z: a set of more tunes could not name its parts.
inline constexpr int kMaxSetTunes = 26;

// Makes the set of `items` in the file `kFile`. Without a file "<selectFile>"; under two items
// nothing, silently; over 26 "<overSet>". Returns the new tune's key, empty when none was made.
QString makeSet(AppContext &app, const QString &kFile, const QVector<ChoiceItem> &items);
// The list's command: the set goes into the current file, and the new tune is selected.
QString mnu_lstToSet(AppContext &app, const ChoiceList &list);
// An empty set in the current file, selected and flagged as changed; empty without a file.
QString createNewSet(AppContext &app);
// The set's title, first "T:" line and caption, in the current language.
void nameSet(AppContext &app, const QString &kTune);

} // namespace fenwork
