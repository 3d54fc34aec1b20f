#include <fuzz/calibrationfile.h>

#include <console/termsfile.h>

#include <functional>

using namespace tarn::console;

namespace {

bool isWithinLimits(const tarn::vna::ErrorTerms& terms)
{
    const auto frequencies = terms.frequencies();
    return terms.portCount() >= 1 && terms.portCount() <= mostPorts && !frequencies.empty() && frequencies.front() >= 0
        && std::ranges::adjacent_find(frequencies, std::greater_equal{}) == frequencies.end();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    tarn::fuzz::readCalibrationFile(tarn::fuzz::textOf(data, size), &readTermsFile, &termsFileText, &isWithinLimits);
    return 0;
}
