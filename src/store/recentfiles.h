#pragma once
#include <QObject>
#include <QStringList>

namespace fenwork {

class IniFile;

// The recent-files list: four paths, newest first. Files of the tools' cache stay out.
class RecentFiles : public QObject
{
    Q_OBJECT
public:
    static constexpr int kCount = 4;

    explicit RecentFiles(const QString &cacheFolder = {}, QObject *parent = nullptr);

    // Captions of the four items; empty ones are hidden in the menu.
    const QStringList &items() const { return m_items; }
    // Puts `path` first, moving the others down (a path already listed moves up).
    void add(const QString &path);
    // Clears one item and moves the later ones up.
    void remove(int index);

    void load(const IniFile &ini);                 // "R1".."R4" of the recent section
    void save(const IniFile &ini, bool clear) const; // written empty when `clear`

signals:
    void changed();

private:
    QString m_cacheFolder;
    QStringList m_items;
};

} // namespace fenwork
