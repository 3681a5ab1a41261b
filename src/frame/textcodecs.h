#pragma once
// Conversions between accented letters and the ABC backslash escapes and HTML entities. Each is a
// fixed list of replace-all passes over the whole string; the order of the passes is part of the
// behaviour (a doubled backslash before an accent sign decodes, a double quote encodes to
// "&amp;quot;").
#include <QString>

namespace fenwork {

class UserDialogs;

// Characters to ABC escapes ("é" -> "\'e"). `progress`, when given, shows the passes going by
// (maximum 58).
QString abcEscapeEncode(const QString &text, UserDialogs *progress = nullptr);
// ABC escapes to characters ("\'e" and "\\'e" -> "é").
QString abcEscapeDecode(const QString &text, UserDialogs *progress = nullptr);

QString htmlEntityEncode(const QString &text);
QString htmlEntityDecode(const QString &text);

// "latin1", "latin2" or empty from the %%abc-charset lines of a file header text.
QString charsetFromHeader(const QString &headerText);

// Folds Latin-2 letters to plain ones when `charset` is exactly "latin2"; else returns `text`.
// The input holds the Latin-2 byte values as code points 128..255.
QString latin2Fold(const QString &text, const QString &charset);

} // namespace fenwork
