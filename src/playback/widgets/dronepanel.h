#pragma once
#include <QWidget>
#include <array>
#include <functional>
#include <memory>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLineEdit;
class QPushButton;
class QSlider;
class QToolButton;

namespace fenwork {

class PresetNameBox;

class AppContext;
class Drone;
class MidiOut;

// The drone panel `pic_drone`: three voices with instrument, note and volume, the switch, the
// master volume, the pitch box and the saved drones. The output must outlive the panel.
class DronePanel : public QWidget
{
    Q_OBJECT
public:
    DronePanel(AppContext &app, MidiOut &out, QWidget *parent = nullptr);
    ~DronePanel() override;

    Drone &drone() { return *m_drone; }
    // Whether the edit session's keyboard holds the note output: the drone then refuses to start.
    void setKeyboardCheck(std::function<bool()> keyboardShown);

    // Captions and tool tips; the instrument lists are refilled keeping their choice.
    void LoadLang();
    // Refills lst_droneNames from the drone folder and gives its box a free "NewDrone" name.
    void loadDrones();
    // chk_pitch as it stands: written to the settings at quit.
    bool lowered() const;

public slots:
    // The player's Stop and the edit session switch the drone off.
    void stopDrone();
    // The player's transposition changed: with chk_pitch ticked a drone that is on restarts.
    void followTransposition();

    void chk_Bourdon_Click(bool on);
    void chk_drone_Click(int voice, bool active);
    void lst_GMdrone_Click(int voice, int program);
    void lst_droneNote_Click(int voice, int index);
    void scr_drone_Change(int voice, int volume);
    void lst_droneNames_Click(int row);
    void bt_memDrone_Click();
    void bt_delDrone_Click();

signals:
    // A start was refused: the box that shows this panel should be cleared.
    void seeDroneCleared();

private:
    void buildVoiceRow(int voice, QGridLayout *grid, int row);
    void droneNameEdited(const QString &text);
    void pitchTextChanged(const QString &text);
    void stepPitch(int step);
    // Puts the core's state back into the controls without running their handlers.
    void showState();

    AppContext &m_app;
    std::unique_ptr<Drone> m_drone;
    bool m_showing = false;

    QCheckBox *m_bourdon = nullptr; // chk_Bourdon
    QSlider *m_droneVol = nullptr; // sl_droneVol
    QLineEdit *m_pitchDrone = nullptr; // txt_pitchDrone
    QWidget *m_updPitch = nullptr; // upd_pitchDrone
    QToolButton *m_pitchUp = nullptr;
    QToolButton *m_pitchDown = nullptr;
    QCheckBox *m_pitch = nullptr; // chk_pitch
    QCheckBox *m_linkDrone = nullptr; // chk_linkDrone
    std::array<QCheckBox *, 3> m_voiceOn {}; // chk_drone(i)
    std::array<QComboBox *, 3> m_gm {}; // lst_GMdrone(i)
    std::array<QComboBox *, 3> m_note {}; // lst_droneNote(i)
    std::array<QSlider *, 3> m_volume {}; // scr_drone(i)
    PresetNameBox *m_names = nullptr; // lst_droneNames
    QPushButton *m_memDrone = nullptr; // bt_memDrone
    QPushButton *m_delDrone = nullptr; // bt_delDrone
};

} // namespace fenwork
