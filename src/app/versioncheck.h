#pragma once
// Asks the update server whether a newer version exists. The server is the setting
// General/updateServer: empty, nothing is asked at all. The answer is awaited without blocking:
// the check runs beside the interface and says what it found through the dialogs seam.
#include <QObject>
#include <QString>
#include <functional>

class QNetworkAccessManager;
class QNetworkReply;

namespace fenwork {

class AppContext;

// The version offered by the version file's second line: after the first double quote (the whole
// line when it has none), up to the first blank, or to the next double quote when there is no
// blank; trimmed.
QString offeredVersion(const QString &secondLine);
// Whether `offered` is newer than `current`: they differ, and with their dots removed the offered
// number is the greater ("1.5.10" is 1510, above "1.5.3", 153).
bool isNewerVersion(const QString &offered, const QString &current);

class VersionCheck : public QObject
{
    Q_OBJECT
public:
    explicit VersionCheck(AppContext &app, QObject *parent = nullptr);
    ~VersionCheck() override;

    // Starts the check; `silent` (at start-up) shows nothing but the offer of a newer version.
    // finished() follows in every case, at once when there is nothing to ask.
    void CheckVersion(bool silent);
    bool isRunning() const { return m_reply != nullptr; }

    // The version this program is; the tests set another.
    QString currentVersion;
    // How long the server may take to answer, in milliseconds.
    int timeoutMs = 10000;
    // Whether the system knows itself to be without a network; by default the platform's network
    // information, when it has any.
    std::function<bool()> knownDisconnected;

signals:
    void finished();

private:
    void fetched();
    void end();

    AppContext &m_app;
    QNetworkAccessManager *m_network = nullptr;
    QNetworkReply *m_reply = nullptr;
    bool m_silent = true;
    bool m_busy = false;
};

} // namespace fenwork
