#include "playback/tempotapper.h"

#include <QTime>
#include <cmath>

namespace fenwork {

namespace {
const QString kRest = QStringLiteral("---");
const QString kWaiting = QStringLiteral(">>>");
} // namespace

TempoTapper::TempoTapper(Clock clock)
    : m_clock(clock ? std::move(clock) : Clock(&TempoTapper::secondsSinceMidnight))
    , m_instant(kRest)
    , m_mean(kRest)
{ }

double TempoTapper::secondsSinceMidnight()
{
    return QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
}

TempoTapper::Tap TempoTapper::tap()
{
    const double now = m_clock();
    if (!m_running) {
        m_lastTap = now;
        m_mean = kWaiting;
        m_running = true;
        return Tap::Started;
    }
    const double hundredths = (now - m_lastTap) * 100.0;
    m_lastTap = now;
    ++m_tapCount;
    // The divisor is rounded half to even before the integer division, which truncates.
    const long divisor = std::lrint(hundredths);
    if (divisor == 0)
        return Tap::DivisionByZero;
    m_instant = QString::number(6000 / divisor);
    return Tap::Measured;
}

bool TempoTapper::tick()
{
    if (m_elapsed < m_period)
        ++m_elapsed;
    if (m_elapsed < m_period)
        return false;
    m_mean = QString::number(m_tapCount * 60 / m_period);
    m_tapCount = 0;
    m_elapsed = 0;
    return true;
}

void TempoTapper::stop()
{
    m_instant = kRest;
    m_mean = kRest;
    m_elapsed = 0;
    m_running = false;
    m_tapCount = 0;
}

} // namespace fenwork
