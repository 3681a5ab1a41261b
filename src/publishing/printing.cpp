#include "publishing/printing.h"

#include "frame/strutil.h"

#include <QDir>
#include <QFileInfo>

namespace fenwork {

QStringList printPages(const QString &folder)
{
    QStringList pages;
    const QDir dir(folder);
    for (int n = 1;; ++n) {
        const QString page = dir.filePath(QStringLiteral("tmp%1.prn").arg(n));
        if (!QFileInfo::exists(page))
            break;
        pages << page;
    }
    return pages;
}

QSizeF sheetMillimetres(const QString &paperName)
{
    if (paperName == u"letter")
        return { 216, 279 };
    if (paperName == u"legal")
        return { 216, 356 };
    return { 210, 297 };
}

QString WrapForPrint(const QString &text, int width)
{
    width = qMax(1, width);
    QStringList out;
    for (QString line : crlfLines(text).split(CRLF)) {
        while (line.size() > width) {
            qsizetype cut = line.lastIndexOf(u' ', width);
            if (cut <= 0)
                cut = width; // no blank to break at
            out << line.left(cut);
            line = line.mid(cut);
            if (line.startsWith(u' '))
                line.remove(0, 1);
        }
        out << line;
    }
    return out.join(CRLF);
}

} // namespace fenwork
