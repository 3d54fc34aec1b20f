#include "calibrationrows.h"

#include <QDateTime>

#include <chrono>
#include <vector>

namespace tarn::soak {

namespace {

/// The points of a plan of the instrument's.
std::vector<double> pointsOf(const sdk::FrequencyPlan& plan)
{
    std::vector<double> points;
    for (const auto& [start, stop, count] : plan.segments) {
        for (int i = 0; i != count; ++i)
            points.push_back(count == 1 ? start : start + (i * (stop - start) / (count - 1)));
    }
    return points;
}

template <class Control>
Operation<Control> readPlan()
{
    return {"frequencyPlan", Way::Call, Role::Neither, [](Control& control, const Use&) {
                static_cast<void>(control.frequencyPlan());
                return Answer{};
            }};
}

} // namespace

Operations<SystemTerms::Control> SystemTerms::operations()
{
    static const vna::ErrorTerms terms{2, pointsOf(simulator::systemTermsPlan())};
    return {
        readPlan<Control>(),
        {"isFrequencyOverrideSupported", Way::Call, Role::Neither,
         [](Control& control, const Use&) {
             static_cast<void>(control.isFrequencyOverrideSupported());
             return Answer{};
         }},
        {"requestWriteTerms", Way::Order, Role::Writes,
         [](Control& control, const Use& use) {
             const auto time = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(use.number % place.range));
             control.requestWriteTerms(time, 30.0, terms);
             return Answer{};
         }},
    };
}

std::uint64_t SystemTerms::stored(const simulator::SimulatedVna& vna)
{
    const auto data = vna.calibrations().systemTerms.data();
    return data ? static_cast<std::uint64_t>(data->time) : 0;
}

/// The number is an intermediate frequency.
Operations<IfswCalibration::Control> IfswCalibration::operations()
{
    static const auto points = pointsOf(simulator::ifswPlan());
    return {
        readPlan<Control>(),
        {"saveCalibrationData", Way::Order, Role::Writes,
         [](Control& control, const Use& use) {
             const auto frequency = static_cast<double>(use.number % place.range) + 1.0;
             const Control::ReceiverCalibration receiver{{{frequency, 1.0, 0.0}}, {{-20.0, 0.0, 0.0}}};
             control.saveCalibrationData({points, receiver, receiver, receiver});
             return Answer{};
         }},
    };
}

std::uint64_t IfswCalibration::stored(const simulator::SimulatedVna& vna)
{
    const auto data = vna.calibrations().ifsw.data();
    return data ? static_cast<std::uint64_t>(data->reference.ratios.front().intermediateFrequency) - 1 : 0;
}

Operations<PowerCalibration::Control> PowerCalibration::operations()
{
    static const auto points = [] {
        std::vector<Control::PowerCalPoint> list;
        for (const auto frequency : pointsOf(simulator::powerPlan()))
            list.push_back({frequency, 0.0F, 0.0F, true, false, 0.0F, true, 10.0F, -10.0F});
        return list;
    }();
    return {
        readPlan<Control>(),
        {"saveCalibrationData", Way::Order, Role::Writes,
         [](Control& control, const Use& use) {
             const std::chrono::sys_seconds time{std::chrono::seconds{use.number % place.range}};
             control.saveCalibrationData(time, 30.0, points);
             return Answer{};
         }},
    };
}

std::uint64_t PowerCalibration::stored(const simulator::SimulatedVna& vna)
{
    const auto data = vna.calibrations().power.data();
    return data ? static_cast<std::uint64_t>(data->time) : 0;
}

} // namespace tarn::soak
