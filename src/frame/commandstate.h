#pragma once
#include <QHash>
#include <QObject>
#include <QString>

namespace fenwork {

// Which commands are enabled, by control name ("mnu_SaveAll", "save" ...). Core code sets them;
// the window's menus and tool bar follow through the signal.
class CommandState : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    void setEnabled(const QString &name, bool enabled)
    {
        const auto it = m_enabled.constFind(name);
        if (it != m_enabled.constEnd() && it.value() == enabled)
            return;
        m_enabled.insert(name, enabled);
        emit enabledChanged(name, enabled);
    }
    bool isEnabled(const QString &name) const { return m_enabled.value(name, true); }

signals:
    void enabledChanged(const QString &name, bool enabled);

private:
    QHash<QString, bool> m_enabled;
};

} // namespace fenwork
