#pragma once
// Measures a tempo from taps: an instant value from the last two taps, and a mean value over a
// fixed sample period counted by a one-second tick. The clock gives seconds since midnight, so
// a tap across midnight sees the clock run backwards.
#include <QString>
#include <functional>

namespace fenwork {

class TempoTapper
{
public:
    using Clock = std::function<double()>;

    static constexpr int kMinPeriod = 10;
    static constexpr int kMaxPeriod = 60;
    static constexpr int kPeriodStep = 5;
    static constexpr int kDefaultPeriod = 15;

    // No clock: the system's time of day.
    explicit TempoTapper(Clock clock = {});
    static double secondsSinceMidnight();

    enum class Tap {
        Started, // the first tap: no instant value yet
        Measured, // instantText() holds a new value
        DivisionByZero // two taps closer than half a hundredth of a second
    };
    Tap tap();
    // One second of the sample period; true when the period ended and meanText() is new.
    bool tick();
    // Back to rest: nothing measured, nothing counted.
    void stop();
    void setPeriod(int seconds) { m_period = seconds; }

    bool isRunning() const { return m_running; }
    int tapCount() const { return m_tapCount; }
    int elapsed() const { return m_elapsed; }
    int period() const { return m_period; }
    QString instantText() const { return m_instant; }
    QString meanText() const { return m_mean; }

private:
    Clock m_clock;
    bool m_running = false;
    int m_tapCount = 0;
    double m_lastTap = 0;
    int m_elapsed = 0;
    int m_period = kDefaultPeriod;
    QString m_instant;
    QString m_mean;
};

} // namespace fenwork
