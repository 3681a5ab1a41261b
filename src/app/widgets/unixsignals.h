#pragma once
#include <QElapsedTimer>
#include <QObject>

class QSocketNotifier;
class QTimer;

namespace fenwork {

// Turns SIGTERM and SIGINT into a Qt signal delivered on the event loop, so that a terminated
// program quits as if its window were closed. A termination must not wait for an answer nobody
// will give: from then on every modal box and pop-up menu is closed as soon as it shows, which
// lets each nested event loop return to the code that opened it.
class UnixSignals : public QObject
{
    Q_OBJECT
public:
    explicit UnixSignals(QObject *parent = nullptr);
    ~UnixSignals() override;

    // A signal may come before anyone listens (a slow start): it is remembered.
    bool wasRequested() const { return m_requested; }

signals:
    void terminationRequested();
    // Repeated while the termination stands, each time no box or menu is left open and the code
    // that opened them has returned to the main event loop: the moment to run the quit sequence.
    void readyToQuit();

private:
    void request();
    void tick();

    bool m_requested = false;
    QSocketNotifier *m_notifier = nullptr;
    QTimer *m_watch = nullptr;
    QElapsedTimer m_since; // since the termination was asked for
};

// Closes every modal window and pop-up menu: dialogs are rejected, so that whoever waits in
// exec() gets "no answer" and goes on.
void closeModalWindows();

} // namespace fenwork
