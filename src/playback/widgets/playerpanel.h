#pragma once
#include <QElapsedTimer>
#include <QFrame>
#include <functional>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSlider;
class QTimer;
class QToolButton;
class QVBoxLayout;

namespace fenwork {

class ChoiceList;
class AppContext;
class MidiOut;
class MidiPlayer;
class MixerPanel;
class PlaySequence;
class SynthEngine;
class SynthMidiOut;
class UpDown;

// What the player needs of the rest of the window: the editor's text and selection, the tree's
// selection and the choice list. Positions are in the CR LF text that `text` gives.
struct PlayerHost
{
    std::function<QString()> text; // txt_ABC, CR LF line ends
    std::function<QString()> selectedText; // its selection, CR LF line ends
    std::function<qsizetype()> caret;
    std::function<void(qsizetype start, qsizetype length)> select;
    std::function<QString()> currentLineTune; // optional: the tune of the caret's line
    std::function<QString()> selectedNodeKey; // the key of the tree's selection
    std::function<void(const QString &key)> selectNode; // SimulerNodeClick
    ChoiceList *choiceList = nullptr;                  // the working list to play
    std::function<void(int row)> showChoiceRow;         // its item shown as the one playing; optional

    // Fills the editor's part from a plain text editor that holds LF lines.
    static PlayerHost forEditor(QPlainTextEdit *editor);
};

// The player panel `pic_Player`: the transport buttons `bt_Midi0` to `bt_Midi3` (back to start,
// play, stop, pause), previous and next tune `bt_playNextPrev0`/`1`, the progress slider
// `scr_Progr`, tempo and volume `scr_Midi0`/`1` with their boxes `txt_midi0`/`1`, looping
// `chk_Loop`, the count-down `ud_Delay` with its read-out `lab_delay` and `chk_keepDelay`, the
// transposition `txt_pitchMain` with `upd_pitchMain`, the instrument `lst_GMplayer` with
// `bt_gmDef`, the listening options `chk_noChords`, `chk_noGrace`, `chk_noRepeats`, `chk_OneLine1`,
// and below them the voice mixer `pic_Mix` (shown by `chk_seeMix`) and the drone's place.
class PlayerPanel : public QFrame
{
    Q_OBJECT
public:
    // Without an engine the panel makes its own, started at the first Play.
    explicit PlayerPanel(AppContext &app, SynthEngine *engine = nullptr, QWidget *parent = nullptr);
    ~PlayerPanel() override;

    void setHost(const PlayerHost &host);
    SynthEngine &synth() const { return *m_engine; }
    MidiPlayer &player() const { return *m_player; }
    // The short-message output on the same synthesiser, for the drone and the keyboard. It lives
    // as long as the panel; the drone panel given to setDronePanel goes first.
    MidiOut &midiOut() const;
    MixerPanel *mixer() const { return m_mixer; }
    // Puts the drone panel under the player, shown by `chk_seeDrone`.
    void setDronePanel(QWidget *panel);
    void LoadLang();
    // The settings changed: the default instrument at once, the SoundFont now or, while a tune
    // plays, at its stop.
    void applySettings();
    // Moves the tempo (0) or volume (1) slider by `delta`, as Alt and the arrow keys do.
    void stepSlider(int index, int delta);

    // A tune is loaded for playing, from the press of Play until Stop.
    bool hasPerformance() const { return m_performance; }
    bool isPaused() const { return m_paused; }
    // The file or list being played tune after tune.
    PlaySequence &sequence() const { return *m_sequence; }

public slots:
    // The transport event: `value` true is a press, false a release.
    void bt_Midi_Click(int index, bool value);
    // Play, or Stop when a tune is loaded: Ctrl+P and the tune menu.
    void mnu_playTune();
    // 0 every tune of the current file, 1 those the filter left black, 2 the start of each.
    void mnu_PlayFile(int index);
    void mnu_playLst();
    void bt_playLst_Click();
    void mnu_midiExt();
    void playMidiFile(const QString &path);
    // 0 the previous tune, 1 the next.
    void bt_playNextPrev_Click(int index);
    void pressStop();
    // An edit session closes previous and next, and shows the one-line box for a tune.
    void setNextPrevEnabled(bool enabled);
    // The "current line only" box: shown, and cleared, during a session on a tune.
    void setOneLineShown(bool shown);

signals:
    // Stop was pressed: the drone stops with the tune.
    void stopped();
    // The transposition of the player changed, to follow with the drone.
    void mainPitchChanged(int halfTones);

private:
    void buildControls();
    // The sequence plays through the transport, as a user would press its buttons.
    void makeSequence();
    QToolButton *toggle(const QString &name, const QString &text, const QString &icon = {});
    // Sets a button's state without raising its event.
    void setButtonQuietly(int index, bool down);
    // Presses Play as the program does, with tm_Midi stopped.
    void pressPlay();
    void runPlay();
    bool startPlaying(const QString &midiPath, quint64 stops);
    void doStop();
    void pause(bool down);
    void prepareCountDown();
    void setBusy(bool busy);
    void reportOutputOnce();
    static void waitEvents(int ms);

    void tm_Midi_Timer();
    void tm_Delay_Timer();
    void scr_Progr_Change(bool always = false);
    void scr_Midi_Change(int index);
    void txt_midi_Change(int index, const QString &text);
    void txt_pitchMain_Change();
    void chk_Loop_Click();
    void lst_GMplayer_Click();
    void bt_gmDef_Click(bool rightButton);
    void chk_seeMix_Click(bool shown);
    void scr_Mix_Change(int channel, int value);
    void setDelayColour(int bgr);
    void growToContents();

    bool eventFilter(QObject *watched, QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

    AppContext &m_app;
    std::unique_ptr<SynthEngine> m_ownEngine;
    SynthEngine *m_engine = nullptr;
    std::unique_ptr<MidiPlayer> m_player;
    std::unique_ptr<SynthMidiOut> m_midiOut;
    PlayerHost m_host;

    QToolButton *m_buttons[4] = {}; // bt_Midi0..3
    QToolButton *m_prevNext[2] = {}; // bt_playNextPrev0..1
    QSlider *m_progress = nullptr; // scr_Progr
    QLabel *m_tunePlay = nullptr; // lab_tunePlay
    QLabel *m_midiExt = nullptr; // img_midiExt
    QSlider *m_sliders[2] = {}; // scr_Midi0..1
    QLineEdit *m_boxes[2] = {}; // txt_midi0..1
    QLabel *m_tempoID = nullptr; // lab_tempoID
    QLabel *m_volumeCaption = nullptr;
    QToolButton *m_loop = nullptr; // chk_Loop
    QLabel *m_delayCaption = nullptr;
    QLabel *m_delay = nullptr; // lab_delay
    UpDown *m_delayUpDown = nullptr; // ud_Delay
    QCheckBox *m_keepDelay = nullptr; // chk_keepDelay
    QLineEdit *m_pitch = nullptr; // txt_pitchMain
    UpDown *m_pitchUpDown = nullptr; // upd_pitchMain
    QComboBox *m_gm = nullptr; // lst_GMplayer
    QToolButton *m_gmDef = nullptr; // bt_gmDef
    QToolButton *m_noChords = nullptr; // chk_noChords
    QToolButton *m_noGrace = nullptr; // chk_noGrace
    QToolButton *m_noRepeats = nullptr; // chk_noRepeats
    QToolButton *m_oneLine = nullptr; // chk_OneLine1
    QToolButton *m_seeMix = nullptr; // chk_seeMix
    QToolButton *m_seeDrone = nullptr; // chk_seeDrone
    MixerPanel *m_mixer = nullptr; // pic_Mix
    QWidget *m_drone = nullptr; // pic_drone
    QVBoxLayout *m_column = nullptr;
    QTimer *m_tmMidi = nullptr; // tm_Midi
    QTimer *m_tmDelay = nullptr; // tm_Delay

    QString m_externalMidi; // the Tag of img_midiExt
    QString m_nominalTempo = QStringLiteral("100"); // the Tag of txt_midi(0)
    int m_delayTag = 0; // the Tag of ud_Delay
    bool m_performance = false;
    bool m_paused = false;
    int m_pausePosition = 0;
    bool m_guardProgramPress = false; // the press of Play is the program's
    bool m_guardStopped = true; // stopped: a release of Play is not answered
    bool m_busy = false;
    bool m_outputReported = false;
    bool m_soundFontPending = false;
    quint64 m_stops = 0; // Stops so far: the waits end when it moves
    QElapsedTimer m_notPlaying; // since when the tune no longer plays
    std::unique_ptr<PlaySequence> m_sequence; // last: it goes first, before what its hooks reach
};

} // namespace fenwork
