#include "score/scorerefresh.h"

#include "frame/appcontext.h"
#include "frame/ghostscript.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "frame/warmghostscript.h"
#include "store/tunestore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QThread>

namespace fenwork {

namespace {

const QString kInput = QStringLiteral("tmp.abc");
const QString kPostScript = QStringLiteral("tmp.ps");
const QString kFirstPage = QStringLiteral("tmp1.bmp");
constexpr double kWaitLimit = 2000;

bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(bytes) == bytes.size();
}

void removePages(const QString &folder)
{
    QDir dir(folder);
    const QStringList pages = dir.entryList({ QStringLiteral("tmp*.bmp") }, QDir::Files);
    for (const QString &page : pages)
        dir.remove(page);
}

// The interpreter works on bare names: it runs with the cache as the current folder.
class CurrentFolder
{
public:
    explicit CurrentFolder(const QString &folder)
        : m_old(QDir::currentPath())
    {
        QDir::setCurrent(folder);
    }
    ~CurrentFolder() { QDir::setCurrent(m_old); }
    CurrentFolder(const CurrentFolder &) = delete;
    CurrentFolder &operator=(const CurrentFolder &) = delete;

private:
    QString m_old;
};

} // namespace

ScoreRefresher::ScoreRefresher(AppContext &app)
    : m_app(app)
    , m_ghostscript(std::make_unique<WarmGhostscript>())
{ }

ScoreRefresher::~ScoreRefresher() = default;

QStringList ScoreRefresher::ghostscriptArguments(int resolution)
{
    QStringList arguments { QStringLiteral("ps2bmp"), QStringLiteral("-dNOPAUSE"), QStringLiteral("-dBATCH"),
        QStringLiteral("-dSAFER") };
    // Ghostscript 10 refuses -r0: no resolution means the device's own.
    if (resolution > 0)
        arguments << QStringLiteral("-r") + QString::number(resolution);
    // Smoothed text and lines, so that the page reads like any other score on screen; the rest
    // of the list keeps its classic order.
    arguments << QStringLiteral("-dTextAlphaBits=4") << QStringLiteral("-dGraphicsAlphaBits=4");
    arguments << QStringLiteral("-sDEVICE=bmpgray") << QStringLiteral("-sOutputFile=tmp%d.bmp")
              << QStringLiteral("-c") << QStringLiteral("-f") << kPostScript;
    return arguments;
}

QString ScoreRefresher::scoreText(const ScoreSource &source) const
{
    if (!m_app.ini().getBool(keys::UseHdr))
        return source.editorText; // the whole text, even with the one-line box ticked
    const QString tune = source.oneLine ? source.currentLineTune : source.editorText;
    // Included files are put in: the tool runs in the cache folder, where their names mean nothing.
    const QString header
        = source.fileKey.isEmpty() ? QString() : m_app.store().GetStringHdrFile(source.fileKey, true);
    return header + CRLF + tune;
}

QImage ScoreRefresher::blankImage() const
{
    if (m_blankRead != m_blankPicture || (m_blankImage.isNull() && !m_blankPicture.isEmpty())) {
        m_blankRead = m_blankPicture;
        m_blankImage = QImage();
        if (!m_blankPicture.isEmpty())
            m_blankImage.load(m_blankPicture);
    }
    return m_blankImage;
}

QImage ScoreRefresher::loadBlank(QString *path) const
{
    *path = m_blankPicture;
    return blankImage();
}

ScoreOutcome ScoreRefresher::PartitionRefresh(
    const ScoreSource &source, const QString &target, int resolution, int &page, bool force)
{
    ScoreOutcome outcome;
    if (m_manualOnly && !force) {
        outcome.skipped = true;
        return outcome;
    }
    const bool speaks = target == kScoreTarget;
    UserDialogs &ui = m_app.ui();

    if (source.tuneKey.isEmpty() || source.editorText.isEmpty()) {
        outcome.picture = ScoreOutcome::Picture::Blank;
        outcome.image = loadBlank(&outcome.imagePath);
        return outcome;
    }

    ToolRunner &tools = m_app.tools();
    const QString cache = tools.cacheFolder();
    // A missing engraver is said as such, not as a text it could not read.
    if (const QString missing = missingToolText(m_app, Tool::Abc2ps); !missing.isEmpty()) {
        outcome.picture = ScoreOutcome::Picture::Blank;
        outcome.image = loadBlank(&outcome.imagePath);
        outcome.pageText = ScoreOutcome::PageText::Cleared;
        if (speaks) {
            ui.statusMessage(CRLF + u' ' + missing);
            if (!m_missingToolTold || force) {
                m_missingToolTold = true;
                ui.setBusy(false);
                ui.message(missing, UserDialogs::Icon::Warning);
            }
        }
        return outcome;
    }

    // The text as the tool reads it: UTF-8, unless the header asks for Latin-1.
    QString text = crlfLines(scoreText(source));
    if (!text.endsWith(CRLF))
        text += CRLF;
    const TextEncoding encoding = headerDeclaresLatin1(text) ? TextEncoding::Latin1 : TextEncoding::Utf8;
    writeBytes(tools.inCache(kInput), encodeText(text, encoding));

    const QString postScript = tools.inCache(kPostScript);
    const auto escaped = [&] {
        ui.statusMessage(CRLF + u' ' + kScoreEscaped);
        return outcome;
    };

    for (;;) {
        ++outcome.attempts;
        if (!QFile::remove(postScript) && QFileInfo::exists(postScript)) {
            QThread::msleep(200);
            QFile::remove(postScript);
        }
        // A tool that cannot start writes nothing: the wait below gives up at once.
        tools.startCommand(commandAbc2ps(m_app, kInput, kPostScript), 0);
        removePages(cache);

        if (tools.WaitForDispo(kPostScript, kWaitLimit) == kWaitEscape)
            return escaped();

        // Without PostScript (the engraver is missing or wrote nothing) there is nothing to
        // rasterise: only whether the library is there matters, and the page load below fails
        // as for invalid ABC.
        QString error;
        bool ran;
        if (QFileInfo(postScript).size() > 0) {
            const CurrentFolder inCache(cache);
            QStringList arguments = ghostscriptArguments(resolution);
            if (m_keepInterpreter) {
                // The kept interpreter is set up with the list up to the output file and is
                // handed the PostScript for each run.
                arguments.resize(arguments.size() - 3);
                ran = m_ghostscript->run(arguments, kPostScript, &error);
            } else {
                ran = RunGhostscript(arguments, &error);
            }
        } else {
            ran = ghostscriptAvailable(&error);
        }
        if (!ran && error.contains(QStringLiteral("gsdll"), Qt::CaseInsensitive)) {
            ui.setBusy(false);
            ui.message(
                m_app.text(QStringLiteral("Msg"), QStringLiteral("<gsdllErr>")), UserDialogs::Icon::Warning);
            m_manualOnly = true;
            outcome.ghostscriptMissing = true;
            ui.statusMessage(m_app.text(QStringLiteral("Msg"), QStringLiteral("<gsDegrad>")));
            return outcome;
        }
        if (!ran)
            ui.message(error + CRLF + CRLF + QStringLiteral("Context: PartitionRefresh"),
                UserDialogs::Icon::Warning);

        // The interpreter ran in this process: its pages are all written now, or none will come.
        if (QFileInfo::exists(tools.inCache(kFirstPage))
            && tools.WaitForDispo(kFirstPage, kWaitLimit) == kWaitEscape)
            return escaped();

        if (page < 1)
            page = 1;
        const QString pagePath
            = tools.inCache(QStringLiteral("tmp") + QString::number(page) + QStringLiteral(".bmp"));
        QImage image;
        if (image.load(pagePath)) {
            outcome.picture = ScoreOutcome::Picture::Page;
            outcome.image = image;
            outcome.imagePath = pagePath;
            outcome.pageText = ScoreOutcome::PageText::Set;
            return outcome;
        }

        outcome.picture = ScoreOutcome::Picture::Blank;
        outcome.image = loadBlank(&outcome.imagePath);
        outcome.pageText = ScoreOutcome::PageText::Cleared;
        if (outcome.attempts >= 2) {
            if (speaks)
                ui.statusMessage(CRLF + u' ' + kScoreInvalid);
            return outcome;
        }
        if (speaks)
            ui.statusMessage(CRLF + u' ' + kScoreRetry);
    }
}

} // namespace fenwork
