#include "playback/drone.h"

#include "frame/appcontext.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"
#include "playback/midierror.h"
#include "playback/midiout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork {

namespace {

// The lines of a text, with CR LF, LF or a lone CR as line end; a final line end closes the
// last line rather than opening an empty one.
QStringList splitLines(const QString &text)
{
    QStringList lines;
    qsizetype start = 0;
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        if (c != u'\r' && c != u'\n')
            continue;
        lines.append(text.mid(start, i - start));
        if (c == u'\r' && i + 1 < n && text.at(i + 1) == u'\n')
            ++i;
        start = i + 1;
    }
    if (start < n)
        lines.append(text.mid(start));
    return lines;
}

int clampData(int value)
{
    return qBound(0, value, 127);
}

} // namespace

DroneVoices defaultDroneVoices()
{
    DroneVoices voices;
    const int programs[kDroneVoiceCount] = { 19, 97, 42 };
    const int notes[kDroneVoiceCount] = { 2, 9, 21 };
    for (int i = 0; i < kDroneVoiceCount; ++i) {
        voices[i].program = programs[i];
        voices[i].note = notes[i];
    }
    return voices;
}

QStringList droneNoteNames()
{
    static const QStringList names = [] {
        static const char *const octave[12]
            = { "C", "^C", "D", "_E", "E", "F", "^F", "G", "^G", "A", "_B", "B" };
        QStringList list { QStringLiteral("_B,"), QStringLiteral(" B,") };
        for (int o = 0; o < 4; ++o) {
            for (const char *spelling : octave) {
                QString note = QString::fromLatin1(spelling);
                if (o >= 2)
                    note = note.toLower();
                if (o == 0)
                    note += u',';
                else if (o == 3)
                    note += u'\'';
                if (note.at(0).isLetter())
                    note.prepend(u' ');
                list.append(note);
            }
        }
        return list;
    }();
    return names;
}

quint32 droneProgramMessage(int voice, int program)
{
    return packShortMessage(0xC0 + droneChannel(voice), program, 0);
}

quint32 droneNoteOnMessage(int voice, int midiNote)
{
    return packShortMessage(0x90 + droneChannel(voice), clampData(midiNote), 0x7F);
}

quint32 droneSustainMessage(int voice)
{
    return packShortMessage(0xB0 + droneChannel(voice), 0x40, 0x7F);
}

quint32 droneVolumeMessage(int voice, int volume, int masterPercent)
{
    return packShortMessage(0xB0 + droneChannel(voice), 0x07, clampData(volume * masterPercent / 100));
}

QString droneFolder(const Paths &paths)
{
    return paths.inUser(QStringLiteral("drone"));
}

QStringList droneNames(const Paths &paths)
{
    return fileNamesIn(droneFolder(paths));
}

QString freeDroneName(const Paths &paths)
{
    return uniqueName(QStringLiteral("NewDrone"), QString(), droneFolder(paths));
}

bool droneExists(const Paths &paths, const QString &name)
{
    return namedFileExists(droneFolder(paths), name);
}

QString droneText(const DroneVoices &voices)
{
    QString text;
    for (const DroneVoice &v : voices) {
        for (int value : { v.active ? 1 : 0, v.program, v.note, v.volume })
            text += QString::number(value) + CRLF;
    }
    return text;
}

QString applyDroneText(const QString &text, DroneVoices &voices)
{
    const QStringList lines = splitLines(text);
    const int count = int(qMin<qsizetype>(lines.size(), kDroneFileLineCount));
    for (int n = 0; n < count; ++n) {
        const QString line = trimBlanks(lines.at(n));
        bool ok = false;
        const int value = line.toInt(&ok);
        DroneVoice &v = voices[n / 4];
        const int field = n % 4;
        const int top = field == 0 ? 1 : field == 2 ? kDroneNoteCount - 1 : 127;
        if (!ok || value < 0 || value > top)
            return QStringLiteral("Line %1: \"%2\" is not a number from 0 to %3.")
                .arg(n + 1)
                .arg(line)
                .arg(top);
        switch (field) {
        case 0:
            v.active = value == 1;
            break;
        case 1:
            v.program = value;
            break;
        case 2:
            v.note = value;
            break;
        default:
            v.volume = value;
            break;
        }
    }
    return {};
}

bool loadDrone(const Paths &paths, const QString &name, DroneVoices &voices, QString *error)
{
    const auto fail = [error](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (!isPlainFileName(name))
        return fail(QStringLiteral("Not a drone name: \"%1\"").arg(name));
    const QString path = QDir(droneFolder(paths)).filePath(name);
    if (!QFileInfo(path).isFile())
        return fail(QStringLiteral("File not found: ") + path);
    const TextFileResult read = readTextFile(path);
    if (!read.ok)
        return fail(read.error);
    const QString problem = applyDroneText(read.text, voices);
    if (!problem.isEmpty())
        return fail(problem);
    return true;
}

bool saveDrone(const Paths &paths, const QString &name, const DroneVoices &voices, QString *error)
{
    if (!isPlainFileName(name)) {
        if (error)
            *error = QStringLiteral("A drone name can't be empty, \".\", \"..\" or hold \"/\": \"%1\"")
                         .arg(name);
        return false;
    }
    const QString folder = droneFolder(paths);
    if (!QDir().mkpath(folder)) {
        if (error)
            *error = QStringLiteral("Can't create the folder ") + folder;
        return false;
    }
    return writeTextFile(QDir(folder).filePath(name), droneText(voices), TextEncoding::Utf8, error);
}

void deleteDrone(const Paths &paths, const QString &name)
{
    if (isPlainFileName(name))
        QFile::remove(QDir(droneFolder(paths)).filePath(name));
}

Drone::Drone(AppContext &app, MidiOut &out)
    : m_app(app)
    , m_out(out)
{
    for (int i = 0; i < kDroneVoiceCount; ++i)
        m_noteTag[i] = m_voices[i].note;
}

Drone::~Drone()
{
    switchOff();
}

void Drone::send(quint32 message)
{
    // A failed open leaves the drone "on" with nothing to talk to.
    if (m_out.isOpen())
        m_out.shortMsg(message);
}

void Drone::sendVolumes()
{
    for (int i = 0; i < kDroneVoiceCount; ++i)
        send(droneVolumeMessage(i, m_voices[i].volume, m_master));
}

bool Drone::switchOn()
{
    if (m_keyboardBusy && m_keyboardBusy()) {
        m_on = false;
        m_app.ui().message(
            m_app.text(QStringLiteral("Msg"), QStringLiteral("<noDrone>")), UserDialogs::Icon::Information);
        if (m_refused)
            m_refused();
        return false;
    }
    m_on = true;
    QString error;
    if (!m_out.isOpen() && !m_out.open(&error))
        DisplayErrMidi(m_app.ui(), error, QStringLiteral("Context: Drone ON > midiOutOpen"));
    for (int i = 0; i < kDroneVoiceCount; ++i) {
        if (!m_voices[i].active)
            continue;
        send(droneProgramMessage(i, m_voices[i].program));
        send(droneNoteOnMessage(i, midiNote(i)));
        send(droneSustainMessage(i));
    }
    sendVolumes();
    return true;
}

void Drone::switchOff()
{
    // The output may be shared with the keyboard: only a drone that is on closes it.
    const bool wasOn = m_on;
    m_on = false;
    if (wasOn && m_out.isOpen())
        m_out.close();
}

bool Drone::restart()
{
    if (m_on)
        switchOff();
    return switchOn();
}

void Drone::voiceClicked(int voice, bool active)
{
    m_voices.at(voice).active = active;
    restart();
}

void Drone::programChosen(int voice, int program)
{
    m_voices.at(voice).program = program;
    if (m_on && m_voices[voice].active)
        restart();
}

bool Drone::noteChosen(int voice, int index)
{
    m_voices.at(voice).note = index;
    if (m_linked) {
        const int step = index - m_noteTag[voice];
        for (int other = 0; other < kDroneVoiceCount; ++other) {
            if (other == voice)
                continue;
            const int moved = m_voices[other].note + step;
            if (moved < 0 || moved >= kDroneNoteCount) {
                m_app.ui().contextError(QStringLiteral("LstDroneClick"),
                    QStringLiteral("Note index %1 is outside the list of %2 notes.")
                        .arg(moved)
                        .arg(kDroneNoteCount));
                return false;
            }
            m_voices[other].note = moved;
            m_noteTag[other] = moved;
        }
    }
    m_noteTag[voice] = index;
    if (m_on && m_voices[voice].active)
        restart();
    return true;
}

void Drone::setVoiceVolume(int voice, int volume)
{
    m_voices.at(voice).volume = volume;
    send(droneVolumeMessage(voice, volume, m_master));
}

void Drone::setMasterVolume(int percent)
{
    m_master = percent;
    sendVolumes();
}

void Drone::setPitch(int halfTones)
{
    m_pitch = halfTones;
    if (m_on)
        restart();
}

void Drone::setLowered(bool lowered)
{
    m_lowered = lowered;
    if (m_on)
        restart();
}

void Drone::setVoice(int voice, const DroneVoice &value)
{
    m_voices.at(voice) = value;
    m_noteTag[voice] = value.note;
}

void Drone::setVoices(const DroneVoices &values)
{
    for (int i = 0; i < kDroneVoiceCount; ++i)
        setVoice(i, values[i]);
}

bool Drone::chooseSaved(const QString &name)
{
    DroneVoices read = m_voices;
    QString error;
    const bool ok = loadDrone(m_app.paths(), name, read, &error);
    // What was read before a bad line stays, as the controls were set one by one.
    setVoices(read);
    if (!ok) {
        m_app.ui().contextError(QStringLiteral("OpenDroneData"), error);
        return false;
    }
    if (m_on)
        restart();
    return true;
}

} // namespace fenwork
