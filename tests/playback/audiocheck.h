#pragma once
// Listening aids for the tests: small MIDI files built note by note, and measures of rendered
// sound (where it sounds, how loud, at what pitch). Header-only: the batch companion's tests use
// it too.
#include <QByteArray>
#include <QVector>
#include <QtEndian>

#include <cmath>
#include <cstdlib>

namespace fenwork::test {

// A one-track MIDI file: 480 ticks to the quarter note, a tempo, a program and notes one after
// another on one channel.
class MidiBuilder
{
public:
    static constexpr int kDivision = 480;

    explicit MidiBuilder(int bpm = 120, int channel = 0, int program = 0)
        : m_channel(channel)
    {
        const quint32 us = quint32(60000000 / bpm);
        event(0, { char(0xFF), 0x51, 0x03, char(us >> 16), char(us >> 8), char(us) });
        event(0, { char(0xC0 | channel), char(program) });
    }
    // A note of `quarters` quarter notes; key < 0 is a rest.
    MidiBuilder &note(int key, double quarters, int velocity = 100)
    {
        const quint32 length = quint32(std::lround(quarters * kDivision));
        if (key < 0) {
            m_pendingDelta += length;
            return *this;
        }
        event(m_pendingDelta, { char(0x90 | m_channel), char(key), char(velocity) });
        m_pendingDelta = 0;
        event(length, { char(0x80 | m_channel), char(key), 0 });
        return *this;
    }
    MidiBuilder &notes(int key, int count, double quarters)
    {
        for (int i = 0; i < count; ++i)
            note(key, quarters);
        return *this;
    }
    MidiBuilder &controller(int number, int value)
    {
        event(m_pendingDelta, { char(0xB0 | m_channel), char(number), char(value) });
        m_pendingDelta = 0;
        return *this;
    }
    MidiBuilder &program(int number)
    {
        event(m_pendingDelta, { char(0xC0 | m_channel), char(number) });
        m_pendingDelta = 0;
        return *this;
    }
    QByteArray bytes() const
    {
        QByteArray track = m_track;
        appendDelta(track, m_pendingDelta);
        track.append("\xFF\x2F\x00", 3);
        QByteArray file("MThd\0\0\0\x06\0\0\0\x01", 12);
        file.append(char(kDivision >> 8)).append(char(kDivision & 0xFF));
        file.append("MTrk");
        char size[4];
        qToBigEndian(quint32(track.size()), size);
        file.append(size, 4).append(track);
        return file;
    }

private:
    static void appendDelta(QByteArray &out, quint32 delta)
    {
        char bytes[4];
        int n = 0;
        bytes[n++] = char(delta & 0x7F);
        while ((delta >>= 7) > 0)
            bytes[n++] = char(0x80 | (delta & 0x7F));
        while (n > 0)
            out.append(bytes[--n]);
    }
    void event(quint32 delta, std::initializer_list<char> data)
    {
        appendDelta(m_track, delta);
        for (char c : data)
            m_track.append(c);
    }

    int m_channel;
    quint32 m_pendingDelta = 0;
    QByteArray m_track;
};

// Interleaved 16-bit stereo at `rate` frames a second.
struct Sound
{
    QVector<qint16> samples;
    int rate = 44100;

    qint64 frames() const { return samples.size() / 2; }
    double seconds() const { return double(frames()) / rate; }
    int frameAt(double second) const { return int(second * rate); }

    int peak(qint64 fromFrame = 0, qint64 toFrame = -1) const
    {
        if (toFrame < 0 || toFrame > frames())
            toFrame = frames();
        int top = 0;
        for (qint64 i = fromFrame * 2; i < toFrame * 2; ++i)
            top = qMax(top, std::abs(int(samples.at(i))));
        return top;
    }
    double rms(qint64 fromFrame = 0, qint64 toFrame = -1) const
    {
        if (toFrame < 0 || toFrame > frames())
            toFrame = frames();
        double sum = 0;
        qint64 n = 0;
        for (qint64 i = fromFrame * 2; i < toFrame * 2; ++i, ++n)
            sum += double(samples.at(i)) * samples.at(i);
        return n > 0 ? std::sqrt(sum / n) : 0;
    }
    // First and last second at which a 10 ms window is louder than `threshold` (RMS); -1 when
    // nothing is.
    double soundStart(double threshold = 100) const { return edge(threshold, true); }
    double soundEnd(double threshold = 100) const { return edge(threshold, false); }

    // The main frequency over [from, to) seconds, by autocorrelation of the left channel.
    double frequency(double from, double to) const
    {
        const qint64 a = frameAt(from);
        const qint64 b = qMin<qint64>(frameAt(to), frames());
        QVector<double> x;
        for (qint64 i = a; i < b; ++i)
            x.append(samples.at(2 * i));
        const int minLag = rate / 2000; // 2 kHz at most
        const int maxLag = rate / 50; // 50 Hz at least
        if (x.size() < 2 * maxLag)
            return 0;
        QVector<double> r(maxLag + 2, 0.0);
        for (int lag = 0; lag <= maxLag + 1; ++lag) {
            double sum = 0;
            for (qsizetype i = 0; i + lag < x.size(); ++i)
                sum += x.at(i) * x.at(i + lag);
            r[lag] = sum;
        }
        // The first peak that comes close to the highest one: the period, not a multiple of it.
        double best = 0;
        for (int lag = minLag; lag <= maxLag; ++lag)
            best = qMax(best, r.at(lag));
        for (int lag = minLag; lag <= maxLag; ++lag) {
            if (r.at(lag) >= 0.9 * best && r.at(lag) >= r.at(lag - 1) && r.at(lag) >= r.at(lag + 1)) {
                // A parabola through the peak refines the lag between samples.
                const double y0 = r.at(lag - 1), y1 = r.at(lag), y2 = r.at(lag + 1);
                const double denominator = y0 - 2 * y1 + y2;
                const double shift = denominator != 0 ? 0.5 * (y0 - y2) / denominator : 0;
                return rate / (lag + shift);
            }
        }
        return 0;
    }

private:
    double edge(double threshold, bool first) const
    {
        const int window = rate / 100;
        const qint64 count = frames() / window;
        if (first) {
            for (qint64 w = 0; w < count; ++w)
                if (rms(w * window, (w + 1) * window) > threshold)
                    return double(w * window) / rate;
        } else {
            for (qint64 w = count - 1; w >= 0; --w)
                if (rms(w * window, (w + 1) * window) > threshold)
                    return double((w + 1) * window) / rate;
        }
        return -1;
    }
};

// The semitone distance between two frequencies.
inline double semitones(double from, double to)
{
    return 12.0 * std::log2(to / from);
}

} // namespace fenwork::test
