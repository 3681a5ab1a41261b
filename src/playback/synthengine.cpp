#include "playback/synthengine.h"

#include "playback/soundfont.h"

#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QProcessEnvironment>

#include <dlfcn.h>
#include <fluidsynth.h>

namespace fenwork {

namespace {

// The library's complaints are kept for our messages instead of going to the terminal: a
// desktop without a sound server makes every driver but the last one complain.
QMutex logMutex;
QString lastError;

void keepLogMessage(int level, const char *message, void *)
{
    if (level > FLUID_WARN || !message)
        return;
    QMutexLocker lock(&logMutex);
    lastError = QString::fromLocal8Bit(message);
}

void installLogFunctions()
{
    static const bool installed = [] {
        for (int level : { FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG })
            fluid_set_log_function(level, keepLogMessage, nullptr);
        return true;
    }();
    Q_UNUSED(installed);
}

// ALSA prints its own errors when there is no card; it is only tried when the kernel lists one.
bool alsaHasCard()
{
    QFile cards(QStringLiteral("/proc/asound/cards"));
    if (!cards.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = cards.readAll();
    return !text.trimmed().isEmpty() && !text.contains("no soundcards");
}

// SDL reaches a PipeWire server without its PulseAudio side; anything else it would find, the
// drivers tried before it found already (and SDL's probing of ALSA prints errors).
bool pipeWireRunning()
{
    const QString runtime = QProcessEnvironment::systemEnvironment().value(QStringLiteral("XDG_RUNTIME_DIR"));
    return !runtime.isEmpty() && QFileInfo::exists(runtime + QStringLiteral("/pipewire-0"));
}

// FluidSynth's SDL2 driver expects the application to have started SDL's audio part.
bool startSdlAudio()
{
    static const bool started = [] {
        void *sdl = dlopen("libSDL2-2.0.so.0", RTLD_NOW | RTLD_GLOBAL);
        if (!sdl)
            return false;
        using InitSubSystem = int (*)(quint32);
        const auto init = reinterpret_cast<InitSubSystem>(dlsym(sdl, "SDL_InitSubSystem"));
        constexpr quint32 kSdlInitAudio = 0x00000010;
        return init && init(kSdlInitAudio) == 0;
    }();
    return started;
}

// At 0 dB the library's own level is too quiet for a single melody line.
constexpr double kUnityGain = 0.6;

} // namespace

void keepInstrument(fluid_synth_t *synth, int channel)
{
    int font = 0, bank = 0, program = 0;
    if (synth && fluid_synth_get_program(synth, channel, &font, &bank, &program) == FLUID_OK)
        fluid_synth_pin_preset(synth, font, bank, program);
}

SynthEngine::SynthEngine(Mode mode)
    : m_mode(mode)
{
    installLogFunctions();
}

SynthEngine::~SynthEngine()
{
    if (m_starting.valid())
        m_starting.wait();
    // The driver pulls from the synthesiser: it goes first.
    if (m_driver)
        delete_fluid_audio_driver(m_driver);
    if (m_synth)
        delete_fluid_synth(m_synth);
    if (m_settings)
        delete_fluid_settings(m_settings);
}

bool SynthEngine::start(QString *error)
{
    if (m_starting.valid())
        m_starting.get();
    if (!m_started && !startNow(&m_startError)) {
        if (error)
            *error = m_startError;
        return false;
    }
    // The gain may have been set while the synthesiser was being made.
    fluid_synth_set_gain(m_synth, float(kUnityGain * m_gain));
    return true;
}

bool SynthEngine::reloadSoundFont(QString *error)
{
    if (!m_started)
        return true;
    const QString font = chooseSoundFont(m_soundFontSetting);
    if (font.isEmpty() || font == m_soundFont)
        return !font.isEmpty();
    const int id = fluid_synth_sfload(m_synth, QFile::encodeName(font).constData(), 1);
    if (id == FLUID_FAILED) {
        if (error)
            *error = QStringLiteral("The SoundFont cannot be loaded: ") + font;
        return false;
    }
    if (m_soundFontId != FLUID_FAILED)
        fluid_synth_sfunload(m_synth, m_soundFontId, 1);
    m_soundFontId = id;
    m_soundFont = font;
    m_soundFontNote.clear();
    if (!m_soundFontSetting.isEmpty() && QFileInfo(m_soundFontSetting).absoluteFilePath() != font)
        m_soundFontNote = QStringLiteral("SoundFont %1 not found, %2 is used").arg(m_soundFontSetting, font);
    return true;
}

void SynthEngine::startInBackground()
{
    if (m_started || m_starting.valid())
        return;
    m_starting = std::async(std::launch::async, [this] { return startNow(&m_startError); });
}

bool SynthEngine::startNow(QString *error)
{
    if (m_synth)
        return true;
    const QString font = chooseSoundFont(m_soundFontSetting);
    if (font.isEmpty()) {
        if (error)
            *error = QStringLiteral("No SoundFont found (") + defaultSoundFont() + u')';
        return false;
    }
    m_settings = new_fluid_settings();
    fluid_settings_setnum(m_settings, "synth.sample-rate", kSampleRate);
    fluid_settings_setint(m_settings, "synth.midi-channels", kChannels);
    fluid_settings_setnum(m_settings, "synth.gain", kUnityGain);
    // A new tune must not reset the synthesiser: that would cut a drone that sounds with it.
    fluid_settings_setint(m_settings, "player.reset-synth", 0);
    // Only the samples of the instruments selected on a channel are read, when they are
    // selected: a large General MIDI font would otherwise fill memory with the 128 instruments
    // a tune never asks for. A program change reads its instrument in a few milliseconds, so
    // the first note still comes at once (loading the whole font only when Play is first
    // pressed would keep the memory and make that first press wait for all of it).
    fluid_settings_setint(m_settings, "synth.dynamic-sample-loading", m_wholeSoundFont ? 0 : 1);
    m_synth = new_fluid_synth(m_settings);
    if (!m_synth) {
        if (error)
            *error = QStringLiteral("The synthesiser cannot be made: ") + lastLibraryError();
        delete_fluid_settings(m_settings);
        m_settings = nullptr;
        return false;
    }
    m_soundFontId = fluid_synth_sfload(m_synth, QFile::encodeName(font).constData(), 1);
    if (m_soundFontId == FLUID_FAILED) {
        if (error)
            *error = QStringLiteral("The SoundFont cannot be loaded: ") + font;
        delete_fluid_synth(m_synth);
        delete_fluid_settings(m_settings);
        m_synth = nullptr;
        m_settings = nullptr;
        return false;
    }
    m_soundFont = font;
    if (!m_soundFontSetting.isEmpty() && QFileInfo(m_soundFontSetting).absoluteFilePath() != font)
        m_soundFontNote = QStringLiteral("SoundFont %1 not found, %2 is used").arg(m_soundFontSetting, font);
    if (m_mode == Mode::Live)
        openAudio();
    else
        m_output = QStringLiteral("offline");
    m_started = true;
    return true;
}

bool SynthEngine::openAudio()
{
    const QString wanted
        = QProcessEnvironment::systemEnvironment().value(QStringLiteral("FENNELWORKS_AUDIO"));
    const auto tryDriver = [this](const char *name) {
        fluid_settings_setstr(m_settings, "audio.driver", name);
        m_driver = new_fluid_audio_driver(m_settings, m_synth);
        if (m_driver)
            m_output = QString::fromLatin1(name);
        return m_driver != nullptr;
    };

    if (wanted.startsWith(u"file:")) {
        const QString path = wanted.mid(5);
        fluid_settings_setstr(m_settings, "audio.file.name", QFile::encodeName(path).constData());
        fluid_settings_setstr(m_settings, "audio.file.type", "wav");
        fluid_settings_setstr(m_settings, "audio.file.format", "s16");
        if (tryDriver("file")) {
            m_output = QStringLiteral("file:") + path;
            return true;
        }
    } else if (!wanted.isEmpty() && wanted != u"none") {
        if (tryDriver(wanted.toLatin1().constData()))
            return true;
    } else if (wanted.isEmpty()) {
        if (tryDriver("pulseaudio"))
            return true;
        if (alsaHasCard() && tryDriver("alsa"))
            return true;
        if (pipeWireRunning() && startSdlAudio() && tryDriver("sdl2"))
            return true;
    }

    // No sound device: the file driver into nothing keeps the real-time pace, so position,
    // progress and the end of a tune behave as with sound.
    fluid_settings_setstr(m_settings, "audio.file.name", "/dev/null");
    fluid_settings_setstr(m_settings, "audio.file.type", "raw");
    if (tryDriver("file")) {
        m_output = QStringLiteral("none");
        return true;
    }
    m_output = QStringLiteral("none");
    return false;
}

void SynthEngine::render(qint16 *buffer, int frames)
{
    if (!isStarted() || m_driver)
        return;
    fluid_synth_write_s16(m_synth, frames, buffer, 0, 2, buffer, 1, 2);
}

void SynthEngine::setGain(double gain)
{
    m_gain = qBound(0.0, gain, 10.0 / kUnityGain);
    if (isStarted())
        fluid_synth_set_gain(m_synth, float(kUnityGain * m_gain));
}

void SynthEngine::holdChannel(int channel, bool held)
{
    if (channel < 0 || channel >= kChannels)
        return;
    if (held)
        m_held.fetch_or(1u << channel);
    else
        m_held.fetch_and(~(1u << channel));
}

void SynthEngine::silence(quint32 mask)
{
    if (!isStarted())
        return;
    for (int channel = 0; channel < kChannels; ++channel)
        if (mask & (1u << channel))
            fluid_synth_all_sounds_off(m_synth, channel);
}

void SynthEngine::releaseNotes(quint32 mask)
{
    if (!isStarted())
        return;
    for (int channel = 0; channel < kChannels; ++channel)
        if (mask & (1u << channel))
            fluid_synth_all_notes_off(m_synth, channel);
}

void SynthEngine::muteEchoWhenIdle()
{
    if (!isStarted() || m_tuneLoaded || m_held.load() != 0 || m_echoMuted)
        return;
    // The reverb cannot be emptied, but without room and level its lines run dry in about a
    // second; switched off, they would keep their echo for the next sound.
    fluid_synth_get_reverb_group_roomsize(m_synth, 0, &m_roomSize);
    fluid_synth_get_reverb_group_level(m_synth, 0, &m_echoLevel);
    fluid_synth_set_reverb_group_roomsize(m_synth, -1, 0.0);
    fluid_synth_set_reverb_group_level(m_synth, -1, 0.0);
    m_echoMuted = true;
}

void SynthEngine::restoreEcho()
{
    if (!isStarted() || !m_echoMuted)
        return;
    fluid_synth_set_reverb_group_roomsize(m_synth, -1, m_roomSize);
    fluid_synth_set_reverb_group_level(m_synth, -1, m_echoLevel);
    m_echoMuted = false;
}

QString SynthEngine::lastLibraryError()
{
    QMutexLocker lock(&logMutex);
    return lastError;
}

} // namespace fenwork
