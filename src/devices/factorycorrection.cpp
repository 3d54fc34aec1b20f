#include <devices/factorycorrection.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarn::devices {

namespace {

using sdk::CorrectionFlag;

constexpr std::pair<FactoryCorrection, CorrectionFlag> counterparts[] = {
    {FactoryCorrection::System, CorrectionFlag::System},
    {FactoryCorrection::SourcePower, CorrectionFlag::SourcePower},
    {FactoryCorrection::ReceiverPower, CorrectionFlag::ReceiverPower},
    {FactoryCorrection::ReceiverLinearity, CorrectionFlag::ReceiverLinearity},
    {FactoryCorrection::IfSwitch, CorrectionFlag::IfSwitch},
    {FactoryCorrection::AttenuatorSteps, CorrectionFlag::AttenuatorSteps},
    {FactoryCorrection::PortExtension, CorrectionFlag::PortExtension},
    {FactoryCorrection::Crosstalk, CorrectionFlag::Crosstalk},
    {FactoryCorrection::Temperature, CorrectionFlag::Temperature},
    {FactoryCorrection::ReferenceOscillator, CorrectionFlag::ReferenceOscillator},
};

} // namespace

CorrectionFlag toSdkCorrection(FactoryCorrection correction)
{
    const auto* const found = std::ranges::find(counterparts, correction, [](const auto& pair) { return pair.first; });
    return found == std::end(counterparts) ? CorrectionFlag::None : found->second;
}

std::optional<FactoryCorrection> fromSdkCorrection(CorrectionFlag flag)
{
    const auto* const found = std::ranges::find(counterparts, flag, [](const auto& pair) { return pair.second; });
    return found == std::end(counterparts) ? std::nullopt : std::optional{found->first};
}

} // namespace tarn::devices
