// What it costs to bring lists of records into the SDK's form and back: the library's way against `reserve` and
// `push_back` of the same fields.

#include "fakes.h"
#include "shortesthandle.h"
#include "ways.h"

#include <devices/service/frequencyplanconversion.h>
#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <QList>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <future>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tarn::benchmarks {
namespace {

using devices::service::IFileMemoryControl;
using devices::service::SdkFileMemoryControl;
using devices::service::SdkVellFactoryPowerCalibrationControl;
using devices::service::SdkVellIfswCalibrationControl;
using SdkFiles = sdk::service::IFileMemoryControl;
using SdkIfsw = sdk::service::IVellIfswCalibrationControl;
using SdkPower = sdk::service::IVellFactoryPowerCalibrationControl;

/// Lists the files that it is given.
class Listing final : public SdkFiles {
public:
    bool isAvailable() override { return true; }
    void fileList(sdk::Completion<std::vector<FileInfo>> done) override { done(std::move(files), {}); }
    void spaceInfo(sdk::Completion<SpaceInfo> done) override { done({}, {}); }
    void readFile(const FileInfo& /*file*/, sdk::Completion<std::vector<std::uint8_t>> done) override { done({}, {}); }
    void writeFile(std::string /*name*/, std::vector<std::uint8_t> /*contents*/, sdk::Completion<> done) override
    {
        done({});
    }
    void deleteFile(const FileInfo& /*file*/, sdk::Completion<> done) override { done({}); }

    std::vector<FileInfo> files;
};

/// Controls that take what they are given and forget it.
class IfswSink final : public SdkIfsw {
public:
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    sdk::FrequencyPlan frequencyPlan() override { return {}; }
    void saveCalibrationData(IfswCalibrationData data) override { consume(data); }
};

class PowerSink final : public SdkPower {
public:
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    sdk::FrequencyPlan frequencyPlan() override { return {}; }
    void saveCalibrationData(std::int64_t /*time*/, std::vector<PowerCalPoint> points, double /*temperature*/) override
    {
        consume(points);
    }
};

template <class Sdk>
std::shared_ptr<ShortestHandle<Sdk>> shortest(const std::shared_ptr<Sdk>& control)
{
    return std::make_shared<ShortestHandle<Sdk>>([control] { return sdk::ControlHandle<Sdk>{control}; });
}

std::vector<vna::FrequencySegment> segments(std::size_t count)
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

/// A conversion of a plan; that its result goes again counts, too.
template <class Plan>
Way conversion(const std::string& row, const char* name, const Plan& plan, auto (*convert)(const Plan&))
{
    return repeated(row, name, [plan, convert] { return convert(plan); });
}

std::vector<SdkVellFactoryPowerCalibrationControl::PowerCalPoint> points(std::size_t count)
{
    std::vector<SdkVellFactoryPowerCalibrationControl::PowerCalPoint> result(count);
    for (std::size_t i = 0; i != count; ++i) {
        const auto n = static_cast<float>(i);
        result[i] = {static_cast<double>(i), n, n, i % 2 == 0, i % 3 == 0, n, i % 5 == 0, n, n};
    }
    return result;
}

[[gnu::noinline]] void plainPoints(ShortestHandle<SdkPower>& handle,
                                   std::vector<SdkVellFactoryPowerCalibrationControl::PowerCalPoint> from)
{
    std::vector<SdkPower::PowerCalPoint> to;
    to.reserve(from.size());
    for (const auto& point : from)
        to.push_back({point.frequency, point.nominalPower, point.measuredPower, point.isSourceAmplifierOn,
                      point.isSourceAttenuatorOn, point.sourceAttenuation, point.isReceiverAttenuatorOn,
                      point.receiverAttenuation, point.receiverPower});
    if (const auto control = handle.lock())
        control->saveCalibrationData(0, std::move(to), 0.0);
}

SdkVellIfswCalibrationControl::IfswCalibrationData records(std::size_t count)
{
    SdkVellIfswCalibrationControl::IfswCalibrationData data;
    for (std::size_t i = 0; i != count / 2; ++i) {
        const auto n = static_cast<double>(i);
        data.reference.ratios.push_back({n, n + 1, n + 2});
        data.reference.linearities.push_back({n, n - 1, n - 2});
    }
    return data;
}

[[gnu::noinline]] void plainRecords(ShortestHandle<SdkIfsw>& handle,
                                    SdkVellIfswCalibrationControl::IfswCalibrationData from)
{
    SdkIfsw::IfswCalibrationData to;
    to.frequencies = std::move(from.frequencies);
    to.reference.linearities.reserve(from.reference.linearities.size());
    for (const auto& record : from.reference.linearities)
        to.reference.linearities.push_back({record.level, record.magnitudeError, record.phaseError});
    to.reference.ratios.reserve(from.reference.ratios.size());
    for (const auto& record : from.reference.ratios)
        to.reference.ratios.push_back({record.intermediateFrequency, record.magnitude, record.phase});
    if (const auto control = handle.lock())
        control->saveCalibrationData(std::move(to));
}

/// The request of the list of files by hand.
[[gnu::noinline]] std::expected<QList<IFileMemoryControl::FileInfo>, QString> plainList(SdkFiles& control)
{
    std::promise<std::expected<QList<IFileMemoryControl::FileInfo>, QString>> promise;
    auto future = promise.get_future();
    control.fileList([&promise](std::vector<SdkFiles::FileInfo> files, std::error_code) {
        QList<IFileMemoryControl::FileInfo> list;
        list.reserve(static_cast<qsizetype>(files.size()));
        for (const auto& file : files)
            list.push_back({QString::fromUtf8(file.name), file.size});
        promise.set_value(std::move(list));
    });
    return future.get();
}

std::vector<Way> plans(std::size_t count)
{
    const auto of = ", " + std::to_string(count);
    namespace service = devices::service;
    const auto plan = segments(count);
    const auto sdkPlan = plainToSdk(plan);
    return {
        conversion("segments to the SDK" + of, "library", plan, &service::toSdkFrequencyPlan),
        conversion("segments to the SDK" + of, "push_back", plan, &plainToSdk),
        conversion("segments from the SDK" + of, "library", sdkPlan, &service::fromSdkFrequencyPlan),
        conversion("segments from the SDK" + of, "push_back", sdkPlan, &plainFromSdk),
    };
}

/// How often a list of that length is made at a time.
std::uint64_t timesOf(std::size_t count)
{
    return std::clamp<std::size_t>(3'000'000 / count, 8, 2'000);
}

std::vector<Way> calibrations(std::size_t count)
{
    const auto of = ", " + std::to_string(count);
    const auto times = timesOf(count);
    const auto powerSink = std::make_shared<PowerSink>();
    const auto power = adapterOf<SdkVellFactoryPowerCalibrationControl, SdkPower>(powerSink);
    const auto somePoints = [data = points(count)] { return data; };
    const auto ifswSink = std::make_shared<IfswSink>();
    const auto ifsw = adapterOf<SdkVellIfswCalibrationControl, SdkIfsw>(ifswSink);
    const auto someRecords = [data = records(count)] { return data; };
    return {
        prepared("power points" + of, "library", times, somePoints,
                 [power](auto data) { power->saveCalibrationData({}, 0.0, std::move(data)); }),
        prepared("power points" + of, "push_back", times, somePoints,
                 [handle = shortest<SdkPower>(powerSink)](auto data) { plainPoints(*handle, std::move(data)); }),
        prepared("IF-switch records" + of, "library", times, someRecords,
                 [ifsw](auto data) { ifsw->saveCalibrationData(std::move(data)); }),
        prepared("IF-switch records" + of, "push_back", times, someRecords,
                 [handle = shortest<SdkIfsw>(ifswSink)](auto data) { plainRecords(*handle, std::move(data)); }),
    };
}

std::vector<Way> fileLists(std::size_t count)
{
    const auto of = ", " + std::to_string(count);
    const auto times = timesOf(count);
    const auto listing = std::make_shared<Listing>();
    const auto adapter = adapterOf<SdkFileMemoryControl, SdkFiles>(listing);
    const auto list = [count, listing] {
        std::vector<SdkFiles::FileInfo> files;
        for (std::size_t i = 0; i != count; ++i)
            files.push_back({"calibration/module " + std::to_string(i), i});
        return files;
    };
    return {
        prepared("names of files" + of, "library", times, list,
                 [listing, adapter](auto files) {
                     listing->files = std::move(files);
                     return adapter->fileList();
                 }),
        prepared("names of files" + of, "push_back", times, list,
                 [listing](auto files) {
                     listing->files = std::move(files);
                     return plainList(*listing);
                 }),
    };
}

} // namespace

std::vector<Way> allWays()
{
    return forEach(isCounted ? Sizes{1'000} : Sizes{1'000, 30'000, 1'000'000}, &plans, &calibrations, &fileLists);
}

} // namespace tarn::benchmarks
