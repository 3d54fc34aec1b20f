// The observers of the two calibration controls where memory runs out half way.

#include <support/allocationfaults.h>
#include <support/calibrationbench.h>

#include <gtest/gtest.h>

#include <new>

namespace tarn::tests::calibrationfaults {
namespace {

template <class Calibration>
class CalibrationFaults : public CalibrationBench<Calibration> {
protected:
    /// Whether `notification` fails if its first allocation does.
    template <class Notification>
    static bool runsOutOfMemory(Notification notification)
    {
        AllocationFaults::arm(1, false);
        try {
            notification();
        } catch (const std::bad_alloc&) {
            return AllocationFaults::disarm();
        }
        AllocationFaults::disarm();
        return false;
    }
};

TYPED_TEST_SUITE(CalibrationFaults, CalibrationControls);

TYPED_TEST(CalibrationFaults, ALifecycleNotificationWithoutMemoryChangesNoRegistration)
{
    ProgressListener<typename TypeParam::Adapter> a;
    ProgressListener<typename TypeParam::Adapter> b;
    this->offer();
    this->control.addObserver(&a);
    this->control.addObserver(&b);

    EXPECT_TRUE(this->runsOutOfMemory([this] { this->control.onControlsAboutToBeReleased(); }));
    EXPECT_EQ(this->registered()->count(), 2U);
    this->control.onControlsAboutToBeReleased();
    EXPECT_EQ(this->registered()->count(), 0U);

    this->offer();
    EXPECT_TRUE(this->runsOutOfMemory([this] { this->control.onControlsAvailable(); }));
    EXPECT_EQ(this->registered()->count(), 0U);
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 2U);
}

} // namespace
} // namespace tarn::tests::calibrationfaults
