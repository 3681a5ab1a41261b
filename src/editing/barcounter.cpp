#include "editing/barcounter.h"

#include "frame/strutil.h"

#include <QStringList>

namespace fenwork {

namespace {

const QString kMarker = QStringLiteral("%%|");

} // namespace

int countBars(const QString &textBefore)
{
    QStringList kept;
    for (const QString &raw : textBefore.split(CRLF)) {
        const QString line = trimBlanks(raw);
        // "|:" opens a repeat and is music, although its second character is a colon.
        if (line.startsWith(QStringLiteral("|:"))
            || (line.mid(1, 1) != QStringLiteral(":") && !line.startsWith(u'%')))
            kept << line;
    }
    QString joint = kept.join(u' ');
    joint.remove(u':');
    joint.replace(QStringLiteral("|||"), QStringLiteral("|"));
    joint.replace(QStringLiteral("||"), QStringLiteral("|"));
    joint.replace(QStringLiteral("| |"), QStringLiteral("|"));
    joint = trimBlanks(joint);
    if (joint.startsWith(u'|'))
        joint.remove(0, 1);
    if (joint.endsWith(u'|'))
        joint.chop(1);
    joint = trimBlanks(joint);
    return joint.isEmpty() ? 0 : int(joint.count(u'|')) + 1;
}

QString numberBarMarkers(const QString &text)
{
    QString out = text;
    qsizetype at = out.indexOf(kMarker);
    while (at >= 0) {
        const qsizetype from = at + kMarker.size();
        qsizetype end = out.indexOf(CRLF, from);
        if (end < 0)
            end = out.size();
        const QString number = QString::number(countBars(out.left(at)) + 1);
        out.replace(from, end - from, number);
        at = out.indexOf(kMarker, from);
    }
    return out;
}

} // namespace fenwork
