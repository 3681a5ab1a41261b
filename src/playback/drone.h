#pragma once
// The drone: up to three held notes that sound beside the player, on channels of their own at
// the top of the range (15, 14, 13 for voices 0, 1, 2), sent straight to the short-message output.
// No note-off is ever sent: every change of sound takes effect by a restart, closing the output
// (which silences what it holds) and opening it again.
#include <QString>
#include <QStringList>
#include <array>
#include <functional>

namespace fenwork {

class AppContext;
class MidiOut;
class Paths;

struct DroneVoice
{
    bool active = false;
    int program = 0; // General MIDI program, 0 to 127
    int note = 0; // index in droneNoteNames()
    int volume = 100; // 0 to 127

    bool operator==(const DroneVoice &) const = default;
};

constexpr int kDroneVoiceCount = 3;
constexpr int kDroneNoteCount = 50;
constexpr int kDroneFileLineCount = 4 * kDroneVoiceCount;
constexpr int kDroneBaseNote = 36; // MIDI note of list index 0 at pitch 0
using DroneVoices = std::array<DroneVoice, kDroneVoiceCount>;

// Programs 19, 97, 42 and notes 2, 9, 21, all voices silent, volume 100.
DroneVoices defaultDroneVoices();

// "_B,", " B,", then the 48 keyboard notes from "C," in the mixed spelling; a note without an
// accidental gets a leading blank so that the letters line up.
QStringList droneNoteNames();

constexpr int droneChannel(int voice)
{
    return 15 - voice;
}
// status | data1 << 8 | data2 << 16
constexpr quint32 packShortMessage(int status, int data1, int data2)
{
    return quint32(status & 0xFF) | quint32(data1 & 0xFF) << 8 | quint32(data2 & 0xFF) << 16;
}
quint32 droneProgramMessage(int voice, int program);
quint32 droneNoteOnMessage(int voice, int midiNote); // the note is kept within 0 to 127
quint32 droneSustainMessage(int voice);
// Controller 7 with the voice's volume scaled by the master volume in percent.
quint32 droneVolumeMessage(int voice, int volume, int masterPercent);

// Saved drones: one file per drone in the user's "drone" folder, named exactly as the drone,
// without extension; twelve lines, four per voice in voice order: active (0 or 1), program,
// note index, volume, each a decimal number that blanks may surround.
QString droneFolder(const Paths &paths);
QStringList droneNames(const Paths &paths); // alphabetical
QString freeDroneName(const Paths &paths); // first free "NewDrone1", "NewDrone2" ...
bool droneExists(const Paths &paths, const QString &name);
QString droneText(const DroneVoices &voices);
// Sets the voices line by line, as far as the text goes: a text that ends early leaves the
// rest as it was. A line that is not a number in its range stops the reading there and is
// returned as the problem; empty when there was none.
QString applyDroneText(const QString &text, DroneVoices &voices);
// Reads a saved drone into `voices` (see applyDroneText); false with the reason in `error`.
bool loadDrone(const Paths &paths, const QString &name, DroneVoices &voices, QString *error = nullptr);
bool saveDrone(const Paths &paths, const QString &name, const DroneVoices &voices, QString *error = nullptr);
void deleteDrone(const Paths &paths, const QString &name); // failures are ignored

// The state of the drone panel and what each of its controls does to the sound. The panel
// calls one handler per user action and then shows the state back.
class Drone
{
public:
    Drone(AppContext &app, MidiOut &out);
    // Switches the drone off: the output must still exist.
    ~Drone();
    Drone(const Drone &) = delete;
    Drone &operator=(const Drone &) = delete;

    // While this says yes (an edit session's keyboard holds the note output) the drone refuses
    // to start.
    void setKeyboardBusy(std::function<bool()> busy) { m_keyboardBusy = std::move(busy); }
    // Called when a start was refused, after the message: the panel unticks its boxes.
    void setRefusedHandler(std::function<void()> refused) { m_refused = std::move(refused); }

    bool isOn() const { return m_on; }
    const DroneVoices &voices() const { return m_voices; }
    const DroneVoice &voice(int i) const { return m_voices.at(i); }
    int masterVolume() const { return m_master; }
    int pitch() const { return m_pitch; }
    bool lowered() const { return m_lowered; }
    bool linked() const { return m_linked; }
    // The pitch box, less two half-tones when lowered.
    int soundingPitch() const { return m_pitch - (m_lowered ? 2 : 0); }
    int midiNote(int voice) const { return kDroneBaseNote + soundingPitch() + m_voices.at(voice).note; }

    // The drone's check box ticked: opens the output and starts every active voice; false when
    // refused. An output that can't be opened is reported and the drone counts as on.
    bool switchOn();
    // The check box cleared: closes the output, which silences the held notes.
    void switchOff();
    // Off, then on: how every change of sound takes effect. Starts a drone that was off.
    bool restart();

    // The user's actions on the panel.
    void voiceClicked(int voice, bool active); // always restarts
    void programChosen(int voice, int program); // restarts when on and the voice is active
    // Moves the other notes by the same step when linked; an index pushed past the list is
    // reported and stops there, the lists keeping what was done. False then.
    bool noteChosen(int voice, int index);
    void setVoiceVolume(int voice, int volume); // the voice's volume message, no restart
    void setMasterVolume(int percent); // all three volume messages, no restart
    void setPitch(int halfTones); // restarts when on
    void setLowered(bool lowered); // restarts when on
    void setLinked(bool linked) { m_linked = linked; }

    // The program's own changes: no sound, no link effect.
    void setVoice(int voice, const DroneVoice &value);
    void setVoices(const DroneVoices &values);
    void setInitialPitch(int halfTones) { m_pitch = halfTones; }
    void setInitialLowered(bool lowered) { m_lowered = lowered; }
    void setInitialMasterVolume(int percent) { m_master = percent; }

    // A saved drone chosen: read it (a failure is reported and the voices read so far stay),
    // then restart when on. False when the reading failed.
    bool chooseSaved(const QString &name);

private:
    void send(quint32 message);
    void sendVolumes();

    AppContext &m_app;
    MidiOut &m_out;
    DroneVoices m_voices = defaultDroneVoices();
    std::array<int, kDroneVoiceCount> m_noteTag {}; // each note list's last index
    int m_master = 100;
    int m_pitch = 0;
    bool m_lowered = false;
    bool m_linked = false;
    bool m_on = false;
    std::function<bool()> m_keyboardBusy;
    std::function<void()> m_refused;
};

} // namespace fenwork
