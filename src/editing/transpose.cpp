#include "editing/transpose.h"

#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"

#include <QDir>
#include <QFile>

namespace fenwork {

namespace {

const QString kInput = QStringLiteral("tmp_trs.abc");
const QString kOutput = QStringLiteral("tmp_trs.trs");
constexpr double kWaitLimit = 6000;

// What a failed step shows: the cause, a hint about rights, where it happened and the step.
void showStepError(AppContext &app, const QString &error, const QString &context, const QString &mark)
{
    app.ui().message(error + CRLF + app.text(QStringLiteral("Msg"), QStringLiteral("<checkRights>")) + CRLF
            + QStringLiteral("Context: ") + context + CRLF + QStringLiteral("errID=") + mark,
        UserDialogs::Icon::Warning);
}

} // namespace

int transposeStep(const QString &unitText, bool down)
{
    bool ok = false;
    const int value = trimBlanks(unitText).toInt(&ok);
    const int step = ok ? value : 0;
    return down ? -step : step;
}

QString Transpose(AppContext &app, const QString &text, int halfTones, bool keepOldFile)
{
    BusyScope busy(app.ui());
    ToolRunner &tools = app.tools();
    const QDir cache(tools.cacheFolder());
    // Earlier scratch files, the score's and the player's among them, are stale after this run.
    for (const QString &name : cache.entryList({ QStringLiteral("tmp*.*") }, QDir::Files))
        QFile::remove(cache.filePath(name));

    QString error;
    if (!keepOldFile && !writeTextFile(cache.filePath(kInput), text, TextEncoding::Utf8, &error)) {
        showStepError(app, error, QStringLiteral("Transpose"), QStringLiteral("1"));
        return {};
    }
    const QString command = commandAbc2abc(app, kInput, qint16(halfTones), kOutput);
    if (!tools.startCommand(command, 0, &error)) {
        showStepError(app, error, QStringLiteral("Transpose"), QStringLiteral("3a"));
        return {};
    }
    const QString output = cache.filePath(kOutput);
    const QString answer = tools.WaitForDispo(output, kWaitLimit);
    if (!answer.isEmpty()) {
        app.ui().message(answer, UserDialogs::Icon::Warning);
        return {};
    }
    return output;
}

QString transposeText(AppContext &app, const QString &text, int halfTones)
{
    const QString path = Transpose(app, text, halfTones, false);
    if (path.isEmpty())
        return {};
    const TextFileResult read = readTextFile(path);
    if (!read.ok) {
        showStepError(app, read.error, QStringLiteral("CallTranspose"), QStringLiteral("b"));
        return {};
    }
    return read.text;
}

} // namespace fenwork
