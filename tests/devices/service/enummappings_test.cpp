#include <devices/service/enummappings.h>

#include <devices/service/isystemtermscontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <sdk/service/isystemtermscontrol.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

namespace tarn::tests::enummappings {
namespace {

using devices::service::ISystemTermsControl;
using devices::service::mirrored;
using devices::service::saturated;
using devices::service::SdkVellFactoryPowerCalibrationControl;
using devices::service::SdkVellIfswCalibrationControl;
using devices::service::unchanged;

// What the numbers mean on both sides.
template <class A, class B>
constexpr bool same(A a, B b)
{
    return static_cast<int>(a) == static_cast<int>(b);
}
using SdkTerms = sdk::service::ISystemTermsControl::Error;
using Terms = ISystemTermsControl::Error;
static_assert(static_cast<int>(Terms::Failed) == 0 && static_cast<int>(SdkTerms::Unknown) == 0);
static_assert(same(SdkTerms::NoTerms, Terms::NoTerms) && same(SdkTerms::InvalidTerms, Terms::InvalidTerms));
static_assert(same(SdkTerms::PortCountMismatch, Terms::PortCountMismatch));
static_assert(same(SdkTerms::FrequenciesNotAscending, Terms::FrequenciesNotAscending));
static_assert(same(SdkTerms::FrequencyOutOfRange, Terms::FrequencyOutOfRange));
static_assert(same(SdkTerms::PlanMismatch, Terms::PlanMismatch));
static_assert(same(SdkTerms::TemperatureOutOfRange, Terms::TemperatureOutOfRange));
static_assert(same(SdkTerms::OverrideNotSupported, Terms::OverrideNotSupported));
static_assert(same(SdkTerms::WriteFailed, Terms::WriteFailed) && static_cast<int>(Terms::WriteFailed) == 9);

template <class Sdk, class Control>
constexpr bool mirrorsThree = static_cast<int>(Control::Failed) == 0 && same(Sdk::NoData, Control::NoData)
    && same(Sdk::PlanMismatch, Control::PlanMismatch) && same(Sdk::ValueOutOfRange, Control::ValueOutOfRange)
    && static_cast<int>(Control::ValueOutOfRange) == 3 && static_cast<int>(Sdk::WriteFailed) == 4;
static_assert(mirrorsThree<sdk::service::IVellIfswCalibrationControl::Error, SdkVellIfswCalibrationControl::Error>);
static_assert(mirrorsThree<sdk::service::IVellFactoryPowerCalibrationControl::Error,
                           SdkVellFactoryPowerCalibrationControl::Error>);

enum class Wide : std::int64_t { };
enum class Number : std::int32_t { Zero = 0, Last = 3 };

constexpr std::int64_t wrapped = 0x1'0000'0001; // 1, if it were cut to 32 bits

template <class Mapping>
std::int64_t numberOf(Mapping mapping, std::int64_t number)
{
    return std::to_underlying(mapping(static_cast<Wide>(number)));
}

TEST(EnumMappings, MirroredKeepsTheNumbersUpToTheLastAndMakesZeroOfAllOthers)
{
    for (std::int64_t number = -300; number <= 300; ++number)
        EXPECT_EQ(numberOf(mirrored<Number::Last>, number), number >= 1 && number <= 3 ? number : 0);
    EXPECT_EQ(numberOf(mirrored<Number::Last>, wrapped), 0);
}

TEST(EnumMappings, SaturatedKeepsTheNumbersUpToTheLastAndMakesThatOfAllOthers)
{
    for (std::int64_t number = -300; number <= 300; ++number)
        EXPECT_EQ(numberOf(saturated<Number::Last>, number), number >= 0 && number <= 3 ? number : 3);
    EXPECT_EQ(numberOf(saturated<Number::Last>, wrapped), 3);
}

TEST(EnumMappings, UnchangedKeepsEveryNumber)
{
    for (std::int64_t number = -300; number <= 300; ++number)
        EXPECT_EQ(numberOf(unchanged<Number>, number), number);
    EXPECT_EQ(numberOf(unchanged<Wide>, wrapped), wrapped);
}

} // namespace
} // namespace tarn::tests::enummappings
