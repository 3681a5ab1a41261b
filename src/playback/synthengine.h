#pragma once
// The one software synthesiser of a run: settings, synthesiser, SoundFont and audio output. The
// tune player and the short-message output both sound through it, so the SoundFont is loaded
// once. Audio goes to the desktop's sound service; without one, to nothing at real-time pace;
// FENNELWORKS_AUDIO=file:PATH writes everything that sounds to a WAV file instead.
#include <QString>

#include <atomic>
#include <future>

typedef struct _fluid_hashtable_t fluid_settings_t;
typedef struct _fluid_synth_t fluid_synth_t;
typedef struct _fluid_audio_driver_t fluid_audio_driver_t;

namespace fenwork {

// Keeps the samples of the instrument now chosen on `channel` in memory for the rest of the run.
// Samples are read as instruments are chosen, and a program change lets go of the instrument it
// leaves: without this, each tune's program changes would read their instruments again and delay
// its first note.
void keepInstrument(fluid_synth_t *synth, int channel);

class SynthEngine
{
public:
    enum class Mode {
        Live, // an audio driver pulls the sound in real time
        Offline, // nothing pulls: the caller renders with render()
    };
    static constexpr int kSampleRate = 44100;
    static constexpr int kChannels = 16;

    explicit SynthEngine(Mode mode = Mode::Live);
    ~SynthEngine();
    SynthEngine(const SynthEngine &) = delete;
    SynthEngine &operator=(const SynthEngine &) = delete;

    // The SoundFont setting; read at start().
    void setSoundFontSetting(const QString &path) { m_soundFontSetting = path; }
    // Once started: loads the SoundFont the setting now names in place of the one in use, so that
    // the next notes sound with it. False, with the reason, when it cannot be loaded.
    bool reloadSoundFont(QString *error = nullptr);
    // Loads every sample of the SoundFont at start() instead of those of the instruments in use
    // (for comparing the two).
    void setWholeSoundFont(bool whole) { m_wholeSoundFont = whole; }
    // Makes the synthesiser, loads the SoundFont and opens the audio output, once. False, with
    // the reason, when no SoundFont loads; a missing sound device is no failure.
    bool start(QString *error = nullptr);
    // Begins start() on a thread of its own, so that the SoundFont is in memory before the
    // first Play; start() then waits for it.
    void startInBackground();
    // True once start() succeeded; the synthesiser is not touched before.
    bool isStarted() const { return m_started.load(); }
    Mode mode() const { return m_mode; }

    // The output in use: "pulseaudio", "alsa", "sdl2", "file:<path>", or "none" when there is
    // no sound device and the sound goes nowhere at real-time pace.
    QString output() const { return m_output; }
    bool silentOutput() const { return m_output == u"none"; }
    // The SoundFont loaded, and a note when it is not the one the setting names.
    QString soundFont() const { return m_soundFont; }
    QString soundFontNote() const { return m_soundFontNote; }

    fluid_synth_t *synth() const { return m_synth; }
    fluid_settings_t *settings() const { return m_settings; }

    // Offline mode: renders `frames` frames of interleaved 16-bit stereo.
    void render(qint16 *buffer, int frames);

    // Master gain; 1.0 is the level at 0 dB.
    void setGain(double gain);
    double gain() const { return m_gain; }

    // Channels the short-message output holds a sound on (the drone): a new tune leaves their
    // instrument and controllers alone.
    void holdChannel(int channel, bool held);
    quint32 heldChannels() const { return m_held.load(); }

    // Silences every voice of the channels in `mask` at once.
    void silence(quint32 mask);
    // Sends note-off to the channels in `mask`; the notes fade as their instrument does.
    void releaseNotes(quint32 mask);
    // Whether a tune is loaded in the player.
    void setTuneLoaded(bool loaded) { m_tuneLoaded = loaded; }
    // When neither a tune nor a short message holds the synthesiser, mutes the reverb's echo
    // too, so that a stop is heard as silence at once. The echo comes back with the next sound.
    void muteEchoWhenIdle();
    void restoreEcho();

    // The last error FluidSynth reported, for messages.
    static QString lastLibraryError();

private:
    bool startNow(QString *error);
    bool openAudio();

    Mode m_mode;
    QString m_soundFontSetting;
    QString m_soundFont;
    QString m_soundFontNote;
    int m_soundFontId = -1;
    QString m_output;
    fluid_settings_t *m_settings = nullptr;
    fluid_synth_t *m_synth = nullptr;
    fluid_audio_driver_t *m_driver = nullptr;
    double m_gain = 1.0;
    std::atomic<quint32> m_held { 0 };
    std::atomic<bool> m_started { false };
    std::future<bool> m_starting;
    QString m_startError;
    bool m_tuneLoaded = false;
    bool m_wholeSoundFont = false;
    bool m_echoMuted = false;
    double m_roomSize = 0;
    double m_echoLevel = 0;
};

} // namespace fenwork
