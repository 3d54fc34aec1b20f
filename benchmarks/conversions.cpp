// What it costs to bring the data of a write into the SDK's form: the library's way against
// `reserve` and `push_back` of the same fields. Exits with 1 if the library takes more than 1.05
// times as long. The two run interleaved; the medians of the repetitions count.

#include "medianratios.h"

#include <devices/service/frequencyplanconversion.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tarn::benchmarks {
namespace {

constexpr std::size_t count = 100'000;

using devices::ReacquiringControl;
using devices::service::SdkVellFactoryPowerCalibrationControl;
using devices::service::SdkVellIfswCalibrationControl;
using SdkIfsw = sdk::service::IVellIfswCalibrationControl;
using SdkPower = sdk::service::IVellFactoryPowerCalibrationControl;

/// Controls that take what they are given and forget it.
class IfswSink final : public SdkIfsw {
public:
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    sdk::FrequencyPlan frequencyPlan() override { return {}; }
    void saveCalibrationData(IfswCalibrationData data) override
    {
        benchmark::DoNotOptimize(data.reference.ratios.data());
        benchmark::ClobberMemory();
    }
};

class PowerSink final : public SdkPower {
public:
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    sdk::FrequencyPlan frequencyPlan() override { return {}; }
    void saveCalibrationData(std::int64_t /*time*/, std::vector<PowerCalPoint> points, double /*temperature*/) override
    {
        benchmark::DoNotOptimize(points.data());
        benchmark::ClobberMemory();
    }
};

template <class Interface, class Sink>
ReacquiringControl<Interface> handleTo(const std::shared_ptr<Sink>& sink)
{
    return ReacquiringControl<Interface>{[sink] { return sdk::ControlHandle<Interface>{sink}; }};
}

/// Times `convert`, which is given a fresh copy of `data` each time; the copying does not count.
template <class Data, class Convert>
void time(benchmark::State& state, const Data& data, Convert convert)
{
    for ([[maybe_unused]] const auto iteration : state) {
        auto copy = data;
        const auto start = std::chrono::steady_clock::now();
        convert(std::move(copy));
        state.SetIterationTime(std::chrono::duration<double>{std::chrono::steady_clock::now() - start}.count());
    }
}

std::vector<vna::FrequencySegment> segments()
{
    std::vector<vna::FrequencySegment> plan(count);
    for (std::size_t i = 0; i != count; ++i) {
        const auto n = static_cast<double>(i);
        plan[i] = {n, n + 1, static_cast<std::uint32_t>(i)};
    }
    return plan;
}

sdk::FrequencyPlan plainToSdk(const std::vector<vna::FrequencySegment>& plan)
{
    sdk::FrequencyPlan result;
    result.segments.reserve(plan.size());
    for (const auto& segment : plan)
        result.segments.push_back({segment.start, segment.stop, static_cast<std::int32_t>(segment.pointCount)});
    return result;
}

std::vector<vna::FrequencySegment> plainFromSdk(const sdk::FrequencyPlan& plan)
{
    std::vector<vna::FrequencySegment> result;
    result.reserve(plan.segments.size());
    for (const auto& segment : plan.segments)
        result.push_back(
            {segment.startFrequency, segment.stopFrequency, static_cast<std::uint32_t>(segment.pointCount)});
    return result;
}

/// Times a conversion of a plan, together with the end of its result.
template <class Plan>
void timePlan(benchmark::State& state, const Plan& plan, auto (*convert)(const Plan&))
{
    for ([[maybe_unused]] const auto iteration : state) {
        const auto start = std::chrono::steady_clock::now();
        {
            const auto result = convert(plan);
            benchmark::DoNotOptimize(&result);
            benchmark::ClobberMemory();
        }
        state.SetIterationTime(std::chrono::duration<double>{std::chrono::steady_clock::now() - start}.count());
    }
}

std::vector<SdkVellFactoryPowerCalibrationControl::PowerCalPoint> points()
{
    std::vector<SdkVellFactoryPowerCalibrationControl::PowerCalPoint> result(count);
    for (std::size_t i = 0; i != count; ++i) {
        const auto n = static_cast<float>(i);
        result[i] = {static_cast<double>(i), n, n, i % 2 == 0, i % 3 == 0, n, i % 5 == 0, n, n};
    }
    return result;
}

void plainPoints(SdkPower& sink, std::vector<SdkVellFactoryPowerCalibrationControl::PowerCalPoint> from)
{
    std::vector<SdkPower::PowerCalPoint> to;
    to.reserve(from.size());
    for (const auto& point : from)
        to.push_back({point.frequency, point.nominalPower, point.measuredPower, point.isSourceAmplifierOn,
                      point.isSourceAttenuatorOn, point.sourceAttenuation, point.isReceiverAttenuatorOn,
                      point.receiverAttenuation, point.receiverPower});
    sink.saveCalibrationData(0, std::move(to), 0.0);
}

SdkVellIfswCalibrationControl::IfswCalibrationData records()
{
    SdkVellIfswCalibrationControl::IfswCalibrationData data;
    for (std::size_t i = 0; i != count / 2; ++i) {
        const auto n = static_cast<double>(i);
        data.reference.ratios.push_back({n, n + 1, n + 2});
        data.reference.linearities.push_back({n, n - 1, n - 2});
    }
    return data;
}

void plainRecords(SdkIfsw& sink, SdkVellIfswCalibrationControl::IfswCalibrationData from)
{
    SdkIfsw::IfswCalibrationData to;
    to.frequencies = std::move(from.frequencies);
    to.reference.linearities.reserve(from.reference.linearities.size());
    for (const auto& record : from.reference.linearities)
        to.reference.linearities.push_back({record.level, record.magnitudeError, record.phaseError});
    to.reference.ratios.reserve(from.reference.ratios.size());
    for (const auto& record : from.reference.ratios)
        to.reference.ratios.push_back({record.intermediateFrequency, record.magnitude, record.phase});
    sink.saveCalibrationData(std::move(to));
}

/// A benchmark under `name`, in the form that all of them have.
template <class Run>
void add(const char* name, Run run)
{
    benchmark::RegisterBenchmark(name, run)->UseManualTime()->Unit(benchmark::kMicrosecond);
}

void addAll()
{
    namespace service = devices::service;
    const auto plan = segments();
    const auto sdkPlan = plainToSdk(plan);
    add("segments to the SDK/library", [plan](auto& state) { timePlan(state, plan, &service::toSdkFrequencyPlan); });
    add("segments to the SDK/plain", [plan](auto& state) { timePlan(state, plan, &plainToSdk); });
    add("segments from the SDK/library",
        [sdkPlan](auto& state) { timePlan(state, sdkPlan, &service::fromSdkFrequencyPlan); });
    add("segments from the SDK/plain", [sdkPlan](auto& state) { timePlan(state, sdkPlan, &plainFromSdk); });

    const auto powerSink = std::make_shared<PowerSink>();
    const auto power = std::make_shared<SdkVellFactoryPowerCalibrationControl>(handleTo<SdkPower>(powerSink));
    add("power points/library", [data = points(), power](auto& state) {
        time(state, data, [&](auto copy) { power->saveCalibrationData({}, 0.0, std::move(copy)); });
    });
    add("power points/plain", [data = points(), powerSink](auto& state) {
        time(state, data, [&](auto copy) { plainPoints(*powerSink, std::move(copy)); });
    });

    const auto ifswSink = std::make_shared<IfswSink>();
    const auto ifsw = std::make_shared<SdkVellIfswCalibrationControl>(handleTo<SdkIfsw>(ifswSink));
    add("IF-switch records/library", [data = records(), ifsw](auto& state) {
        time(state, data, [&](auto copy) { ifsw->saveCalibrationData(std::move(copy)); });
    });
    add("IF-switch records/plain", [data = records(), ifswSink](auto& state) {
        time(state, data, [&](auto copy) { plainRecords(*ifswSink, std::move(copy)); });
    });
}

} // namespace
} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    return tarn::benchmarks::runWithin(1.05, argc, argv, &tarn::benchmarks::addAll);
}
