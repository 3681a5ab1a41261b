#pragma once
// What the player needs to know of a standard MIDI file before it plays it: whether it can be
// read at all, its time base, its length and the channels it sounds on.
#include <QByteArray>
#include <QString>

namespace fenwork {

struct MidiFileInfo
{
    bool valid = false;
    QString error; // why the file cannot be played, when not valid
    int format = 0;
    int tracks = 0;
    int division = 0; // ticks per quarter note
    qint64 lengthTicks = 0; // tick of the last event over all tracks
    double seconds = 0; // length at the file's own tempi
    quint16 channels = 0; // bit n: channel n carries channel messages
    int noteOns = 0; // note-on events with a velocity
};

MidiFileInfo readMidiFileInfo(const QByteArray &bytes);
MidiFileInfo readMidiFile(const QString &path);

} // namespace fenwork
