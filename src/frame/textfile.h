#pragma once
// Reading and writing whole text files with the per-file encoding rule: a file that is valid
// UTF-8 (plain ASCII included) is UTF-8, any other is Latin-1, and a file is written back in the
// encoding it was read in. A header line "%%abc-charset iso-8859-1" or "latin1" asks for Latin-1.
#include <QByteArray>
#include <QString>

class QFileDevice;

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

// The most a text file may hold to be read: a tune book is a few megabytes; anything far larger is
// not one, and reading it whole would only exhaust memory.
constexpr qint64 kMaxTextFileBytes = qint64(128) * 1024 * 1024;

// Whether `path` names a regular file of a readable size; otherwise false with a description
// that names the path. A FIFO or a device would block or never end, so only regular files pass.
bool checkReadableFile(const QString &path, QString *error);
// Reads a whole file (a regular file, at most kMaxTextFileBytes); detects its encoding. Errors
// name the path.
TextFileResult readTextFile(const QString &path);
// Writes a whole file atomically (a temporary file beside it renamed over it). On failure the
// file on disk is untouched and `error` receives the description.
bool writeTextFile(const QString &path, const QString &text, TextEncoding encoding, QString *error = nullptr);

// Copies `from` over `to` so that `to` is always either its old self or a whole copy: the copy goes
// to a temporary file beside `to` and is renamed over it. False with `error` on failure, `to`
// untouched.
bool copyFileSafely(const QString &from, const QString &to, QString *error = nullptr);
// Called between the copy and the rename of copyFileSafely; returning false abandons the copy, as
// a process killed at that moment would. Tests use it to inject that failure.
using BeforeRenameHook = bool (*)(const QString &target);
void setBeforeRenameHook(BeforeRenameHook hook);

// The description of a failed write on `file`, for `path`: a full disk says so.
QString writeFailure(const QFileDevice &file, const QString &path);

// Whether a header text asks for Latin-1 through %%abc-charset.
bool headerDeclaresLatin1(const QString &headerText);

} // namespace fenwork
