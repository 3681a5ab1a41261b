#pragma once
#include <QFrame>
#include <QVector>

class QLabel;
class QSlider;

namespace fenwork {

// The voice mixer `pic_Mix`: one volume slider per MIDI channel, `scr_Mix0` to `scr_Mix16`
// (the slider's number is the channel's), 0 to 100, each with its number under it. The sliders
// only work while a tune plays.
class MixerPanel : public QFrame
{
    Q_OBJECT
public:
    static constexpr int kSliders = 17;

    explicit MixerPanel(QWidget *parent = nullptr);

    QSlider *slider(int index) const { return m_sliders.value(index); }
    void setSlidersEnabled(bool enabled);
    // Every slider back to its top; each one's change goes out.
    void resetToMaximum();

signals:
    // scr_Mix(channel) moved to `value`.
    void volumeChanged(int channel, int value);

private:
    QVector<QSlider *> m_sliders;
    QVector<QLabel *> m_labels;
};

} // namespace fenwork
