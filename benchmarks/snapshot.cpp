// A refresh of the temperatures of 10 to 1,000 modules, against converting and sorting them by hand, and their reading.

#include "ways.h"

#include <devices/service/sdktemperaturecontrol.h>

#include <QString>

#include <algorithm>
#include <initializer_list>
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
    explicit Temperatures(int modules)
    {
        for (int i = 0; i != modules; ++i)
            m_temperatures.emplace("module " + std::to_string(i * 7919 % modules), 20.0F + static_cast<float>(i));
    }

    [[nodiscard]] float temperature() override { return 23.5F; }
    [[nodiscard]] const ModuleTemperatures& moduleTemperatures() override { return m_temperatures; }
    void addObserver(Observer* observer) override { attached = observer; }
    void removeObserver(Observer* /*observer*/) override { attached = nullptr; }

    Observer* attached = nullptr;

private:
    ModuleTemperatures m_temperatures;
};

/// What a refresh has to do, and no more.
class ByHand {
public:
    [[gnu::noinline]] void refresh(Sdk& control)
    {
        std::vector<Adapter::ModuleTemperature> modules;
        const auto& temperatures = control.moduleTemperatures();
        modules.reserve(temperatures.size());
        for (const auto& [name, temperature] : temperatures)
            modules.push_back({QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())), temperature});
        std::sort(modules.begin(), modules.end(),
                  [](const auto& one, const auto& other) { return one.name < other.name; });
        const double temperature = control.temperature();
        const std::scoped_lock lock{m_mutex};
        m_modules.swap(modules);
        m_temperature = temperature;
    }

private:
    std::mutex m_mutex;
    std::vector<Adapter::ModuleTemperature> m_modules;
    double m_temperature = 0;
};

void addAll()
{
    for (const int modules : {10, 100, 1'000}) {
        const auto of = " of " + std::to_string(modules) + " temperatures";
        const auto control = std::make_shared<Temperatures>(modules);
        const auto adapter = std::make_shared<Adapter>(devices::ReacquiringControl<Sdk>{
            [control] { return sdk::ControlHandle<Sdk>{std::shared_ptr<Sdk>{control}}; }});
        add("refresh" + of, "library", [control, adapter] { control->attached->onTemperatureChanged(); });
        add("refresh" + of, "by hand", [control, hand = std::make_shared<ByHand>()] { hand->refresh(*control); });
        add("reading" + of, "library", [adapter] { benchmark::DoNotOptimize(adapter->modulesTemperature()); });
    }
}

} // namespace
} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    return tarn::benchmarks::runAll(argc, argv, &tarn::benchmarks::addAll);
}
