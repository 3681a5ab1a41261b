#pragma once
// The tune player: one MIDI file at a time through the shared synthesiser, with the operations
// the player panel is written against (load, repeats, length, start point, play, stop, position,
// is playing, master tempo and volume, program and controller messages, transposition).
// Positions are music time, 768 units to the quarter note, whatever the file's own time base.
#include "playback/midifileinfo.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>

#include <memory>

typedef struct _fluid_player_t fluid_player_t;

namespace fenwork {

class SynthEngine;

class MidiPlayer
{
public:
    static constexpr int kMusicTimePerQuarter = 768;

    explicit MidiPlayer(SynthEngine &engine);
    ~MidiPlayer();
    MidiPlayer(const MidiPlayer &) = delete;
    MidiPlayer &operator=(const MidiPlayer &) = delete;

    SynthEngine &engine() const { return m_engine; }

    // Checks and loads a MIDI file, starting the synthesiser when needed; the channels the file
    // uses start from a clean state. False, with the reason, when the file cannot be played.
    bool load(const QString &path, QString *error = nullptr);
    // Drops the file and silences what it was playing.
    void unload();
    bool isLoaded() const { return m_loaded; }
    const MidiFileInfo &fileInfo() const { return m_info; }

    // How many times the tune is played again after the first; -1 without end. Set while
    // playing, it counts from the pass under way.
    void setRepeats(int repeats);
    int length() const;
    // Where the next play() starts.
    void setStartPoint(int musicTime);
    // Plays from the start point; while playing, jumps there.
    bool play();
    // Halts where it is; the notes are released. play() goes on from the start point.
    void stop();
    int position() const;
    // True while the tune sounds: false from about a second after its last event.
    bool isPlaying() const;

    // 1.0 is the file's own tempo.
    void setMasterTempo(double factor);
    double masterTempo() const { return m_tempo; }
    // Hundredths of a decibel; 0 is unity.
    void setMasterVolume(int hundredthsOfDb);
    // A program change now. While playing, the file's own program changes on that channel give
    // way to it, so that the choice holds through repeats and jumps.
    void programChange(int channel, int program);
    // A channel message now (status 0x80 to 0xE0 without the channel). A volume controller sent
    // while playing holds against the file's own, as a program change does.
    void sendMidi(int channel, int status, int data1, int data2);
    // Half-tones for every note of every channel but the drums, from now on; notes already
    // sounding end where they began.
    void setTranspose(int halfTones);
    int transpose() const;

    // Internal: shared with the playback callback.
    struct Filter;
    struct Instance;

private:
    void retireCurrent();
    void deleteRetired(bool waitForAll);
    bool seekCurrent(qint64 ticks);
    qint64 toTicks(int musicTime) const;
    int toMusicTime(qint64 ticks) const;
    quint32 fileChannels() const { return m_info.channels; }

    SynthEngine &m_engine;
    std::unique_ptr<Filter> m_filter;
    Instance *m_current = nullptr;
    QList<Instance *> m_retired;
    QElapsedTimer m_clock;
    MidiFileInfo m_info;
    QString m_path;
    bool m_loaded = false;
    bool m_paused = false;
    int m_repeats = 0;
    qint64 m_startTicks = 0;
    double m_tempo = 1.0;
};

} // namespace fenwork
