#include "playback/midifileinfo.h"

#include <QFile>
#include <QVector>

#include <algorithm>

namespace fenwork {

namespace {

struct TempoChange
{
    qint64 tick;
    quint32 usPerQuarter;
};

class Reader
{
public:
    Reader(const QByteArray &bytes, qsizetype from, qsizetype to)
        : m_data(bytes)
        , m_pos(from)
        , m_end(to)
    { }

    bool atEnd() const { return m_pos >= m_end; }
    bool byte(quint8 *out)
    {
        if (m_pos >= m_end)
            return false;
        *out = quint8(m_data.at(m_pos++));
        return true;
    }
    // A variable-length quantity: at most four bytes.
    bool vlq(quint32 *out)
    {
        quint32 value = 0;
        for (int i = 0; i < 4; ++i) {
            quint8 b;
            if (!byte(&b))
                return false;
            value = (value << 7) | (b & 0x7F);
            if (!(b & 0x80)) {
                *out = value;
                return true;
            }
        }
        return false;
    }
    bool skip(quint32 count)
    {
        if (qint64(count) > m_end - m_pos)
            return false;
        m_pos += count;
        return true;
    }
    qsizetype pos() const { return m_pos; }

private:
    const QByteArray &m_data;
    qsizetype m_pos;
    qsizetype m_end;
};

quint32 bigEndian(const QByteArray &bytes, qsizetype at, int size)
{
    quint32 value = 0;
    for (int i = 0; i < size; ++i)
        value = (value << 8) | quint8(bytes.at(at + i));
    return value;
}

MidiFileInfo failed(const QString &why)
{
    MidiFileInfo info;
    info.error = why;
    return info;
}

// Data bytes that follow a channel status.
int dataBytes(quint8 status)
{
    const quint8 kind = status & 0xF0;
    return (kind == 0xC0 || kind == 0xD0) ? 1 : 2;
}

} // namespace

MidiFileInfo readMidiFileInfo(const QByteArray &bytes)
{
    if (bytes.size() < 14 || !bytes.startsWith("MThd"))
        return failed(QStringLiteral("not a standard MIDI file"));
    const quint32 headerSize = bigEndian(bytes, 4, 4);
    if (headerSize < 6 || qint64(headerSize) > bytes.size() - 8)
        return failed(QStringLiteral("the MIDI file header is damaged"));
    MidiFileInfo info;
    info.format = int(bigEndian(bytes, 8, 2));
    const int declaredTracks = int(bigEndian(bytes, 10, 2));
    const quint32 division = bigEndian(bytes, 12, 2);
    if (division & 0x8000)
        return failed(
            QStringLiteral("the MIDI file counts time in SMPTE frames, which the player cannot follow"));
    if (division == 0)
        return failed(QStringLiteral("the MIDI file has no time base"));
    if (info.format > 2)
        return failed(QStringLiteral("unknown MIDI file format %1").arg(info.format));
    info.division = int(division);

    QVector<TempoChange> tempi;
    qsizetype at = 8 + headerSize;
    while (at + 8 <= bytes.size()) {
        const QByteArray id = bytes.mid(at, 4);
        const quint32 size = bigEndian(bytes, at + 4, 4);
        const qsizetype bodyStart = at + 8;
        if (qint64(size) > bytes.size() - bodyStart)
            return failed(QStringLiteral("MIDI track %1 is cut short").arg(info.tracks + 1));
        at = bodyStart + size;
        if (id != "MTrk")
            continue; // unknown chunks are allowed and skipped
        ++info.tracks;
        Reader track(bytes, bodyStart, bodyStart + size);
        qint64 tick = 0;
        quint8 running = 0;
        bool ended = false;
        while (!track.atEnd() && !ended) {
            quint32 delta;
            if (!track.vlq(&delta))
                return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
            tick += delta;
            quint8 status;
            if (!track.byte(&status))
                return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
            if (status == 0xFF) {
                quint8 type;
                quint32 length;
                if (!track.byte(&type) || !track.vlq(&length))
                    return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                const qsizetype dataAt = track.pos();
                if (!track.skip(length))
                    return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                if (type == 0x51 && length == 3)
                    tempi.append({ tick, bigEndian(bytes, dataAt, 3) });
                else if (type == 0x2F)
                    ended = true;
                running = 0;
            } else if (status == 0xF0 || status == 0xF7) {
                quint32 length;
                if (!track.vlq(&length) || !track.skip(length))
                    return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                running = 0;
            } else {
                quint8 first;
                if (status & 0x80) {
                    if (status >= 0xF0) // system common messages do not belong in a file
                        return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                    running = status;
                    if (!track.byte(&first))
                        return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                } else {
                    if (!running)
                        return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                    first = status;
                    status = running;
                }
                quint8 second = 0;
                if (dataBytes(status) == 2 && !track.byte(&second))
                    return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                if ((first | second) & 0x80)
                    return failed(QStringLiteral("MIDI track %1 is damaged").arg(info.tracks));
                info.channels |= quint16(1u << (status & 0x0F));
                if ((status & 0xF0) == 0x90 && second > 0)
                    ++info.noteOns;
            }
        }
        info.lengthTicks = qMax(info.lengthTicks, tick);
    }
    if (info.tracks == 0)
        return failed(QStringLiteral("the MIDI file holds no track"));
    if (info.tracks < declaredTracks && at < bytes.size())
        return failed(QStringLiteral("the MIDI file is cut short"));

    // The length in seconds: the tempo changes of all tracks apply to the whole file.
    std::stable_sort(tempi.begin(), tempi.end(),
        [](const TempoChange &a, const TempoChange &b) { return a.tick < b.tick; });
    double seconds = 0;
    qint64 from = 0;
    quint32 tempo = 500000; // 120 beats a minute until told otherwise
    for (const TempoChange &change : std::as_const(tempi)) {
        const qint64 until = qMin(change.tick, info.lengthTicks);
        if (until > from) {
            seconds += double(until - from) * tempo / 1e6 / info.division;
            from = until;
        }
        if (change.usPerQuarter > 0)
            tempo = change.usPerQuarter;
    }
    seconds += double(info.lengthTicks - from) * tempo / 1e6 / info.division;
    info.seconds = seconds;
    info.valid = true;
    return info;
}

MidiFileInfo readMidiFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failed(QStringLiteral("cannot read the MIDI file ") + path);
    return readMidiFileInfo(file.readAll());
}

} // namespace fenwork
