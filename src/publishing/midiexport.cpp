#include "publishing/midiexport.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "playback/playprep.h"
#include "publishing/exportcommon.h"
#include "store/treeops.h"
#include "store/tunestore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace fenwork {

namespace {

const QString kInput = QStringLiteral("tmp_mid.abc");
const QString kOutput = QStringLiteral("tmp_mid.mid");
const QString kLog = QStringLiteral("tmp_mid.log");
// A whole tune book takes abc2midi a few seconds; Esc still ends the wait.
constexpr double kMidiLimit = 60000;

QString quoted(const QString &path)
{
    return u'"' + path + u'"';
}

QString numberText(double value)
{
    return QString::number(value, 'g', 10);
}

} // namespace

QString midiTuneText(const QString &tune, const QString &fileHeader, const QString &tempoDef)
{
    // A "Q:" right behind "%" is a comment, not a tempo.
    qsizetype at = tune.indexOf(u"Q:");
    while (at > 0 && tune.at(at - 1) == u'%')
        at = tune.indexOf(u"Q:", at + 2);
    if (at >= 0)
        return tune;
    QString tempo = tempoDef;
    QString header = fileHeader;
    if (const qsizetype hq = header.indexOf(u"Q:"); hq >= 0) {
        const qsizetype cut = header.indexOf(CRLF, hq);
        if (cut >= 0)
            header.truncate(cut + 2);
        const qsizetype eq = header.indexOf(u'=');
        tempo = numberText(eq >= 0 ? tempoNumber(QStringView(header).mid(eq + 1))
                                   : tempoNumber(QStringView(header).mid(hq + 2)));
    }
    const qsizetype firstEnd = tune.indexOf(CRLF);
    if (firstEnd < 0)
        return tune + CRLF + QStringLiteral("Q:") + tempo + CRLF;
    return tune.left(firstEnd) + CRLF + QStringLiteral("Q:") + tempo + tune.mid(firstEnd);
}

MidiExporter::MidiExporter(AppContext &app)
    : m_app(app)
{ }

QString MidiExporter::defaultName(const AppContext &app, const QString &source)
{
    switch (exportScopeOf(source)) {
    case ExportScope::File:
        return QFileInfo(GetPathFile(app, fileKeyOf(source))).completeBaseName() + QStringLiteral(".mid");
    case ExportScope::Tune:
        return safeFileName(tuneTitle(app.store().GetStringTune(source, false)) + QStringLiteral(".mid"));
    case ExportScope::List:
        break;
    }
    return {};
}

QString MidiExporter::ExportToMidi(const QString &source, QString &target)
{
    m_written.clear();
    m_tunes = 0;
    if (source.isEmpty())
        return {};
    UserDialogs &ui = m_app.ui();
    ToolRunner &tools = m_app.tools();
    const QString cache = tools.cacheFolder();
    {
        QDir dir(cache);
        for (const QString &name : dir.entryList({ QStringLiteral("tmp*.*") }, QDir::Files))
            dir.remove(name);
    }
    const ExportScope scope = exportScopeOf(source);

    if (target.isEmpty()) {
        const QString folder = exportStartFolder(m_app);
        QString name = defaultName(m_app, source);
        if (name.isEmpty())
            name = uniqueName(QStringLiteral("NewMidiFile"), QStringLiteral(".mid"), folder) + QStringLiteral(".mid");
        const QString title = m_app.msg(scope == ExportScope::File       ? "<exportFileMidi>"
                                         : scope == ExportScope::Tune ? "<exportTuneMidi>"
                                                                      : "<exportAbcMidi>");
        target = ui.saveFileName(title, QDir(folder).filePath(name),
                                 { m_app.msg("<midiFile>") + QStringLiteral(" (*.mid)") });
        if (target.isEmpty())
            return {};
        rememberExportFolder(m_app, target);
    }

    QString text = source;
    if (scope == ExportScope::File) {
        text = m_app.store().GetStringFile(source, false, true);
    } else if (scope == ExportScope::Tune) {
        text = midiTuneText(m_app.store().GetStringTune(source, true),
                            m_app.store().GetStringHdrFile(fileKeyOf(source), true), m_app.ini().get(keys::TempoDef));
    }
    const QString input = tools.inCache(kInput);
    QString error;
    if (!writeTextFile(input, text, TextEncoding::Utf8, &error)) {
        ui.contextError(QStringLiteral("ExportToMidi"), error);
        return error;
    }
    if (const QString missing = missingToolText(m_app, Tool::Abc2midi); !missing.isEmpty()) {
        ui.message(missing + CRLF + CRLF + QStringLiteral("Context: ExportToMidi"));
        return missing;
    }
    // The tool's messages go straight to the log, which is what the wait watches.
    QString command = quoted(toolPath(m_app, Tool::Abc2midi)) + u' ' + quoted(kInput);
    if (scope == ExportScope::Tune)
        command += toolOptions(m_app, Tool::Abc2midi) + quoted(kOutput);
    command += QStringLiteral(" >") + quoted(kLog);
    if (!tools.startCommand(command, 0, &error)) {
        const QString text = QStringLiteral("Unable to launch the batch file") + CRLF + CRLF
            + QStringLiteral("Context: ExportToMidi") + CRLF + error;
        ui.message(text);
        return text;
    }
    if (const QString wait = tools.WaitForDispo(tools.inCache(kLog), kMidiLimit); !wait.isEmpty()) {
        ui.message(wait);
        return wait;
    }
    const QString log = readTextFile(tools.inCache(kLog)).text;

    if (scope == ExportScope::Tune) {
        QFile::remove(target);
        if (!QFile::rename(tools.inCache(kOutput), target)) {
            ui.message(log + CRLF + CRLF + QStringLiteral("Context: ExportToMidi"));
            return log;
        }
        m_written << target;
        m_tunes = 1;
        return {};
    }

    // abc2midi names each tune's file after the input and the tune's number.
    const QFileInfo info(target);
    const QString base = info.dir().filePath(info.completeBaseName());
    const QRegularExpression numbered(QStringLiteral("^tmp_mid(.+)\\.mid$"));
    const QDir dir(cache);
    for (const QString &name : dir.entryList({ QStringLiteral("tmp*.mid") }, QDir::Files, QDir::Name)) {
        const QRegularExpressionMatch match = numbered.match(name);
        if (!match.hasMatch())
            continue;
        const QString moved = base + match.captured(1) + QStringLiteral(".mid");
        QFile::remove(moved);
        if (QFile::rename(dir.filePath(name), moved))
            m_written << moved;
    }
    // Tunes that share an X: number overwrote each other's file: say so.
    m_tunes = int(log.count(QStringLiteral("writing MIDI file")));
    if (m_tunes > m_written.size()) {
        ui.statusMessage(m_app.msg("<midiSameX>")
                             .replace(QStringLiteral("%1"), QString::number(m_tunes))
                             .replace(QStringLiteral("%2"), QString::number(m_written.size())));
    }
    return {};
}

} // namespace fenwork
