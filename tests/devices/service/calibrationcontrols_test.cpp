// What the two calibration controls do alike, their observers apart.

#include <support/adaptertest.h>
#include <support/calibrationbench.h>

#include <gmock/gmock.h>

#include <memory>

using testing::ElementsAre;
using testing::Return;
using testing::StrictMock;

namespace tarn::tests::calibrationcontrols {
namespace {

template <class Calibration>
class CalibrationControl : public AdapterTest<typename Calibration::Sdk, typename Calibration::Adapter,
                                              StrictMock<typename Calibration::Mock>> { };

TYPED_TEST_SUITE(CalibrationControl, CalibrationControls);

TYPED_TEST(CalibrationControl, ConvertsTheFrequencyPlanSegmentBySegment)
{
    EXPECT_CALL(*this->mock, frequencyPlan).WillOnce(Return(sdk::FrequencyPlan{{{3e9, 1e9, -1}, {0.0, 0.0, 0}}}));
    EXPECT_THAT(this->control.frequencyPlan(),
                ElementsAre(vna::FrequencySegment{3e9, 1e9, 0xffff'ffff}, vna::FrequencySegment{0.0, 0.0, 0}));
}

void save(Ifsw::Adapter& control)
{
    control.saveCalibrationData({{1, 2, 3}, {}, {}, {}});
}

void save(Power::Adapter& control)
{
    control.saveCalibrationData({}, 0.0, {{}});
}

TYPED_TEST(CalibrationControl, DiscardsTheDataWhileThereIsNoControl)
{
    using Sdk = typename TypeParam::Sdk;
    this->device.drop(Sdk::key);
    this->mock.reset();
    save(this->control);
    this->mock = std::make_shared<StrictMock<typename TypeParam::Mock>>(); // expects no call
    this->device.template offer<Sdk>(Sdk::key, this->mock);
    this->control.onControlsAvailable(); // also none that makes up for it
}

} // namespace
} // namespace tarn::tests::calibrationcontrols
