// How the adapters of the device memory lock, in the program that compiles them in.

#include <devices/service/sdkmemoryoperationscontrol.h>
#include <devices/service/sdkpotentiometerscontrol.h>
#include <devices/service/sdkserialnumbercontrol.h>
#include <devices/service/sdkusbidcontrol.h>

#include <support/devicehandle.h>
#include <support/mutexprobe.h>
#include <support/plaincontrols.h>

#include <gtest/gtest.h>

#include <memory>
#include <system_error>
#include <tuple>

namespace tarn::tests::memorylocks {
namespace {

using devices::service::IMemoryOperationsControl;
using devices::service::ISerialNumberControl;
using devices::service::Progress;
using devices::service::SdkMemoryOperationsControl;
using devices::service::SdkMemoryUsbId;
using devices::service::SdkPotentiometersControl;
using devices::service::SdkSerialNumberControl;

struct Listener final : IMemoryOperationsControl::IObserver {
    void onWriteProgressChanged(const Progress& /*progress*/) override { ++heard; }
    void onReadProgressChanged(const Progress& /*progress*/) override { ++heard; }
    void onEraseProgressChanged(const Progress& /*progress*/) override { ++heard; }
    void onIntegrityCheckProgressChanged(const Progress& /*progress*/) override { ++heard; }
    int heard = 0;
};

struct NumberListener final : ISerialNumberControl::IObserver {
    void onWriteProgressChanged(const Progress& /*progress*/) override { }
};

TEST(MemoryLocks, EveryRequestLocksTheHandleAlone)
{
    SdkMemoryOperationsControl memory{
        handleTo<sdk::service::IMemoryOperationsControl>(std::make_shared<PlainMemoryOperationsControl>())};
    EXPECT_EQ(locksOf([&] { std::ignore = memory.read(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = memory.write({}); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = memory.erase(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = memory.integrityCheck(); }), 1);
    EXPECT_EQ(locksOf([&] { memory.onControlsAvailable(); }), 1);
    EXPECT_EQ(locksOf([&] { memory.onControlsAboutToBeReleased(); }), 1);

    SdkSerialNumberControl number{
        handleTo<sdk::service::IMemorySerialNumberControl>(std::make_shared<PlainMemorySerialNumberControl>())};
    EXPECT_EQ(locksOf([&] { std::ignore = number.serialNumber(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = number.writeSerialNumber(1); }), 1);
    NumberListener listener;
    EXPECT_EQ(locksOf([&] { number.addObserver(listener); }), 1) << "the list's";
    EXPECT_EQ(locksOf([&] { number.removeObserver(listener); }), 1);

    SdkPotentiometersControl potentiometers{
        handleTo<sdk::service::IPotentiometersControl>(std::make_shared<PlainPotentiometersControl>())};
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.potentiometers(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.readFromEeprom(0); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.writeToRam(0, 1); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.writeToEeprom(0, 1); }), 1);

    SdkMemoryUsbId identity{handleTo<sdk::service::IMemoryUsbIdControl>(std::make_shared<PlainMemoryUsbIdControl>())};
    EXPECT_EQ(locksOf([&] { std::ignore = identity.currentDeviceProperties(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = identity.supportedDevices(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = identity.writeUsbId({}); }), 1);
}

class MemoryObserverLocks : public testing::Test {
protected:
    std::shared_ptr<PlainMemoryOperationsControl> memory = std::make_shared<PlainMemoryOperationsControl>();
    SdkMemoryOperationsControl control{handleTo<sdk::service::IMemoryOperationsControl>(memory)};
    Listener listener;
};

TEST_F(MemoryObserverLocks, TheListIsLockedOnceAndTheHandleNotAtAll)
{
    EXPECT_EQ(locksOf([&] { control.addObserver(listener); }), 1);
    EXPECT_EQ(locksOf([&] { memory->attached->onEraseProgressChanged(1, 2); }), 1);
    EXPECT_EQ(locksOf([&] { control.removeObserver(listener); }), 1);
    EXPECT_EQ(listener.heard, 1);
}

TEST_F(MemoryObserverLocks, AMutexThatFailsIsReportedToWhoeverLocksIt)
{
    control.addObserver(listener);
    MutexProbe::failAfter(0);
    EXPECT_THROW(memory->attached->onEraseProgressChanged(1, 2), std::system_error);
    EXPECT_EQ(listener.heard, 0);
    MutexProbe::failAfter(0);
    EXPECT_THROW(control.removeObserver(listener), std::system_error);
    MutexProbe::failAfter(0);
    EXPECT_THROW(std::ignore = control.erase(), std::system_error);

    memory->attached->onEraseProgressChanged(1, 2);
    EXPECT_EQ(listener.heard, 1);
}

TEST(MemoryLocks, AMutexThatFailsDoesNotStopADestruction)
{
    const auto memory = std::make_shared<PlainMemoryOperationsControl>();
    auto control
        = std::make_unique<SdkMemoryOperationsControl>(handleTo<sdk::service::IMemoryOperationsControl>(memory));
    MutexProbe::failAfter(0);
    EXPECT_NO_THROW(control.reset());
}

} // namespace
} // namespace tarn::tests::memorylocks
