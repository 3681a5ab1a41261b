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

// Colours are kept as 0xBBGGRR integers throughout the core.
constexpr int bgr(int r, int g, int b) { return (b << 16) | (g << 8) | r; }

} // namespace fenwork
