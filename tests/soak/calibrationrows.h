#pragma once

#include "memoryrows.h"
#include "observation.h"
#include "operation.h"
#include "signalobservation.h"

#include <devices/service/isystemtermscontrol.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <simulator/calibrations.h>

#include <cstdint>

namespace tarn::soak {

/// What an observer of writes hears; an error of the instrument that the application does not know is number 0.
template <class Control, auto lastError>
struct HearingWrites : Hearing<typename Control::Observer> {
    using Hearing<typename Control::Observer>::Hearing;
    void onWriteStarted() final { this->hear(0); }
    void onWriteProgressChanged(std::uint32_t progress) final { this->hear(1, progress); }
    void onWriteFinished() final { this->hear(2); }
};
template <class Sdk, auto lastError>
struct TellingWrites : Telling<typename Sdk::Observer> {
    using Telling<typename Sdk::Observer>::Telling;
    void onWriteStarted() final { this->tell(0); }
    void onWriteProgressChanged(unsigned progress) final { this->tell(1, progress); }
    void onWriteFinished() final { this->tellEnd(2); }
    void tellError(typename Sdk::Error error)
    {
        const auto number = static_cast<std::uint64_t>(error);
        this->tellEnd(3, number > static_cast<std::uint64_t>(lastError) ? 0 : number);
    }
};

struct TermsObservation : ListedObservers {
    using Sdk = sdk::service::ISystemTermsControl;
    using Control = devices::service::ISystemTermsControl;
    static constexpr auto lastError = Control::Error::WriteFailed;

    struct Witness final : TellingWrites<Sdk, lastError> {
        using TellingWrites::TellingWrites;
        void onErrorOccurred(Sdk::Error error) override { tellError(error); }
    };
    struct Observer final : HearingWrites<Control, lastError> {
        using HearingWrites::HearingWrites;
        void onErrorOccurred(Control::Error error) override { hear(3, static_cast<std::uint64_t>(error)); }
    };
};

/// Of the controls that register each observer with the instrument.
template <class TheSdk, class TheControl>
struct RegisteredObservation {
    using Sdk = TheSdk;
    using Control = TheControl;
    static constexpr auto lastError = Control::Error::ValueOutOfRange;

    struct Witness final : TellingWrites<Sdk, lastError> {
        using TellingWrites<Sdk, lastError>::TellingWrites;
        void onError(typename Sdk::Error error) override { this->tellError(error); }
    };
    struct Observer final : HearingWrites<Control, lastError> {
        using HearingWrites<Control, lastError>::HearingWrites;
        void onError(typename Control::Error error) override { this->hear(3, static_cast<std::uint64_t>(error)); }
    };

    static void add(Instrument& /*instrument*/, Control& control, Observer& observer)
    {
        control.addObserver(&observer);
    }
    static void remove(Instrument& /*instrument*/, Control& control, Observer& observer)
    {
        control.removeObserver(&observer);
    }
    static void whenOffered(Stream& /*stream*/) { }
    static constexpr bool needsOffer = true;
    static constexpr bool isAddedAnywhere = true;
};

struct SystemTerms {
    using Control = devices::service::ISystemTermsControl;
    using Observation = soak::Observation<TermsObservation>;
    static constexpr auto name = "system terms";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = sdk::service::ISystemTermsControl::key;
    static constexpr Place place{.range = 1'000'000'000};
    static Operations<Control> operations();
    static std::uint64_t stored(const simulator::SimulatedVna& vna);
};

struct IfswCalibration {
    using Control = devices::service::SdkVellIfswCalibrationControl;
    using Sdk = sdk::service::IVellIfswCalibrationControl;
    using Observation = soak::Observation<RegisteredObservation<Sdk, Control>>;
    static constexpr auto name = "IF switch calibration";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = Sdk::key;
    static constexpr Place place{.range = 100'000'000};
    static Operations<Control> operations();
    static std::uint64_t stored(const simulator::SimulatedVna& vna);
};

struct PowerCalibration {
    using Control = devices::service::SdkVellFactoryPowerCalibrationControl;
    using Sdk = sdk::service::IVellFactoryPowerCalibrationControl;
    using Observation = soak::Observation<RegisteredObservation<Sdk, Control>>;
    static constexpr auto name = "power calibration";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = Sdk::key;
    static constexpr Place place{.range = 1'000'000'000};
    static Operations<Control> operations();
    static std::uint64_t stored(const simulator::SimulatedVna& vna);
};

} // namespace tarn::soak
