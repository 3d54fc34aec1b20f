#include <simulator/temperature.h>

#include <sdk/itemperaturecontrol.h>
#include <simulator/handedout.h>
#include <simulator/observers.h>
#include <utils/mutex.h>

#include <utility>

namespace tarn::simulator {

namespace {

using TemperatureObserver = sdk::ITemperatureControl::Observer;
constexpr Duration measuringInterval = std::chrono::seconds{1};

/// The thermometers. Thread-safe.
class Thermometers : public std::enable_shared_from_this<Thermometers> {
public:
    explicit Thermometers(const std::shared_ptr<Bench>& bench)
        : m_bench{bench}
    {
    }

    [[nodiscard]] ThermalModel::Measurement last() const
    {
        const utils::MutexLock lock{m_mutex};
        return m_last;
    }

    [[nodiscard]] Observers<TemperatureObserver>& observers() { return m_observers; }

    /// Measures at `time` and in every interval after it. On the instrument's thread, as drops
    /// are: no observer of a dropped control is being notified once the control is gone.
    void measureFrom(Duration time)
    {
        const auto bench = m_bench.lock(); // for the length of the call, as an observer may let go of the instrument
        if (!bench)
            return;
        const auto next = time + measuringInterval;
        measure(bench->thermal.measure(time));
        bench->executor.postAt(
            next, [self = shared_from_this(), next] { self->measureFrom(next); }, Executor::AtStop::Discard);
    }

private:
    void measure(ThermalModel::Measurement measurement)
    {
        {
            const utils::MutexLock lock{m_mutex};
            m_last = std::move(measurement);
        }
        m_observers.notify(&TemperatureObserver::onTemperatureChanged);
    }

    const std::weak_ptr<Bench> m_bench;
    mutable utils::Mutex m_mutex;
    ThermalModel::Measurement m_last TARN_GUARDED_BY(m_mutex);
    Observers<TemperatureObserver> m_observers;
};

class TemperatureControl final : public sdk::ITemperatureControl {
public:
    TemperatureControl(std::shared_ptr<Bench> bench, std::shared_ptr<Thermometers> thermometers)
        : m_bench{std::move(bench)}
        , m_thermometers{std::move(thermometers)}
    {
    }

    float temperature() override
    {
        return m_bench->operations.call([this] { return m_thermometers->last().instrument; });
    }

    const ModuleTemperatures& moduleTemperatures() override
    {
        return m_bench->operations.call(
            [this]() -> const ModuleTemperatures& { return m_handedOut.give(m_thermometers->last().modules); });
    }

    void addObserver(Observer* observer) override { m_thermometers->observers().add(observer); }
    void removeObserver(Observer* observer) override { m_thermometers->observers().remove(observer); }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<Thermometers> m_thermometers;
    HandedOut<ModuleTemperatures> m_handedOut;
};

} // namespace

MakeControl installTemperature(const std::shared_ptr<Bench>& bench)
{
    auto thermometers = std::make_shared<Thermometers>(bench);
    thermometers->measureFrom(bench->clock->now());
    bench->endRegistrations.emplace_back([thermometers] { thermometers->observers().close(); });
    return [bench, thermometers]() -> std::shared_ptr<sdk::ITemperatureControl> {
        thermometers->observers().open();
        return std::make_shared<TemperatureControl>(bench, thermometers);
    };
}

} // namespace tarn::simulator
