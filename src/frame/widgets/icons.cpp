#include "frame/widgets/icons.h"

#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>

namespace fenwork {

QIcon pictureIcon(const QString &name, const QString &programFolder)
{
    static QHash<QString, QIcon> cache;
    const QString path = programFolder + QStringLiteral("/img/") + name + QStringLiteral(".svg");
    auto it = cache.constFind(path);
    if (it != cache.constEnd())
        return *it;
    const QIcon icon = QFileInfo::exists(path) ? QIcon(path) : QIcon();
    cache.insert(path, icon);
    return icon;
}

QIcon themeIcon(
    const QString &freedesktopName, const QString &fallbackPictureName, const QString &programFolder)
{
    if (!freedesktopName.isEmpty() && QIcon::hasThemeIcon(freedesktopName))
        return QIcon::fromTheme(freedesktopName);
    return pictureIcon(fallbackPictureName, programFolder);
}

QIcon programIcon(const QString &pictureName, const QString &programFolder)
{
    // Tool bar and menu pictures for which the freedesktop naming has a fitting icon.
    static const QHash<QString, QString> themeNames = {
        { QStringLiteral("open"), QStringLiteral("document-open") },
        { QStringLiteral("grpopen"), QStringLiteral("folder-open") },
        { QStringLiteral("save"), QStringLiteral("document-save") },
        { QStringLiteral("saveall"), QStringLiteral("document-save-all") },
        { QStringLiteral("scanrep"), QStringLiteral("edit-find") },
        { QStringLiteral("closeabc"), QStringLiteral("document-close") },
        { QStringLiteral("closeallabc"), QStringLiteral("window-close") },
        { QStringLiteral("toolsf"), QStringLiteral("tools") },
        { QStringLiteral("extract"), QStringLiteral("archive-extract") },
        { QStringLiteral("tunedel"), QStringLiteral("edit-delete") },
        { QStringLiteral("tunecut"), QStringLiteral("edit-cut") },
        { QStringLiteral("tunecopy"), QStringLiteral("edit-copy") },
        { QStringLiteral("tunepaste"), QStringLiteral("edit-paste") },
        { QStringLiteral("print"), QStringLiteral("document-print") },
        { QStringLiteral("tomidi"), QStringLiteral("audio-midi") },
        { QStringLiteral("topdf"), QStringLiteral("application-pdf") },
        { QStringLiteral("playfile"), QStringLiteral("media-playlist-play") },
        { QStringLiteral("filter"), QStringLiteral("view-filter") },
    };
    return themeIcon(themeNames.value(pictureName), pictureName, programFolder);
}

void setupIconTheme()
{
    // Some platform plugins (offscreen, minimal) look for themes nowhere but in the resources.
    QStringList searchPaths = QIcon::themeSearchPaths();
    const QStringList dataIcons = QStandardPaths::locateAll(
        QStandardPaths::GenericDataLocation, QStringLiteral("icons"), QStandardPaths::LocateDirectory);
    bool added = false;
    for (const QString &dir : dataIcons) {
        if (!searchPaths.contains(dir)) {
            searchPaths.append(dir);
            added = true;
        }
    }
    if (added)
        QIcon::setThemeSearchPaths(searchPaths);

    const QString current = QIcon::themeName();
    if (current.isEmpty() || current == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("breeze"));
    if (QIcon::fallbackThemeName().isEmpty())
        QIcon::setFallbackThemeName(QStringLiteral("hicolor"));
}

} // namespace fenwork
