#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/adaptertest.h>
#include <support/contractoperations.h>
#include <support/mockvellfactorypowercalibrationcontrol.h>

#include <gmock/gmock.h>

#include <chrono>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::service::SdkVellFactoryPowerCalibrationControl;
using testing::_;
using testing::IsEmpty;
using testing::NiceMock;
using testing::StrictMock;

namespace tarn::tests::sdkvellfactorypowercalibrationcontrol {
namespace {

using Sdk = sdk::service::IVellFactoryPowerCalibrationControl;
using Control = SdkVellFactoryPowerCalibrationControl;
using Seconds = std::chrono::sys_seconds;

static_assert(std::is_base_of_v<IControlLifecycleObserver, Control>);

// Double, float, float, bool, bool, float, bool, float, float; the same on both sides.
template <class Point>
constexpr bool hasTheShape = sizeof(Point) == 40 && std::is_same_v<decltype(Point::frequency), double>
    && std::is_same_v<decltype(Point::nominalPower), float> && std::is_same_v<decltype(Point::receiverPower), float>
    && offsetof(Point, frequency) == 0 && offsetof(Point, nominalPower) == 8 && offsetof(Point, measuredPower) == 12
    && offsetof(Point, isSourceAmplifierOn) == 16 && offsetof(Point, isSourceAttenuatorOn) == 17
    && offsetof(Point, sourceAttenuation) == 20 && offsetof(Point, isReceiverAttenuatorOn) == 24
    && offsetof(Point, receiverAttenuation) == 28 && offsetof(Point, receiverPower) == 32;
static_assert(hasTheShape<Sdk::PowerCalPoint> && hasTheShape<Control::PowerCalPoint>);

struct PowerContract {
    using Sdk = sdk::service::IVellFactoryPowerCalibrationControl;
    using Adapter = SdkVellFactoryPowerCalibrationControl;
    using Mock = NiceMock<MockVellFactoryPowerCalibrationControl>;
    using Inside = std::function<void()>;

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        return {frequencyPlanOperation<Adapter, Mock>(),
                {"saveCalibrationData",
                 noResult<Adapter>([](Adapter& adapter) { adapter.saveCalibrationData({}, 0.0, {}); }),
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, saveCalibrationData).WillByDefault(testing::InvokeWithoutArgs(inside));
                 }}};
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(FactoryPower, AdapterContract, PowerContract);

class SdkVellFactoryPowerCalibrationControlTest
    : public AdapterTest<Sdk, Control, StrictMock<MockVellFactoryPowerCalibrationControl>> { };

TEST_F(SdkVellFactoryPowerCalibrationControlTest, SavesEveryFieldOfEveryPointInOrder)
{
    std::vector<Control::PowerCalPoint> points;
    std::vector<Sdk::PowerCalPoint> expected;
    for (unsigned int flags = 0; flags != 8; ++flags) { // the flags in every combination
        const float n = static_cast<float>(100 - flags);
        const bool a = (flags & 1U) != 0;
        const bool b = (flags & 2U) != 0;
        const bool c = (flags & 4U) != 0;
        points.push_back({1e9 + n, n + 0.1F, n + 0.2F, a, b, n + 0.3F, c, n + 0.4F, n + 0.5F});
        expected.push_back({1e9 + n, n + 0.1F, n + 0.2F, a, b, n + 0.3F, c, n + 0.4F, n + 0.5F});
    }
    EXPECT_CALL(*mock, saveCalibrationData(1'700'000'000, expected, 23.5));
    control.saveCalibrationData(Seconds{std::chrono::seconds{1'700'000'000}}, 23.5, points);
}

TEST_F(SdkVellFactoryPowerCalibrationControlTest, SavesAnEmptyList)
{
    EXPECT_CALL(*mock, saveCalibrationData(0, IsEmpty(), 0.0));
    control.saveCalibrationData({}, 0.0, {});
}

TEST_F(SdkVellFactoryPowerCalibrationControlTest, SendsEveryTimeAsItsCountOfSeconds)
{
    for (const std::int64_t seconds :
         {std::int64_t{-1}, std::int64_t{-62'135'596'800}, std::int64_t{253'402'300'799},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_CALL(*mock, saveCalibrationData(seconds, _, _));
        control.saveCalibrationData(Seconds{std::chrono::seconds{seconds}}, 0.0, {});
    }
}

} // namespace
} // namespace tarn::tests::sdkvellfactorypowercalibrationcontrol
