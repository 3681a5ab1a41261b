#include "store/recentfiles.h"

#include "frame/inifile.h"
#include "frame/settings.h"

namespace fenwork {

RecentFiles::RecentFiles(const QString &cacheFolder, QObject *parent)
    : QObject(parent), m_cacheFolder(cacheFolder)
{
    for (int i = 0; i < kCount; ++i)
        m_items.append(QString());
}

void RecentFiles::add(const QString &path)
{
    if (path.contains(QStringLiteral("/user/cache/"))
        || (!m_cacheFolder.isEmpty() && path.startsWith(m_cacheFolder + u'/')))
        return;
    qsizetype index = m_items.indexOf(path);
    if (index < 0)
        index = kCount - 1;
    for (qsizetype i = index; i > 0; --i)
        m_items[i] = m_items.at(i - 1);
    m_items[0] = path;
    emit changed();
}

void RecentFiles::remove(int index)
{
    if (index < 0 || index >= kCount)
        return;
    for (int i = index; i < kCount - 1; ++i)
        m_items[i] = m_items.at(i + 1);
    m_items[kCount - 1].clear();
    emit changed();
}

void RecentFiles::load(const IniFile &ini)
{
    const QString section = QString::fromLatin1(keys::Recent.section);
    for (int i = 0; i < kCount; ++i)
        m_items[i] = ini.getValue(section, keys::Recent.keyName(i + 1), {});
    emit changed();
}

void RecentFiles::save(const IniFile &ini, bool clear) const
{
    const QString section = QString::fromLatin1(keys::Recent.section);
    for (int i = 0; i < kCount; ++i)
        ini.writeValue(section, keys::Recent.keyName(i + 1), clear ? QString() : m_items.at(i));
}

} // namespace fenwork
