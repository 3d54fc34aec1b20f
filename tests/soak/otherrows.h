#pragma once

#include "observation.h"
#include "operation.h"
#include "signalobservation.h"

#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdktemperaturecontrol.h>

#include <bit>
#include <cstdint>
#include <memory>

namespace tarn::soak {

struct CorrectionsObservation {
    using Sdk = sdk::IFactoryCorrectionControl;
    using Control = devices::service::SdkFactoryCorrectionControl;

    struct Witness final : Telling<Sdk::Observer> {
        using Telling::Telling;
        void onSupportedChanged() override { tell(0); }
        void onValidChanged() override { tell(1); }
        void onEnabledChanged(sdk::CorrectionFlag correction, bool enabled) override;
    };
    struct Observer final : Hearing<Control::Observer> {
        using Hearing::Hearing;
        void onSupportedChanged() override { hear(0); }
        void onValidChanged() override { hear(1); }
        void onEnabledChanged(devices::FactoryCorrection correction, bool enabled) override;
    };

    static void add(const Instrument& instrument, Control& control, Observer& observer)
    {
        instrument.controls().undisturbed([&] { control.addObserver(&observer); });
    }
    static void remove(const Instrument& instrument, Control& control, Observer& observer)
    {
        instrument.controls().undisturbed([&] { control.removeObserver(&observer); });
    }
    static void whenOffered(Stream& stream) { stream.issue({{0, 0}, {1, 0}}); }
    static constexpr bool needsOffer = true; ///< or an observer that is removed would stay
    static constexpr bool isAddedAnywhere = false;
};

struct FactoryCorrections {
    using Control = devices::service::SdkFactoryCorrectionControl;
    using Observation = soak::Observation<CorrectionsObservation>;
    static constexpr auto name = "factory corrections";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = sdk::IFactoryCorrectionControl::key;
    static constexpr Place place{.range = 2};
    static Operations<Control> operations();
};

struct TemperatureObservation {
    using Sdk = sdk::ITemperatureControl;
    using Control = devices::service::SdkTemperatureControl;
    static constexpr auto key = Sdk::key;

    struct Witness final : Telling<Sdk::Observer> {
        using Telling::Telling;
        void onTemperatureChanged() override;
        Sdk* control = nullptr; ///< that is on offer
    };

    static void whenOffered(Stream& /*stream*/, Witness& witness, Sdk& control)
    {
        witness.control = &control;
        witness.onTemperatureChanged(); // the snapshot is taken anew and told
    }
    static std::shared_ptr<void> stay(Control& control, Hearer& hearer);
    static std::shared_ptr<void> pass(const Instrument& instrument, Control& control, Hearer& hearer);
    static constexpr bool makesAdapter = true; ///< a connection that ends does not wait for its slot, an adapter does
};

struct Temperature {
    using Control = devices::service::SdkTemperatureControl;
    using Observation = SignalObservation<TemperatureObservation>;
    static constexpr auto name = "temperature";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = sdk::ITemperatureControl::key;
    static constexpr Place place{};
    static Operations<Control> operations();
};

/// What a watcher of the controller under `theKey` makes of its notifications.
template <sdk::Key theKey>
struct ControllerObservation {
    using Sdk = sdk::service::calibrations::ICalibrationController;
    using Unit = sdk::service::calibrations::ICalibrationUnit;
    using Control = devices::service::SdkCalibrationControlHandle;
    using Watcher = devices::service::SdkCalibrationControlWatcher;
    static constexpr auto key = theKey;

    struct Witness final : Telling<Sdk::Observer> {
        using Telling<Sdk::Observer>::Telling;
        void onUnitStatusChanged(Unit* /*unit*/) override { this->tell(0); }
        void onSaveProgress(Unit* /*unit*/, sdk::service::calibrations::Progress progress) override
        {
            this->tell(1, progress.done * 100 / progress.total);
        }
        void onConfigurationChanged() override { this->tell(2); }
    };

    static void whenOffered(Stream& stream, Witness& /*witness*/, Sdk& /*control*/) { stream.issue({{0, 0}, {2, 0}}); }

    static std::shared_ptr<void> stay(Control& control, Hearer& hearer)
    {
        auto watcher = std::make_shared<Watcher>(control);
        auto* const from = watcher.get();
        from->detach(); // the thread sanitizer does not see how Qt hands a slot to another thread
        QObject::connect(from, &Watcher::unitStatusChanged, [&hearer] { hearer.hear(0); });
        QObject::connect(from, &Watcher::saveProgressChanged,
                         [&hearer](int percent) { hearer.hear(1, static_cast<std::uint64_t>(percent)); });
        QObject::connect(from, &Watcher::configurationChanged, [&hearer] { hearer.hear(2); });
        from->attach();
        return watcher;
    }

    static std::shared_ptr<void> pass(const Instrument& /*instrument*/, Control& control, Hearer& hearer)
    {
        return stay(control, hearer);
    }
    static constexpr bool makesAdapter = false;
};

template <std::uint64_t theRegistryKey, sdk::Key theSdkKey>
struct CalibrationController {
    using Control = devices::service::SdkCalibrationControlHandle;
    using Observation = SignalObservation<ControllerObservation<theSdkKey>>;
    static constexpr auto name = "calibration controller";
    static constexpr auto registryKey = theRegistryKey;
    static constexpr auto sdkKey = theSdkKey;
    static constexpr Place place{};
    static Operations<Control> operations()
    {
        return {{"units", Way::Call, Role::Neither, [](Control& control, const Use&) {
                     if (const auto controller = control.lock())
                         static_cast<void>(controller->units());
                     return Answer{};
                 }}};
    }
};

} // namespace tarn::soak
