#pragma once
// Export to MIDI through abc2midi: a tune to the file asked for, a file or list to one MIDI file
// a tune, named after the target with the tune's number.
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;

// A tune with no tempo of its own gets the file header's (or the default) as a "Q:" line behind
// its first line, as the player gives it.
QString midiTuneText(const QString &tune, const QString &fileHeader, const QString &tempoDef);

class MidiExporter
{
public:
    explicit MidiExporter(AppContext &app);

    // `source` a tree key or ABC text; an empty `target` asks for the path (and receives it).
    // Returns "" or the error text; one holding "Timeout" means the tool did not finish.
    QString ExportToMidi(const QString &source, QString &target);

    // The MIDI files the last run wrote.
    QStringList written() const { return m_written; }
    // Tunes abc2midi wrote in the last run; more than written() when X: numbers were shared.
    int tunesWritten() const { return m_tunes; }
    // The default name the save dialog proposes.
    static QString defaultName(const AppContext &app, const QString &source);

private:
    AppContext &m_app;
    QStringList m_written;
    int m_tunes = 0;
};

} // namespace fenwork
