// What it costs to bring the data of a write into the SDK's form: the library's way against
// `reserve` and `push_back` of the same fields.

#include "ways.h"

#include <devices/service/frequencyplanconversion.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
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

/// A conversion of a plan, together with the end of its result.
template <class Plan>
void addPlan(const std::string& row, const std::string& way, const Plan& plan, auto (*convert)(const Plan&))
{
    add(row, way, [plan, convert] {
        const auto result = convert(plan);
        benchmark::DoNotOptimize(&result);
        benchmark::ClobberMemory();
    });
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

void addAll()
{
    namespace service = devices::service;
    const auto plan = segments();
    const auto sdkPlan = plainToSdk(plan);
    addPlan("segments to the SDK", "library", plan, &service::toSdkFrequencyPlan);
    addPlan("segments to the SDK", "push_back", plan, &plainToSdk);
    addPlan("segments from the SDK", "library", sdkPlan, &service::fromSdkFrequencyPlan);
    addPlan("segments from the SDK", "push_back", sdkPlan, &plainFromSdk);

    const auto powerSink = std::make_shared<PowerSink>();
    const auto power = std::make_shared<SdkVellFactoryPowerCalibrationControl>(handleTo<SdkPower>(powerSink));
    const auto somePoints = [data = points()] { return data; };
    add("power points", "library", somePoints,
        [power](auto data) { power->saveCalibrationData({}, 0.0, std::move(data)); });
    add("power points", "push_back", somePoints, [powerSink](auto data) { plainPoints(*powerSink, std::move(data)); });

    const auto ifswSink = std::make_shared<IfswSink>();
    const auto ifsw = std::make_shared<SdkVellIfswCalibrationControl>(handleTo<SdkIfsw>(ifswSink));
    const auto someRecords = [data = records()] { return data; };
    add("IF-switch records", "library", someRecords, [ifsw](auto data) { ifsw->saveCalibrationData(std::move(data)); });
    add("IF-switch records", "push_back", someRecords,
        [ifswSink](auto data) { plainRecords(*ifswSink, std::move(data)); });
}

} // namespace
} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    return tarn::benchmarks::runAll(argc, argv, &tarn::benchmarks::addAll);
}
