#include <simulator/statetest.h>

#include <simulator/error.h>
#include <support/success.h>

namespace tarn::simulator {
namespace {

using provider::OpenError;
using test::Journal;
using test::StateTest;
using testing::HasSubstr;

using tests::success;

TEST_F(StateTest, KeepsTheMemoryThePotentiometersTheSerialNumberAndTheUsbIdentity)
{
    const auto image = test::makeImage(200'000);
    test::UsbId::UsbId usbId{};
    {
        const auto device = open();
        auto& usb = *control<test::UsbId>(*device);
        usbId = usb.supportedDevices().at(20).usbId;
        ASSERT_EQ(test::write(*control<test::Memory>(*device), image), success);
        ASSERT_EQ(test::write(*control<test::SerialNumber>(*device), 0xFFFFFFFFU), success);
        ASSERT_EQ(test::writeEeprom(*control<test::Potentiometers>(*device), 2, -5), success);
        ASSERT_EQ(test::writeEeprom(*control<test::Potentiometers>(*device), 2, -6), success);
        ASSERT_EQ(test::writeRam(*control<test::Potentiometers>(*device), 2, 99), success);
        const auto held = control<test::UsbId>(*device);
        ASSERT_EQ(test::write(*held, usbId), success);
    }
    const auto device = open();
    const auto memory = control<test::Memory>(*device);
    EXPECT_EQ(test::read(*memory), std::pair(image, success));
    EXPECT_EQ(test::check(*memory), success);
    EXPECT_EQ(test::read(*control<test::SerialNumber>(*device)), 0xFFFFFFFFU);
    EXPECT_EQ(static_cast<SimulatedVna&>(*device).potentiometers().at(2),
              (PotentiometerModel::Value{.ram = 99, .eeprom = -6, .eepromWrites = 2}))
        << "the instrument stays switched on";
    EXPECT_EQ(control<test::UsbId>(*device)->currentDevice().usbId, usbId);
    EXPECT_EQ(device->model(), control<test::UsbId>(*device)->supportedDevices().at(20).model);
}

TEST_F(StateTest, KeepsTheRamOfThePotentiometersNoLongerThanThePower)
{
    {
        const auto device = open("power-loss-every=1");
        ASSERT_EQ(test::writeRam(*control<test::Potentiometers>(*device), 2, 99), success);
        ASSERT_EQ(test::write(*control<test::Memory>(*device), test::makeImage(5000)), Error::PowerLoss);
    }
    EXPECT_EQ(static_cast<SimulatedVna&>(*open()).potentiometers().at(2),
              (PotentiometerModel::Value{.ram = 0, .eeprom = 0, .eepromWrites = 0}));
}

TEST_F(StateTest, KeepsAnImageAsOneBlockAndAnErasedMemoryAsNone)
{
    const auto device = open();
    const auto memory = control<test::Memory>(*device);
    ASSERT_EQ(test::write(*memory, test::makeImage(100'000)), success);
    ASSERT_EQ(blocks().size(), 1);
    EXPECT_EQ(QFileInfo{file("blocks/") + u'/' + blocks().first()}.size(), 100'000);
    ASSERT_EQ(test::erase(*memory), success);
    EXPECT_TRUE(blocks().isEmpty());
}

TEST_F(StateTest, IsNotWrittenBeforeALongOperationEnds)
{
    const auto device = open();
    const auto memory = control<test::Memory>(*device);
    ASSERT_EQ(test::write(*memory, test::makeImage(100'000, 1)), success);
    const auto before = everything();
    Journal journal;
    test::MemoryObserver observer{journal};
    int unchanged = 0;
    observer.reaction = [&] { unchanged += everything() == before ? 1 : 0; };
    memory->addObserver(&observer);
    ASSERT_EQ(test::write(*memory, test::makeImage(100'000, 2)), success);
    EXPECT_EQ(static_cast<std::size_t>(unchanged), journal.take().size()) << "the old state is whole";
    EXPECT_NE(everything(), before);
    memory->removeObserver(&observer);
}

TEST_F(StateTest, KeepsWhatAnInterruptionHasLeft)
{
    {
        const auto device = open();
        ASSERT_EQ(test::write(*control<test::Memory>(*device), test::makeImage(300'000, 1)), success);
    }
    {
        const auto device = open("power-loss-every=1");
        const auto held = control<test::Memory>(*device);
        ASSERT_EQ(test::write(*held, test::makeImage(200'000, 2)), Error::PowerLoss);
    }
    const auto device = open();
    EXPECT_EQ(test::check(*control<test::Memory>(*device)), Error::Corrupt);
    const auto left = test::read(*control<test::Memory>(*device)).first;
    ASSERT_EQ(left.size(), 200'000U);
    EXPECT_EQ(left.front(), test::makeImage(1, 2).front());
    EXPECT_EQ(left.back(), test::makeImage(200'000, 1).back());
}

TEST_F(StateTest, IsCorruptedForTheTimeOfOneOpening)
{
    const auto image = test::makeImage(100'000);
    {
        const auto device = open("corrupt=on");
        ASSERT_EQ(test::write(*control<test::Memory>(*device), image), success);
        EXPECT_EQ(test::check(*control<test::Memory>(*device)), success) << "what is written now is not corrupted";
    }
    {
        const auto device = open("corrupt=on");
        EXPECT_EQ(test::check(*control<test::Memory>(*device)), Error::Corrupt);
        EXPECT_NE(test::read(*control<test::Memory>(*device)).first, image);
    }
    const auto device = open();
    EXPECT_EQ(test::check(*control<test::Memory>(*device)), success);
    EXPECT_EQ(test::read(*control<test::Memory>(*device)).first, image);
}

TEST_F(StateTest, IsRefusedWhenTheImageDoesNotFitIntoTheMemory)
{
    {
        const auto device = open("memory-size=8MiB");
        ASSERT_EQ(test::write(*control<test::Memory>(*device), test::Image((4U << 20U) + 1)), success);
    }
    const auto error = refused("memory-size=4MiB");
    EXPECT_EQ(error.code, OpenError::Code::State);
    EXPECT_THAT(error.message.toStdString(), HasSubstr("memory-size"));
    EXPECT_NE(open(), nullptr) << "the size is part of the state";
}

TEST_F(StateTest, IsNotTakenOverWhenItCannotBeSaved)
{
    const auto device = open();
    ASSERT_TRUE(QDir{folder()}.mkdir(QStringLiteral("unfinished"))); // in the way
    EXPECT_EQ(test::write(*control<test::SerialNumber>(*device), 5), Error::Io);
    EXPECT_EQ(test::writeRam(*control<test::Potentiometers>(*device), 0, 5), Error::Io);
    EXPECT_EQ(test::writeEeprom(*control<test::Potentiometers>(*device), 0, 5), Error::Io);
    EXPECT_EQ(test::write(*control<test::UsbId>(*device), control<test::UsbId>(*device)->supportedDevices()[0].usbId),
              Error::Io);
    EXPECT_EQ(test::write(*control<test::Memory>(*device), test::Image(1)), Error::Io);
    EXPECT_EQ(test::read(*control<test::SerialNumber>(*device)), 1'000'001U);
    EXPECT_EQ(static_cast<SimulatedVna&>(*device).potentiometers().at(0),
              (PotentiometerModel::Value{.ram = 128, .eeprom = 128, .eepromWrites = 0}));
    EXPECT_EQ(device->model().name(), "Vell 801");
    ASSERT_TRUE(QDir{folder()}.rmdir(QStringLiteral("unfinished")));
    EXPECT_EQ(test::write(*control<test::SerialNumber>(*device), 5), success) << "works again";
}

} // namespace
} // namespace tarn::simulator
