// How the controls of calibration and correction data lock, in the program that compiles them in.

#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdksystemtermscontrol.h>

#include <support/calibrationbench.h>
#include <support/devicehandle.h>
#include <support/mutexprobe.h>
#include <support/plaincontrols.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <system_error>
#include <tuple>
#include <vector>

namespace tarn::tests::calibrationlocks {
namespace {

using devices::FactoryCorrection;
using devices::service::ISystemTermsControl;
using devices::service::SdkCalibrationControlHandle;
using devices::service::SdkCalibrationControlWatcher;
using devices::service::SdkFactoryCorrectionControl;
using devices::service::SdkSystemTermsControl;

struct TermsListener final : ISystemTermsControl::Observer {
    void onWriteStarted() override { ++heard; }
    void onWriteProgressChanged(std::uint32_t /*progress*/) override { ++heard; }
    void onWriteFinished() override { ++heard; }
    void onErrorOccurred(ISystemTermsControl::Error /*error*/) override { ++heard; }
    int heard = 0;
};

class SystemTermsLocks : public testing::Test {
protected:
    const std::shared_ptr<PlainSystemTermsControl> terms = std::make_shared<PlainSystemTermsControl>();
    SdkSystemTermsControl control{handleTo<sdk::service::ISystemTermsControl>(terms)};
    TermsListener listener;
};

TEST_F(SystemTermsLocks, EveryOperationLocksTheHandleAloneAndAnEmptyPlanNothing)
{
    EXPECT_EQ(locksOf([&] { std::ignore = control.frequencyPlan(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.isFrequencyOverrideSupported(); }), 1);
    EXPECT_EQ(locksOf([&] { control.requestWriteTerms({}, 0.0, {}); }), 1);
    EXPECT_EQ(locksOf([&] { control.requestWriteTerms({}, 0.0, {{}}, {}); }), 1);
    EXPECT_EQ(terms->writes, 2);
    EXPECT_EQ(locksOf([&] { control.requestWriteTerms({}, 0.0, std::vector<vna::FrequencySegment>{}, {}); }), 0);
    EXPECT_EQ(terms->writes, 2);
    EXPECT_EQ(locksOf([&] { control.onControlsAvailable(); }), 1);
    EXPECT_EQ(locksOf([&] { control.onControlsAboutToBeReleased(); }), 1);
}

TEST_F(SystemTermsLocks, ANotificationAndTheListOfObserversLockTheListOnce)
{
    EXPECT_EQ(locksOf([&] { control.addObserver(listener); }), 1);
    EXPECT_EQ(locksOf([&] { terms->attached->onWriteStarted(); }), 1);
    EXPECT_EQ(locksOf([&] { terms->attached->onWriteProgressChanged(1); }), 1);
    EXPECT_EQ(locksOf([&] { terms->attached->onWriteFinished(); }), 1);
    EXPECT_EQ(locksOf([&] { terms->attached->onErrorOccurred({}); }), 1);
    EXPECT_EQ(locksOf([&] { control.removeObserver(listener); }), 1);
    EXPECT_EQ(listener.heard, 4);
}

TEST_F(SystemTermsLocks, AMutexThatFailsIsReportedToWhoeverLocksIt)
{
    control.addObserver(listener);
    MutexProbe::failAfter(0);
    EXPECT_THROW(terms->attached->onWriteStarted(), std::system_error);
    EXPECT_EQ(listener.heard, 0);
    MutexProbe::failAfter(0);
    EXPECT_THROW(control.removeObserver(listener), std::system_error);
    MutexProbe::failAfter(0);
    EXPECT_THROW(control.requestWriteTerms({}, 0.0, {}), std::system_error);
    EXPECT_EQ(terms->writes, 0);
    terms->attached->onWriteStarted();
    EXPECT_EQ(listener.heard, 1);
}

TEST(FactoryCorrectionLocks, EveryQuestionLocksTheHandleOnceASwitchingThrice)
{
    SdkFactoryCorrectionControl control{
        handleTo<sdk::IFactoryCorrectionControl>(std::make_shared<PlainFactoryCorrectionControl>())};
    EXPECT_EQ(locksOf([&] { std::ignore = control.isValid(FactoryCorrection::System); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.isEnabled(FactoryCorrection::System); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.isModifiable(FactoryCorrection::System); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.supported(); }), 1);
    EXPECT_EQ(locksOf([&] { control.setEnabled(FactoryCorrection::System, true); }), 3);
}

TEST(CalibrationControllerLocks, OnlyTheHandleIsLocked)
{
    const auto controller = std::make_shared<PlainCalibrationController>();
    SdkCalibrationControlHandle handle{handleTo<sdk::service::calibrations::ICalibrationController>(controller)};
    EXPECT_EQ(locksOf([&] { std::ignore = handle.lock(); }), 1);
    SdkCalibrationControlWatcher watcher{handle};
    EXPECT_EQ(locksOf([&] { watcher.attach(); }), 1);
    EXPECT_EQ(locksOf([&] { watcher.detach(); }), 1);
    EXPECT_EQ(controller->registrations, 2);
    EXPECT_EQ(controller->removals, 3);
}

template <class Calibration>
struct Plain;
template <>
struct Plain<Ifsw> {
    using Control = PlainVellIfswCalibrationControl;
};
template <>
struct Plain<Power> {
    using Control = PlainVellFactoryPowerCalibrationControl;
};

/// Locks of the map, and of the handle: one when there is a control, otherwise a second one that
/// stores the outcome of the question.
constexpr int map = 1;
constexpr int there = 1;
constexpr int notThere = 2;

template <class Calibration>
class CalibrationLocks : public testing::Test {
protected:
    using Sdk = typename Calibration::Sdk;
    using Adapter = typename Calibration::Adapter;
    using Control = typename Plain<Calibration>::Control;

    const std::shared_ptr<Control> sdk = std::make_shared<Control>();
    Adapter offered{handleTo<Sdk>(sdk)};
    Adapter missing{handleTo<Sdk>(std::shared_ptr<Control>{})};
    ProgressListener<Adapter> listener;
};

TYPED_TEST_SUITE(CalibrationLocks, CalibrationControls);

TYPED_TEST(CalibrationLocks, AddingLocksTheMapThenTheHandleThenTheMapOnlyToClearTheFlag)
{
    EXPECT_EQ(locksOf([&] { this->offered.addObserver(nullptr); }), 0);
    EXPECT_EQ(locksOf([&] { this->offered.addObserver(&this->listener); }), map + there);
    EXPECT_EQ(locksOf([&] { this->offered.addObserver(&this->listener); }), map);
    EXPECT_EQ(locksOf([&] { this->missing.addObserver(&this->listener); }), map + notThere + map);
}

TYPED_TEST(CalibrationLocks, WhoFindsNoControlFlagsNoObserverThatWasAddedMeanwhile)
{
    std::shared_ptr<typename TestFixture::Control> current;
    typename TestFixture::Adapter control{devices::ReacquiringControl<typename TestFixture::Sdk>{
        [&] { return sdk::ControlHandle<typename TestFixture::Sdk>{current}; }}};
    static std::function<void()> meanwhile;
    static int passes = 0;
    meanwhile = [&] {
        control.removeObserver(&this->listener);
        current = this->sdk;
        control.addObserver(&this->listener);
    };
    passes = 2 * (map + notThere) + 1; // before each lock and after each unlock, until the flag would be cleared
    MutexProbe::hook({.pass = [] {
        if (--passes == 0)
            meanwhile();
    }});
    control.addObserver(&this->listener);
    MutexProbe::hook({});
    ASSERT_NE(this->sdk->attached, nullptr);
    control.onControlsAboutToBeReleased();
    EXPECT_EQ(this->sdk->attached, nullptr);
}

TYPED_TEST(CalibrationLocks, RemovingLocksTheMapThenTheHandle)
{
    EXPECT_EQ(locksOf([&] { this->offered.removeObserver(&this->listener); }), map);
    this->offered.addObserver(&this->listener);
    this->missing.addObserver(&this->listener);
    EXPECT_EQ(locksOf([&] { this->offered.removeObserver(&this->listener); }), map + there);
    EXPECT_EQ(locksOf([&] { this->missing.removeObserver(&this->listener); }), map + notThere);
}

TYPED_TEST(CalibrationLocks, ALifecycleNotificationLocksTheMapOnceIfThereIsAControl)
{
    this->offered.addObserver(&this->listener);
    EXPECT_EQ(locksOf([&] { this->offered.onControlsAboutToBeReleased(); }), there + map);
    EXPECT_EQ(locksOf([&] { this->offered.onControlsAvailable(); }), there + map);
    EXPECT_EQ(locksOf([&] { this->missing.onControlsAboutToBeReleased(); }), notThere);
    EXPECT_EQ(locksOf([&] { this->missing.onControlsAvailable(); }), notThere);
}

TYPED_TEST(CalibrationLocks, ANotificationOfTheSdkLocksNothing)
{
    this->offered.addObserver(&this->listener);
    int heard = 0;
    this->listener.heard = [&](auto) { ++heard; };
    EXPECT_EQ(locksOf([&] { this->sdk->attached->onWriteProgressChanged(1); }), 0);
    EXPECT_EQ(heard, 1);
}

TYPED_TEST(CalibrationLocks, AMutexThatFailsIsReported)
{
    for (const int successes : {0, 1}) { // the map's, the handle's
        MutexProbe::failAfter(successes);
        EXPECT_THROW(this->offered.addObserver(&this->listener), std::system_error);
        EXPECT_EQ(this->sdk->attached, nullptr);
        this->offered.removeObserver(&this->listener);
        MutexProbe::failAfter(successes);
        EXPECT_THROW(this->offered.onControlsAvailable(), std::system_error);
        MutexProbe::failAfter(successes);
        EXPECT_THROW(this->offered.onControlsAboutToBeReleased(), std::system_error);
    }
    this->offered.addObserver(&this->listener);
    EXPECT_NE(this->sdk->attached, nullptr);
    MutexProbe::failAfter(0);
    EXPECT_THROW(this->offered.removeObserver(&this->listener), std::system_error);
    EXPECT_NE(this->sdk->attached, nullptr);

    int heard = 0;
    this->listener.heard = [&](auto) { ++heard; };
    this->sdk->attached->onWriteProgressChanged(1);
    EXPECT_EQ(heard, 1) << "it is there as before";
    MutexProbe::failAfter(1);
    EXPECT_THROW(this->offered.removeObserver(&this->listener), std::system_error);
    this->sdk->attached->onWriteProgressChanged(1); // the SDK has not let go of it
    EXPECT_EQ(heard, 1) << "it has been removed";
}

} // namespace
} // namespace tarn::tests::calibrationlocks
