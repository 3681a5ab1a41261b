#pragma once
// The short-message output (drone, on-screen keyboard) on the synthesiser the tunes play through,
// so that both sound together from one SoundFont.
#include "playback/midiout.h"

namespace fenwork {

class SynthEngine;

class SynthMidiOut : public MidiOut
{
public:
    explicit SynthMidiOut(SynthEngine &engine);
    ~SynthMidiOut() override;

    bool open(QString *error = nullptr) override;
    void close() override;
    bool isOpen() const override { return m_open; }
    void shortMsg(quint32 message) override;

    // The channels a message went to since the output was opened.
    quint32 usedChannels() const { return m_used; }

private:
    SynthEngine &m_engine;
    bool m_open = false;
    quint32 m_used = 0;
};

} // namespace fenwork
