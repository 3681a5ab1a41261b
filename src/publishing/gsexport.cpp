#include "publishing/gsexport.h"

#include "frame/appcontext.h"
#include "frame/ghostscript.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"
#include "frame/textfile.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "tablature/tablaturelist.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace fenwork {

namespace {

const QString kInput = QStringLiteral("tmp_exp.abc");
const QString kPostScript = QStringLiteral("tmp_exp.ps");
const QString kPrn = QStringLiteral("tmp.prn");
// The engraver may take a while over a whole tune book; Esc still ends the wait.
constexpr double kEngraveLimit = 60000;

QString quoted(const QString &path)
{
    return u'"' + path + u'"';
}

void deleteScratch(const QString &cache)
{
    QDir dir(cache);
    for (const QString &name : dir.entryList({ QStringLiteral("tmp*.*") }, QDir::Files))
        dir.remove(name);
}

} // namespace

QStringList exportGhostscriptArguments(const QString &extension, int resolution, const QString &target,
                                       const QString &paperName, const QString &postScript)
{
    QString first = QStringLiteral("ps2pdf");
    QString device = QStringLiteral("-sDEVICE=pdfwrite");
    const QString ext = extension.toLower();
    if (ext == u"jpg") {
        first = QStringLiteral("ps2jpeg");
        device = QStringLiteral("-sDEVICE=jpeggray");
    } else if (ext == u"png") {
        first = QStringLiteral("ps2png");
        device = QStringLiteral("-sDEVICE=pnggray");
    } else if (ext == u"bmp" || ext == u"prn") {
        first = QStringLiteral("ps2bmp");
        device = QStringLiteral("-sDEVICE=bmpgray");
    }
    const bool pdf = first == u"ps2pdf";
    // Ghostscript refuses "-r0"; 720 is what pdfwrite takes when it is given none, and pictures
    // get their usual default.
    const int dpi = resolution > 0 ? resolution : pdf ? 720 : 120;
    const QString output = pdf ? QString(target).replace(u'%', QStringLiteral("%%")) : numberedOutputPattern(target);
    // The PDF list had ".setpdfwrite" after "-c"; Ghostscript 10 no longer defines it (the run
    // would fail with /undefined), so the "-c" stands empty as in the others.
    return { first,
             QStringLiteral("-dNOPAUSE"),
             QStringLiteral("-dBATCH"),
             QStringLiteral("-dSAFER"),
             QStringLiteral("-r") + QString::number(dpi),
             device,
             QStringLiteral("-sOutputFile=") + output,
             QStringLiteral("-sPAPERSIZE=") + paperName,
             QStringLiteral("-c"),
             QStringLiteral("-f"),
             postScript };
}

GsExporter::GsExporter(AppContext &app, ExportDialogHost *host)
    : m_app(app)
    , m_host(host)
{ }

QString GsExporter::formatFile() const
{
    return m_formatFile.isEmpty() ? m_app.paths().inUser(QStringLiteral("format.fmt")) : m_formatFile;
}

QString GsExporter::defaultName(const AppContext &app, const QString &source, const QString &extension)
{
    switch (exportScopeOf(source)) {
    case ExportScope::File: {
        const QString path = GetPathFile(app, fileKeyOf(source));
        return QFileInfo(path).completeBaseName() + u'.' + extension;
    }
    case ExportScope::Tune: {
        QString title = tuneTitle(app.store().GetStringTune(source, false));
        if (title.isEmpty())
            title = QStringLiteral("Tune");
        return safeFileName(title.left(20) + u'.' + extension);
    }
    case ExportScope::List:
        break;
    }
    return QStringLiteral("NewFile");
}

QString GsExporter::ExportViaGs(const QString &source, QString &extension, QString &target, int &resolution)
{
    if (source.isEmpty())
        return {};
    UserDialogs &ui = m_app.ui();
    ui.setBusy(true);
    const QString answer = run(source, extension, target, resolution);
    ui.setBusy(false);
    ui.statusMessage({});
    return answer;
}

QString GsExporter::run(const QString &source, QString &extension, QString &target, int &resolution)
{
    UserDialogs &ui = m_app.ui();
    ToolRunner &tools = m_app.tools();
    m_ghostscriptMissing = false;
    m_written.clear();
    const QString cache = tools.cacheFolder();
    const QString input = tools.inCache(kInput);
    const QString postScript = tools.inCache(kPostScript);
    deleteScratch(cache);

    const ExportScope scope = exportScopeOf(source);
    QString text = source;
    if (scope != ExportScope::List) {
        text = scope == ExportScope::File ? m_app.store().GetStringFile(source, true, false)
                                          : m_app.store().GetStringTune(source, true);
        text = latin2Fold(text, m_app.store().GetCharset(fileKeyOf(source)));
    }
    QString error;
    if (!writeTextFile(input, text, TextEncoding::Utf8, &error)) {
        ui.contextError(QStringLiteral("ExportViaGs"), error);
        return error;
    }

    const QString ext = extension.toLower();
    if (resolution == 0) {
        if (ext == u"setup")
            resolution = 300;
        else if (ext == u"prn")
            resolution = m_app.ini().getInt(keys::PrintResolution);
        else if (ext == u"png" || ext == u"bmp" || ext == u"jpg")
            resolution = 120;
    }

    const bool dialogRun = target.isEmpty();
    QString paper = QStringLiteral("a4");
    QString extras;
    bool jumpFormat = false;
    if (dialogRun) {
        if (!m_host)
            return {};
        ExportDialogRequest request;
        request.inputPath = input;
        request.extension = extension.toUpper();
        request.scope = scope;
        request.resolution = resolution;
        ui.setBusy(false);
        const ExportDialogAnswer dialog = m_host->showExportDialog(request);
        if (ext == u"setup")
            return {};
        ui.setBusy(true);
        if (dialog.paperName.isEmpty())
            return {};
        resolution = dialog.resolution;
        extension = dialog.extension.toLower();
        paper = dialog.paperName;
        jumpFormat = dialog.jumpFormat;
        if (dialog.addTabs)
            extras = tablatureScoreExtras(m_app.ini().get(keys::FmtFile), true, dialog.tabsRow);
    }
    m_paperName = paper;

    bool chosen = false;
    if (extension == u"prn") {
        target = tools.inCache(kPrn);
    } else if (dialogRun) {
        static const char *const filterKeys[][2] = {
            { "pdf", "<pdfFile>" }, { "png", "<pngFile>" }, { "jpg", "<jpegFile>" }, { "bmp", "<bmpFile>" }
        };
        QStringList filters;
        for (const auto &row : filterKeys) {
            if (extension == QLatin1String(row[0])) {
                const QString suffix = extension == u"pdf" ? QStringLiteral(" PDF") : QString();
                filters << m_app.msg(row[1]) + suffix + QStringLiteral(" (*.") + extension + u')';
            }
        }
        const QString title = extension.toUpper() + u' '
            + m_app.msg(scope == ExportScope::File       ? "<exportFileTo>"
                         : scope == ExportScope::Tune ? "<exportTuneTo>"
                                                      : "<exportAbcTo>");
        const QString folder = exportStartFolder(m_app);
        const QString startPath = QDir(folder).filePath(defaultName(m_app, source, extension));
        target = ui.saveFileName(title, startPath, filters);
        if (target.isEmpty())
            return {};
        rememberExportFolder(m_app, target);
        chosen = true;
    }

    const QString tool = toolPath(m_app, Tool::Abc2ps);
    if (const QString missing = missingToolText(m_app, Tool::Abc2ps); !missing.isEmpty()) {
        ui.message(missing + CRLF + CRLF + QStringLiteral("Context: ExportViaGs"));
        return missing;
    }
    const QString command = jumpFormat
        ? commandAbc2ps(m_app, input, postScript)
        : quoted(tool) + u' ' + quoted(input) + QStringLiteral(" -F") + quoted(formatFile()) + extras
            + QStringLiteral(" -O ") + quoted(postScript);
    if (!tools.startCommand(command, 0, &error)) {
        ui.message(error + CRLF + CRLF + QStringLiteral("Context: ExportViaGs"));
        return error;
    }
    if (const QString wait = tools.WaitForDispo(postScript, kEngraveLimit); !wait.isEmpty()) {
        ui.setBusy(false);
        ui.message(wait + CRLF + CRLF + QStringLiteral("Context: ExportViaGs"));
        return wait;
    }

    ui.statusMessage(m_app.msg("<expInProc>") + u' ' + QFileInfo(target).fileName());
    const QString targetExt = target.mid(target.lastIndexOf(u'.') + 1);
    const QString gsExt = extension == u"prn" ? extension : targetExt;
    const QStringList arguments = exportGhostscriptArguments(gsExt, resolution, target, paper, postScript);
    clearGhostscriptMessages();
    if (!RunGhostscript(arguments, &error)) {
        if (error.contains(QLatin1String("gsdll"), Qt::CaseInsensitive)) {
            ui.setBusy(false);
            ui.message(m_app.msg("<gsdllErr>"));
            m_ghostscriptMissing = true;
            ui.statusMessage(m_app.msg("<gsDegrad>"));
        }
        return kGsFailure;
    }
    const QString lower = gsExt.toLower();
    m_written = (lower == u"png" || lower == u"bmp" || lower == u"jpg" || lower == u"prn") ? numberedPages(target)
                                                                                         : QStringList { target };
    if (chosen)
        offerViewer(extension, target);
    return {};
}

void GsExporter::offerViewer(const QString &extension, const QString &target)
{
    UserDialogs &ui = m_app.ui();
    ui.setBusy(false);
    const QString question
        = m_app.msg("<viewFile>") + u' ' + extension.toUpper() + QStringLiteral(" [") + target + QStringLiteral("] ?");
    if (ui.question(question) != UserDialogs::Answer::Yes)
        return;
    const bool picture = extension != u"pdf";
    const QString file = picture ? numberedPages(target).value(0, target) : target;
    QString viewer = m_app.ini().get(picture ? keys::VisuBitmap : keys::VisuPdf);
    // The old Windows defaults stood for the system's own viewer, as an empty setting does here.
    if (viewer.compare(QLatin1String("mspaint.exe"), Qt::CaseInsensitive) == 0
        || viewer.compare(QLatin1String("explorer.exe"), Qt::CaseInsensitive) == 0)
        viewer.clear();
    // A viewer that does not start gives way to the desktop's own.
    if (viewer.isEmpty() || !QProcess::startDetached(viewer, { file }))
        QDesktopServices::openUrl(QUrl::fromLocalFile(file));
}

} // namespace fenwork
