#include "textfile.h"

#include "textcodecs.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

#include <cstring>

namespace fenwork {

namespace {

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF. Plain ASCII runs are
// skipped eight bytes at a time, which is most of any ABC file.
bool isValidUtf8(const unsigned char *p, qsizetype n)
{
    const unsigned char *const end = p + n;
    while (p < end) {
        while (end - p >= 8) {
            quint64 word;
            std::memcpy(&word, p, 8);
            if (word & Q_UINT64_C(0x8080808080808080))
                break;
            p += 8;
        }
        if (p >= end)
            break;
        const unsigned char c = *p;
        if (c < 0x80) {
            ++p;
            continue;
        }
        int more;
        unsigned char lo = 0x80, hi = 0xBF; // allowed range of the second byte
        if (c >= 0xC2 && c <= 0xDF) {
            more = 1;
        } else if (c >= 0xE0 && c <= 0xEF) {
            more = 2;
            if (c == 0xE0)
                lo = 0xA0; // overlong
            else if (c == 0xED)
                hi = 0x9F; // surrogates
        } else if (c >= 0xF0 && c <= 0xF4) {
            more = 3;
            if (c == 0xF0)
                lo = 0x90; // overlong
            else if (c == 0xF4)
                hi = 0x8F; // above U+10FFFF
        } else {
            return false; // a continuation byte alone, C0/C1 overlongs, F5..FF
        }
        if (end - p <= more)
            return false;
        if (p[1] < lo || p[1] > hi)
            return false;
        for (int k = 2; k <= more; ++k) {
            if ((p[k] & 0xC0) != 0x80)
                return false;
        }
        p += more + 1;
    }
    return true;
}

} // namespace

TextEncoding detectEncoding(const QByteArray &bytes)
{
    return isValidUtf8(reinterpret_cast<const unsigned char *>(bytes.constData()), bytes.size())
        ? TextEncoding::Utf8
        : TextEncoding::Latin1;
}

QString decodeText(const QByteArray &bytes, TextEncoding encoding)
{
    if (encoding == TextEncoding::Latin1)
        return QString::fromLatin1(bytes);
    // A byte order mark is kept as U+FEFF, so that the file is written back as it came.
    QStringDecoder decoder(QStringConverter::Utf8,
        QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

QByteArray encodeText(const QString &text, TextEncoding encoding)
{
    return encoding == TextEncoding::Latin1 ? text.toLatin1() : text.toUtf8();
}

bool checkReadableFile(const QString &path, QString *error)
{
    const QFileInfo info(path);
    QString why;
    if (!info.exists())
        why = QStringLiteral("File not found: ") + path;
    else if (info.isDir())
        why = QStringLiteral("This is a folder, not a file: ") + path;
    else if (!info.isFile())
        why = QStringLiteral("This is not a regular file (a device or a pipe): ") + path;
    else if (info.size() > kMaxTextFileBytes)
        why = QStringLiteral("This file is too large to be a text file (over %1 MB): ").arg(kMaxTextFileBytes >> 20)
            + path;
    if (error)
        *error = why;
    return why.isEmpty();
}

TextFileResult readTextFile(const QString &path)
{
    TextFileResult result;
    if (!checkReadableFile(path, &result.error))
        return result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = file.errorString() + QStringLiteral(": ") + path;
        return result;
    }
    // Bounded even if the file grew since it was looked at.
    const QByteArray bytes = file.read(kMaxTextFileBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        result.error = file.errorString() + QStringLiteral(": ") + path;
        return result;
    }
    if (bytes.size() > kMaxTextFileBytes) {
        checkReadableFile(path, &result.error);
        if (result.error.isEmpty())
            result.error = QStringLiteral("This file is too large to be a text file: ") + path;
        return result;
    }
    file.close();
    result.encoding = detectEncoding(bytes);
    result.text = decodeText(bytes, result.encoding);
    result.ok = true;
    return result;
}

namespace {
BeforeRenameHook g_beforeRename = nullptr;
}

void setBeforeRenameHook(BeforeRenameHook hook)
{
    g_beforeRename = hook;
}

QString writeFailure(const QFileDevice &file, const QString &path)
{
    if (file.error() == QFileDevice::ResourceError)
        return QStringLiteral("The disk is full: ") + path + QStringLiteral(" could not be written.");
    const QString why = file.errorString();
    return (why.isEmpty() || why == u"Unknown error" ? QStringLiteral("Write error") : why) + QStringLiteral(": ")
        + path;
}

bool copyFileSafely(const QString &from, const QString &to, QString *error)
{
    QString why;
    const auto fail = [&](const QString &description) {
        if (error)
            *error = description;
        return false;
    };
    if (!checkReadableFile(from, &why))
        return fail(why);
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        return fail(source.errorString() + QStringLiteral(": ") + from);
    QSaveFile target(to);
    if (!target.open(QIODevice::WriteOnly))
        return fail(writeFailure(target, to));
    QByteArray chunk;
    while (!(chunk = source.read(1 << 20)).isEmpty()) {
        if (target.write(chunk) != chunk.size())
            return fail(writeFailure(target, to));
    }
    if (source.error() != QFileDevice::NoError)
        return fail(source.errorString() + QStringLiteral(": ") + from);
    if (g_beforeRename && !g_beforeRename(to))
        return fail(QStringLiteral("Copy abandoned before it replaced ") + to);
    if (!target.commit())
        return fail(writeFailure(target, to));
    if (error)
        error->clear();
    return true;
}

bool writeTextFile(const QString &path, const QString &text, TextEncoding encoding, QString *error)
{
    const QByteArray bytes = encodeText(text, encoding);
    QSaveFile file(path);
    auto fail = [&]() {
        if (error)
            *error = writeFailure(file, path);
        file.cancelWriting();
        return false;
    };
    if (!file.open(QIODevice::WriteOnly))
        return fail();
    if (file.write(bytes) != bytes.size())
        return fail();
    if (!file.commit()) {
        if (error)
            *error = writeFailure(file, path);
        return false;
    }
    if (error)
        error->clear();
    return true;
}

bool headerDeclaresLatin1(const QString &headerText)
{
    return charsetFromHeader(headerText) == QLatin1String("latin1");
}

} // namespace fenwork
