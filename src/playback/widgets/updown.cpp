#include "playback/widgets/updown.h"

#include <QToolButton>
#include <QVBoxLayout>

namespace fenwork {

UpDown::UpDown(QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_up = new QToolButton;
    m_down = new QToolButton;
    m_up->setArrowType(Qt::UpArrow);
    m_down->setArrowType(Qt::DownArrow);
    for (QToolButton *button : { m_up, m_down }) {
        button->setAutoRepeat(true);
        button->setFixedSize(18, 11);
        button->setFocusPolicy(Qt::NoFocus);
        column->addWidget(button);
    }
    connect(m_up, &QToolButton::clicked, this, [this] { step(1); });
    connect(m_down, &QToolButton::clicked, this, [this] { step(-1); });
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void UpDown::setValue(int value)
{
    value = qBound(m_minimum, value, m_maximum);
    if (value == m_value)
        return;
    m_value = value;
    emit changed(m_value, false);
}

void UpDown::setRange(int minimum, int maximum)
{
    m_minimum = minimum;
    m_maximum = qMax(minimum, maximum);
    setValue(m_value);
}

void UpDown::step(int delta)
{
    emit stepped(delta);
    const int value = qBound(m_minimum, m_value + delta, m_maximum);
    if (value == m_value)
        return;
    m_value = value;
    emit changed(m_value, true);
}

} // namespace fenwork
