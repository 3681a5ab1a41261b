#include "playback/wavfile.h"

#include <QtEndian>

#include <cstring>

namespace fenwork {

namespace {

void put32(char *at, quint32 value)
{
    qToLittleEndian(value, at);
}

void put16(char *at, quint16 value)
{
    qToLittleEndian(value, at);
}

} // namespace

WavWriter::~WavWriter()
{
    if (m_file.isOpen())
        close();
}

bool WavWriter::open(const QString &path, int sampleRate, int channels, QString *error)
{
    m_file.setFileName(path);
    m_channels = channels;
    m_frames = 0;
    m_failed = false;
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        if (error)
            *error = QStringLiteral("Cannot write ") + path + QStringLiteral(": ") + m_file.errorString();
        return false;
    }
    char header[44] = {};
    std::memcpy(header, "RIFF", 4);
    std::memcpy(header + 8, "WAVEfmt ", 8);
    put32(header + 16, 16);
    put16(header + 20, 1); // PCM
    put16(header + 22, quint16(channels));
    put32(header + 24, quint32(sampleRate));
    put32(header + 28, quint32(sampleRate * channels * 2));
    put16(header + 32, quint16(channels * 2));
    put16(header + 34, 16);
    std::memcpy(header + 36, "data", 4);
    if (m_file.write(header, 44) != 44)
        m_failed = true;
    return !m_failed;
}

bool WavWriter::write(const qint16 *samples, qint64 frames)
{
    if (!m_file.isOpen() || m_failed)
        return false;
    const qint64 bytes = frames * m_channels * 2;
    if (QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
        if (m_file.write(reinterpret_cast<const char *>(samples), bytes) != bytes)
            m_failed = true;
    } else {
        QByteArray swapped(bytes, Qt::Uninitialized);
        for (qint64 i = 0; i < frames * m_channels; ++i)
            qToLittleEndian(samples[i], swapped.data() + 2 * i);
        if (m_file.write(swapped) != bytes)
            m_failed = true;
    }
    if (!m_failed)
        m_frames += frames;
    return !m_failed;
}

bool WavWriter::close(QString *error)
{
    if (!m_file.isOpen())
        return !m_failed;
    const quint32 dataBytes = quint32(m_frames * m_channels * 2);
    char size[4];
    put32(size, dataBytes + 36);
    if (!m_file.seek(4) || m_file.write(size, 4) != 4)
        m_failed = true;
    put32(size, dataBytes);
    if (!m_file.seek(40) || m_file.write(size, 4) != 4)
        m_failed = true;
    const QString reason = m_file.errorString();
    m_file.close();
    if (m_failed && error)
        *error = QStringLiteral("Cannot write ") + m_file.fileName() + QStringLiteral(": ") + reason;
    return !m_failed;
}

WavData readWav(const QString &path)
{
    WavData wav;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return wav;
    const QByteArray bytes = file.readAll();
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE")
        return wav;
    qsizetype at = 12;
    bool haveFormat = false;
    while (at + 8 <= bytes.size()) {
        const QByteArray id = bytes.mid(at, 4);
        quint32 size = qFromLittleEndian<quint32>(bytes.constData() + at + 4);
        const qsizetype body = at + 8;
        if (id == "fmt " && body + 16 <= bytes.size()) {
            const quint16 format = qFromLittleEndian<quint16>(bytes.constData() + body);
            wav.channels = qFromLittleEndian<quint16>(bytes.constData() + body + 2);
            wav.sampleRate = int(qFromLittleEndian<quint32>(bytes.constData() + body + 4));
            const quint16 bits = qFromLittleEndian<quint16>(bytes.constData() + body + 14);
            haveFormat = format == 1 && bits == 16 && wav.channels > 0;
        } else if (id == "data" && haveFormat) {
            if (size == 0 || qint64(size) > bytes.size() - body)
                size = quint32(bytes.size() - body);
            const qsizetype count = size / 2;
            wav.samples.resize(count);
            for (qsizetype i = 0; i < count; ++i)
                wav.samples[i] = qFromLittleEndian<qint16>(bytes.constData() + body + 2 * i);
            wav.valid = true;
            return wav;
        }
        at = body + size + (size & 1);
    }
    return wav;
}

} // namespace fenwork
