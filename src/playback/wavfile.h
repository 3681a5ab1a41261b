#pragma once
// 16-bit PCM WAV files: written by the offline renderer, read back by checks of what sounded.
#include <QFile>
#include <QString>
#include <QVector>

namespace fenwork {

class WavWriter
{
public:
    ~WavWriter();
    bool open(const QString &path, int sampleRate, int channels, QString *error = nullptr);
    // Interleaved frames.
    bool write(const qint16 *samples, qint64 frames);
    // Puts the sizes into the header and closes; false when something could not be written.
    bool close(QString *error = nullptr);
    qint64 frames() const { return m_frames; }

private:
    QFile m_file;
    int m_channels = 2;
    qint64 m_frames = 0;
    bool m_failed = false;
};

struct WavData
{
    bool valid = false;
    int sampleRate = 0;
    int channels = 0;
    QVector<qint16> samples; // interleaved
    qint64 frames() const { return channels > 0 ? samples.size() / channels : 0; }
    double seconds() const { return sampleRate > 0 ? double(frames()) / sampleRate : 0; }
};

// Reads a 16-bit PCM WAV file; a header whose sizes were never written (a recording cut short)
// is read to the end of the file.
WavData readWav(const QString &path);

} // namespace fenwork
