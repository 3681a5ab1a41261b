#pragma once
// Runs the command-line converters: the command shapes, the start of a process in the cache
// folder, and the wait for its output file. One runner per run, held by the AppContext.
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class QProcess;

namespace fenwork {

class AppContext;

enum class Tool { Abc2ps, Abc2midi, Abc2abc, Midi2abc };

// What WaitForDispo answers besides the empty success.
inline const QString kWaitEscape = QStringLiteral("* * * Escape * * *");
inline const QString kWaitTimeout = QStringLiteral("* * * File Timeout * * *");

// The tool's program: the setting when it names an existing file, else the tool in the program's
// tools folder, on PATH, or in /usr/bin.
QString toolPath(const AppContext &app, Tool tool);
// Empty when the tool can be run; otherwise the message that names it and every place it was
// looked for.
QString missingToolText(const AppContext &app, Tool tool);
// The tool's option string as set, with its own surrounding blanks.
QString toolOptions(const AppContext &app, Tool tool);
// The bare program name of a tool ("abcm2ps", "abc2midi" ...).
QString toolName(Tool tool);

// The command shapes; every path stands in double quotes. abcm2ps gets app.scoreExtras.
QString commandAbc2ps(const AppContext &app, const QString &input, const QString &output);
QString commandAbc2midi(const AppContext &app, const QString &input, const QString &output);
QString commandAbc2abc(const AppContext &app, const QString &input, int semitones, const QString &output);
QString commandMidi2abc(const AppContext &app, const QString &input, const QString &output);

// A command text taken apart: a quoted part is one argument, a " > " sends standard output to
// the (quoted) file name after it.
struct ParsedCommand
{
    QString program;
    QStringList arguments;
    QString stdoutFile; // empty: no redirection
};
ParsedCommand parseCommand(const QString &command);

// The limit of WaitForDispo in milliseconds: the unit is 1/100000000 of a day.
constexpr double waitLimitMs(double limit)
{
    return limit * 86400000.0 / 100000000.0;
}

// The console of mnu_shellConsole rows 0 to 3 (abc2midi, abcm2ps, abc2abc, midi2abc): a terminal
// emulator ($TERMINAL, else x-terminal-emulator) in the tools folder that shows the tool's
// usage and leaves a shell open. `folder` receives that folder.
ParsedCommand consoleCommand(const AppContext &app, int row, QString *folder = nullptr);

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

    // Waits until `file` exists, is not empty and is free (no process we started that names it
    // still runs), letting events run and watching Esc. Returns "" on success, kWaitEscape or
    // kWaitTimeout. The limit is in 1/100000000 of a day (6000 ~ 5.2 s); 0 or less waits for
    // ever. When every process that named the file has ended and the file is still missing or
    // empty, nothing will write it: the answer is kWaitTimeout at once.
    QString WaitForDispo(const QString &file, double limit);

    // The cache folder, made when missing: the working folder of every tool.
    QString cacheFolder() const;
    // A bare name resolved in the cache folder; absolute paths stay as they are.
    QString inCache(const QString &name) const;

    // Opens the tool console of mnu_shellConsole; false with `error` when no terminal starts.
    bool openConsole(int row, QString *error = nullptr);

    // Hidden processes started and still running.
    int runningCount() const;
    // Ends the processes still running that name `file`: a tool that hangs past its wait would
    // otherwise hold up every later wait for the same file.
    void endWriters(const QString &file);

private:
    struct Started
    {
        QProcess *process;
        QStringList files; // its arguments and output file: what it may be writing
        bool names(const QString &absolutePath, const QString &fileName) const;
    };
    struct Writers
    {
        QProcess *running = nullptr; // a process naming the file that still runs
        bool ended = false; // one that named it has ended
    };
    Writers writers(const QString &absolutePath) const;
    // Sleeps a little between polls; returns early when the writer ends.
    void pause(QProcess *writer);
    void prune();

    AppContext &m_app;
    QList<Started> m_started;
};

} // namespace fenwork
