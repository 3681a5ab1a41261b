#pragma once
// A MIDI output for short messages (drone, on-screen keyboard), as the synthesiser serves it.
// Tests use a recording implementation.
#include <QString>

namespace fenwork {

class MidiOut
{
public:
    virtual ~MidiOut() = default;
    // False, with the reason in `error`, when no output can be had.
    virtual bool open(QString *error = nullptr) = 0;
    // Closing silences every note still held.
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    // One short message packed as status | data1 << 8 | data2 << 16.
    virtual void shortMsg(quint32 message) = 0;
};

} // namespace fenwork
