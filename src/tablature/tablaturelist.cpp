#include "tablature/tablaturelist.h"

#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "frame/textfile.h"

#include <QFileInfo>

namespace fenwork {

QString standardBlankPicture(const AppContext &app)
{
    return app.paths().inProgram(QStringLiteral("img/blank_std.bmp"));
}

TablatureList LoadTabsList(const AppContext &app, const QString &formatFile)
{
    TablatureList list;
    if (formatFile.isEmpty() || !QFileInfo(formatFile).isFile())
        return list;
    list.loaded = true;

    const TextFileResult read = readTextFile(formatFile);
    QString text = read.text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    const QString programFolder = app.paths().programFolder() + u'/';

    bool inBlock = false;
    for (const QString &raw : text.split(u'\n')) {
        const QString line = trimBlanks(raw);
        if (!inBlock) {
            inBlock = line == u"%fenwk-begin";
            continue;
        }
        if (line == u"%fenwk-end")
            break;
        if (line.startsWith(QStringLiteral("%blk="))) {
            // Files written on another system name the program folder with "{app}\".
            QString path = line.mid(5);
            path.replace(QStringLiteral("{app}\\"), programFolder);
            path.replace(QStringLiteral("{app}/"), programFolder);
            path.replace(QStringLiteral("{app}"), programFolder);
            path.replace(u'\\', u'/');
            if (QFileInfo(path).isFile())
                list.blankPicture = path;
        } else if (!line.contains(u'=')) {
            list.entries << line.mid(1);
        }
    }
    if (list.blankPicture.isEmpty())
        list.blankPicture = standardBlankPicture(app);

    const QString noTabs = QStringLiteral("<noTabs>");
    const QString noTabsText = app.text(QStringLiteral("MainForm"), noTabs);
    if (!list.entries.isEmpty() && list.entries.first() == noTabs)
        list.entries.first() = noTabsText;
    if (list.entries.isEmpty())
        list.entries = QStringList { noTabsText, QStringLiteral("Instrument 1") };
    return list;
}

QString tablatureScoreExtras(const QString &formatFile, bool tabsOn, int row)
{
    if (!tabsOn)
        return {};
    // abcm2ps takes its format file with -F (its -f means flat beams).
    QString extras = QStringLiteral(" -F \"") + formatFile + QStringLiteral("\" ");
    if (row > 0)
        extras += QStringLiteral("-T") + QString::number(row) + u' ';
    return extras;
}

} // namespace fenwork
