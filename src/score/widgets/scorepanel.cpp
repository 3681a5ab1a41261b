#include "score/widgets/scorepanel.h"

#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/userdialogs.h"
#include "score/scorerefresh.h"
#include "score/scorezoom.h"
#include "score/widgets/scorecanvas.h"
#include "tablature/tablaturelist.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSlider>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace fenwork {

namespace {

const QString kMainForm = QStringLiteral("MainForm");
const QString kTTText = QStringLiteral("TTText");
constexpr int kArrowStep = 150;
constexpr int kZoomMin = 50;
constexpr int kZoomMax = 300;

// An empty A4 page at `dpi`, for when the blank picture file is missing.
QImage drawnBlankPage(int dpi)
{
    const int d = qMax(kZoomMin, dpi);
    QImage page(d * 827 / 100, d * 1169 / 100, QImage::Format_Grayscale8);
    page.fill(Qt::white);
    return page;
}

QToolButton *toolButton(const char *name, const QString &icon)
{
    auto *button = new QToolButton;
    button->setObjectName(QString::fromLatin1(name));
    button->setIcon(QIcon::fromTheme(icon));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace

ScorePanel::ScorePanel(AppContext &app, QWidget *parent)
    : QWidget(parent)
    , m_app(app)
    , m_refresher(std::make_unique<ScoreRefresher>(app))
{
    setObjectName(QStringLiteral("pic_Mus"));
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(true);

    m_tools = new QWidget;
    m_tools->setObjectName(QStringLiteral("lab_MusTools"));
    auto *strip = new QHBoxLayout(m_tools);
    strip->setContentsMargins(4, 2, 4, 2);
    strip->setSpacing(4);

    m_zoom = new QSlider(Qt::Horizontal);
    m_zoom->setObjectName(QStringLiteral("sl_Zoom"));
    m_zoom->setRange(kZoomMin, kZoomMax);
    m_zoom->setSingleStep(1);
    m_zoom->setPageStep(10);
    m_zoom->setValue(110);
    // Dragging redraws once, at the release: each redraw runs the engraver.
    m_zoom->setTracking(false);
    m_zoom->setFocusPolicy(Qt::NoFocus);
    m_zoom->setMinimumWidth(80);
    m_zoom->setMaximumWidth(160);

    m_page = new QLineEdit;
    m_page->setObjectName(QStringLiteral("txt_page"));
    m_page->setValidator(new QIntValidator(1, 9999, m_page));
    m_page->setAlignment(Qt::AlignCenter);
    m_page->setFixedWidth(m_page->fontMetrics().horizontalAdvance(QStringLiteral("0000")) + 12);
    auto *updown = new QWidget;
    updown->setObjectName(QStringLiteral("upd_page"));
    auto *updownLayout = new QVBoxLayout(updown);
    updownLayout->setContentsMargins(0, 0, 0, 0);
    updownLayout->setSpacing(0);
    m_pageUp = new QToolButton;
    m_pageUp->setObjectName(QStringLiteral("upd_pageUp"));
    m_pageUp->setArrowType(Qt::UpArrow);
    m_pageDown = new QToolButton;
    m_pageDown->setObjectName(QStringLiteral("upd_pageDown"));
    m_pageDown->setArrowType(Qt::DownArrow);
    for (QToolButton *b : { m_pageUp, m_pageDown }) {
        b->setFixedSize(16, 11);
        b->setFocusPolicy(Qt::NoFocus);
        b->setAutoRaise(true);
        updownLayout->addWidget(b);
    }

    m_pause = new QCheckBox;
    m_pause->setObjectName(QStringLiteral("chk_pauseScore"));
    m_pause->setFocusPolicy(Qt::NoFocus);
    m_pause->setVisible(false);
    m_seeScore = toolButton("bt_seeScore", QStringLiteral("view-refresh"));
    m_seeScore->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_seeScore->setVisible(false);

    m_tabsOn = new QCheckBox;
    m_tabsOn->setObjectName(QStringLiteral("chk_tabs"));
    m_tabsOn->setFocusPolicy(Qt::NoFocus);
    m_tabs = new QComboBox;
    m_tabs->setObjectName(QStringLiteral("lst_Tabs"));
    m_tabs->setEnabled(false);
    m_tabs->setFocusPolicy(Qt::NoFocus);
    m_tabs->setSizeAdjustPolicy(QComboBox::AdjustToContents);

    m_fullButton = toolButton("img_fullScrn", QStringLiteral("view-fullscreen"));
    m_fullButton->setCheckable(true);

    auto *zoomIcon = new QToolButton;
    zoomIcon->setObjectName(QStringLiteral("lab_zoom"));
    zoomIcon->setIcon(QIcon::fromTheme(QStringLiteral("zoom-in")));
    zoomIcon->setAutoRaise(true);
    zoomIcon->setEnabled(true);
    zoomIcon->setFocusPolicy(Qt::NoFocus);
    zoomIcon->setAttribute(Qt::WA_TransparentForMouseEvents);

    // The resolution as a number, following the slider while it is dragged.
    auto *zoomValue = m_zoomValue = new QLabel;
    zoomValue->setObjectName(QStringLiteral("lab_zoomValue"));
    zoomValue->setMinimumWidth(zoomValue->fontMetrics().horizontalAdvance(QStringLiteral("000")) + 4);
    zoomValue->setNum(m_zoom->value());
    connect(m_zoom, &QSlider::sliderMoved, zoomValue, qOverload<int>(&QLabel::setNum));
    connect(m_zoom, &QSlider::valueChanged, zoomValue, qOverload<int>(&QLabel::setNum));

    m_fitButton = toolButton("bt_zoomFit", QStringLiteral("zoom-fit-width"));
    m_fitButton->setCheckable(true);
    m_fitTimer = new QTimer(this);
    m_fitTimer->setSingleShot(true);
    m_fitTimer->setInterval(150);
    connect(m_fitTimer, &QTimer::timeout, this, &ScorePanel::fitToWidth);

    strip->addWidget(zoomIcon);
    strip->addWidget(m_zoom);
    strip->addWidget(zoomValue);
    strip->addWidget(m_fitButton);
    strip->addSpacing(8);
    strip->addWidget(m_page);
    strip->addWidget(updown);
    strip->addSpacing(8);
    strip->addWidget(m_tabsOn);
    strip->addWidget(m_tabs);
    strip->addSpacing(8);
    strip->addWidget(m_pause);
    strip->addWidget(m_seeScore);
    strip->addStretch(1);
    strip->addWidget(m_fullButton);

    m_canvas = new ScoreCanvas;
    m_canvas->imageWidget()->installEventFilter(this);
    m_canvas->installEventFilter(this);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tools);
    layout->addWidget(m_canvas, 1);

    connect(m_zoom, &QSlider::valueChanged, this, [this] {
        refresh({});
        setFocus();
    });
    // A zoom chosen by hand ends the fitting.
    connect(m_zoom, &QSlider::actionTriggered, this, [this] { setFitWidth(false); });
    connect(m_fitButton, &QToolButton::toggled, this, [this](bool fit) {
        m_app.ini().setBool(keys::ZoomFit, fit);
        if (fit)
            fitToWidth();
    });
    connect(m_pageUp, &QToolButton::clicked, this, [this] { stepPage(1); });
    connect(m_pageDown, &QToolButton::clicked, this, [this] { stepPage(-1); });
    connect(m_pause, &QCheckBox::toggled, this, [this](bool ticked) {
        QPalette palette = m_pause->palette();
        palette.setColor(
            QPalette::WindowText, ticked ? QColor(255, 0, 0) : this->palette().color(QPalette::WindowText));
        m_pause->setPalette(palette);
        emit editorFocusRequested();
    });
    connect(m_seeScore, &QToolButton::clicked, this, [this] { seeScore(); });
    connect(m_tabsOn, &QCheckBox::toggled, this, [this] { chooseTablature(); });
    connect(m_tabs, &QComboBox::activated, this, [this] { chooseTablature(); });
    connect(m_fullButton, &QToolButton::toggled, this, &ScorePanel::setFullPanel);

    showBlankPicture();
    loadLang();
}

ScorePanel::~ScorePanel() = default;

void ScorePanel::loadLang()
{
    const Language &lang = m_app.lang();
    m_page->setToolTip(lang.text(kTTText, QStringLiteral("<page>")));
    m_pageUp->setToolTip(m_page->toolTip());
    m_pageDown->setToolTip(m_page->toolTip());
    m_pause->setText(lang.text(kTTText, QStringLiteral("<pauseScore>")));
    m_seeScore->setText(lang.text(kMainForm, QStringLiteral("<updateScore>")));
    m_seeScore->setToolTip(m_seeScore->text() + QStringLiteral(" (Ctrl+R)"));
    m_tabsOn->setToolTip(lang.text(kTTText, QStringLiteral("<viewTabs>")));
    m_tabs->setToolTip(m_tabsOn->toolTip());
    m_zoom->setToolTip(lang.text(kTTText, QStringLiteral("<zoom>")));
    m_fitButton->setToolTip(lang.text(kTTText, QStringLiteral("<zoomFit>")));
    m_fullButton->setToolTip(lang.text(kTTText, QStringLiteral("<fullScreen>")));
}

void ScorePanel::loadSettings()
{
    const IniFile &ini = m_app.ini();
    const bool manual = !ini.getBool(keys::SeeScore);
    m_refresher->setManualOnly(manual);
    m_seeScore->setVisible(manual);
    m_pause->setVisible(m_pauseWanted && !manual);
    {
        const QSignalBlocker block(m_zoom);
        m_zoom->setValue(qBound(kZoomMin, ini.getInt(keys::Zoom), kZoomMax));
    }
    m_zoomValue->setNum(m_zoom->value());
    {
        const QSignalBlocker block(m_fitButton);
        m_fitButton->setChecked(ini.getBool(keys::ZoomFit));
    }
    reloadTablatures();
    const int row = ini.getInt(keys::TablaturesIndex);
    if (row > 0 && row < m_tabs->count())
        m_tabs->setCurrentIndex(row);
    m_canvas->horizontalBar()->setValue(ini.get(keys::ScrollHScore).toInt());
}

void ScorePanel::saveSettings() const
{
    const IniFile &ini = m_app.ini();
    ini.set(m_full ? keys::ZoomMax : keys::Zoom, QString::number(m_zoom->value()));
    ini.set(m_full ? keys::ScrollHScoreMax : keys::ScrollHScore, QString::number(scrollH()));
    ini.set(keys::TablaturesIndex, QString::number(qMax(0, m_tabs->currentIndex())));
}

void ScorePanel::reloadTablatures()
{
    const QString format = m_app.ini().get(keys::FmtFile);
    const TablatureList list = LoadTabsList(m_app, format);
    if (list.loaded) {
        const int row = m_tabs->currentIndex();
        m_loadingTabs = true;
        m_tabs->clear();
        m_tabs->addItems(list.entries);
        m_tabs->setCurrentIndex(row >= 0 && row < m_tabs->count() ? row : 0);
        m_loadingTabs = false;
        m_refresher->setBlankPicture(list.blankPicture);
    } else if (m_refresher->blankPicture().isEmpty()) {
        m_refresher->setBlankPicture(standardBlankPicture(m_app));
    }
    m_app.scoreExtras = tablatureScoreExtras(format, m_tabsOn->isChecked(), m_tabs->currentIndex());
    refresh({});
}

void ScorePanel::chooseTablature()
{
    if (m_loadingTabs)
        return;
    m_tabs->setEnabled(m_tabsOn->isChecked());
    m_app.scoreExtras
        = tablatureScoreExtras(m_app.ini().get(keys::FmtFile), m_tabsOn->isChecked(), m_tabs->currentIndex());
    refresh({});
}

void ScorePanel::showTune(const QString &text)
{
    m_lastText = text;
    Request request;
    request.hasText = true;
    request.text = text;
    request.page = 1;
    request.scrollTop = true;
    refresh(request);
}

void ScorePanel::showBlank()
{
    showTune(QString());
}

void ScorePanel::seeScore()
{
    Request request;
    request.page = 1;
    request.force = true;
    BusyScope busy(m_app.ui());
    refresh(request);
}

void ScorePanel::requestRefresh(const QString &text)
{
    m_lastText = text;
    if (isPaused())
        return;
    Request request;
    request.hasText = true;
    request.text = text;
    refresh(request);
}

void ScorePanel::stepPage(int delta)
{
    // A page typed into the box is where the arrows start from.
    bool typed = false;
    const int shown = m_page->text().toInt(&typed);
    if (typed && shown > 0)
        m_pageValue = shown;
    m_pageValue = qMax(1, m_pageValue + delta);
    m_page->setText(QString::number(m_pageValue));
    Request request;
    request.scrollTop = true;
    refresh(request);
}

void ScorePanel::refresh(Request request)
{
    if (m_running) {
        // The newest request wins; a forced one keeps its force, and a new tune its page 1.
        if (m_hasPending) {
            request.force = request.force || m_pending.force;
            request.scrollTop = request.scrollTop || m_pending.scrollTop;
            if (!request.hasText && m_pending.hasText) {
                request.hasText = true;
                request.text = m_pending.text;
            }
            if (request.page == 0)
                request.page = m_pending.page;
        }
        m_pending = request;
        m_hasPending = true;
        return;
    }
    m_running = true;
    for (;;) {
        runOne(request);
        if (!m_hasPending)
            break;
        request = m_pending;
        m_hasPending = false;
    }
    m_running = false;
}

void ScorePanel::runOne(const Request &request)
{
    ScoreSource source;
    source.tuneKey = m_app.selection().tuneKey();
    source.fileKey = m_app.selection().fileKey();
    source.editorText = request.hasText ? request.text : textSource ? textSource() : m_lastText;
    source.oneLine = oneLineTicked && oneLineTicked();
    if (source.oneLine && currentLineTune)
        source.currentLineTune = currentLineTune();

    int page = request.page > 0 ? request.page : m_page->text().toInt();
    ++m_refreshCount;
    const ScoreOutcome outcome
        = m_refresher->PartitionRefresh(source, kScoreTarget, m_zoom->value(), page, request.force);
    apply(outcome, page);
    // Drawing by hand only keeps the page of a tune still shown, never one that has gone.
    if (outcome.skipped && (source.tuneKey.isEmpty() || source.editorText.isEmpty()))
        showBlankPicture();
    if (request.scrollTop)
        m_canvas->verticalBar()->setValue(m_canvas->verticalBar()->minimum());
    emit refreshed();
}

void ScorePanel::apply(const ScoreOutcome &outcome, int page)
{
    switch (outcome.picture) {
    case ScoreOutcome::Picture::Unchanged:
        break;
    case ScoreOutcome::Picture::Page:
        m_canvas->setImage(outcome.image);
        // Now the page's own width is known, the fitted zoom may change once.
        m_pageInches = double(outcome.image.width()) / qMax(1, m_zoom->value());
        if (fitsWidth())
            m_fitTimer->start();
        break;
    case ScoreOutcome::Picture::Blank:
        m_canvas->setImage(outcome.image.isNull() ? drawnBlankPage(m_zoom->value()) : outcome.image);
        break;
    }
    switch (outcome.pageText) {
    case ScoreOutcome::PageText::Unchanged:
        break;
    case ScoreOutcome::PageText::Set:
        m_pageValue = page;
        m_page->setText(QString::number(page));
        break;
    case ScoreOutcome::PageText::Cleared:
        m_page->clear();
        break;
    }
    if (outcome.ghostscriptMissing) {
        m_seeScore->setVisible(true);
        m_pause->setVisible(false);
    }
}

void ScorePanel::showBlankPicture()
{
    const QImage blank = m_refresher->blankImage();
    m_canvas->setImage(blank.isNull() ? drawnBlankPage(m_zoom->value()) : blank);
}

void ScorePanel::setBlankPicturePath(const QString &path)
{
    m_refresher->setBlankPicture(path);
}

QString ScorePanel::blankPicturePath() const
{
    return m_refresher->blankPicture();
}

QImage ScorePanel::picture() const
{
    return m_canvas->image();
}

bool ScorePanel::isBlank() const
{
    return m_page->text().isEmpty();
}

int ScorePanel::zoom() const
{
    return m_zoom->value();
}

void ScorePanel::setZoom(int zoom)
{
    m_zoom->setValue(qBound(kZoomMin, zoom, kZoomMax));
}

int ScorePanel::scrollH() const
{
    return m_canvas->horizontalBar()->value();
}

int ScorePanel::tablatureRow() const
{
    return qMax(0, m_tabs->currentIndex());
}

void ScorePanel::enterDegradedMode()
{
    m_refresher->setManualOnly(true);
    m_seeScore->setVisible(true);
    m_pause->setVisible(false);
}

void ScorePanel::setPauseVisible(bool visible)
{
    m_pauseWanted = visible;
    if (!visible)
        m_pause->setChecked(false);
    m_pause->setVisible(visible && !m_refresher->manualOnly());
}

bool ScorePanel::isPaused() const
{
    return m_pause->isChecked();
}

bool ScorePanel::isManualOnly() const
{
    return m_refresher->manualOnly();
}

void ScorePanel::keyPressEvent(QKeyEvent *event)
{
    QScrollBar *h = m_canvas->horizontalBar();
    QScrollBar *v = m_canvas->verticalBar();
    switch (event->key()) {
    case Qt::Key_Up:
        ScoreCanvas::moveBar(v, -kArrowStep);
        break;
    case Qt::Key_Down:
        ScoreCanvas::moveBar(v, kArrowStep);
        break;
    case Qt::Key_Left:
        ScoreCanvas::moveBar(h, -kArrowStep);
        break;
    case Qt::Key_Right:
        ScoreCanvas::moveBar(h, kArrowStep);
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

bool ScorePanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress && watched == m_canvas->imageWidget())
        setFocus(Qt::MouseFocusReason);
    if (m_full && event->type() == QEvent::Resize && watched == parentWidget())
        placeFull();
    if (event->type() == QEvent::Resize && watched == m_canvas && fitsWidth())
        m_fitTimer->start();
    return QWidget::eventFilter(watched, event);
}

} // namespace fenwork
