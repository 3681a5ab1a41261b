#include "app/widgets/unixsignals.h"

#include <QApplication>
#include <QDialog>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace fenwork {

namespace {
int g_pipe[2] = { -1, -1 };

// Often enough that a box opened after the termination is gone before anyone sees it.
constexpr int kWatchInterval = 50;
constexpr qint64 kBusyGrace = 5000;

void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(g_pipe[0], &byte, 1);
}
} // namespace

void closeModalWindows()
{
    // A menu's own loop ends when it closes; a few rounds are enough for a sub-menu chain.
    for (int i = 0; i < 8 && QApplication::activePopupWidget(); ++i)
        QApplication::activePopupWidget()->close();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (!window->isVisible() || !window->isModal())
            continue;
        // done() rather than reject(): a dialog that gives its default on close must not take
        // a termination for the user's answer.
        if (auto *dialog = qobject_cast<QDialog *>(window))
            dialog->done(QDialog::Rejected);
        else
            window->close();
    }
}

UnixSignals::UnixSignals(QObject *parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_pipe) != 0)
        return;
    m_notifier = new QSocketNotifier(g_pipe[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        [[maybe_unused]] const auto got = ::read(g_pipe[1], &byte, 1);
        request();
    });
    m_watch = new QTimer(this);
    m_watch->setInterval(kWatchInterval);
    connect(m_watch, &QTimer::timeout, this, &UnixSignals::tick);
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    // A second signal ends the process at once, should the orderly quit ever hang.
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

UnixSignals::~UnixSignals()
{
    signal(SIGTERM, SIG_DFL);
    signal(SIGINT, SIG_DFL);
    delete m_notifier;
    if (g_pipe[0] >= 0) {
        ::close(g_pipe[0]);
        ::close(g_pipe[1]);
        g_pipe[0] = g_pipe[1] = -1;
    }
}

void UnixSignals::request()
{
    if (m_requested)
        return;
    m_requested = true;
    m_since.start();
    // Before anyone hears of it: a listener may well open a box of its own.
    m_watch->start();
    emit terminationRequested();
    tick();
}

void UnixSignals::tick()
{
    closeModalWindows();
    // The first level is the main loop (or, before it runs, a start-up window's own).
    // Work that shows the busy cursor (a file opening, a save) lets events run: it is let finish,
    // so that the session written at quit holds what it did, unless it outlasts a few seconds.
    const bool busy = QApplication::overrideCursor() && m_since.elapsed() < kBusyGrace;
    if (QThread::currentThread()->loopLevel() <= 1 && !QApplication::activeModalWidget()
        && !QApplication::activePopupWidget() && !busy)
        emit readyToQuit();
}

} // namespace fenwork
