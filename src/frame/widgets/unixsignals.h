#pragma once
#include <QObject>

class QSocketNotifier;

namespace fenwork {

// Turns SIGTERM and SIGINT into a Qt signal delivered on the event loop, so that a terminated
// program quits as if its window were closed.
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

private:
    bool m_requested = false;
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace fenwork
