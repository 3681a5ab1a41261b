#include "playback/midiplayer.h"

#include "playback/synthengine.h"

#include <QFile>
#include <QThread>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <fluidsynth.h>
#include <limits>

namespace fenwork {

namespace {

constexpr int kNoteOff = 0x80;
constexpr int kNoteOn = 0x90;
constexpr int kKeyPressure = 0xA0;
constexpr int kControlChange = 0xB0;
constexpr int kProgramChange = 0xC0;
constexpr int kChannelPressure = 0xD0;
constexpr int kPitchBend = 0xE0;
constexpr int kDrumChannel = 9;
constexpr int kVolumeController = 7;

constexpr qint8 kSilent = -1; // no note sounding for that key
constexpr qint8 kDropped = -2; // transposed out of range: neither its start nor its end sounds

// A retired player may still be inside its timer's pass for a moment; it is deleted this long
// after it was stopped.
constexpr qint64 kRetireMs = 1000;

} // namespace

// What the playback callback changes on the way from the file to the synthesiser. The numbers
// are written by the interface thread and read by the player's timer thread; `sounding` belongs
// to the timer thread alone.
struct MidiPlayer::Filter
{
    fluid_synth_t *synth = nullptr;
    std::atomic<int> transpose { 0 };
    std::array<std::atomic<int>, SynthEngine::kChannels> program;
    std::array<std::atomic<int>, SynthEngine::kChannels> volume;
    // The file's last program change on each channel that no note has heard yet.
    std::array<std::atomic<int>, SynthEngine::kChannels> pendingProgram;
    qint8 sounding[SynthEngine::kChannels][128];

    Filter() { reset(); }
    void reset()
    {
        for (auto &p : program)
            p = -1;
        for (auto &p : pendingProgram)
            p = -1;
        for (auto &v : volume)
            v = -1;
        std::memset(sounding, kSilent, sizeof sounding);
    }
};

struct MidiPlayer::Instance
{
    Filter *filter = nullptr;
    fluid_player_t *player = nullptr;
    std::atomic<bool> open { true }; // a closed instance starts no more notes
    qint64 retiredAt = 0;
};

namespace {

// The playback callback of every player instance. Events are the player's own: what is changed
// on the way is put back, so that the next pass of a loop reads the file as it is.
int onEvent(void *data, fluid_midi_event_t *event)
{
    auto *instance = static_cast<MidiPlayer::Instance *>(data);
    auto &filter = *instance->filter;
    const int type = fluid_midi_event_get_type(event);
    const int channel = fluid_midi_event_get_channel(event);
    if (channel < 0 || channel >= SynthEngine::kChannels || type < kNoteOff || type > kPitchBend)
        return fluid_synth_handle_midi_event(filter.synth, event);

    if (type == kNoteOn || type == kNoteOff || type == kKeyPressure) {
        const int key = fluid_midi_event_get_key(event);
        if (key < 0 || key > 127)
            return FLUID_OK;
        const bool starts = type == kNoteOn && fluid_midi_event_get_velocity(event) > 0;
        if (starts && !instance->open.load())
            return FLUID_OK;
        qint8 &sounding = filter.sounding[channel][key];
        int played = key;
        if (starts) {
            if (channel != kDrumChannel)
                played = key + filter.transpose.load();
            sounding = (played < 0 || played > 127) ? kDropped : qint8(played);
        } else if (sounding >= 0) {
            played = sounding;
        } else if (sounding == kDropped) {
            played = -1;
        } else if (channel != kDrumChannel) {
            played = key + filter.transpose.load();
        }
        if (type != kKeyPressure && !starts)
            sounding = kSilent;
        if (played < 0 || played > 127)
            return FLUID_OK;
        if (starts) {
            if (const int pending = filter.pendingProgram[channel].exchange(-1); pending >= 0) {
                const int chosen = filter.program[channel].load();
                fluid_synth_program_change(filter.synth, channel, chosen >= 0 ? chosen : pending);
                keepInstrument(filter.synth, channel);
            }
        }
        fluid_midi_event_set_key(event, played);
        const int result = fluid_synth_handle_midi_event(filter.synth, event);
        fluid_midi_event_set_key(event, key);
        return result;
    }
    if (type == kProgramChange) {
        // A tune's file chooses every program in turn at its start, so that each is at hand;
        // only the last one before a note is heard. Chosen at the channel's next note instead,
        // an instrument is read from the SoundFont only when it sounds.
        filter.pendingProgram[channel] = fluid_midi_event_get_program(event);
        return FLUID_OK;
    }
    if (type == kControlChange && fluid_midi_event_get_control(event) == kVolumeController) {
        const int chosen = filter.volume[channel].load();
        if (chosen < 0)
            return fluid_synth_handle_midi_event(filter.synth, event);
        const int own = fluid_midi_event_get_value(event);
        fluid_midi_event_set_value(event, chosen);
        const int result = fluid_synth_handle_midi_event(filter.synth, event);
        fluid_midi_event_set_value(event, own);
        return result;
    }
    return fluid_synth_handle_midi_event(filter.synth, event);
}

} // namespace

MidiPlayer::MidiPlayer(SynthEngine &engine)
    : m_engine(engine)
    , m_filter(std::make_unique<Filter>())
{
    m_clock.start();
}

MidiPlayer::~MidiPlayer()
{
    unload();
    deleteRetired(true);
}

bool MidiPlayer::load(const QString &path, QString *error)
{
    unload();
    const MidiFileInfo info = readMidiFile(path);
    if (!info.valid) {
        if (error)
            *error = info.error;
        return false;
    }
    if (!m_engine.start(error))
        return false;
    m_filter->synth = m_engine.synth();
    m_filter->reset();
    m_info = info;
    m_path = path;
    m_loaded = true;
    m_engine.setTuneLoaded(true);
    m_engine.restoreEcho();
    m_paused = false;
    m_startTicks = 0;
    m_repeats = 0;

    // The channels of the new tune start clean: the last tune's instrument, controllers and
    // tail go. A channel the drone holds keeps its sound.
    const quint32 fresh = info.channels & ~m_engine.heldChannels();
    m_engine.silence(fresh);
    fluid_synth_t *synth = m_engine.synth();
    for (int channel = 0; channel < SynthEngine::kChannels; ++channel) {
        if (!(fresh & (1u << channel)))
            continue;
        fluid_synth_program_change(synth, channel, 0);
        keepInstrument(synth, channel);
        fluid_synth_cc(synth, channel, 121, 0); // reset all controllers
        fluid_synth_cc(synth, channel, kVolumeController, 100);
        fluid_synth_cc(synth, channel, 10, 64); // pan to the centre
    }
    return true;
}

void MidiPlayer::unload()
{
    const bool wasLoaded = m_loaded || m_current;
    if (wasLoaded) {
        retireCurrent();
        m_engine.silence(fileChannels());
    }
    m_loaded = false;
    m_engine.setTuneLoaded(false);
    if (wasLoaded)
        m_engine.muteEchoWhenIdle();
    m_paused = false;
    m_info = MidiFileInfo();
    m_path.clear();
    deleteRetired(false);
}

void MidiPlayer::setRepeats(int repeats)
{
    m_repeats = repeats < 0 ? -1 : repeats;
    // The library counts the passes still to start; the one under way is not among them.
    if (m_current)
        fluid_player_set_loop(m_current->player, m_repeats);
}

int MidiPlayer::length() const
{
    return m_loaded ? toMusicTime(m_info.lengthTicks) : 0;
}

void MidiPlayer::setStartPoint(int musicTime)
{
    m_startTicks = std::clamp<qint64>(toTicks(musicTime), 0, m_info.lengthTicks);
}

bool MidiPlayer::play()
{
    deleteRetired(false);
    if (!m_loaded)
        return false;
    if (m_current) {
        fluid_player_t *player = m_current->player;
        if (fluid_player_get_status(player) == FLUID_PLAYER_PLAYING)
            return seekCurrent(m_startTicks);
        if (m_paused) {
            m_current->open = true;
            fluid_player_seek(player, int(m_startTicks));
            fluid_player_play(player);
            m_paused = false;
            return true;
        }
        // It came to its end: a new pass needs a new player.
        retireCurrent();
    }

    auto *instance = new Instance;
    instance->filter = m_filter.get();
    // With a sound device the player keeps time by the clock, on a thread of its own, so it can
    // be stopped and dropped while the device goes on pulling sound; rendering to memory keeps
    // time by the samples written.
    const bool live = m_engine.mode() == SynthEngine::Mode::Live;
    fluid_settings_setstr(m_engine.settings(), "player.timing-source", live ? "system" : "sample");
    instance->player = new_fluid_player(m_engine.synth());
    if (!instance->player) {
        delete instance;
        return false;
    }
    fluid_player_set_playback_callback(instance->player, onEvent, instance);
    fluid_player_add(instance->player, QFile::encodeName(m_path).constData());
    fluid_player_set_loop(instance->player, m_repeats < 0 ? -1 : m_repeats + 1);
    fluid_player_set_tempo(instance->player, FLUID_PLAYER_TEMPO_INTERNAL, m_tempo);
    if (m_startTicks > 0)
        fluid_player_seek(instance->player, int(m_startTicks));
    fluid_player_play(instance->player);
    m_current = instance;
    m_paused = false;
    return true;
}

void MidiPlayer::stop()
{
    if (!m_current || fluid_player_get_status(m_current->player) != FLUID_PLAYER_PLAYING)
        return;
    m_current->open = false;
    fluid_player_stop(m_current->player);
    m_paused = true;
    // Let a pass of the player's timer that began before the stop end before the notes go.
    if (m_engine.mode() == SynthEngine::Mode::Live)
        QThread::msleep(5);
    m_engine.releaseNotes(fileChannels());
}

int MidiPlayer::position() const
{
    if (!m_loaded)
        return 0;
    if (!m_current)
        return toMusicTime(m_startTicks);
    fluid_player_t *player = m_current->player;
    if (!m_paused && fluid_player_get_status(player) == FLUID_PLAYER_DONE)
        return length();
    return toMusicTime(std::clamp<qint64>(fluid_player_get_current_tick(player), 0, m_info.lengthTicks));
}

bool MidiPlayer::isPlaying() const
{
    if (!m_current || fluid_player_get_status(m_current->player) != FLUID_PLAYER_PLAYING)
        return false;
    // The library keeps playing a few seconds past the last event; the tune is over when the
    // last notes had a second to fade.
    const int usPerQuarter = fluid_player_get_midi_tempo(m_current->player);
    const qint64 tail = usPerQuarter > 0 ? qint64(m_info.division * 1e6 / usPerQuarter) : 2 * m_info.division;
    return fluid_player_get_current_tick(m_current->player) < m_info.lengthTicks + tail;
}

void MidiPlayer::setMasterTempo(double factor)
{
    m_tempo = qBound(0.01, factor, 100.0);
    if (m_current)
        fluid_player_set_tempo(m_current->player, FLUID_PLAYER_TEMPO_INTERNAL, m_tempo);
}

void MidiPlayer::setMasterVolume(int hundredthsOfDb)
{
    m_engine.setGain(std::pow(10.0, hundredthsOfDb / 2000.0));
}

void MidiPlayer::programChange(int channel, int program)
{
    if (channel < 0 || channel >= SynthEngine::kChannels || !m_engine.isStarted())
        return;
    program = qBound(0, program, 127);
    if (m_current)
        m_filter->program[channel] = program;
    fluid_synth_program_change(m_engine.synth(), channel, program);
    keepInstrument(m_engine.synth(), channel);
}

void MidiPlayer::sendMidi(int channel, int status, int data1, int data2)
{
    if (channel < 0 || channel >= SynthEngine::kChannels || !m_engine.isStarted())
        return;
    fluid_synth_t *synth = m_engine.synth();
    data1 = qBound(0, data1, 127);
    data2 = qBound(0, data2, 127);
    switch (status & 0xF0) {
    case kNoteOff:
        fluid_synth_noteoff(synth, channel, data1);
        break;
    case kNoteOn:
        fluid_synth_noteon(synth, channel, data1, data2);
        break;
    case kKeyPressure:
        fluid_synth_key_pressure(synth, channel, data1, data2);
        break;
    case kControlChange:
        if (data1 == kVolumeController && m_current)
            m_filter->volume[channel] = data2;
        fluid_synth_cc(synth, channel, data1, data2);
        break;
    case kProgramChange:
        programChange(channel, data1);
        break;
    case kChannelPressure:
        fluid_synth_channel_pressure(synth, channel, data1);
        break;
    case kPitchBend:
        fluid_synth_pitch_bend(synth, channel, data1 | (data2 << 7));
        break;
    default:
        break;
    }
}

void MidiPlayer::setTranspose(int halfTones)
{
    m_filter->transpose = qBound(-127, halfTones, 127);
}

int MidiPlayer::transpose() const
{
    return m_filter->transpose.load();
}

void MidiPlayer::retireCurrent()
{
    if (!m_current)
        return;
    m_current->open = false;
    fluid_player_stop(m_current->player);
    m_current->retiredAt = m_clock.elapsed();
    m_retired.append(m_current);
    m_current = nullptr;
    m_paused = false;
    // Without a timer thread nothing can be inside the player now.
    if (m_engine.mode() == SynthEngine::Mode::Offline)
        deleteRetired(true);
}

void MidiPlayer::deleteRetired(bool waitForAll)
{
    const bool live = m_engine.mode() == SynthEngine::Mode::Live;
    for (qsizetype i = m_retired.size() - 1; i >= 0; --i) {
        Instance *instance = m_retired.at(i);
        const qint64 age = m_clock.elapsed() - instance->retiredAt;
        if (live && age < kRetireMs) {
            if (!waitForAll)
                continue;
            // At the end of the run a short wait is enough: the pass takes microseconds.
            if (age < 50)
                QThread::msleep(ulong(50 - age));
        }
        delete_fluid_player(instance->player);
        delete instance;
        m_retired.removeAt(i);
    }
}

bool MidiPlayer::seekCurrent(qint64 ticks)
{
    // A jump is refused while the last one waits for the player's next pass.
    const int attempts = m_engine.mode() == SynthEngine::Mode::Live ? 50 : 1;
    for (int i = 0; i < attempts; ++i) {
        if (fluid_player_seek(m_current->player, int(ticks)) == FLUID_OK)
            return true;
        QThread::msleep(2);
    }
    return false;
}

qint64 MidiPlayer::toTicks(int musicTime) const
{
    if (m_info.division <= 0)
        return 0;
    return qint64(musicTime) * m_info.division / kMusicTimePerQuarter;
}

int MidiPlayer::toMusicTime(qint64 ticks) const
{
    if (m_info.division <= 0)
        return 0;
    return int(qMin<qint64>(ticks * kMusicTimePerQuarter / m_info.division, std::numeric_limits<int>::max()));
}

} // namespace fenwork
