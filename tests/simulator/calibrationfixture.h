#pragma once

#include <simulator/manualinstrument.h>

#include <sdk/ifactorycorrectioncontrol.h>
#include <sdk/service/calibrations/icalibrationcontroller.h>
#include <sdk/service/isystemtermscontrol.h>
#include <sdk/service/ivellfactorypowercalibrationcontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>
#include <simulator/calibrations.h>
#include <simulator/usbidentity.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::simulator::test {

using Terms = sdk::service::ISystemTermsControl;
using Ifsw = sdk::service::IVellIfswCalibrationControl;
using Power = sdk::service::IVellFactoryPowerCalibrationControl;
using Corrections = sdk::IFactoryCorrectionControl;
using Calibration = sdk::service::calibrations::ICalibrationController;
using Unit = sdk::service::calibrations::ICalibrationUnit;
using sdk::corrections::ErrorTerms;

inline std::vector<double> pointsOf(const sdk::FrequencyPlan& plan)
{
    std::vector<double> points;
    for (const auto& [start, stop, count] : plan.segments) {
        for (int i = 0; i < count; ++i)
            points.push_back(count == 1 ? start : start + i * (stop - start) / (count - 1));
    }
    return points;
}

/// Terms of an instrument with `portCount` ports, every value another.
inline ErrorTerms makeTerms(const std::vector<double>& frequencies, std::uint32_t portCount = 2)
{
    double number = 0.0;
    const auto trace = [&] {
        ErrorTerms::Trace values;
        for (std::size_t i = 0; i < frequencies.size(); ++i, number += 1e-3)
            values.emplace_back(number, 1.0 - number);
        return values;
    };
    ErrorTerms terms{.frequencies = frequencies, .ports = {}, .portPairs = {}};
    for (std::uint32_t source = 1; source <= portCount; ++source) {
        terms.ports.push_back({trace(), trace(), trace()});
        for (std::uint32_t receiver = 1; receiver <= portCount; ++receiver) {
            if (receiver != source)
                terms.portPairs.push_back({source, receiver, trace(), trace(), trace()});
        }
    }
    return terms;
}

inline ErrorTerms makeTerms()
{
    return makeTerms(pointsOf(systemTermsPlan()));
}

inline IfswCalibration makeIfsw()
{
    const Ifsw::ReceiverCalibration receiver{{{10e6, 0.99, -1.5}, {1e6, 1.01, 2.5}}, {{-20.0, 0.02, 0.3}}};
    return {pointsOf(ifswPlan()), receiver, receiver, receiver};
}

/// Two levels at each frequency.
inline std::vector<Power::PowerCalPoint> makePowerPoints()
{
    std::vector<Power::PowerCalPoint> points;
    for (const auto frequency : pointsOf(powerPlan())) {
        for (const auto level : {-30.0F, 0.0F})
            points.push_back({frequency, level, level + 0.25F, true, false, 0.0F, true, 10.5F, level - 16.0F});
    }
    return points;
}

constexpr std::int64_t measured = 1'700'000'000;
constexpr double warm = 35.5;

/// Gives the instrument the identity of another model.
inline void become(const ManualInstrument& instrument, sdk::Model model)
{
    const auto record = std::ranges::find(UsbIdentity::supported(), model, &UsbIdentity::DeviceRecord::model);
    const auto held = instrument.control<UsbId>();
    EXPECT_EQ(write(*held, record->usbId), std::error_code{});
    instrument.vna->waitUntilIdle();
}

/// The observer of a control, whose errors come under one name.
template <class Control>
struct ErrorObserver : Control::Observer {
    void onError(typename Control::Error error) override { failed(static_cast<int>(error)); }
    virtual void failed(int error) = 0;
};

template <>
struct ErrorObserver<Terms> : Terms::Observer {
    void onErrorOccurred(Terms::Error error) override { failed(static_cast<int>(error)); }
    virtual void failed(int error) = 0;
};

/// Notes the notifications of writes after a name, as "started", "40 %", "finished" and "error 3", and calls a
/// function.
template <class Control>
struct WriteObserver final : ErrorObserver<Control> {
    explicit WriteObserver(Journal& theJournal, std::string theName = {})
        : journal{theJournal}
        , name{std::move(theName)}
    {
    }

    void onWriteStarted() override { note("started"); }
    void onWriteProgressChanged(unsigned progress) override { note(std::to_string(progress) + " %"); }
    void onWriteFinished() override { note("finished"); }
    void failed(int error) override { note("error " + std::to_string(error)); }

    void note(const std::string& event)
    {
        journal.note(name + event);
        if (reaction)
            reaction();
    }

    Journal& journal;
    std::string name;
    std::function<void()> reaction;
};

/// What was noted, without the progress.
inline std::vector<std::string> ends(std::vector<std::string> events)
{
    std::erase_if(events, [](const auto& event) { return event.ends_with('%'); });
    return events;
}

/// The same kind of thing for each of the controls that store calibration data.
template <class Control>
struct Kind;

template <>
struct Kind<Terms> {
    static constexpr auto time = std::chrono::milliseconds{19 * 50};
    static constexpr int writeFailed = 9;
    static const auto& slot(const SimulatedVna& vna) { return vna.calibrations().systemTerms; }
    static SystemTerms data() { return {measured, systemTermsPlan(), makeTerms(), warm}; }
    static sdk::FrequencyPlan plan() { return systemTermsPlan(); }
    static void write(Terms& control) { control.writeTerms(measured, makeTerms(), warm); }
    static void refuse(Terms& control) { control.writeTerms(measured, {}, warm); }
};

template <>
struct Kind<Ifsw> {
    static constexpr auto time = std::chrono::milliseconds{(9 + 3 * 3) * 10};
    static constexpr int writeFailed = 4;
    static const auto& slot(const SimulatedVna& vna) { return vna.calibrations().ifsw; }
    static IfswCalibration data() { return makeIfsw(); }
    static sdk::FrequencyPlan plan() { return ifswPlan(); }
    static void write(Ifsw& control) { control.saveCalibrationData(makeIfsw()); }
    static void refuse(Ifsw& control) { control.saveCalibrationData({}); }
};

template <>
struct Kind<Power> {
    static constexpr auto time = std::chrono::milliseconds{2 * 11 * 20};
    static constexpr int writeFailed = 4;
    static const auto& slot(const SimulatedVna& vna) { return vna.calibrations().power; }
    static PowerCalibration data() { return {measured, makePowerPoints(), warm}; }
    static sdk::FrequencyPlan plan() { return powerPlan(); }
    static void write(Power& control) { control.saveCalibrationData(measured, makePowerPoints(), warm); }
    static void refuse(Power& control) { control.saveCalibrationData(measured, {}, warm); }
};

using AllKinds = testing::Types<Terms, Ifsw, Power>;

/// An instrument whose writes take the time of real memory, with an observer that follows the control.
template <class Control>
struct CalibratedInstrument : ManualInstrument {
    explicit CalibratedInstrument(Settings settings = {},
                                  std::unique_ptr<Storage> storage = std::make_unique<NoStorage>())
        : ManualInstrument{atRealSpeed(settings), std::move(storage)}
    {
        vna->addObserver(&follower);
        attach();
    }

    CalibratedInstrument(const CalibratedInstrument&) = delete;
    CalibratedInstrument& operator=(const CalibratedInstrument&) = delete;

    ~CalibratedInstrument()
    {
        if (vna)
            vna->removeObserver(&follower);
    }

    static Settings atRealSpeed(Settings settings)
    {
        settings.speed = 1.0;
        return settings;
    }

    /// As a host does that follows the control, if there is one.
    void attach()
    {
        if (const auto offered = control())
            offered->addObserver(&observer);
    }
    [[nodiscard]] std::shared_ptr<Control> control() const { return ManualInstrument::control<Control>(); }
    void write() const { Kind<Control>::write(*control()); }
    void refuse() const { Kind<Control>::refuse(*control()); }
    [[nodiscard]] const auto& slot() const { return Kind<Control>::slot(*vna); }
    void setFaults(const FaultPlan& plan) const { vna->faults().setPlan(plan); }

    /// What was noted until now of starts and ends.
    [[nodiscard]] std::vector<std::string> takeEnds() { return ends(journal.take()); }

    Journal journal;
    WriteObserver<Control> observer{journal};

private:
    struct Follower final : sdk::IVna::Observer {
        explicit Follower(CalibratedInstrument& theInstrument)
            : instrument{theInstrument}
        {
        }

        void onControlsAboutToBeReleased() override
        {
            if (const auto offered = instrument.control())
                offered->removeObserver(&instrument.observer);
        }
        void onControlsAvailable() override { instrument.attach(); }

        CalibratedInstrument& instrument;
    };

    Follower follower{*this};
};

} // namespace tarn::simulator::test
