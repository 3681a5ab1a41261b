#include "editing/recovery.h"

#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork {

QString recoveredFileName(const QString &text, const QDateTime &when)
{
    QString title;
    for (const QString &line : QString(text).replace(u'\r', u'\n').split(u'\n')) {
        if (line.startsWith(u"T:")) {
            title = line.mid(2);
            break;
        }
    }
    QString safe;
    for (const QChar c : title)
        safe += c.unicode() < 32 || QStringLiteral("/\\:*?\"<>|").contains(c) ? u'_' : c;
    safe = trimBlanks(safe.left(60));
    while (safe.startsWith(u'.'))
        safe.remove(0, 1);
    if (safe.isEmpty())
        safe = QStringLiteral("recovered");
    return when.toString(QStringLiteral("yyyy-MM-dd HH.mm ")) + safe + QStringLiteral(".abc");
}

RecoveryOffer offerRecovery(AppContext &app)
{
    RecoveryOffer offer;
    const QString recover = app.paths().recoverFile();
    const QFileInfo info(recover);
    if (!info.exists())
        return offer;
    // The text is the user's: it moves to a folder of its own, under a name that says what it
    // is, and stays there. Only a whole copy lets the original go.
    const QString folder = app.paths().inUser(QStringLiteral("recovered"));
    QDir().mkpath(folder);
    const QString name = recoveredFileName(readTextFile(recover).text, info.lastModified());
    QString kept = QDir(folder).filePath(name);
    for (int n = 2; QFileInfo::exists(kept); ++n)
        kept = QDir(folder).filePath(name.chopped(4) + QStringLiteral(" (%1).abc").arg(n));
    if (copyFileSafely(recover, kept))
        QFile::remove(recover);
    else
        kept = recover; // left where it is, and offered again at the next start
    offer.keptFile = kept;

    const QString msg = QStringLiteral("Msg");
    const QString text = app.text(msg, QStringLiteral("<recovTune1>")) + CRLF + app.text(msg, QStringLiteral("<recovTune2>"))
        + CRLF + kept + CRLF + CRLF + app.text(msg, QStringLiteral("<recovOpen>"));
    switch (app.ui().question(text, true, app.text(msg, QStringLiteral("<recov>")))) {
    case UserDialogs::Answer::Yes:
        offer.open = RecoveryOffer::Open::InProgram;
        break;
    case UserDialogs::Answer::No:
        offer.open = RecoveryOffer::Open::InEditor;
        break;
    case UserDialogs::Answer::Cancel:
        break;
    }
    return offer;
}

} // namespace fenwork
