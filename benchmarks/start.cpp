// What a host does when it starts: fill its registry, and create the controls of an instrument that offers all.

#include "ways.h"

#include <devices/controlregistry.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkdornpowercontrol.h>
#include <devices/service/sdkdornsynthesiscontrol.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>
#include <devices/service/sdkpotentiometerscontrol.h>
#include <devices/service/sdkquillpowercontrol.h>
#include <devices/service/sdkquillsynthesiscontrol.h>
#include <devices/service/sdksablepowercontrol.h>
#include <devices/service/sdksablesynthesiscontrol.h>
#include <devices/service/sdkserialnumbercontrol.h>
#include <devices/service/sdksystemtermscontrol.h>
#include <devices/service/sdktemperaturecontrol.h>
#include <devices/service/sdkusbidcontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <devices/service/sdkvellsynthesiscontrol.h>
#include <devices/service/servicecontrols.h>
#include <simulator/open.h>

#include <algorithm>
#include <any>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::benchmarks {
namespace {

using namespace devices::service;
using devices::ControlRegistry;
using sdk::service::calibrations::ICalibrationController;

ControlRegistry allControls()
{
    ControlRegistry registry;
    servicecontrols::registrate(&registry);
    return registry;
}

template <class Sdk>
constexpr sdk::Key keyOf()
{
    if constexpr (requires { Sdk::key; })
        return Sdk::key;
    else
        return Sdk::firstKey;
}

/// One control, as a host would create it that has no registry.
template <class Public, class Adapter, class Sdk>
std::any create(sdk::IVna* device)
{
    const auto ask = [device] { return sdk::ControlHandle<Sdk>{device->control<Sdk>(keyOf<Sdk>())}; };
    if (ask().expired())
        return {};
    return std::shared_ptr<Public>{std::make_shared<Adapter>(devices::ReacquiringControl<Sdk>{ask})};
}

namespace sdks = sdk::service;

constexpr std::any (*byHand[])(sdk::IVna*) = {
    &create<IFileMemoryControl, SdkFileMemoryControl, sdks::IFileMemoryControl>,
    &create<IPotentiometersControl, SdkPotentiometersControl, sdks::IPotentiometersControl>,
    &create<IUsbIdControl, SdkMemoryUsbId, sdks::IMemoryUsbIdControl>,
    &create<ISerialNumberControl, SdkSerialNumberControl, sdks::IMemorySerialNumberControl>,
    &create<IMemoryOperationsControl, SdkMemoryOperationsControl, sdks::IMemoryOperationsControl>,
    &create<SdkQuillSynthesisControl, SdkQuillSynthesisControl, sdks::IQuillSynthesisControl>,
    &create<SdkQuillPowerControl, SdkQuillPowerControl, sdks::IQuillPowerControl>,
    &create<SdkSableSynthesisControl, SdkSableSynthesisControl, sdks::ISableSynthesisControl>,
    &create<SdkSablePowerControl, SdkSablePowerControl, sdks::ISablePowerModuleControl>,
    &create<SdkLoLeakageControl, SdkLoLeakageControl, sdks::ILoLeakageControl>,
    &create<SdkDornPowerControl, SdkDornPowerControl, sdks::IDORNPowerControl>,
    &create<SdkDornSynthesisControl, SdkDornSynthesisControl, sdks::IDORNSynthesisControl>,
    &create<SdkVellSynthesisControl, SdkVellSynthesisControl, sdks::IVellSynthesisControl>,
    &create<ISystemTermsControl, SdkSystemTermsControl, sdks::ISystemTermsControl>,
    &create<SdkVellIfswCalibrationControl, SdkVellIfswCalibrationControl, sdks::IVellIfswCalibrationControl>,
    &create<SdkVellFactoryPowerCalibrationControl, SdkVellFactoryPowerCalibrationControl,
            sdks::IVellFactoryPowerCalibrationControl>,
    &create<SdkFactoryCorrectionControl, SdkFactoryCorrectionControl, sdk::IFactoryCorrectionControl>,
    &create<SdkTemperatureControl, SdkTemperatureControl, sdk::ITemperatureControl>,
    &create<SdkCalibrationControlHandle, SdkCalibrationControlHandle, ICalibrationController>,
    &create<SdkCalibrationControlHandle, SdkCalibrationControlHandle, ICalibrationController>,
};

/// Hands out controls that it has ready: those of the simulated instrument, which takes longer to make them.
class Device final : public sdk::IVna {
public:
    std::shared_ptr<void> control(sdk::Key key) override
    {
        auto& control = m_controls[key];
        if (!control)
            control = m_instrument->control(key);
        return control;
    }
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    [[nodiscard]] sdk::Model model() const override { return m_instrument->model(); }

private:
    std::shared_ptr<sdk::IVna> m_instrument
        = simulator::open({QStringLiteral("profile=full"), QStringLiteral("none")}).value();
    std::map<sdk::Key, std::shared_ptr<void>> m_controls;
};

/// The controls, if each was offered.
std::optional<std::vector<std::any>> offered(std::vector<std::any>& controls)
{
    if (!std::ranges::all_of(controls, &std::any::has_value))
        return std::nullopt;
    return std::move(controls);
}

/// The creation of the first controls, so many, and their end.
std::vector<Way> creation(const std::shared_ptr<sdk::IVna>& device, std::size_t count)
{
    const auto row = "creation of " + std::to_string(count) + " controls";
    return {
        repeated(row, "library",
                 [device, count, registry = allControls()] {
                     std::vector<std::any> controls;
                     for (const auto& entry : registry.entries().first(count))
                         controls.push_back(entry.create(device.get()));
                     return offered(controls);
                 }),
        repeated(row, "by hand",
                 [device, count] {
                     std::vector<std::any> controls;
                     for (std::size_t i = 0; i != count; ++i)
                         controls.push_back(byHand[i](device.get()));
                     return offered(controls);
                 }),
    };
}

} // namespace

std::vector<Way> allWays()
{
    auto ways = forEach({1, 5, 10, 20},
                        [device = std::make_shared<Device>()](std::size_t count) { return creation(device, count); });
    ways.push_back(repeated("registration", "library", [] { return allControls(); }));
    return ways;
}

} // namespace tarn::benchmarks
