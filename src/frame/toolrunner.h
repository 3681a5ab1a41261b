#pragma once
// Runs the command-line converters: the command shapes, the start of a process in the cache
// folder, and the wait for its output file. One runner per run, held by the AppContext.
#include <QObject>
#include <QString>

namespace fenwork {

class AppContext;

enum class Tool { Abc2ps, Abc2midi, Abc2abc, Midi2abc };

// What WaitForDispo answers besides the empty success.
inline const QString kWaitEscape = QStringLiteral("* * * Escape * * *");
inline const QString kWaitTimeout = QStringLiteral("* * * File Timeout * * *");

// The tool's program: the setting when it names an existing file, else the tool found on PATH.
QString toolPath(const AppContext &app, Tool tool);
// The tool's option string as set, with its own surrounding blanks.
QString toolOptions(const AppContext &app, Tool tool);

// The command shapes; every path stands in double quotes. abcm2ps gets app.scoreExtras.
QString commandAbc2ps(const AppContext &app, const QString &input, const QString &output);
QString commandAbc2midi(const AppContext &app, const QString &input, const QString &output);
QString commandAbc2abc(const AppContext &app, const QString &input, int semitones, const QString &output);
QString commandMidi2abc(const AppContext &app, const QString &input, const QString &output);

class ToolRunner : public QObject
{
    Q_OBJECT
public:
    explicit ToolRunner(AppContext &app);
    ~ToolRunner() override; // ends what still runs

    // Starts a command text and returns at once, in the cache folder. Quoted parts are one
    // argument each; a trailing " > " and a (quoted) file name send the tool's standard output
    // to that file. windowMode 0 is hidden, 1 a normal window. False, with `error`, when the
    // process cannot be started.
    bool startCommand(const QString &command, int windowMode = 0, QString *error = nullptr);

    // Waits until `file` exists, is not empty and is free (no process we started that may be
    // writing it still runs), letting events run and watching Esc. Returns "" on success,
    // kWaitEscape or kWaitTimeout. The limit is in 1/100000000 of a day (6000 ~ 5.2 s); 0 or
    // less waits for ever.
    QString WaitForDispo(const QString &file, double limit);

private:
    AppContext &m_app;
};

} // namespace fenwork
