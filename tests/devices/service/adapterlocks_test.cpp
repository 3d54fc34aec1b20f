// How the adapters lock. This program compiles them in, because the probe does not see into the library.

#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdktemperaturecontrol.h>

#include <support/allocationprobe.h>
#include <support/devicehandle.h>
#include <support/mutexprobe.h>
#include <support/plaincontrols.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <system_error>
#include <tuple>

namespace tarn::tests::adapterlocks {
namespace {

using devices::service::SdkFileMemoryControl;
using devices::service::SdkLoLeakageControl;
using devices::service::SdkTemperatureControl;

TEST(LoLeakageLocks, EveryOperationLocksTheHandleAlone)
{
    SdkLoLeakageControl control{handleTo<sdk::service::ILoLeakageControl>(std::make_shared<PlainLoLeakageControl>())};
    EXPECT_EQ(locksOf([&] { std::ignore = control.isEnabled(); }), 1);
    EXPECT_EQ(locksOf([&] { control.setEnabled(true); }), 1);
}

TEST(LoLeakageLocks, AMutexThatFailsIsReportedAndTheSdkIsNotCalled)
{
    const auto leakage = std::make_shared<PlainLoLeakageControl>();
    SdkLoLeakageControl control{handleTo<sdk::service::ILoLeakageControl>(leakage)};
    MutexProbe::failAfter(0);
    EXPECT_THROW(std::ignore = control.isEnabled(), std::system_error);
    MutexProbe::failAfter(0);
    EXPECT_THROW(control.setEnabled(false), std::system_error);
    EXPECT_TRUE(leakage->enabled);
    EXPECT_TRUE(control.isEnabled());
}

TEST(FileMemoryLocks, EveryRequestLocksTheHandleAlone)
{
    SdkFileMemoryControl control{
        handleTo<sdk::service::IFileMemoryControl>(std::make_shared<PlainFileMemoryControl>())};
    EXPECT_EQ(locksOf([&] { std::ignore = control.fileList(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.spaceInfo(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.readFile({}); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.writeFile({}, {}); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.deleteFile({}); }), 1);
}

TEST(FileMemoryLocks, AMutexThatFailsIsAnExceptionAndNoErrorText)
{
    SdkFileMemoryControl control{
        handleTo<sdk::service::IFileMemoryControl>(std::make_shared<PlainFileMemoryControl>())};
    MutexProbe::failAfter(0);
    EXPECT_THROW(std::ignore = control.readFile({}), std::system_error);
    EXPECT_TRUE(control.readFile({}).has_value());
}

class TemperatureLocks : public testing::Test {
protected:
    std::shared_ptr<PlainTemperatureControl> thermometer = std::make_shared<PlainTemperatureControl>();
    SdkTemperatureControl control{handleTo<sdk::ITemperatureControl>(thermometer)};
};

TEST_F(TemperatureLocks, AReaderLocksTheSnapshotOnce)
{
    EXPECT_EQ(locksOf([&] { std::ignore = control.temperature(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = control.modulesTemperature(); }), 1);
}

TEST_F(TemperatureLocks, ARefreshStoresTheWholeSnapshotUnderOneLock)
{
    EXPECT_EQ(locksOf([&] { thermometer->attached->onTemperatureChanged(); }), 2) << "the handle's and the snapshot's";
}

TEST_F(TemperatureLocks, ASnapshotThatCannotBeLockedIsReportedAndStays)
{
    thermometer->value = 2.0F;
    for (const int successes : {0, 1}) { // the handle's mutex, the snapshot's
        MutexProbe::failAfter(successes);
        EXPECT_THROW(thermometer->attached->onTemperatureChanged(), std::system_error);
        EXPECT_EQ(control.temperature(), 1.0);
        EXPECT_EQ(control.modulesTemperature().at(0).temperature, 1.0);
    }
    MutexProbe::failAfter(0);
    EXPECT_THROW(std::ignore = control.temperature(), std::system_error);
    MutexProbe::failAfter(0);
    EXPECT_THROW(std::ignore = control.modulesTemperature(), std::system_error);

    thermometer->attached->onTemperatureChanged();
    EXPECT_EQ(control.temperature(), 2.0);
}

/// A snapshot large enough for the allocation probe: how its memory is taken and given back.
class TemperatureMemory : public TemperatureLocks {
protected:
    using ModuleTemperature = SdkTemperatureControl::ModuleTemperature;

    TemperatureMemory()
    {
        for (std::size_t i = 0; i < 2 * AllocationProbe::large / sizeof(ModuleTemperature); ++i)
            thermometer->modules["module " + std::to_string(i)] = 1.0F;
    }
    ~TemperatureMemory() override { AllocationProbe::watchFrees(nullptr); }
};

TEST_F(TemperatureMemory, TheSnapshotIsAllocatedOnceInItsFullSize)
{
    const int before = AllocationProbe::largeBlocks();
    thermometer->attached->onTemperatureChanged();
    EXPECT_EQ(AllocationProbe::largeBlocks(), before + 1);
}

TEST_F(TemperatureMemory, TheOldSnapshotIsDestroyedWithoutALock)
{
    static int frees = 0;
    static int freesUnderLock = 0;
    thermometer->attached->onTemperatureChanged();
    AllocationProbe::watchFrees([] {
        ++frees;
        freesUnderLock += MutexProbe::held() > 0 ? 1 : 0;
    });
    thermometer->attached->onTemperatureChanged();
    EXPECT_EQ(frees, 1);
    EXPECT_EQ(freesUnderLock, 0);
}

TEST(TemperatureDestruction, SurvivesAMutexThatFails)
{
    const auto thermometer = std::make_shared<PlainTemperatureControl>();
    {
        const SdkTemperatureControl control{handleTo<sdk::ITemperatureControl>(thermometer)};
        MutexProbe::failAfter(0);
    }
    EXPECT_NE(thermometer->attached, nullptr) << "it could not detach";
}

} // namespace
} // namespace tarn::tests::adapterlocks
