#include "frame/widgets/progressstrip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QVBoxLayout>

namespace fenwork {

ProgressStrip::ProgressStrip(QWidget *parent)
    : QWidget(parent)
    , m_caption(new QLabel(this))
    , m_bar(new QProgressBar(this))
    , m_statusLabel(new QLabel(this))
    , m_statusTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("pic_Progress"));
    m_caption->setObjectName(QStringLiteral("lab_Progress"));
    m_bar->setObjectName(QStringLiteral("ProgB"));
    m_statusLabel->setObjectName(QStringLiteral("lab_Message"));

    m_caption->setTextFormat(Qt::PlainText);
    m_caption->setMinimumWidth(m_caption->fontMetrics().horizontalAdvance(QStringLiteral("Searching...")));
    applyToBar();
    m_bar->setTextVisible(false);
    m_bar->setMaximumHeight(m_caption->sizeHint().height());
    m_statusLabel->setTextFormat(Qt::PlainText);
    m_statusLabel->setWordWrap(true);
    m_statusLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_caption);
    row->addWidget(m_bar, 1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(4, 2, 4, 2);
    column->setSpacing(2);
    column->addLayout(row);
    column->addWidget(m_statusLabel);

    m_statusTimer->setSingleShot(true);
    connect(m_statusTimer, &QTimer::timeout, this, &ProgressStrip::clearStatusText);

    m_caption->hide();
    m_bar->hide();
    m_statusLabel->hide();
    QWidget::setVisible(false);
}

void ProgressStrip::setProgressVisible(bool visible)
{
    m_progressVisible = visible;
    m_caption->setVisible(visible);
    m_bar->setVisible(visible);
    updateVisibility();
}

void ProgressStrip::setCaption(const QString &caption)
{
    m_caption->setText(caption);
}

QString ProgressStrip::caption() const
{
    return m_caption->text();
}

void ProgressStrip::setRange(int maximum)
{
    m_maximum = qMax(0, maximum);
    m_value = qMin(m_value, m_maximum);
    applyToBar();
}

void ProgressStrip::setValue(int value)
{
    m_value = value;
    applyToBar();
}

void ProgressStrip::applyToBar()
{
    // A range of 0..0 would turn the bar into a busy indicator; an empty job is simply empty.
    m_bar->setRange(0, qMax(1, m_maximum));
    m_bar->setValue(qBound(0, m_value, m_maximum));
}

void ProgressStrip::setStatusText(const QString &text)
{
    m_status = text;
    // The texts come with leading line ends and blanks meant to set them apart; the label
    // already stands apart.
    QString shown = text;
    shown.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    while (!shown.isEmpty() && (shown.front() == QLatin1Char('\n') || shown.front() == QLatin1Char(' ')))
        shown.remove(0, 1);
    m_statusLabel->setText(shown);
    m_statusLabel->setVisible(!shown.isEmpty());
    if (!shown.isEmpty() && m_statusTimeout > 0)
        m_statusTimer->start(m_statusTimeout);
    else
        m_statusTimer->stop();
    updateVisibility();
}

void ProgressStrip::updateVisibility()
{
    setVisible(m_progressVisible || !m_statusLabel->text().isEmpty());
}

} // namespace fenwork
