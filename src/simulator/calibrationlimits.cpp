#include <simulator/calibrationlimits.h>

#include <cmath>
#include <cstddef>

namespace tarn::simulator {

namespace {

using Segment = sdk::FrequencyPlan::Segment;

constexpr Segment highestSegment{1e9, 8e9, 8};
constexpr Segment lowSegment{10e6, 90e6, 3};

double pointOf(const Segment& segment, std::size_t index)
{
    if (index == 0)
        return segment.startFrequency;
    const auto step = (segment.stopFrequency - segment.startFrequency) / (segment.pointCount - 1);
    return segment.startFrequency + (static_cast<double>(index) * step);
}

} // namespace

CalibrationLimits calibrationLimits(Profile profile, sdk::Model model)
{
    const auto family = familyOf(model);
    return {.portCount = family == Profile::MultiportLum || family == Profile::MultiportCommon ? 4U : 2U,
            .isOverrideSupported = family != Profile::Pell && family != Profile::Wisp,
            .hasFactoryCalibrations = profile == Profile::Full || family == Profile::Vell};
}

sdk::FrequencyPlan systemTermsPlan()
{
    return {{{1e6, 9e6, 3}, lowSegment, {100e6, 900e6, 5}, highestSegment}};
}

sdk::FrequencyPlan ifswPlan()
{
    return {{{100e6, 100e6, 1}, highestSegment}};
}

sdk::FrequencyPlan powerPlan()
{
    return {{lowSegment, highestSegment}};
}

bool arePointsOf(const sdk::FrequencyPlan& plan, std::span<const double> frequencies)
{
    constexpr double tolerance = 1e-9;
    for (const auto& segment : plan.segments) {
        if (segment.pointCount < 1 || static_cast<std::size_t>(segment.pointCount) > frequencies.size())
            return false;
        const auto count = static_cast<std::size_t>(segment.pointCount);
        for (std::size_t i = 0; i < count; ++i) {
            const auto point = pointOf(segment, i);
            if (!(std::abs(frequencies[i] - point) <= tolerance * std::abs(point)))
                return false;
        }
        frequencies = frequencies.subspan(count);
    }
    return frequencies.empty();
}

} // namespace tarn::simulator
