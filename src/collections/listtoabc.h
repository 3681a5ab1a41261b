#pragma once
// The working list as ABC: its tunes in list order, numbered X:1, X:2 ... whatever their numbers
// in their own files. The list's file, its exports and its prints all number them this way.
#include <QString>
#include <QVector>

namespace fenwork {

class AppContext;
class ChoiceList;
class TuneStore;
class WorkspaceTree;

struct ListedTune
{
    QString key;
    QString caption; // the list's text of the tune
    int number = 0; // its X: in the list's file, from 1
    int repetitions = 1;
    QString text; // the tune with that number, CR LF line ends
};

// The tunes of `keys` (list order) still in the tree, each numbered; gone ones are passed over.
QVector<ListedTune> listedTunes(const TuneStore &store, const WorkspaceTree &tree, const ChoiceList &list);
// What the list's ABC file holds below its header: each tune and a line end, with ABC escapes
// when `escapes` (the progress bar shows the passes).
QString listAbcBody(AppContext &app, const ChoiceList &list, bool escapes);
// The file as written: "%abc", the creator line and an empty line unless `noSaveHdrFile`.
QString listAbcFile(AppContext &app, const QString &body);

// The command: asks where, refuses an open file, writes, and offers to open the result.
// Returns the path written, empty when nothing was.
QString mnu_lstToAbc(AppContext &app, const ChoiceList &list);

} // namespace fenwork
