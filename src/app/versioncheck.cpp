#include "app/versioncheck.h"

#include "app/helplinks.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "frame/version.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkInformation>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace fenwork {

namespace {

const QString kMsg = QStringLiteral("Msg");

qlonglong dotless(const QString &version)
{
    QString digits = version;
    digits.remove(u'.');
    return digits.toLongLong();
}

bool platformSaysDisconnected()
{
    if (!QNetworkInformation::instance()
        && !QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability))
        return false;
    const QNetworkInformation *info = QNetworkInformation::instance();
    return info && info->reachability() == QNetworkInformation::Reachability::Disconnected;
}

} // namespace

QString offeredVersion(const QString &secondLine)
{
    const qsizetype quote = secondLine.indexOf(u'"');
    QString rest = secondLine.mid(quote + 1);
    const qsizetype blank = rest.indexOf(u' ');
    if (blank >= 0)
        rest.truncate(blank);
    else if (const qsizetype closing = rest.indexOf(u'"'); closing >= 0)
        rest.truncate(closing);
    return trimBlanks(rest);
}

bool isNewerVersion(const QString &offered, const QString &current)
{
    return offered != current && dotless(offered) > dotless(current);
}

VersionCheck::VersionCheck(AppContext &app, QObject *parent)
    : QObject(parent)
    , currentVersion(versionText())
    , knownDisconnected(platformSaysDisconnected)
    , m_app(app)
{ }

VersionCheck::~VersionCheck()
{
    if (m_reply)
        m_reply->abort();
    if (m_busy)
        m_app.ui().setBusy(false);
}

void VersionCheck::CheckVersion(bool silent)
{
    if (m_reply)
        return;
    m_silent = silent;
    const QUrl url = serverUrl(m_app.ini().get(keys::UpdateServer), QStringLiteral("/inc/fenwk.ver"));
    if (url.isEmpty()) {
        QTimer::singleShot(0, this, &VersionCheck::finished);
        return;
    }
    if (knownDisconnected && knownDisconnected()) {
        if (!silent)
            m_app.ui().message(m_app.text(kMsg, QStringLiteral("<disconnected>")));
        QTimer::singleShot(0, this, &VersionCheck::finished);
        return;
    }
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    QNetworkRequest request(url);
    // Always the file as it is now on the server, never a kept copy.
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setTransferTimeout(timeoutMs);
    if (!silent) {
        m_app.ui().setBusy(true);
        m_busy = true;
    }
    m_reply = m_network->get(request);
    connect(m_reply, &QNetworkReply::finished, this, &VersionCheck::fetched);
}

void VersionCheck::fetched()
{
    QNetworkReply *reply = m_reply;
    m_reply = nullptr;
    reply->deleteLater();
    if (m_busy) {
        m_app.ui().setBusy(false);
        m_busy = false;
    }
    const QString saved = m_app.paths().cacheFolder() + QStringLiteral("/tmp.ver");
    bool ok = reply->error() == QNetworkReply::NoError;
    if (ok) {
        QDir().mkpath(m_app.paths().cacheFolder());
        QFile file(saved);
        ok = file.open(QIODevice::WriteOnly) && file.write(reply->readAll()) >= 0;
    }
    if (!ok) {
        if (!m_silent)
            m_app.ui().message(m_app.text(kMsg, QStringLiteral("<chkFail>")));
        end();
        return;
    }
    QFile file(saved);
    QString second;
    if (file.open(QIODevice::ReadOnly)) {
        file.readLine();
        second = QString::fromUtf8(file.readLine());
        while (second.endsWith(u'\n') || second.endsWith(u'\r'))
            second.chop(1);
    }
    const QString offered = offeredVersion(second);
    if (!isNewerVersion(offered, currentVersion)) {
        if (!m_silent)
            m_app.ui().message(m_app.text(kMsg, QStringLiteral("<chkOk>")) + CRLF + currentVersion,
                UserDialogs::Icon::Information);
        end();
        return;
    }
    const QString question = m_app.text(kMsg, QStringLiteral("<newVersion>")) + CRLF + CRLF
        + m_app.text(kMsg, QStringLiteral("<currentVersion>")) + QStringLiteral("\t: ") + currentVersion
        + CRLF + m_app.text(kMsg, QStringLiteral("<versionDispo>")) + QStringLiteral("\t: ") + offered + CRLF
        + CRLF + m_app.text(kMsg, QStringLiteral("<newVer2>"));
    if (m_app.ui().question(question) == UserDialogs::Answer::Yes)
        QDesktopServices::openUrl(serverUrl(
            m_app.ini().get(keys::UpdateServer), QStringLiteral("/fenw2.php?ex=") + currentVersion));
    end();
}

void VersionCheck::end()
{
    emit finished();
}

} // namespace fenwork
