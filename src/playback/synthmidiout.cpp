#include "playback/synthmidiout.h"

#include "playback/synthengine.h"

#include <fluidsynth.h>

namespace fenwork {

SynthMidiOut::SynthMidiOut(SynthEngine &engine)
    : m_engine(engine)
{ }

SynthMidiOut::~SynthMidiOut()
{
    close();
}

bool SynthMidiOut::open(QString *error)
{
    if (m_open)
        return true;
    if (!m_engine.start(error))
        return false;
    m_open = true;
    m_used = 0;
    m_engine.restoreEcho();
    return true;
}

void SynthMidiOut::close()
{
    if (!m_open)
        return;
    m_open = false;
    // Nobody sends note-off before closing (the drone holds its notes with the pedal): closing
    // silences the channels and puts their controllers back for the tunes.
    fluid_synth_t *synth = m_engine.synth();
    for (int channel = 0; channel < SynthEngine::kChannels; ++channel) {
        if (!(m_used & (1u << channel)))
            continue;
        fluid_synth_cc(synth, channel, 64, 0);
        fluid_synth_all_sounds_off(synth, channel);
        fluid_synth_cc(synth, channel, 121, 0);
        fluid_synth_cc(synth, channel, 7, 100);
        m_engine.holdChannel(channel, false);
    }
    m_used = 0;
    m_engine.muteEchoWhenIdle();
}

void SynthMidiOut::shortMsg(quint32 message)
{
    if (!m_open)
        return;
    const int status = int(message & 0xFF);
    const int data1 = int((message >> 8) & 0x7F);
    const int data2 = int((message >> 16) & 0x7F);
    if (status < 0x80 || status >= 0xF0)
        return;
    const int channel = status & 0x0F;
    fluid_synth_t *synth = m_engine.synth();
    if (!(m_used & (1u << channel))) {
        m_used |= 1u << channel;
        m_engine.holdChannel(channel, true);
    }
    switch (status & 0xF0) {
    case 0x80:
        fluid_synth_noteoff(synth, channel, data1);
        break;
    case 0x90:
        if (data2 == 0)
            fluid_synth_noteoff(synth, channel, data1);
        else
            fluid_synth_noteon(synth, channel, data1, data2);
        break;
    case 0xA0:
        fluid_synth_key_pressure(synth, channel, data1, data2);
        break;
    case 0xB0:
        fluid_synth_cc(synth, channel, data1, data2);
        break;
    case 0xC0:
        fluid_synth_program_change(synth, channel, data1);
        keepInstrument(synth, channel);
        break;
    case 0xD0:
        fluid_synth_channel_pressure(synth, channel, data1);
        break;
    case 0xE0:
        fluid_synth_pitch_bend(synth, channel, data1 | (data2 << 7));
        break;
    default:
        break;
    }
}

} // namespace fenwork
