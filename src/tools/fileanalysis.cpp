#include "tools/fileanalysis.h"

#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QThread>

namespace fenwork {

namespace {

// Names of their own, so that a score refresh during the analysis cannot overwrite its input.
const QString kInput = QStringLiteral("tmp_ana.abc");
const QString kOutput = QStringLiteral("tmp_ana.ps");

} // namespace

FileAnalysis::Result FileAnalysis::run(const QString &kFile, const std::function<void(int, int)> &progress)
{
    Result result;
    if (m_running)
        return result;
    if (const QString missing = missingToolText(m_app, Tool::Abc2ps); !missing.isEmpty()) {
        result.error = missing;
        return result;
    }
    const Node *body = m_app.tree().find(kFile + key::BdyFile);
    if (!body)
        return result;
    m_running = true;
    m_stop = false;
    const auto done = qScopeGuard([this] { m_running = false; });

    ToolRunner &tools = m_app.tools();
    const QString input = tools.inCache(kInput);
    const QString output = tools.inCache(kOutput);
    const QString command = commandAbc2ps(m_app, kInput, kOutput);
    // Keys first: events run during the waits, and the tree may change under a walk.
    QStringList keys;
    for (const Node *tune : body->children())
        keys.append(tune->Key);
    const int count = int(keys.size());
    for (int i = 0; i < count && !m_stop; ++i) {
        if (progress)
            progress(i, count);
        const Node *tune = m_app.tree().find(keys.at(i));
        if (!tune)
            continue;
        const QString label = tune->Text;
        QString text = m_app.store().GetStringTune(keys.at(i), false, 0);
        if (!text.endsWith(CRLF))
            text += CRLF;
        if (!writeTextFile(input, text, TextEncoding::Utf8)) {
            result.error = QStringLiteral("cannot write ") + input;
            break;
        }
        bool good = false;
        for (int attempt = 0; attempt < 2 && !good && !m_stop; ++attempt) {
            if (!QFile::remove(output) && QFileInfo::exists(output)) {
                QThread::msleep(200);
                QFile::remove(output);
            }
            QString why;
            if (!tools.startCommand(command, 0, &why)) {
                // An engraver that cannot start would make every tune look bad.
                result.error = why;
                m_stop = true;
                break;
            }
            const QString wait = tools.WaitForDispo(kOutput, waitLimit);
            if (wait.isEmpty())
                good = true;
            else if (wait == kWaitEscape)
                m_stop = true;
            // A tool still running now hangs: it must not hold up the next wait.
            tools.endWriters(kOutput);
        }
        if (m_stop)
            break;
        if (!good)
            result.badTunes.append(label);
    }
    result.stopped = m_stop && result.error.isEmpty();
    QFile::remove(input);
    QFile::remove(output);
    if (progress)
        progress(0, count);
    return result;
}

} // namespace fenwork
