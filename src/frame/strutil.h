#pragma once
// Small text helpers shared by every subsystem.
#include <QString>

namespace fenwork {

inline const QString CRLF = QStringLiteral("\r\n");

// Removes spaces, and only spaces, at both ends. Tabs, CR and LF stay: the file format
// treats only the space as a blank.
QString trimBlanks(const QString &text);
QString trimLeftBlanks(const QString &text);
QString trimRightBlanks(const QString &text);

// Every occurrence of `before` replaced by `after`, left to right, in one pass. QString::replace
// moves the tail of the string once per batch of matches when the lengths differ, which turns
// quadratic on a file of many megabytes.
QString replaceAll(const QString &text, QStringView before, QStringView after);

// The text with every line ending as CR LF, the store's line end: LF, CR LF and the paragraph
// and line separators of a text widget's selection all become CR LF.
QString crlfLines(const QString &text);

// The number a text box starts with, as the old spin boxes read it: blanks skipped, a sign,
// digits and one decimal point; 0 when there is none.
double leadingNumber(QStringView text);

// A menu text as a tool tip shows it: the accelerator marks "&" gone, "&&" a plain "&".
QString withoutAccelerator(QString text);

// Colours are kept as 0xBBGGRR integers throughout the core.
constexpr int bgr(int r, int g, int b) { return (b << 16) | (g << 8) | r; }

} // namespace fenwork
