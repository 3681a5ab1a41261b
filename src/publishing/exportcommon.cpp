#include "publishing/exportcommon.h"

#include "collections/choicelist.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/treeops.h"
#include "store/tunestore.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace fenwork {

namespace {

// The folder of the last export of this run.
QString &lastExportFolder()
{
    static QString folder;
    return folder;
}

} // namespace

ExportScope exportScopeOf(const QString &source)
{
    if (!source.startsWith(u'_'))
        return ExportScope::List;
    return source.contains(QLatin1String("_tune")) ? ExportScope::Tune : ExportScope::File;
}

QString fileKeyOf(const QString &key)
{
    return GetKFile(key);
}

QString choiceListText(const AppContext &app, const ChoiceList &list)
{
    QString text;
    for (int row = 0; row < list.count(); ++row)
        text += app.store().GetStringTune(list.at(row).key, false, row + 1) + CRLF;
    return text;
}

QString safeFileName(QString name)
{
    for (const QChar c : QStringLiteral("\\/?*:<>|\""))
        name.replace(c, u'_');
    return name;
}

QString tuneTitle(const QString &text)
{
    const qsizetype at = text.indexOf(QLatin1String("T:"));
    if (at < 0)
        return {};
    QString title = text.mid(at + 2);
    const qsizetype end = title.indexOf(QRegularExpression(QStringLiteral("[\r\n]")));
    return end < 0 ? title : title.left(end);
}

QString exportStartFolder(const AppContext &app)
{
    if (app.ini().getBool(keys::KeepLastExportDir) && !lastExportFolder().isEmpty())
        return lastExportFolder();
    return app.ini().get(keys::DirDef);
}

void rememberExportFolder(const AppContext &app, const QString &chosenPath)
{
    lastExportFolder()
        = app.ini().getBool(keys::KeepLastExportDir) ? QFileInfo(chosenPath).absolutePath() : QString();
}

QString numberedOutputPattern(const QString &target)
{
    const qsizetype slash = target.lastIndexOf(u'/');
    qsizetype dot = target.lastIndexOf(u'.');
    if (dot <= slash)
        dot = -1;
    QString pattern = dot < 0 ? target + QStringLiteral("%d") : target.left(dot) + QStringLiteral("%d") + target.mid(dot);
    // Every "%" but the page number's is doubled.
    const qsizetype mark = dot < 0 ? target.size() : dot;
    return QString(pattern.left(mark)).replace(u'%', QStringLiteral("%%")) + QStringLiteral("%d")
        + QString(pattern.mid(mark + 2)).replace(u'%', QStringLiteral("%%"));
}

QStringList numberedPages(const QString &target)
{
    const qsizetype slash = target.lastIndexOf(u'/');
    qsizetype dot = target.lastIndexOf(u'.');
    if (dot <= slash)
        dot = target.size();
    QStringList pages;
    for (int n = 1;; ++n) {
        const QString page = target.left(dot) + QString::number(n) + target.mid(dot);
        if (!QFileInfo::exists(page))
            break;
        pages << page;
    }
    return pages;
}

} // namespace fenwork
