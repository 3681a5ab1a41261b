#include "app/helplinks.h"

#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/version.h"

#include <QFileInfo>
#include <QUrlQuery>

namespace fenwork {

QString helpFolder(const Paths &paths, const QString &languageName)
{
    const bool french = languageName.compare(QStringLiteral("Français"), Qt::CaseInsensitive) == 0;
    return paths.inProgram(french ? QStringLiteral("help/fr") : QStringLiteral("help/en"));
}

QUrl helpUrl(const Paths &paths, const QString &languageName, int topic)
{
    const bool abcTopic = topic >= 101 && topic <= 147;
    QUrl url = QUrl::fromLocalFile(helpFolder(paths, languageName)
        + (abcTopic ? QStringLiteral("/abc.html") : QStringLiteral("/index.html")));
    if (topic > 0)
        url.setFragment(QStringLiteral("t") + QString::number(topic));
    return url;
}

QUrl contactUrl(const QString &address)
{
    const QString to = trimBlanks(address);
    if (to.isEmpty())
        return {};
    QUrl url;
    url.setScheme(QStringLiteral("mailto"));
    url.setPath(to);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("subject"), QStringLiteral("Fennelworks ") + versionText());
    url.setQuery(query);
    return url;
}

QUrl serverUrl(const QString &server, const QString &path)
{
    QString base = trimBlanks(server);
    if (base.isEmpty())
        return {};
    if (!base.contains(QStringLiteral("://")))
        base.prepend(QStringLiteral("https://"));
    while (base.endsWith(u'/'))
        base.chop(1);
    return QUrl(base + path);
}

QUrl languageFolderUrl(const Paths &paths)
{
    return QUrl::fromLocalFile(paths.inProgram(QStringLiteral("lang")));
}

} // namespace fenwork
