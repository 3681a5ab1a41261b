#pragma once
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

namespace fenwork {

// Which commands are enabled, by control name ("mnu_SaveAll", "save" ...). Core code sets them;
// the window's menus and tool bar follow through the signal.
//
// A hold (an edit session closing off the window) switches a set of commands off on top of what
// the selection says; the selection's own states are kept underneath, so releasing the hold gives
// back exactly those, and nobody has to switch anything on by hand.
class CommandState : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    void setEnabled(const QString &name, bool enabled)
    {
        const bool before = isEnabled(name);
        m_enabled.insert(name, enabled);
        if (isEnabled(name) != before)
            emit enabledChanged(name, !before);
    }
    bool isEnabled(const QString &name) const
    {
        return !m_held.contains(name) && m_enabled.value(name, true);
    }

    // Holds `names` off until release(); a second hold replaces the first.
    void hold(const QStringList &names)
    {
        const QSet<QString> before = m_held;
        m_held = QSet<QString>(names.cbegin(), names.cend());
        tellHoldChange(before);
    }
    void release()
    {
        const QSet<QString> before = m_held;
        m_held.clear();
        tellHoldChange(before);
    }

signals:
    void enabledChanged(const QString &name, bool enabled);

private:
    void tellHoldChange(const QSet<QString> &before)
    {
        for (const QString &name : before | m_held) {
            const bool was = !before.contains(name) && m_enabled.value(name, true);
            if (isEnabled(name) != was)
                emit enabledChanged(name, !was);
        }
    }

    QHash<QString, bool> m_enabled;
    QSet<QString> m_held;
};

} // namespace fenwork
