#pragma once
// From the text in the editor to a page picture: the tune goes to "tmp.abc" in the cache folder,
// abcm2ps makes "tmp.ps", Ghostscript makes one grey bitmap a page ("tmp1.bmp" ...), and the
// page asked for is loaded. Nothing here knows a widget: the caller shows what comes back.
#include <QImage>
#include <QString>
#include <QStringList>

#include <memory>

namespace fenwork {

class AppContext;
class WarmGhostscript;

// The picture control that receives the page. Only the score panel's own picture speaks to the
// user (status texts of the retry and of invalid ABC).
inline const QString kScoreTarget = QStringLiteral("img_Mus");

// The texts of the status strip; literal, as the program has always shown them.
inline const QString kScoreEscaped = QStringLiteral("Escape was pressed, refreshing stopped");
inline const QString kScoreRetry = QStringLiteral("Can't display the score > second attempt, please wait...");
inline const QString kScoreInvalid = QStringLiteral("Can't display the score : invalid ABC code.");

// What the refresh reads of the editor and the tree.
struct ScoreSource
{
    QString tuneKey; // the current tune key; empty: no tune
    QString fileKey; // the current file key: its header goes first
    QString editorText; // txt_ABC as it stands (LF or CR LF lines)
    bool oneLine = false; // chk_OneLine(0)
    QString currentLineTune; // getCurLineAsTune, used with oneLine
};

struct ScoreOutcome
{
    enum class Picture { Unchanged, Page, Blank };
    enum class PageText { Unchanged, Set, Cleared };
    Picture picture = Picture::Unchanged;
    QImage image; // the page, or the blank picture (null when that file is missing)
    QString imagePath; // the file the picture came from
    PageText pageText = PageText::Unchanged;
    bool skipped = false; // automatic refresh is off and the call was not forced
    bool ghostscriptMissing = false; // the degraded path ran: show bt_seeScore, hide chk_pauseScore
    int attempts = 0; // engraver runs
};

class ScoreRefresher
{
public:
    explicit ScoreRefresher(AppContext &app);
    ~ScoreRefresher();

    // bt_seeScore is visible: only a forced refresh draws. Set at start when the seeScore
    // setting is off, and when Ghostscript turns out to be missing.
    bool manualOnly() const { return m_manualOnly; }
    void setManualOnly(bool manual) { m_manualOnly = manual; }

    // The picture shown when there is no score.
    QString blankPicture() const { return m_blankPicture; }
    void setBlankPicture(const QString &path) { m_blankPicture = path; }
    // That picture, read once for each path (null when the file is missing).
    QImage blankImage() const;

    // Redraws the score. `page` below 1 is raised to 1, and the caller sees the raised value.
    ScoreOutcome PartitionRefresh(
        const ScoreSource &source, const QString &target, int resolution, int &page, bool force);

    // The text that goes to "tmp.abc": the file header, CR LF and the tune (or its current line),
    // or with useHdr off the whole editor text.
    QString scoreText(const ScoreSource &source) const;

    // The arguments of the Ghostscript call for `resolution` dots per inch.
    static QStringList ghostscriptArguments(int resolution);

    // Rasterises with a new interpreter for every refresh, as before the kept one (for comparing).
    void setKeepInterpreter(bool keep) { m_keepInterpreter = keep; }

private:
    QImage loadBlank(QString *path) const;

    AppContext &m_app;
    QString m_blankPicture;
    mutable QString m_blankRead; // the path m_blankImage was read from
    mutable QImage m_blankImage;
    bool m_manualOnly = false;
    bool m_missingToolTold = false; // the box for a missing engraver is shown once, then the strip
    bool m_keepInterpreter = true;
    std::unique_ptr<WarmGhostscript> m_ghostscript; // kept from one refresh to the next
};

} // namespace fenwork
