#include <fuzz/calibrationfile.h>

#include <console/ifswfile.h>

#include <functional>

using namespace tarn::console;

namespace {

bool isWithinLimits(const IfswData& data)
{
    const auto isComplete
        = [](const auto* receiver) { return !receiver->ratios.empty() && !receiver->linearities.empty(); };
    return !data.frequencies.empty() && data.frequencies.front() >= 0
        && std::ranges::adjacent_find(data.frequencies, std::greater_equal{}) == data.frequencies.end()
        && isComplete(&data.reference) && isComplete(&data.reflection) && isComplete(&data.transmission);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    tarn::fuzz::readCalibrationFile(tarn::fuzz::textOf(data, size), &readIfswFile, &ifswFileText, &isWithinLimits);
    return 0;
}
