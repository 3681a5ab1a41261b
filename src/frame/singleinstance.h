#pragma once
#include <QObject>
#include <QString>

class QLocalServer;

namespace fenwork {

// One running program per user root. The first start listens on a local socket named after the
// user root; a later start hands its path over through that socket and ends.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    explicit SingleInstance(const QString &userRoot, QObject *parent = nullptr);
    ~SingleInstance() override;

    // True when this process is now the first instance (it listens); false when another one runs.
    bool claim();
    // Sends `path` to the running instance; true when it acknowledged.
    bool handOver(const QString &path, int timeoutMs = 3000) const;
    QString serverName() const { return m_name; }

signals:
    void pathReceived(const QString &path);

private:
    void acceptConnection();
    QString m_name;
    QLocalServer *m_server = nullptr;
};

} // namespace fenwork
