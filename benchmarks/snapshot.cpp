// A refresh of the temperatures of 10 to 1,000 modules, against converting and sorting them by hand, and their reading.

#include "fakes.h"
#include "shortesthandle.h"
#include "ways.h"

#include <devices/service/sdktemperaturecontrol.h>

#include <QString>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarn::benchmarks {
namespace {

using Sdk = sdk::ITemperatureControl;
using Adapter = devices::service::SdkTemperatureControl;

/// Modules whose temperatures stay as they are.
class Temperatures final : public Sdk {
public:
    explicit Temperatures(std::size_t modules)
    {
        for (std::size_t i = 0; i != modules; ++i)
            m_temperatures.emplace("module " + std::to_string(i * 7919 % modules), 20.0F + static_cast<float>(i));
    }

    [[nodiscard]] const ModuleTemperatures& moduleTemperatures() override { return m_temperatures; }

    /// What a refresh asks last. A reader that waits for it waits for ten seconds.
    [[nodiscard]] float temperature() override
    {
        m_isAsked = true;
        m_isAsked.notify_one();
        for (int i = 0; m_isHeld && i != 10'000; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds{1});
        return 23.5F;
    }
    void addObserver(Observer* observer) override { attached = observer; }
    void removeObserver(Observer* /*observer*/) override { attached = nullptr; }

    /// The next question is not answered before `release`.
    void hold()
    {
        m_isAsked = false;
        m_isHeld = true;
    }
    void awaitQuestion() const { m_isAsked.wait(false); }
    void release() { m_isHeld = false; }

    Observer* attached = nullptr;

private:
    ModuleTemperatures m_temperatures;
    std::atomic<bool> m_isHeld = false;
    std::atomic<bool> m_isAsked = false;
};

/// What the adapter has to do, and no more.
class ByHand {
public:
    explicit ByHand(const std::shared_ptr<Sdk>& control)
        : m_handle{[control] { return sdk::ControlHandle<Sdk>{control}; }}
    {
    }

    [[gnu::noinline]] void refresh()
    {
        const auto control = m_handle.lock();
        if (!control)
            return;
        std::vector<Adapter::ModuleTemperature> modules;
        const auto& temperatures = control->moduleTemperatures();
        modules.reserve(temperatures.size());
        for (const auto& [name, temperature] : temperatures)
            modules.push_back({QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())), temperature});
        std::sort(modules.begin(), modules.end(),
                  [](const auto& one, const auto& other) { return one.name < other.name; });
        const double temperature = control->temperature();
        const std::scoped_lock lock{m_mutex};
        m_modules.swap(modules);
        m_temperature = temperature;
    }

    [[nodiscard]] [[gnu::noinline]] std::vector<Adapter::ModuleTemperature> modules()
    {
        const std::scoped_lock lock{m_mutex};
        return m_modules;
    }

private:
    ShortestHandle<Sdk> m_handle;
    std::mutex m_mutex;
    std::vector<Adapter::ModuleTemperature> m_modules;
    double m_temperature = 0;
};

/// A way while a refresh waits for the device.
Way duringRefresh(const std::shared_ptr<Temperatures>& control, Way way)
{
    way.run = [control, alone = std::move(way.run)](std::uint64_t times) {
        control->hold();
        const std::jthread refresh{[&] { control->attached->onTemperatureChanged(); }};
        control->awaitQuestion();
        alone(times);
        control->release();
    };
    return way;
}

std::vector<Way> snapshots(std::size_t modules)
{
    const auto of = " of " + std::to_string(modules) + " temperatures";
    const auto control = std::make_shared<Temperatures>(modules);
    const auto adapter = adapterOf<Adapter, Sdk>(control);
    const auto hand = std::make_shared<ByHand>(control);
    hand->refresh();
    const auto refresh = [control] { control->attached->onTemperatureChanged(); };
    const auto read = [adapter] { return adapter->modulesTemperature(); };
    const auto readByHand = [hand] { return hand->modules(); };
    const auto reading = "reading" + of;
    return {
        repeated("refresh" + of, "library", refresh),
        repeated("refresh" + of, "by hand", [hand] { hand->refresh(); }),
        repeated(reading, "library", read),
        repeated(reading, "by hand", readByHand),
        beside(read, repeated(reading + " by two threads", "library", read)),
        beside(readByHand, repeated(reading + " by two threads", "by hand", readByHand)),
        duringRefresh(control, repeated(reading + " during a refresh", "library", read)),
        repeated(reading + " during a refresh", "alone", read),
        beside(refresh, repeated(reading + " beside refreshes", "library", read)),
        beside([hand] { hand->refresh(); }, repeated(reading + " beside refreshes", "by hand", readByHand)),
    };
}

} // namespace

std::vector<Way> allWays()
{
    return forEach({10, 100, 1'000}, &snapshots);
}

} // namespace tarn::benchmarks
