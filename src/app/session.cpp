#include "app/session.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/appcontext.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"
#include "store/node.h"
#include "store/workspacetree.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork {

QString cleanCommandLinePath(const QString &argumentText)
{
    // "O'Carolan's tunes.abc" is a name, not a quoted one: what exists as given is used as given.
    const QString asGiven = trimBlanks(argumentText);
    if (!asGiven.isEmpty() && QFileInfo::exists(asGiven))
        return asGiven;
    QString path = argumentText;
    path.remove(u'"');
    path.remove(u'\'');
    return trimBlanks(path);
}

QString commandLineNotOpened(const QString &path)
{
    return QStringLiteral("Command line arguments = ") + path + CRLF + QStringLiteral("----------") + CRLF
        + QStringLiteral("Can't open this file. Open it manually.");
}

QString commandLineText(const QStringList &arguments)
{
    return arguments.mid(1).join(u' ');
}

QStringList sessionFilesToRestore(const IniFile &ini)
{
    QStringList files;
    if (ini.get(keys::Rouvrir) != u"1")
        return files;
    bool ok = false;
    const int count = ini.get(keys::NbFiles).toInt(&ok);
    if (!ok)
        return files;
    for (int i = 1; i <= count; ++i) {
        const QString path = ini.getValue(QString::fromLatin1(keys::OpenFile.section), keys::OpenFile.keyName(i), {});
        if (!path.isEmpty())
            files << path;
    }
    return files;
}

} // namespace fenwork

namespace fenwork {

QStringList ensureUserFolders(const Paths &paths)
{
    QStringList failed;
    QDir root(paths.userRoot());
    for (const char *sub : {"user", "user/grp", "user/tmpl", "user/msk", "user/cache", "user/drone"}) {
        const QString name = QString::fromLatin1(sub);
        if (!root.exists(name) && !root.mkdir(name))
            failed << root.filePath(name);
    }
    return failed;
}

void writeOpenFiles(AppContext &app, bool reset)
{
    IniFile &ini = app.ini();
    ini.set(keys::NbFiles, QStringLiteral("0"));
    if (ini.get(keys::Rouvrir) == u"1") {
        const Node *root = app.tree().root();
        int count = root ? qMax(0, root->childCount() - 1) : 0;
        ini.set(keys::NbFiles, QString::number(count));
        for (int i = 1; root && i < root->childCount(); ++i) {
            const QString path = root->child(i)->Tag;
            if (path == u"<new>") {
                --count;
                ini.set(keys::NbFiles, QString::number(count));
            } else {
                ini.writeValue(QString::fromLatin1(keys::OpenFile.section), keys::OpenFile.keyName(i), path);
            }
        }
    }
    if (reset)
        ini.set(keys::NbFiles, QStringLiteral("0"));
}

void cleanScratchFiles(const Paths &paths)
{
    QDir root(paths.userRoot());
    for (const QString &name : root.entryList({QStringLiteral("tmp*.*")}, QDir::Files))
        root.remove(name);
    QDir cache(paths.cacheFolder());
    for (const QString &name : cache.entryList(QDir::Files | QDir::Hidden | QDir::System))
        cache.remove(name);
    for (const QString &name : cache.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        QDir(cache.filePath(name)).removeRecursively();
}

} // namespace fenwork
