#pragma once
// Notes of an ABC music line as plain text tokens, and the key signature they are read in.
//
// Nothing here builds a note model: a token is the text of one note as written ("^F", "c'",
// "A3/2", "(A" for a note behind an opening slur, "(3" for a tuplet mark), and the key is known by
// its normalised name ("Gmaj", "Ador", "F#min") and the letters its signature alters.
#include <QString>

namespace fenwork {

// Splits notes into tokens separated by one blank. A letter A-G, a-g, Z or z starts a token;
// "^", "_", "=" and "(" start a token together with the character after them ("^^F" gives "^^"
// and "F"); H-Y and h-y are dropped; anything else (digits, "/", "'", ",") goes to the token
// being built. The result is trimmed of blanks.
QString TokeniseNotes(const QString &text);

// The notes with the key's accidentals written behind the letters they alter: "^" for a sharp
// signature (letters beginning with "F"), "_" for a flat one ("B..."), so "F c B" with the letters
// "FC" becomes "F^ c^ B". A sign that then stands right before "=" goes, with the "=".
QString ApplyKeySignature(const QString &notes, const QString &accidentalLetters);

// The value of a K: field with its mode spelled as three lower-case letters behind the tonic:
// "G" -> "Gmaj", "Bb" -> "Bbmaj", "A Dorian" -> "Ador", "E minor" and "Em" -> "Emin",
// "D clef=alto" -> "Dmaj clef=alto", "none" stays "none". Whatever stood behind the key stays.
QString normaliseKey(const QString &keyValue);

// The first blank-delimited word of a normalised key: "Dmaj clef=alto" -> "Dmaj".
QString keyNameOf(const QString &normalisedKey);

// The letters a key name's signature alters, in the order of the signature: "Dmaj" -> "FC",
// "Fmaj" -> "B", "Cmaj" -> "". Sets *known to false (and gives "") for a key name that is no
// tonic and mode of the table, such as "none" or "HPmaj".
QString keyAccidentals(const QString &keyName, bool *known = nullptr);

// Whether the signature sharpens ("^"), flattens ("_") or is empty (""), from its letters.
QString keySign(const QString &accidentalLetters);

// A rough height of a pitch token for comparing tokens: the character code of its first
// character (which may be an accidental sign); when the second character is "'", plus 10 for
// every character behind the first ("c''" is 'c' + 20), when it is ",", minus as much. Within an
// octave it follows the character codes, so "A" is lower than "C".
int pitchHeight(const QString &token);

} // namespace fenwork
