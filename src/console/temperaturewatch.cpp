#include <console/temperaturewatch.h>

#include <utility>

namespace tarn::console {

TemperatureWatch::TemperatureWatch(const LifecycleWatch& lifecycle, const Control& control,
                                   std::chrono::microseconds interval, std::optional<std::uint64_t> count,
                                   std::function<void()> show, const Output& output)
    : m_lifecycle{lifecycle}
    , m_interval{std::chrono::ceil<std::chrono::milliseconds>(interval)}
    , m_show{std::move(show)}
    , m_loop{lifecycle, count, output}
{
    m_due.setSingleShot(true);
    m_due.setTimerType(Qt::PreciseTimer);
    connect(&m_due, &QTimer::timeout, this, [this] { showReading(); });
    // Queued: the signals come from threads of the device.
    connect(&control, &Control::temperaturesChanged, this, [this] { onTemperaturesChanged(); }, Qt::QueuedConnection);
}

void TemperatureWatch::run()
{
    showReading();
    m_loop.run();
}

void TemperatureWatch::onTemperaturesChanged()
{
    if (m_lifecycle.isAway() || m_due.isActive())
        return;
    const auto wait = m_interval - std::chrono::milliseconds{m_sinceLast.elapsed()};
    if (wait > std::chrono::milliseconds::zero())
        m_due.start(wait);
    else
        showReading();
}

void TemperatureWatch::showReading()
{
    m_sinceLast.start();
    m_loop.show(m_show);
}

} // namespace tarn::console
