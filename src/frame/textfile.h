#pragma once
// Reading and writing whole text files with the per-file encoding rule: a file that is valid
// UTF-8 (plain ASCII included) is UTF-8, any other is Latin-1, and a file is written back in the
// encoding it was read in. A header line "%%abc-charset iso-8859-1" or "latin1" asks for Latin-1.
#include <QByteArray>
#include <QString>

namespace fenwork {

enum class TextEncoding { Utf8, Latin1 };

// Decides the encoding of raw bytes.
TextEncoding detectEncoding(const QByteArray &bytes);
QString decodeText(const QByteArray &bytes, TextEncoding encoding);
// Characters that Latin-1 cannot hold are written as "?" in a Latin-1 file.
QByteArray encodeText(const QString &text, TextEncoding encoding);

struct TextFileResult
{
    bool ok = false;
    QString text;
    TextEncoding encoding = TextEncoding::Utf8;
    QString error; // the system's description when !ok
};

// Reads a whole file; detects its encoding.
TextFileResult readTextFile(const QString &path);
// Writes a whole file atomically (a temporary file beside it renamed over it). On failure the
// file on disk is untouched and `error` receives the description.
bool writeTextFile(const QString &path, const QString &text, TextEncoding encoding, QString *error = nullptr);

// Whether a header text asks for Latin-1 through %%abc-charset.
bool headerDeclaresLatin1(const QString &headerText);

} // namespace fenwork
