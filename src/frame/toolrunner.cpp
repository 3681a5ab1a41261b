#include "frame/toolrunner.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

namespace fenwork {

namespace {

const QString kQuote = QStringLiteral("\"");

QString quoted(const QString &text)
{
    return kQuote + text + kQuote;
}

const SettingKey &pathKey(Tool tool)
{
    switch (tool) {
    case Tool::Abc2ps:
        return keys::Tool2ps;
    case Tool::Abc2midi:
        return keys::Tool2midi;
    case Tool::Abc2abc:
        return keys::Tool2abc;
    case Tool::Midi2abc:
        break;
    }
    return keys::ToolMidi2abc;
}

const SettingKey &optionKey(Tool tool)
{
    switch (tool) {
    case Tool::Abc2ps:
        return keys::Cmd2ps;
    case Tool::Abc2midi:
        return keys::Cmd2midi;
    case Tool::Abc2abc:
        return keys::Cmd2abc;
    case Tool::Midi2abc:
        break;
    }
    return keys::CmdMidi2abc;
}

// A file that exists, is not empty, and that we can open for appending without changing it.
bool openableForAppend(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (fd < 0)
        return false;
    ::close(fd);
    return true;
}

} // namespace

QString toolName(Tool tool)
{
    switch (tool) {
    case Tool::Abc2ps:
        return QStringLiteral("abcm2ps");
    case Tool::Abc2midi:
        return QStringLiteral("abc2midi");
    case Tool::Abc2abc:
        return QStringLiteral("abc2abc");
    case Tool::Midi2abc:
        break;
    }
    return QStringLiteral("midi2abc");
}

QString toolPath(const AppContext &app, Tool tool)
{
    const QString set = app.ini().get(pathKey(tool));
    if (!set.isEmpty() && QFileInfo(set).isFile())
        return set;
    // The program's own tools folder, PATH, then /usr/bin, where Debian puts them even when the
    // environment's PATH leaves that folder out.
    return defaultToolPath(app.paths(), toolName(tool));
}

QString missingToolText(const AppContext &app, Tool tool)
{
    const QFileInfo found(toolPath(app, tool));
    if (found.isFile() && found.isExecutable())
        return {};
    const QString name = toolName(tool);
    QStringList places;
    const QString set = app.ini().get(pathKey(tool));
    if (!set.isEmpty())
        places << set;
    places << app.paths().inProgram(QStringLiteral("tools/") + name);
    const QStringList path = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts);
    for (const QString &folder : path)
        places << QDir(folder).filePath(name);
    places << QStringLiteral("/usr/bin/") + name;
    places.removeDuplicates();
    const QString msg = QStringLiteral("Msg");
    return app.text(msg, QStringLiteral("<toolMissing>")) + u' ' + name + CRLF + app.text(msg, QStringLiteral("<toolLooked>"))
        + CRLF + QStringLiteral("  ") + places.join(CRLF + QStringLiteral("  ")) + CRLF
        + app.text(msg, QStringLiteral("<toolInstall>"));
}

namespace {

// A converter that is not there is named, with where it was looked for; anything else keeps the
// system's words.
QString startFailure(const AppContext &app, const QString &program, const QString &systemText)
{
    for (const Tool tool : { Tool::Abc2ps, Tool::Abc2midi, Tool::Abc2abc, Tool::Midi2abc }) {
        if (program == toolPath(app, tool)) {
            const QString missing = missingToolText(app, tool);
            if (!missing.isEmpty())
                return missing;
        }
    }
    return systemText + QStringLiteral(": ") + program;
}

} // namespace

QString toolOptions(const AppContext &app, Tool tool)
{
    const QString trimmed = trimBlanks(app.ini().get(optionKey(tool)));
    return trimmed.isEmpty() ? QStringLiteral(" ") : u' ' + trimmed + u' ';
}

QString commandAbc2ps(const AppContext &app, const QString &input, const QString &output)
{
    // The extras (format file, tablature) go before the options, which end with the switch
    // that takes the output name.
    return quoted(toolPath(app, Tool::Abc2ps)) + u' ' + quoted(input) + app.scoreExtras
        + toolOptions(app, Tool::Abc2ps) + quoted(output);
}

QString commandAbc2midi(const AppContext &app, const QString &input, const QString &output)
{
    return quoted(toolPath(app, Tool::Abc2midi)) + u' ' + quoted(input) + toolOptions(app, Tool::Abc2midi)
        + quoted(output);
}

QString commandAbc2abc(const AppContext &app, const QString &input, int semitones, const QString &output)
{
    // -e: the tool's bar-length complaints (a pick-up bar has one) would land in the music.
    return quoted(toolPath(app, Tool::Abc2abc)) + u' ' + quoted(input) + QStringLiteral(" -e")
        + toolOptions(app, Tool::Abc2abc) + QString::number(semitones) + QStringLiteral(" > ")
        + quoted(output);
}

QString commandMidi2abc(const AppContext &app, const QString &input, const QString &output)
{
    return quoted(toolPath(app, Tool::Midi2abc)) + QStringLiteral(" -f ") + quoted(input)
        + toolOptions(app, Tool::Midi2abc) + quoted(output);
}

ParsedCommand parseCommand(const QString &command)
{
    // Blanks separate arguments outside quotes; a quote pair may hold blanks and is dropped.
    // A bare ">" (or one glued to its file name) redirects standard output.
    QStringList parts;
    QList<bool> wasQuoted;
    QString current;
    bool inQuotes = false, quotedPart = false, started = false;
    for (const QChar c : command) {
        if (c == u'>' && !inQuotes && !started) {
            // A redirection mark stands alone even when glued to its file name.
            parts << QStringLiteral(">");
            wasQuoted << false;
        } else if (c == u'"') {
            inQuotes = !inQuotes;
            quotedPart = true;
            started = true;
        } else if (!inQuotes && (c == u' ' || c == u'\t')) {
            if (started) {
                parts << current;
                wasQuoted << quotedPart;
            }
            current.clear();
            started = quotedPart = false;
        } else {
            current += c;
            started = true;
        }
    }
    if (started) {
        parts << current;
        wasQuoted << quotedPart;
    }

    ParsedCommand result;
    for (int i = 0; i < parts.size(); ++i) {
        const QString &part = parts.at(i);
        if (!wasQuoted.at(i) && part.startsWith(u'>')) {
            if (part.size() > 1)
                result.stdoutFile = part.mid(1);
            else if (i + 1 < parts.size())
                result.stdoutFile = parts.at(++i);
            continue;
        }
        if (result.program.isEmpty() && i == 0)
            result.program = part;
        else
            result.arguments << part;
    }
    return result;
}

ParsedCommand consoleCommand(const AppContext &app, int row, QString *folder)
{
    static const Tool rows[] = { Tool::Abc2midi, Tool::Abc2ps, Tool::Abc2abc, Tool::Midi2abc };
    const Tool tool = rows[qBound(0, row, 3)];
    QString tools = app.paths().inProgram(QStringLiteral("tools"));
    if (!QFileInfo(tools).isDir())
        tools = QFileInfo(toolPath(app, tool)).absolutePath();
    if (folder)
        *folder = tools;

    ParsedCommand command;
    const QString terminal = qEnvironmentVariable("TERMINAL");
    command.program = terminal.isEmpty() ? QStringLiteral("x-terminal-emulator") : terminal;
    // The tool without arguments prints its usage; the shell stays for the user's own commands.
    const QString script = quoted(toolPath(app, tool)) + QStringLiteral("; exec \"${SHELL:-/bin/sh}\"");
    command.arguments = { QStringLiteral("-e"), QStringLiteral("/bin/sh"), QStringLiteral("-c"), script };
    return command;
}

ToolRunner::ToolRunner(AppContext &app)
    : m_app(app)
{ }

ToolRunner::~ToolRunner()
{
    for (const Started &started : std::as_const(m_started)) {
        if (started.process->state() != QProcess::NotRunning) {
            started.process->kill();
            started.process->waitForFinished(1000);
        }
        delete started.process;
    }
}

QString ToolRunner::cacheFolder() const
{
    const QString folder = m_app.paths().cacheFolder();
    QDir().mkpath(folder);
    return folder;
}

QString ToolRunner::inCache(const QString &name) const
{
    return QDir(m_app.paths().cacheFolder()).absoluteFilePath(name);
}

void ToolRunner::prune()
{
    for (qsizetype i = m_started.size() - 1; i >= 0; --i) {
        if (m_started.at(i).process->state() == QProcess::NotRunning) {
            delete m_started.at(i).process;
            m_started.removeAt(i);
        }
    }
}

int ToolRunner::runningCount() const
{
    int count = 0;
    for (const Started &started : m_started)
        count += started.process->state() != QProcess::NotRunning ? 1 : 0;
    return count;
}

void ToolRunner::endWriters(const QString &file)
{
    const QString path = QDir::cleanPath(QDir(cacheFolder()).absoluteFilePath(file));
    const QString fileName = QFileInfo(path).fileName();
    for (const Started &started : std::as_const(m_started)) {
        if (started.process->state() != QProcess::NotRunning && started.names(path, fileName)) {
            started.process->kill();
            started.process->waitForFinished(1000);
        }
    }
    prune();
}

bool ToolRunner::startCommand(const QString &command, int windowMode, QString *error)
{
    prune();
    const ParsedCommand parsed = parseCommand(command);
    const QString folder = cacheFolder();
    if (parsed.program.isEmpty()) {
        if (error)
            *error = QStringLiteral("empty command");
        return false;
    }

    if (windowMode != 0) {
        // A window of its own: the program lives on by itself.
        if (!QProcess::startDetached(parsed.program, parsed.arguments, folder)) {
            if (error)
                *error = QStringLiteral("cannot start ") + parsed.program;
            return false;
        }
        return true;
    }

    auto *process = new QProcess;
    process->setWorkingDirectory(folder);
    process->setProgram(parsed.program);
    process->setArguments(parsed.arguments);
    process->setStandardInputFile(QProcess::nullDevice());
    // What the tools print is nobody's concern unless the command sends it to a file; unread
    // pipes would stall a talkative tool.
    process->setStandardOutputFile(
        parsed.stdoutFile.isEmpty() ? QProcess::nullDevice() : inCache(parsed.stdoutFile));
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start();
    Started started { process, parsed.arguments };
    if (!parsed.stdoutFile.isEmpty())
        started.files << QDir::cleanPath(QDir(folder).absoluteFilePath(parsed.stdoutFile));
    // A process that failed to start stays listed as one that has ended: a wait for its output
    // then gives up at once instead of running out its limit.
    m_started << started;
    if (!process->waitForStarted(10000)) {
        if (error)
            *error = startFailure(m_app, parsed.program, process->errorString());
        return false;
    }
    return true;
}

bool ToolRunner::Started::names(const QString &absolutePath, const QString &fileName) const
{
    // A file is named by an argument that is its path (relative to the working folder), or that
    // holds its name, as a shell script does.
    const QDir dir(process->workingDirectory());
    for (const QString &argument : files) {
        if (argument.contains(fileName)
            && (QDir::cleanPath(dir.absoluteFilePath(argument)) == absolutePath || argument != fileName))
            return true;
    }
    return false;
}

ToolRunner::Writers ToolRunner::writers(const QString &absolutePath) const
{
    const QString fileName = QFileInfo(absolutePath).fileName();
    Writers result;
    for (const Started &started : m_started) {
        if (!started.names(absolutePath, fileName))
            continue;
        if (started.process->state() != QProcess::NotRunning) {
            result.running = started.process;
            return result;
        }
        result.ended = true;
    }
    return result;
}

void ToolRunner::pause(QProcess *writer)
{
    // Waiting on the writer itself wakes us the moment it ends, which keeps a refresh quick.
    if (writer)
        writer->waitForFinished(5);
    else
        QThread::msleep(2);
}

QString ToolRunner::WaitForDispo(const QString &file, double limit)
{
    const QString path = QDir::cleanPath(QDir(cacheFolder()).absoluteFilePath(file));
    QElapsedTimer clock;
    clock.start();
    const double limitMs = waitLimitMs(limit);
    UserDialogs &ui = m_app.ui();
    ui.watchEscape(true);
    const auto unwatch = qScopeGuard([&ui] { ui.watchEscape(false); });

    // One round: let events run, then the limit, then Esc. Empty means go on.
    auto round = [&]() -> QString {
        ui.processEvents();
        if (limit > 0 && double(clock.elapsed()) >= limitMs)
            return kWaitTimeout;
        if (ui.escapePressed())
            return kWaitEscape;
        return {};
    };

    for (;;) {
        const Writers writer = writers(path);
        const QFileInfo info(path);
        const bool written = info.exists() && info.size() > 0;
        if (written && !writer.running && openableForAppend(path))
            return {};
        // The tool that was to write it has ended without doing so: nothing else will, and
        // waiting out the limit would only stall the caller.
        if (!written && !writer.running && writer.ended)
            return kWaitTimeout;
        const QString stop = round();
        if (!stop.isEmpty())
            return stop;
        pause(writer.running);
    }
}

bool ToolRunner::openConsole(int row, QString *error)
{
    QString folder;
    const ParsedCommand command = consoleCommand(m_app, row, &folder);
    // The user's terminal, else the desktop's choice, else the plainest one.
    QStringList terminals { command.program, QStringLiteral("x-terminal-emulator"), QStringLiteral("xterm") };
    terminals.removeDuplicates();
    for (const QString &terminal : std::as_const(terminals)) {
        if (QProcess::startDetached(terminal, command.arguments, folder))
            return true;
    }
    if (error)
        *error = QStringLiteral("cannot start ") + terminals.join(QStringLiteral(", "));
    return false;
}

} // namespace fenwork
