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

QString recoveredFileName(const QString &text, const QDateTime &when)
{
    QString title;
    for (const QString &line : QString(text).replace(u'\r', u'\n').split(u'\n')) {
        if (line.startsWith(u"T:")) {
            title = line.mid(2);
            break;
        }
    }
    QString safe;
    for (const QChar c : title)
        safe += c.unicode() < 32 || QStringLiteral("/\\:*?\"<>|").contains(c) ? u'_' : c;
    safe = trimBlanks(safe.left(60));
    while (safe.startsWith(u'.'))
        safe.remove(0, 1);
    if (safe.isEmpty())
        safe = QStringLiteral("recovered");
    return when.toString(QStringLiteral("yyyy-MM-dd HH.mm ")) + safe + QStringLiteral(".abc");
}

RecoveryOffer offerRecovery(AppContext &app)
{
    RecoveryOffer offer;
    const QString recover = app.paths().recoverFile();
    const QFileInfo info(recover);
    if (!info.exists())
        return offer;
    // The text is the user's: it moves to a folder of its own, under a name that says what it
    // is, and stays there. Only a whole copy lets the original go.
    const QString folder = app.paths().inUser(QStringLiteral("recovered"));
    QDir().mkpath(folder);
    const QString name = recoveredFileName(readTextFile(recover).text, info.lastModified());
    QString kept = QDir(folder).filePath(name);
    for (int n = 2; QFileInfo::exists(kept); ++n)
        kept = QDir(folder).filePath(name.chopped(4) + QStringLiteral(" (%1).abc").arg(n));
    if (copyFileSafely(recover, kept))
        QFile::remove(recover);
    else
        kept = recover; // left where it is, and offered again at the next start
    offer.keptFile = kept;

    const QString msg = QStringLiteral("Msg");
    const QString text = app.text(msg, QStringLiteral("<recovTune1>")) + CRLF + app.text(msg, QStringLiteral("<recovTune2>"))
        + CRLF + kept + CRLF + CRLF + app.text(msg, QStringLiteral("<recovOpen>"));
    switch (app.ui().question(text, true, app.text(msg, QStringLiteral("<recov>")))) {
    case UserDialogs::Answer::Yes:
        offer.open = RecoveryOffer::Open::InProgram;
        break;
    case UserDialogs::Answer::No:
        offer.open = RecoveryOffer::Open::InEditor;
        break;
    case UserDialogs::Answer::Cancel:
        break;
    }
    return offer;
}

} // namespace fenwork
