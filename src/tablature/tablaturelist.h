#pragma once
// The tablatures a format file offers, read from the block of comment lines the tablature maker
// writes into it, and the switches that make the score tool draw one of them.
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;

struct TablatureList
{
    bool loaded = false; // false: the format file does not exist, keep the list as it is
    QStringList entries; // row 0 is the choice of no tablature
    QString blankPicture; // the blank score image the block names, or the standard one
};

// Reads the block of `formatFile`. Entry texts lose their first character; a first entry
// "<noTabs>" becomes its language text; a file without a block gives the two default rows.
TablatureList LoadTabsList(const AppContext &app, const QString &formatFile);

// The standard blank score image beside the program.
QString standardBlankPicture(const AppContext &app);

// The score extras: empty when `tabsOn` is false, else the format file switch, and for a row
// above 0 the tablature number of that row.
QString tablatureScoreExtras(const QString &formatFile, bool tabsOn, int row);

} // namespace fenwork
