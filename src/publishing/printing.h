#pragma once
// What printing needs besides the printer itself: the pages an export rendered for it, the sheet
// of a paper name, and the wrapping of raw ABC text.
#include <QSizeF>
#include <QString>
#include <QStringList>

namespace fenwork {

// "tmp1.prn", "tmp2.prn" ... of `folder`, while they exist.
QStringList printPages(const QString &folder);

// The sheet in millimetres: 210 x 297 for "a4", 216 x 279 for "letter", 216 x 356 for "legal".
QSizeF sheetMillimetres(const QString &paperName);

// Each non-empty line longer than `width` characters is split at the last blank within the
// width, and the rest goes on the same way; a stretch with no blank is cut at the width.
// Lines end with CR LF.
QString WrapForPrint(const QString &text, int width);

} // namespace fenwork
