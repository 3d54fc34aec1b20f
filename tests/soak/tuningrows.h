#pragma once

#include "observation.h"
#include "operation.h"

#include <devices/service/sdkdornpowercontrol.h>
#include <devices/service/sdkdornsynthesiscontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkquillpowercontrol.h>
#include <devices/service/sdkquillsynthesiscontrol.h>
#include <devices/service/sdksablepowercontrol.h>
#include <devices/service/sdksablesynthesiscontrol.h>
#include <devices/service/sdkvellsynthesiscontrol.h>

namespace tarn::soak {

/// One setting of a module that takes numbers.
template <class SdkControl, class TheControl>
struct Tuning {
    using Control = TheControl;
    using Observation = NoObservation;
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = SdkControl::key;
};

struct LoLeakage : Tuning<sdk::service::ILoLeakageControl, devices::service::SdkLoLeakageControl> {
    static constexpr auto name = "LO leakage";
    static constexpr Place place{.range = 2};
    static Operations<Control> operations()
    {
        return setting<Control>("isEnabled", &Control::isEnabled, "setEnabled", &Control::setEnabled, place, 0);
    }
};

struct QuillPower : Tuning<sdk::service::IQuillPowerControl, devices::service::SdkQuillPowerControl> {
    static constexpr auto name = "Quill power";
    static constexpr Place place{.range = 113};
    static Operations<Control> operations();
    static void watchSignals(Control& control);
};

struct QuillSynthesis : Tuning<sdk::service::IQuillSynthesisControl, devices::service::SdkQuillSynthesisControl> {
    static constexpr auto name = "Quill synthesis";
    static constexpr Place place{.range = 2'000'000'000};
    static Operations<Control> operations()
    {
        return setting<Control>("filter1Frequency", &Control::filter1Frequency, "setFilter1Frequency",
                                &Control::setFilter1Frequency, place, 1'000'000);
    }
};

struct DornPower : Tuning<sdk::service::IDORNPowerControl, devices::service::SdkDornPowerControl> {
    static constexpr auto name = "Dorn power";
    static constexpr Place place{.range = 4096};
    static Operations<Control> operations()
    {
        return setting<Control>("dacA", &Control::dacA, "setDacA", &Control::setDacA, place, 0);
    }
};

struct DornSynthesis : Tuning<sdk::service::IDORNSynthesisControl, devices::service::SdkDornSynthesisControl> {
    static constexpr auto name = "Dorn synthesis";
    static constexpr Place place{.range = 4};
    static Operations<Control> operations();
};

struct SablePower : Tuning<sdk::service::ISablePowerModuleControl, devices::service::SdkSablePowerControl> {
    static constexpr auto name = "Sable power";
    static constexpr Place place{.range = 4096};
    static Operations<Control> operations()
    {
        return setting<Control>("rfDac", &Control::rfDac, "setRfDac", &Control::setRfDac, place, 0);
    }
};

struct SableSynthesis : Tuning<sdk::service::ISableSynthesisControl, devices::service::SdkSableSynthesisControl> {
    static constexpr auto name = "Sable synthesis";
    static constexpr Place place{.range = 199'000'000};
    static Operations<Control> operations()
    {
        return setting<Control>("ddsSwitchFreq", &Control::ddsSwitchFreq, "setDdsSwitchFreq",
                                &Control::setDdsSwitchFreq, place, 1'000'000);
    }
};

struct VellSynthesis : Tuning<sdk::service::IVellSynthesisControl, devices::service::SdkVellSynthesisControl> {
    static constexpr auto name = "Vell synthesis";
    static constexpr Place place{.range = 5};
    static Operations<Control> operations()
    {
        return setting<Control>("selectedIf", &Control::selectedIf, "setSelectedIf", &Control::setSelectedIf, place, 0);
    }
};

} // namespace tarn::soak
