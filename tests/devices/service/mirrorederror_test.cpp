#include <devices/service/isystemtermscontrol.h>
#include <devices/service/mirrorederror.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <sdk/service/isystemtermscontrol.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

namespace tarn::tests {
namespace {

using devices::service::ISystemTermsControl;
using devices::service::mirroredError;
using devices::service::SdkVellFactoryPowerCalibrationControl;
using devices::service::SdkVellIfswCalibrationControl;

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
enum class Mirrored { Failed = 0, Last = 3 };

TEST(MirroredError, KeepsTheNumbersUpToTheLastAndMakesZeroOfAllOthers)
{
    for (std::int64_t number = -300; number <= 300; ++number) {
        const auto error = std::to_underlying(mirroredError(static_cast<Wide>(number), Mirrored::Last));
        EXPECT_EQ(error, number >= 1 && number <= 3 ? number : 0);
    }
    EXPECT_EQ(mirroredError(static_cast<Wide>(0x1'0000'0001), Mirrored::Last), Mirrored::Failed);
}

} // namespace
} // namespace tarn::tests
