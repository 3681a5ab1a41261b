#pragma once
#include <QImage>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>

class QCheckBox;
class QLabel;
class QComboBox;
class QLineEdit;
class QSlider;
class QSplitter;
class QTimer;
class QToolButton;

namespace fenwork {

class AppContext;
class ScoreCanvas;
class ScoreRefresher;
struct ScoreOutcome;

// The score `pic_Mus`: the tool strip `lab_MusTools` (zoom `sl_Zoom`, page `txt_page` with
// `upd_page`, `chk_pauseScore`, `bt_seeScore`, `chk_tabs` with `lst_Tabs`, `img_fullScrn`) over
// the page picture `img_Mus`, moved by `scr_musH` and `scr_musV`. Every redraw goes through one
// entry that coalesces: a request made while a refresh waits for its tools is held, and only the
// last one held runs when that refresh ends.
class ScorePanel : public QWidget
{
    Q_OBJECT
public:
    explicit ScorePanel(AppContext &app, QWidget *parent = nullptr);
    ~ScorePanel() override;

    // Reads the settings (seeScore, zoom, tablature row) and the tablature list of the format file.
    void loadSettings();
    // Writes the zoom and horizontal position of the size the panel stands in.
    void saveSettings() const;
    void loadLang();

    // Where the editor's text comes from when a refresh is not given one (zoom, page, manual).
    std::function<QString()> textSource;
    // chk_OneLine(0) and getCurLineAsTune, once the editor offers them.
    std::function<bool()> oneLineTicked;
    std::function<QString()> currentLineTune;

    // A tune was selected: page 1, the picture's top, and the text shown for it.
    void showTune(const QString &text);
    // No tune is shown (a file, the root, the trash): the blank page, after any refresh under way.
    void showBlank();
    // F5/Ctrl+R and bt_seeScore: page 1, drawn even when automatic refresh is off.
    void seeScore();

    // The blank picture (a format file may name its own).
    void setBlankPicturePath(const QString &path);
    QString blankPicturePath() const;
    QImage picture() const;
    bool isBlank() const;

    int zoom() const;
    void setZoom(int zoom); // redraws at that resolution
    int scrollH() const;
    int tablatureRow() const;
    // The editor's pause box: shown during an edit session only.
    void setPauseVisible(bool visible);
    bool isPaused() const;
    bool isManualOnly() const;
    // Ghostscript turned out to be missing elsewhere: only the refresh button draws from now on.
    void enterDegradedMode();
    bool isFullPanel() const { return m_full; }
    // In the full panel: the sizes of the splitter it came from, as they were before.
    QList<int> homeSizes() const { return m_homeSizes; }
    // The zoom follows the panel's width: a page fits it without the horizontal bar.
    bool fitsWidth() const;
    void setFitWidth(bool fit);
    ScoreRefresher &refresher() { return *m_refresher; }
    // Refreshes run so far (the engraver may run twice in one).
    int refreshCount() const { return m_refreshCount; }

public slots:
    // The text changed: redraw it at the page of txt_page, unless paused or a refresh is running,
    // in which case the last text asked for is drawn when that one ends.
    void requestRefresh(const QString &text);
    // Reloads the tablature list from the FmtFile setting and redraws.
    void reloadTablatures();
    void setFullPanel(bool full);

signals:
    void refreshed();
    // chk_pauseScore was clicked: the editor takes the focus back.
    void editorFocusRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Request
    {
        bool hasText = false;
        QString text;
        int page = 0; // 0: the page of txt_page when it runs
        bool force = false;
        bool scrollTop = false;
    };
    void refresh(Request request);
    void runOne(const Request &request);
    void apply(const ScoreOutcome &outcome, int page);
    void showBlankPicture();
    void stepPage(int delta);
    void chooseTablature();
    void placeFull();
    void fitToWidth();

    AppContext &m_app;
    std::unique_ptr<ScoreRefresher> m_refresher;
    QWidget *m_tools;
    QSlider *m_zoom;
    QLabel *m_zoomValue;
    QLineEdit *m_page;
    QToolButton *m_pageUp;
    QToolButton *m_pageDown;
    QCheckBox *m_pause;
    QToolButton *m_seeScore;
    QCheckBox *m_tabsOn;
    QComboBox *m_tabs;
    QToolButton *m_fullButton;
    QToolButton *m_fitButton; // bt_zoomFit
    QTimer *m_fitTimer; // a splitter dragged redraws once, when it rests
    double m_pageInches = 0; // the width of the last page drawn
    ScoreCanvas *m_canvas;

    QString m_lastText;
    int m_pageValue = 1; // the value of upd_page, kept when txt_page is cleared
    bool m_running = false;
    bool m_hasPending = false;
    Request m_pending;
    int m_refreshCount = 0;
    bool m_pauseWanted = false;
    bool m_loadingTabs = false;

    // Full panel: where the panel stood before.
    bool m_full = false;
    QPointer<QSplitter> m_homeSplitter;
    int m_homeIndex = -1;
    QList<int> m_homeSizes;
};

} // namespace fenwork
