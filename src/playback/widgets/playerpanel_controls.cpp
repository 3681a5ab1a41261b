// The player's controls as the user moves them: tempo, volume and pitch, loop, instrument, the
// mixer's sliders and the count-down before the first note.
#include "playback/widgets/playerpanel.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "frame/widgets/colours.h"
#include "playback/midiplayer.h"
#include "playback/playerlogic.h"
#include "playback/synthengine.h"
#include "playback/widgets/mixerpanel.h"
#include "playback/widgets/updown.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QTimer>
#include <QToolButton>

namespace fenwork {

void PlayerPanel::scr_Midi_Change(int index)
{
    const int value = m_sliders[index]->value();
    if (!m_player->isLoaded()) {
        m_boxes[index]->setText(QString::number(value));
        return;
    }
    if (index == 0) {
        // The 6/8 factor touches the sound only, not the figure shown.
        const double factor = m_host.text ? player::tempoSoundFactor(m_host.text()) : 1.0;
        m_player->setMasterTempo(value * factor / 100.0);
        m_boxes[0]->setText(QString::number(player::shownTempo(m_nominalTempo, value)));
    } else {
        m_player->setMasterVolume(player::masterVolume(value));
        m_boxes[1]->setText(QString::number(value));
    }
}

void PlayerPanel::txt_midi_Change(int index, const QString &text)
{
    if (!m_boxes[index]->hasFocus())
        return;
    // In the tempo box too the number is a percent, although the box shows a tempo.
    const int value = int(leadingNumber(text));
    QSlider *slider = m_sliders[index];
    if (value > slider->maximum())
        slider->setValue(slider->maximum());
    else if (value >= slider->minimum())
        slider->setValue(value);
}

void PlayerPanel::txt_pitchMain_Change()
{
    bool rewrite = false;
    const int value = player::clampPitch(m_pitch->text(), &rewrite);
    if (rewrite) {
        m_pitch->setText(QString::number(value));
        return; // the rewrite comes back here
    }
    if (m_player->isLoaded())
        m_player->setTranspose(value);
    emit mainPitchChanged(value);
}

void PlayerPanel::chk_Loop_Click()
{
    setFocus();
    if (!m_player->isLoaded())
        return;
    m_player->setRepeats(m_loop->isChecked() ? -1 : 0);
    // The library takes the new count while playing: no restart, so nothing is heard twice.
    if (!m_player->isPlaying() && !m_paused) {
        m_player->setStartPoint(qMax(0, m_player->position() - 1));
        m_player->play();
    }
    lst_GMplayer_Click();
}

void PlayerPanel::lst_GMplayer_Click()
{
    if (m_player->isLoaded())
        m_player->programChange(0, m_gm->currentIndex());
    if (m_gm->hasFocus())
        setFocus();
}

void PlayerPanel::bt_gmDef_Click(bool rightButton)
{
    if (rightButton) {
        m_app.ini().set(keys::DefaultGM, QString::number(m_gm->currentIndex()));
        return;
    }
    m_gm->setCurrentIndex(qBound(0, m_app.ini().getInt(keys::DefaultGM), 127));
    lst_GMplayer_Click();
}

void PlayerPanel::applySettings()
{
    bt_gmDef_Click(false);
    m_engine->setSoundFontSetting(m_app.ini().get(keys::SoundFont));
    m_soundFontPending = m_performance;
    QString error;
    if (!m_soundFontPending && !m_engine->reloadSoundFont(&error))
        m_app.ui().contextError(QStringLiteral("SoundFont"), error);
}

void PlayerPanel::stepSlider(int index, int delta)
{
    if (index >= 0 && index < 2)
        m_sliders[index]->setValue(m_sliders[index]->value() + delta);
}

void PlayerPanel::chk_seeMix_Click(bool shown)
{
    m_mixer->setVisible(shown);
    if (!shown)
        m_mixer->resetToMaximum();
    setFocus();
    growToContents();
}

void PlayerPanel::scr_Mix_Change(int channel, int value)
{
    if (m_performance && m_player->isLoaded())
        m_player->sendMidi(channel, 176, 7, value);
}

void PlayerPanel::tm_Delay_Timer()
{
    const int left = m_delayUpDown->value() - 1;
    m_delayUpDown->setValue(left);
    m_delay->setText(QString::number(qMax(0, left)));
    setDelayColour(player::kCountingColour);
    if (left <= 0) {
        setDelayColour(player::kCountedColour);
        m_tmDelay->stop();
    }
}

void PlayerPanel::setDelayColour(int bgr)
{
    QPalette palette = m_delay->palette();
    palette.setColor(QPalette::WindowText, bgrColour(bgr));
    m_delay->setPalette(palette);
}

// The panel shows the mixer and the drone under the player: the splitter it stands in gives it
// the height they need.

} // namespace fenwork
