#include <fuzz/calibrationfile.h>

#include <console/powerfile.h>

#include <cmath>

using namespace tarn::console;

namespace {

bool isWithinLimits(const std::vector<PowerPoint>& points)
{
    return !points.empty() && points.front().frequency >= 0
        && std::ranges::is_sorted(points, {}, &PowerPoint::frequency)
        && std::ranges::all_of(points, [](const PowerPoint& point) {
               return std::isfinite(point.frequency) && std::isfinite(point.nominalPower)
                   && std::isfinite(point.measuredPower) && std::isfinite(point.sourceAttenuation)
                   && std::isfinite(point.receiverAttenuation) && std::isfinite(point.receiverPower);
           });
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    tarn::fuzz::readCalibrationFile(tarn::fuzz::textOf(data, size), &readPowerFile, &powerFileText, &isWithinLimits);
    return 0;
}
