#include "score/widgets/scorepanel.h"

#include <QFileInfo>
#include <QGraphicsDropShadowEffect>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace fenwork {

namespace {

// An empty A4 page at 72 dots per inch, for when no picture file is there.
QImage drawnBlankPage()
{
    QImage page(595, 842, QImage::Format_RGB32);
    page.fill(Qt::white);
    return page;
}

} // namespace

ScorePanel::ScorePanel(QWidget *parent)
    : QWidget(parent)
    , m_scroll(new QScrollArea(this))
    , m_image(new QLabel)
{
    setObjectName(QStringLiteral("pic_Mus"));
    m_image->setObjectName(QStringLiteral("img_Mus"));
    m_image->setAlignment(Qt::AlignCenter);
    m_image->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto *shadow = new QGraphicsDropShadowEffect(m_image);
    shadow->setBlurRadius(12);
    shadow->setOffset(0, 2);
    shadow->setColor(QColor(0, 0, 0, 90));
    m_image->setGraphicsEffect(shadow);

    m_scroll->setObjectName(QStringLiteral("scr_Mus"));
    m_scroll->horizontalScrollBar()->setObjectName(QStringLiteral("scr_musH"));
    m_scroll->verticalScrollBar()->setObjectName(QStringLiteral("scr_musV"));
    m_scroll->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_scroll->setWidgetResizable(false);
    m_scroll->setBackgroundRole(QPalette::Mid);
    m_scroll->setFrameShape(QFrame::StyledPanel);

    // Margins around the page, so that its shadow shows on the desk.
    auto *desk = new QWidget;
    desk->setObjectName(QStringLiteral("fr_musDesk"));
    auto *deskLayout = new QVBoxLayout(desk);
    deskLayout->setContentsMargins(16, 16, 16, 16);
    deskLayout->addWidget(m_image, 0, Qt::AlignHCenter | Qt::AlignTop);
    desk->setAutoFillBackground(false);
    m_scroll->setWidget(desk);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_scroll);
    showBlank();
}

void ScorePanel::setBlankPicturePath(const QString &path)
{
    m_blankPath = path;
    if (m_blank)
        showBlank();
}

void ScorePanel::showBlank()
{
    QImage page;
    if (!m_blankPath.isEmpty() && QFileInfo::exists(m_blankPath))
        page.load(m_blankPath);
    showPicture(page.isNull() ? drawnBlankPage() : page);
    m_blank = true;
}

void ScorePanel::showPicture(const QImage &page)
{
    m_page = page;
    m_blank = false;
    m_image->setPixmap(QPixmap::fromImage(page));
    m_image->setFixedSize(page.size() / qMax(qreal(1), page.devicePixelRatio()));
    m_scroll->widget()->adjustSize();
}

} // namespace fenwork
