#include "score/widgets/scorecanvas.h"

#include <QGridLayout>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

namespace fenwork {

namespace {

constexpr int kMargin = 10; // desk around the page
constexpr int kWheelStep = 1000; // one notch of the wheel
constexpr int kNotch = 120;

// Paints the page with a thin frame; the pixmap is made once per page, not per paint.
class PagePicture : public QWidget
{
public:
    explicit PagePicture(QWidget *parent)
        : QWidget(parent)
    {
        setObjectName(QStringLiteral("img_Mus"));
        setAttribute(Qt::WA_OpaquePaintEvent);
    }
    void setPage(const QImage &image)
    {
        // The blank page comes back on every click on a file or its header: it is converted once.
        if (!m_pixmap.isNull() && image.cacheKey() == m_imageKey)
            return;
        m_imageKey = image.cacheKey();
        m_pixmap = QPixmap::fromImage(image);
        resize(m_pixmap.size());
        update();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QPainter painter(this);
        const QRect area = event->rect();
        painter.drawPixmap(area, m_pixmap, area);
    }

private:
    QPixmap m_pixmap;
    qint64 m_imageKey = 0;
};

// The grey desk the page lies on, with the page's shadow.
class Desk : public QWidget
{
public:
    explicit Desk(QWidget *parent)
        : QWidget(parent)
    {
        setObjectName(QStringLiteral("fr_musDesk"));
        setAttribute(Qt::WA_OpaquePaintEvent);
    }
    QWidget *page = nullptr;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QPainter painter(this);
        painter.fillRect(event->rect(), palette().color(QPalette::Mid));
        if (page && page->isVisible()) {
            const QRect frame = page->geometry().adjusted(-1, -1, 1, 1);
            painter.fillRect(frame.translated(1, 2), QColor(0, 0, 0, 60));
            painter.setPen(palette().color(QPalette::Dark));
            painter.drawRect(frame.adjusted(0, 0, -1, -1));
        }
    }
};

} // namespace

ScoreCanvas::ScoreCanvas(QWidget *parent)
    : QWidget(parent)
{
    auto *desk = new Desk(this);
    m_desk = desk;
    m_picture = new PagePicture(m_desk);
    desk->page = m_picture;
    m_h = new QScrollBar(Qt::Horizontal, this);
    m_h->setObjectName(QStringLiteral("scr_musH"));
    m_v = new QScrollBar(Qt::Vertical, this);
    m_v->setObjectName(QStringLiteral("scr_musV"));
    for (QScrollBar *bar : { m_h, m_v }) {
        bar->setFocusPolicy(Qt::NoFocus);
        bar->setSingleStep(20);
        connect(bar, &QScrollBar::valueChanged, this, [this] { placePicture(); });
    }

    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addWidget(m_desk, 0, 0);
    grid->addWidget(m_v, 0, 1);
    grid->addWidget(m_h, 1, 0);
}

void ScoreCanvas::setImage(const QImage &image)
{
    m_image = image;
    static_cast<PagePicture *>(m_picture)->setPage(image);
    updateRanges();
    placePicture();
}

void ScoreCanvas::moveBar(QScrollBar *bar, int delta)
{
    bar->setValue(qBound(bar->minimum(), bar->value() + delta, bar->maximum()));
}

void ScoreCanvas::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateRanges();
    placePicture();
}

void ScoreCanvas::wheelEvent(QWheelEvent *event)
{
    // A notch moves a long way; touchpads send parts of a notch and move in proportion.
    const int move = qRound(-event->angleDelta().y() * double(kWheelStep) / kNotch);
    if (move != 0)
        moveBar(m_v, move);
    event->accept();
}

void ScoreCanvas::updateRanges()
{
    // The layout may not have run yet: take the desk's size from ours less the bars.
    const QSize desk = m_desk->size().isEmpty()
        ? QSize(width() - m_v->sizeHint().width(), height() - m_h->sizeHint().height())
        : m_desk->size();
    const QSize page = m_image.size() + QSize(2 * kMargin, 2 * kMargin);
    m_h->setRange(0, qMax(0, page.width() - desk.width()));
    m_v->setRange(0, qMax(0, page.height() - desk.height()));
    m_h->setPageStep(qMax(1, desk.width()));
    m_v->setPageStep(qMax(1, desk.height()));
}

int ScoreCanvas::roomForWidth() const
{
    const int desk = m_desk->width() > 0 ? m_desk->width() : width() - m_v->sizeHint().width();
    return desk - 2 * kMargin;
}

void ScoreCanvas::placePicture()
{
    const int deskWidth = m_desk->width();
    const int x = m_image.width() + 2 * kMargin <= deskWidth ? (deskWidth - m_image.width()) / 2
                                                             : kMargin - m_h->value();
    m_picture->move(x, kMargin - m_v->value());
    m_picture->setVisible(!m_image.isNull());
    m_desk->update();
}

} // namespace fenwork
