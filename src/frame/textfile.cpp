#include "textfile.h"

#include "textcodecs.h"

#include <QFile>
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

TextFileResult readTextFile(const QString &path)
{
    TextFileResult result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = file.errorString();
        return result;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        result.error = file.errorString();
        return result;
    }
    file.close();
    result.encoding = detectEncoding(bytes);
    result.text = decodeText(bytes, result.encoding);
    result.ok = true;
    return result;
}

bool writeTextFile(const QString &path, const QString &text, TextEncoding encoding, QString *error)
{
    const QByteArray bytes = encodeText(text, encoding);
    QSaveFile file(path);
    auto fail = [&]() {
        if (error)
            *error = file.errorString();
        file.cancelWriting();
        return false;
    };
    if (!file.open(QIODevice::WriteOnly))
        return fail();
    if (file.write(bytes) != bytes.size())
        return fail();
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
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
