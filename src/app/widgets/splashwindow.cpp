#include "app/widgets/splashwindow.h"

#include "frame/version.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

namespace fenwork {

void paintEmblem(QPainter &p, const QRectF &rect)
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    // Drawn on a 64-unit square, centred in `rect`.
    const qreal side = qMin(rect.width(), rect.height());
    p.translate(rect.center().x() - side / 2, rect.center().y() - side / 2);
    p.scale(side / 64.0, side / 64.0);

    QLinearGradient tile(0, 0, 0, 64);
    tile.setColorAt(0, QColor(0x3f, 0x8a, 0x4f));
    tile.setColorAt(1, QColor(0x24, 0x5e, 0x36));
    p.setPen(Qt::NoPen);
    p.setBrush(tile);
    p.drawRoundedRect(QRectF(1, 1, 62, 62), 13, 13);

    const QColor cream(0xf7, 0xf2, 0xe2);
    QColor staff = cream;
    staff.setAlpha(70);
    p.setPen(QPen(staff, 1.2));
    for (int i = 0; i < 5; ++i)
        p.drawLine(QPointF(9, 20 + i * 7.0), QPointF(55, 20 + i * 7.0));

    // Two quavers, heads tilted, stems up, one heavy beam.
    p.setPen(Qt::NoPen);
    p.setBrush(cream);
    const QPointF heads[2] = { QPointF(22, 44.5), QPointF(42, 37.5) };
    for (const QPointF &h : heads) {
        p.save();
        p.translate(h);
        p.rotate(-22);
        p.drawEllipse(QPointF(0, 0), 6.2, 4.4);
        p.restore();
    }
    const qreal stemW = 2.4;
    p.drawRect(QRectF(heads[0].x() + 4.3, 15, stemW, heads[0].y() - 15 - 1));
    p.drawRect(QRectF(heads[1].x() + 4.3, 8, stemW, heads[1].y() - 8 - 1));
    QPainterPath beam;
    beam.moveTo(heads[0].x() + 4.3, 15);
    beam.lineTo(heads[1].x() + 4.3 + stemW, 8);
    beam.lineTo(heads[1].x() + 4.3 + stemW, 14);
    beam.lineTo(heads[0].x() + 4.3, 21);
    beam.closeSubpath();
    p.drawPath(beam);

    // A small golden umbel: fennel in flower.
    const QColor gold(0xf2, 0xc1, 0x3a);
    p.setPen(QPen(gold, 1.1));
    const QPointF stalk(12, 56);
    const QPointF rays[3] = { QPointF(7, 49), QPointF(12, 47.5), QPointF(17, 49) };
    p.drawLine(QPointF(12, 60), stalk);
    p.setBrush(gold);
    for (const QPointF &r : rays) {
        p.drawLine(stalk, r);
        p.drawEllipse(r, 1.6, 1.6);
    }
    p.restore();
}

SplashWindow::SplashWindow(QWidget *parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setObjectName(QStringLiteral("f_splash"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(caption());
    setFixedSize(480, 180);
}

SplashWindow::~SplashWindow()
{
    releaseCursor();
}

QString SplashWindow::caption()
{
    return QStringLiteral("Fennelworks ") + versionText();
}

void SplashWindow::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);

    QLinearGradient back(0, 0, 0, height());
    back.setColorAt(0, QColor(0xfd, 0xfc, 0xf7));
    back.setColorAt(1, QColor(0xee, 0xf0, 0xe4));
    p.setBrush(back);
    p.setPen(QPen(QColor(0x2f, 0x6e, 0x40), 1));
    p.drawRect(r);

    const qreal emblem = 104;
    paintEmblem(p, QRectF(34, (height() - emblem) / 2, emblem, emblem));

    const qreal textLeft = 34 + emblem + 26;
    const qreal baseline = height() / 2.0 + 2;
    const qreal room = width() - textLeft - 24;
    const QString name = QStringLiteral("Fennelworks ");
    QFont title = font();
    title.setWeight(QFont::DemiBold);
    // The desktop's font decides the width: shrink until name and version fit.
    for (int px = 28; px >= 14; --px) {
        title.setPixelSize(px);
        if (QFontMetricsF(title).horizontalAdvance(name + versionText()) <= room)
            break;
    }
    p.setFont(title);
    p.setPen(QColor(0x23, 0x3a, 0x2a));
    p.drawText(QPointF(textLeft, baseline), name);
    const qreal nameWidth = QFontMetricsF(title).horizontalAdvance(name);
    title.setWeight(QFont::Normal);
    p.setFont(title);
    p.setPen(QColor(0x6a, 0x7b, 0x6e));
    p.drawText(QPointF(textLeft + nameWidth, baseline), versionText());

    // A thin staff line under the name ties the text to the emblem.
    p.setPen(QPen(QColor(0x3f, 0x8a, 0x4f, 150), 1.2));
    p.drawLine(QPointF(textLeft, baseline + 12), QPointF(width() - 26, baseline + 12));
}

void SplashWindow::showEvent(QShowEvent *event)
{
    if (const QScreen *s = screen()) {
        const QRect area = s->availableGeometry();
        move(area.center() - rect().center());
    }
    if (!m_cursorSet) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        m_cursorSet = true;
    }
    QWidget::showEvent(event);
}

void SplashWindow::hideEvent(QHideEvent *event)
{
    releaseCursor();
    QWidget::hideEvent(event);
}

void SplashWindow::releaseCursor()
{
    if (m_cursorSet) {
        QApplication::restoreOverrideCursor();
        m_cursorSet = false;
    }
}

} // namespace fenwork
