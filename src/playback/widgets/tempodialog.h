#pragma once
#include "playback/tempotapper.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;
class QSlider;
class QTimer;

namespace fenwork {

class AppContext;

// The tempo tapper window `f_tempo`: the space bar taps, Esc closes. It needs nothing of the
// player, so it can stay open beside a tune that plays.
class TempoDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TempoDialog(AppContext &app, QWidget *parent = nullptr, TempoTapper::Clock clock = {});
    ~TempoDialog() override;

    const TempoTapper &tapper() const { return m_tapper; }

public slots:
    void LoadLang();
    void tapKey();
    void tm_cumul_Timer();
    void bt_stop_Click();

signals:
    // The help button: the window's help page should open.
    void helpRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void showState();

    AppContext &m_app;
    TempoTapper m_tapper;
    QLabel *m_tempo = nullptr; // lab_tempo
    QLabel *m_tempoCumul = nullptr; // lab_tempoCumul
    QProgressBar *m_prg = nullptr; // prg
    QSlider *m_echantil = nullptr; // sld_echantil
    QLabel *m_periodValue = nullptr;
    QTimer *m_cumul = nullptr; // tm_cumul
    QPushButton *m_stop = nullptr; // bt_stop
    QPushButton *m_help = nullptr; // bt_hlp
    QLabel *m_info = nullptr;
    QLabel *m_periodLabel = nullptr;
    QList<QLabel *> m_captions; // the names of the two tempos, with their keys
};

} // namespace fenwork
