#include "playback/soundfont.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace fenwork {

QStringList soundFontFolders()
{
    QStringList folders;
    for (const QString &data : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        folders << data + QStringLiteral("/soundfonts") << data + QStringLiteral("/sounds/sf2")
                << data + QStringLiteral("/sounds/sf3");
    }
    folders << QStringLiteral("/usr/share/soundfonts") << QStringLiteral("/usr/share/sounds/sf2")
            << QStringLiteral("/usr/share/sounds/sf3") << QStringLiteral("/usr/local/share/soundfonts");
    folders.removeDuplicates();
    return folders;
}

QString defaultSoundFont()
{
    return QStringLiteral("/usr/share/sounds/sf2/default-GM.sf2");
}

QString chooseSoundFont(const QString &setting, const QStringList &folders)
{
    if (!setting.isEmpty()) {
        const QFileInfo chosen(setting);
        if (chosen.isFile() && chosen.isReadable())
            return chosen.absoluteFilePath();
    }
    // A font that names itself General MIDI holds the 128 programs the player switches between.
    static const QRegularExpression gmName(
        QStringLiteral("(^|[^a-z])(gm|gs)([^a-z]|$)|general"), QRegularExpression::CaseInsensitiveOption);
    QString best;
    qint64 bestSize = -1;
    for (const QString &folder : folders) {
        QDirIterator it(
            folder, { QStringLiteral("*.sf2"), QStringLiteral("*.sf3") }, QDir::Files | QDir::Readable);
        while (it.hasNext()) {
            const QFileInfo file(it.next());
            if (!gmName.match(file.completeBaseName()).hasMatch())
                continue;
            // A link and its target are one font: keep the real file's path.
            const QFileInfo real(file.canonicalFilePath());
            if (real.isFile() && real.size() > bestSize) {
                bestSize = real.size();
                best = real.absoluteFilePath();
            }
        }
    }
    if (!best.isEmpty())
        return best;
    const QFileInfo fallback(defaultSoundFont());
    return fallback.isFile() ? fallback.absoluteFilePath() : QString();
}

} // namespace fenwork
