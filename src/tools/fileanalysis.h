#pragma once
// Finds the tunes of a file that the engraver cannot process: each tune goes through abcm2ps alone,
// and a tune that gives no PostScript after two attempts is bad.
#include <QString>
#include <QStringList>
#include <functional>

namespace fenwork {

class AppContext;

class FileAnalysis
{
public:
    explicit FileAnalysis(AppContext &app) : m_app(app) { }

    struct Result
    {
        QStringList badTunes; // the labels of the bad tunes, in tree order
        bool stopped = false; // by requestStop() or Esc, before the last tune
        QString error;        // the engraver cannot be run at all; nothing was analysed
    };

    // Analyses the tunes of `kFile`. Events keep running during the waits, so the window stays
    // live; `progress` hears of each tune. The file is not changed.
    Result run(const QString &kFile, const std::function<void(int value, int maximum)> &progress = {});
    // Ends a run after the tune in hand (from an event handler during the run).
    void requestStop() { m_stop = true; }
    bool isRunning() const { return m_running; }

    // The wait limit for each attempt, in the tool runner's unit (2000 ~ 1.7 s).
    double waitLimit = 2000;

private:
    AppContext &m_app;
    bool m_stop = false;
    bool m_running = false;
};

} // namespace fenwork
