#include "publishing/exportpreview.h"

#include "frame/appcontext.h"
#include "frame/ghostscript.h"
#include "frame/toolrunner.h"
#include "publishing/gsexport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork {

namespace {
const QString kPostScript = QStringLiteral("tmp.ps");
constexpr double kWaitLimit = 6000;
} // namespace

PreviewPages renderPreview(AppContext &app, const PreviewRun &run)
{
    PreviewPages result;
    ToolRunner &tools = app.tools();
    QDir cache(tools.cacheFolder());
    for (const QString &name : cache.entryList({ QStringLiteral("tmp*.bmp") }, QDir::Files))
        cache.remove(name);
    const QString postScript = tools.inCache(kPostScript);
    if (!run.keepPostScript || !QFileInfo::exists(postScript)) {
        QFile::remove(postScript);
        if (const QString missing = missingToolText(app, Tool::Abc2ps); !missing.isEmpty()) {
            result.error = missing;
            return result;
        }
        const QString quote = QStringLiteral("\"");
        const QString command = run.jumpFormat ? commandAbc2ps(app, run.input, postScript)
                                               : quote + toolPath(app, Tool::Abc2ps) + QStringLiteral("\" \"")
                + run.input + QStringLiteral("\" -F\"") + run.formatFile + quote + run.extras + QStringLiteral(" -O \"")
                + postScript + quote;
        QString error;
        if (!tools.startCommand(command, 0, &error)) {
            result.error = error;
            return result;
        }
        if (const QString wait = tools.WaitForDispo(postScript, kWaitLimit); !wait.isEmpty()) {
            result.error = wait;
            return result;
        }
    }
    const QString target = cache.filePath(QStringLiteral("tmp.bmp"));
    QString error;
    if (!RunGhostscript(exportGhostscriptArguments(QStringLiteral("bmp"), run.resolution, target,
                                                   run.paperName, postScript),
                        &error)) {
        result.ghostscriptMissing = error.contains(QLatin1String("gsdll"), Qt::CaseInsensitive);
        result.error = kGsFailure;
        return result;
    }
    result.pages = numberedPages(target);
    return result;
}

} // namespace fenwork
