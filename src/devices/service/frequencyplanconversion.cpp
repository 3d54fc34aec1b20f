#include <devices/service/frequencyplanconversion.h>

#include <devices/service/convertall.h>

#include <cstdint>

namespace tarn::devices::service {

sdk::FrequencyPlan toSdkFrequencyPlan(const std::vector<vna::FrequencySegment>& plan)
{
    using Segment = sdk::FrequencyPlan::Segment;
    return {convertAll<Segment>(plan, [](const vna::FrequencySegment& segment) -> Segment {
        return {segment.start, segment.stop, static_cast<std::int32_t>(segment.pointCount)};
    })};
}

std::vector<vna::FrequencySegment> fromSdkFrequencyPlan(const sdk::FrequencyPlan& plan)
{
    using Segment = vna::FrequencySegment;
    return convertAll<Segment>(plan.segments, [](const sdk::FrequencyPlan::Segment& segment) -> Segment {
        return {segment.startFrequency, segment.stopFrequency, static_cast<std::uint32_t>(segment.pointCount)};
    });
}

} // namespace tarn::devices::service
