#include <fuzz/calibrationfile.h>

#include <console/jsonnode.h>
#include <console/planfile.h>

#include <cmath>

using namespace tarn::console;

namespace {

bool isFrequency(double value)
{
    return std::isfinite(value) && value >= 0;
}

bool isWithinLimits(const FrequencyPlan& plan)
{
    return !plan.empty() && std::ranges::all_of(plan, [](const auto& segment) {
        return isFrequency(segment.start) && isFrequency(segment.stop) && segment.pointCount >= 1
            && segment.pointCount <= mostCount;
    });
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    tarn::fuzz::readCalibrationFile(tarn::fuzz::textOf(data, size), &readPlanFile, &planFileText, &isWithinLimits);
    return 0;
}
