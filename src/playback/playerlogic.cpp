#include "playback/playerlogic.h"

#include "frame/language.h"
#include "frame/strutil.h"
#include "playback/playprep.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace fenwork::player {

double tempoSoundFactor(const QString &tuneText)
{
    const QStringList meters = GetM(tuneText);
    if (!meters.isEmpty() && meters.first().contains(u"/8") && !tuneText.contains(u"3/8="))
        return 1.5;
    return 1.0;
}

int shownTempo(const QString &nominalTempo, int percent)
{
    return int(std::lround(leadingNumber(nominalTempo) * percent / 100.0));
}

int clampPitch(const QString &text, bool *rewrite)
{
    const int value = int(leadingNumber(text));
    const int clamped = qBound(-12, value, 12);
    if (rewrite)
        *rewrite = clamped != value;
    return clamped;
}

int progressValue(qint64 position, qint64 length, int maximum)
{
    if (length <= 0 || maximum <= 0)
        return 0;
    return int(std::clamp<qint64>(position * maximum / length, 0, maximum));
}

int seekPosition(int value, int maximum, qint64 length)
{
    if (maximum <= 0)
        return 0;
    return int(std::clamp<qint64>(qint64(value) * length / maximum, 0, length));
}

QStringList gmInstrumentNames(const Language &lang)
{
    QStringList names;
    names.reserve(128);
    for (int i = 0; i < 128; ++i) {
        const QString key = QStringLiteral("<gm%1>").arg(i);
        const QString text = lang.text(QStringLiteral("GM"), key);
        names.append(text.isEmpty() ? key : text);
    }
    return names;
}

QString currentLineAsTune(const QString &text, qsizetype caret)
{
    static const QRegularExpression field(QStringLiteral("^[A-Za-z]:"));
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    QString tune;
    qsizetype at = 0;
    bool inHeader = true;
    QString current;
    for (const QString &line : lines) {
        const qsizetype end = at + line.size();
        if (inHeader && field.match(line).hasMatch()) {
            tune += line + QStringLiteral("\r\n");
            if (line.startsWith(u"K:"))
                inHeader = false;
        } else if (inHeader && !line.startsWith(u'%')) {
            inHeader = false;
        }
        if (caret >= at && caret <= end && current.isEmpty())
            current = line;
        at = end + 2;
    }
    if (!field.match(current).hasMatch() || !tune.contains(current))
        tune += current + QStringLiteral("\r\n");
    return tune;
}

} // namespace fenwork::player
