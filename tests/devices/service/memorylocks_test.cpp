// How the adapters of the device memory lock, in the program that compiles them in.

#include <devices/service/sdkmemoryoperationscontrol.h>
#include <devices/service/sdkpotentiometerscontrol.h>
#include <devices/service/sdkserialnumbercontrol.h>
#include <devices/service/sdkusbidcontrol.h>

#include <support/devicehandle.h>
#include <support/mutexprobe.h>

#include <gtest/gtest.h>

#include <memory>
#include <system_error>
#include <tuple>
#include <vector>

namespace tarn::tests {
namespace {

using devices::service::IMemoryOperationsControl;
using devices::service::Progress;
using devices::service::SdkMemoryOperationsControl;
using devices::service::SdkMemoryUsbId;
using devices::service::SdkPotentiometersControl;
using devices::service::SdkSerialNumberControl;
using Image = std::vector<std::byte>;

class Memory final : public sdk::service::IMemoryOperationsControl {
public:
    bool isAvailable() override { return true; }
    void read(sdk::Completion<Image> completion) override { completion({}, {}); }
    void write(Image /*image*/, sdk::Completion<> completion) override { completion({}); }
    void erase(sdk::Completion<> completion) override { completion({}); }
    void integrityCheck(sdk::Completion<> completion) override { completion({}); }
    void addObserver(IObserver* observer) override { attached = observer; }
    void removeObserver(IObserver* /*observer*/) override { }

    IObserver* attached = nullptr;
};

class SerialNumber final : public sdk::service::IMemorySerialNumberControl {
public:
    bool isAvailable() override { return true; }
    void serialNumber(sdk::Completion<unsigned int> completion) override { completion(1, {}); }
    void writeSerialNumber(unsigned int /*number*/, sdk::Completion<> completion) override { completion({}); }
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
};

class Potentiometers final : public sdk::service::IPotentiometersControl {
public:
    bool isAvailable() override { return true; }
    std::vector<Potentiometer> potentiometers() override { return {}; }
    void readFromEeprom(unsigned long /*index*/, sdk::Completion<int> completion) override { completion(1, {}); }
    void writeToRam(unsigned long /*index*/, int /*value*/, sdk::Completion<> completion) override { completion({}); }
    void writeToEeprom(unsigned long /*index*/, int /*value*/, sdk::Completion<> completion) override
    {
        completion({});
    }
};

class Identity final : public sdk::service::IMemoryUsbIdControl {
public:
    bool isAvailable() override { return true; }
    DeviceRecord currentDevice() override { return {{}, sdk::Model{"a"}, 1, {}}; }
    std::vector<DeviceRecord> supportedDevices() override { return {}; }
    void writeUsbId(const UsbId& /*usbId*/, sdk::Completion<> completion) override { completion({}); }
};

struct Listener final : IMemoryOperationsControl::IObserver {
    void onWriteProgressChanged(const Progress& /*progress*/) override { ++heard; }
    void onReadProgressChanged(const Progress& /*progress*/) override { ++heard; }
    void onEraseProgressChanged(const Progress& /*progress*/) override { ++heard; }
    void onIntegrityCheckProgressChanged(const Progress& /*progress*/) override { ++heard; }
    int heard = 0;
};

TEST(MemoryLocks, EveryRequestLocksTheHandleAlone)
{
    SdkMemoryOperationsControl memory{handleTo<sdk::service::IMemoryOperationsControl>(std::make_shared<Memory>())};
    EXPECT_EQ(locksOf([&] { std::ignore = memory.read(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = memory.write({}); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = memory.erase(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = memory.integrityCheck(); }), 1);
    EXPECT_EQ(locksOf([&] { memory.onControlsAvailable(); }), 1);
    EXPECT_EQ(locksOf([&] { memory.onControlsAboutToBeReleased(); }), 1);

    SdkSerialNumberControl number{handleTo<sdk::service::IMemorySerialNumberControl>(std::make_shared<SerialNumber>())};
    EXPECT_EQ(locksOf([&] { std::ignore = number.serialNumber(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = number.writeSerialNumber(1); }), 1);

    SdkPotentiometersControl potentiometers{
        handleTo<sdk::service::IPotentiometersControl>(std::make_shared<Potentiometers>())};
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.potentiometers(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.readFromEeprom(0); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.writeToRam(0, 1); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = potentiometers.writeToEeprom(0, 1); }), 1);

    SdkMemoryUsbId identity{handleTo<sdk::service::IMemoryUsbIdControl>(std::make_shared<Identity>())};
    EXPECT_EQ(locksOf([&] { std::ignore = identity.currentDeviceProperties(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = identity.supportedDevices(); }), 1);
    EXPECT_EQ(locksOf([&] { std::ignore = identity.writeUsbId({}); }), 1);
}

class MemoryObserverLocks : public testing::Test {
protected:
    std::shared_ptr<Memory> memory = std::make_shared<Memory>();
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
    const auto memory = std::make_shared<Memory>();
    auto control
        = std::make_unique<SdkMemoryOperationsControl>(handleTo<sdk::service::IMemoryOperationsControl>(memory));
    MutexProbe::failAfter(0);
    EXPECT_NO_THROW(control.reset());
}

} // namespace
} // namespace tarn::tests
