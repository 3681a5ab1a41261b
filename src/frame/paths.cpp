#include "frame/paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace fenwork {

namespace {

// Folders are kept without a trailing separator; "/" itself stays as it is.
QString withoutTrailingSeparator(const QString &folder)
{
    QString out = QDir::fromNativeSeparators(folder);
    while (out.size() > 1 && out.endsWith(u'/'))
        out.chop(1);
    return out;
}

QString joined(const QString &folder, const QString &relative)
{
    QString rel = QDir::fromNativeSeparators(relative);
    while (rel.startsWith(u'/'))
        rel.remove(0, 1);
    if (rel.isEmpty())
        return folder;
    return folder.endsWith(u'/') ? folder + rel : folder + u'/' + rel;
}

QString programFolderFromExecutable()
{
    if (QCoreApplication::instance()) {
        const QString exeDir = QCoreApplication::applicationDirPath();
        const QString installed = QDir::cleanPath(exeDir + QStringLiteral("/../share/fennelworks"));
        if (QFileInfo(installed).isDir())
            return installed;
        const QString beside = exeDir + QStringLiteral("/data");
        if (QFileInfo(beside).isDir())
            return beside;
    }
    return QStringLiteral(FENWORK_DATA_DIR);
}

} // namespace

Paths::Paths(const QString &userRoot, const QString &programFolder)
    : m_userRoot(withoutTrailingSeparator(userRoot))
    , m_programFolder(withoutTrailingSeparator(programFolder))
{ }

Paths Paths::fromEnvironment()
{
    QString root = qEnvironmentVariable("FENNELWORKS_ROOT");
    if (root.isEmpty()) {
        const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        root = (data.isEmpty() ? QDir::homePath() + QStringLiteral("/.local/share") : data)
            + QStringLiteral("/Fennelworks");
    }
    QString program = qEnvironmentVariable("FENNELWORKS_APPDIR");
    if (program.isEmpty())
        program = programFolderFromExecutable();
    return Paths(root, program);
}

QString Paths::userFolder() const
{
    return joined(m_userRoot, QStringLiteral("user"));
}

QString Paths::cacheFolder() const
{
    return joined(m_userRoot, QStringLiteral("user/cache"));
}

QString Paths::settingsFile() const
{
    return joined(m_userRoot, QStringLiteral("fenwork.ini"));
}

QString Paths::trashFile() const
{
    return joined(m_userRoot, QStringLiteral("trash"));
}

QString Paths::recoverFile() const
{
    return joined(m_userRoot, QStringLiteral("user/recover_tune.txt"));
}

QString Paths::inUser(const QString &relative) const
{
    return joined(userFolder(), relative);
}

QString Paths::inProgram(const QString &relative) const
{
    return joined(m_programFolder, relative);
}

QString specialFolder(int number)
{
    QString folder;
    switch (number) {
    case SF_Documents:
        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        break;
    case SF_AppData:
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        break;
    default:
        return {};
    }
    if (folder.isEmpty())
        return {};
    folder = QDir::fromNativeSeparators(folder);
    while (folder.endsWith(u'/'))
        folder.chop(1);
    return folder + u'/';
}

QString uniqueName(const QString &base, const QString &extension, const QString &folder, int last)
{
    QString ext = extension;
    if (!ext.isEmpty() && !ext.startsWith(u'.'))
        ext.prepend(u'.');
    QString dir = QDir::fromNativeSeparators(folder);
    if (!dir.isEmpty() && !dir.endsWith(u'/'))
        dir += u'/';
    for (int n = 1; n <= last; ++n) {
        const QString name = base + QString::number(n);
        if (!QFileInfo::exists(dir + name + ext))
            return name;
    }
    return {};
}


bool isPlainFileName(const QString &name)
{
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/') && !name.contains(QChar(0));
}

QStringList fileNamesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase);
}

bool namedFileExists(const QString &folder, const QString &name)
{
    return isPlainFileName(name) && QFileInfo(QDir(folder).filePath(name)).isFile();
}

} // namespace fenwork
