#include "playback/widgets/mixerpanel.h"

#include <QGridLayout>
#include <QLabel>
#include <QSlider>

namespace fenwork {

MixerPanel::MixerPanel(QWidget *parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("pic_Mix"));
    setFrameShape(QFrame::StyledPanel);
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(4, 4, 4, 2);
    grid->setHorizontalSpacing(0);
    grid->setVerticalSpacing(0);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    for (int i = 0; i < kSliders; ++i) {
        auto *slider = new QSlider(Qt::Vertical);
        slider->setObjectName(QStringLiteral("scr_Mix%1").arg(i));
        slider->setRange(0, 100);
        slider->setValue(100);
        slider->setPageStep(10);
        slider->setMinimumHeight(60);
        slider->setEnabled(false);
        auto *label = new QLabel(QString::number(i));
        label->setObjectName(QStringLiteral("lab_mix%1").arg(i));
        label->setAlignment(Qt::AlignHCenter);
        label->setFont(small);
        grid->addWidget(slider, 0, i, Qt::AlignHCenter);
        grid->addWidget(label, 1, i);
        connect(slider, &QSlider::valueChanged, this, [this, i](int value) { emit volumeChanged(i, value); });
        m_sliders.append(slider);
        m_labels.append(label);
    }
}

void MixerPanel::setSlidersEnabled(bool enabled)
{
    for (QSlider *slider : std::as_const(m_sliders))
        slider->setEnabled(enabled);
}

void MixerPanel::resetToMaximum()
{
    for (int i = 0; i < kSliders; ++i) {
        QSlider *slider = m_sliders.at(i);
        if (slider->value() == slider->maximum())
            emit volumeChanged(i, slider->maximum());
        else
            slider->setValue(slider->maximum());
    }
}

} // namespace fenwork
