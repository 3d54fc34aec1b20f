#include <devices/factorycorrection.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <set>
#include <type_traits>
#include <utility>

namespace tarn::tests {
namespace {

using devices::FactoryCorrection;
using devices::fromSdkCorrection;
using devices::toSdkCorrection;
using sdk::CorrectionFlag;

static_assert(std::is_same_v<std::underlying_type_t<CorrectionFlag>, std::uint16_t>);
static_assert((CorrectionFlag::System | CorrectionFlag::Temperature) == static_cast<CorrectionFlag>(0x81));
static_assert((static_cast<CorrectionFlag>(0x83) & static_cast<CorrectionFlag>(0x8182))
              == static_cast<CorrectionFlag>(0x82));

/// The counterparts, written down once more.
constexpr std::pair<FactoryCorrection, std::uint16_t> counterparts[] = {
    {FactoryCorrection::System, 0x0001},
    {FactoryCorrection::SourcePower, 0x0002},
    {FactoryCorrection::ReceiverPower, 0x0004},
    {FactoryCorrection::IfSwitch, 0x0008},
    {FactoryCorrection::ReceiverLinearity, 0x0010},
    {FactoryCorrection::PortExtension, 0x0020},
    {FactoryCorrection::Crosstalk, 0x0040},
    {FactoryCorrection::Temperature, 0x0080},
    {FactoryCorrection::AttenuatorSteps, 0x0100},
    {FactoryCorrection::ReferenceOscillator, 0x8000},
};

TEST(FactoryCorrectionConversion, MapsEachCorrectionToItsBitAndBack)
{
    for (const auto& [correction, bit] : counterparts) {
        EXPECT_EQ(std::to_underlying(toSdkCorrection(correction)), bit);
        EXPECT_EQ(fromSdkCorrection(static_cast<CorrectionFlag>(bit)), correction);
    }
}

TEST(FactoryCorrectionConversion, FindsACounterpartForThoseBitsAloneOfAllValues)
{
    std::set<std::uint16_t> known;
    for (const auto& [correction, bit] : counterparts)
        known.insert(bit);
    for (std::uint32_t value = 0; value <= 0xffff; ++value) {
        const auto flag = static_cast<CorrectionFlag>(value);
        EXPECT_EQ(fromSdkCorrection(flag).has_value(), known.contains(static_cast<std::uint16_t>(value))) << value;
    }
    EXPECT_FALSE(fromSdkCorrection(CorrectionFlag::AdcLinearity).has_value());
    EXPECT_FALSE(fromSdkCorrection(CorrectionFlag::ChannelAlignment).has_value());
}

TEST(FactoryCorrectionConversion, GivesNoBitForANumberWithoutAnEnumerator)
{
    for (const int number : {-1, 10, 255})
        EXPECT_EQ(toSdkCorrection(static_cast<FactoryCorrection>(number)), CorrectionFlag::None);
}

} // namespace
} // namespace tarn::tests
