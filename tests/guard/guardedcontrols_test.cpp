#include <guard/error.h>
#include <guard/guardfixture.h>

#include <support/mockfilememorycontrol.h>
#include <support/mockmemoryoperationscontrol.h>
#include <support/mockmemoryserialnumbercontrol.h>
#include <support/mockmemoryusbidcontrol.h>
#include <support/mockpotentiometerscontrol.h>
#include <support/success.h>

#include <stdexcept>

namespace tarn::guard {

using sdk::service::IMemoryOperationsControl;
using sdk::service::IMemorySerialNumberControl;
using sdk::service::IMemoryUsbIdControl;
using sdk::service::IPotentiometersControl;
using testing::_;
using testing::ElementsAre;
using testing::InvokeArgument;
using testing::NiceMock;
using testing::Return;

namespace {

/// How a request with a value ended.
template <class Value>
struct Outcome {
    Value value{};
    std::error_code code;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

using tests::success;
const std::error_code failure = std::make_error_code(std::errc::io_error);

/// How long a request may take in these tests: long enough for a thread that has to wait for its turn.
constexpr std::chrono::milliseconds limit{2000};

/// Notifies progress for longer than a request may take without.
template <class Observer>
void progress(Observer& observer, void (Observer::*notification)(unsigned int, unsigned int))
{
    const auto end = std::chrono::steady_clock::now() + limit * 3 / 2;
    for (unsigned int i = 0; std::chrono::steady_clock::now() < end; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds{5});
        (observer.*notification)(i, i);
    }
}

} // namespace

/// A guarded device that offers a mock of an interface.
template <class Interface, class Mock>
class Guarded : public testing::Test {
protected:
    Guarded() { device->offer<Interface>(Interface::key, mock); }

    [[nodiscard]] std::shared_ptr<Interface> control() const { return guarded->control<Interface>(Interface::key); }

    /// The outcome of `request(control, done)`, whose completion is given a `Value`.
    template <class Value, class Request>
    Outcome<Value> outcome(Request request) const
    {
        std::promise<Outcome<Value>> ended;
        request(*control(), [&](Value value, std::error_code code) { ended.set_value({std::move(value), code}); });
        return ended.get_future().get();
    }

    template <class Request>
    std::error_code code(Request request) const
    {
        std::promise<std::error_code> ended;
        request(*control(), [&](std::error_code code) { ended.set_value(code); });
        return ended.get_future().get();
    }

    /// What `call`, an expected call of the mock with its completion in place `index`, ends in: value, error, drop.
    template <int index, class Value, class Call, class Request>
    void expectOutcomes(Call& call, const Value& value, Request request) const
    {
        call.WillOnce(InvokeArgument<index>(value, success))
            .WillOnce(InvokeArgument<index>(Value{}, failure))
            .WillOnce(Return());
        EXPECT_EQ(outcome<Value>(request), (Outcome<Value>{value, success}));
        EXPECT_EQ(outcome<Value>(request).code, failure);
        EXPECT_EQ(outcome<Value>(request), (Outcome<Value>{{}, Error::Dropped}));
    }

    template <int index, class Call, class Request>
    void expectCodes(Call& call, Request request) const
    {
        call.WillOnce(InvokeArgument<index>(success)).WillOnce(InvokeArgument<index>(failure)).WillOnce(Return());
        EXPECT_EQ(code(request), success);
        EXPECT_EQ(code(request), failure);
        EXPECT_EQ(code(request), Error::Dropped);
    }

    /// Expects observers to reach the mock as they are.
    template <class Observer>
    void expectObserversPassedOn() const
    {
        int nobody = 0;
        auto* const observer = reinterpret_cast<Observer*>(&nobody); // NOLINT: nobody looks at it
        EXPECT_CALL(*mock, addObserver(observer));
        EXPECT_CALL(*mock, removeObserver(observer));
        control()->addObserver(observer);
        control()->removeObserver(observer);
    }

    void expectQueryPassedOn() const
    {
        EXPECT_CALL(*mock, isAvailable).WillOnce(Return(true)).WillOnce(Return(false));
        EXPECT_TRUE(control()->isAvailable());
        EXPECT_FALSE(control()->isAvailable());
    }

    /// The operations that the drops were reported of.
    [[nodiscard]] std::vector<std::string> dropped() const
    {
        std::vector<std::string> operations;
        for (const auto& report : breaches->await(0)) {
            EXPECT_EQ(report.breach, Breach::Dropped);
            EXPECT_EQ(report.control, Interface::key);
            operations.emplace_back(report.operation);
        }
        return operations;
    }

    std::shared_ptr<NiceMock<Mock>> mock = std::make_shared<NiceMock<Mock>>();
    std::shared_ptr<tests::FakeVna> device = std::make_shared<tests::FakeVna>();
    std::shared_ptr<BreachLog> breaches = std::make_shared<BreachLog>();
    std::shared_ptr<sdk::IVna> guarded = tarn::guard::guarded(device, {limit, breaches});

private:
    const tests::Watchdog m_watchdog;
};

class GuardedFileMemory : public Guarded<FileMemory, tests::MockFileMemoryControl> { };

TEST_F(GuardedFileMemory, GuardsEveryRequest)
{
    const FileMemory::FileInfo file{"name", 7};
    const std::vector<std::uint8_t> bytes{1, 2, 3};
    expectOutcomes<0>(EXPECT_CALL(*mock, fileList), Files{file},
                      [](FileMemory& control, auto done) { control.fileList(done); });
    expectOutcomes<0>(EXPECT_CALL(*mock, spaceInfo), FileMemory::SpaceInfo{.total = 9, .used = 4, .free = 5},
                      [](FileMemory& control, auto done) { control.spaceInfo(done); });
    expectOutcomes<1>(EXPECT_CALL(*mock, readFile(file, _)), bytes,
                      [&](FileMemory& control, auto done) { control.readFile(file, done); });
    expectCodes<2>(EXPECT_CALL(*mock, writeFile("name", bytes, _)),
                   [&](FileMemory& control, auto done) { control.writeFile("name", bytes, done); });
    expectCodes<1>(EXPECT_CALL(*mock, deleteFile(file, _)),
                   [&](FileMemory& control, auto done) { control.deleteFile(file, done); });
    EXPECT_THAT(dropped(), ElementsAre("fileList", "spaceInfo", "readFile", "writeFile", "deleteFile"));
}

TEST_F(GuardedFileMemory, PassesItsQueryOn)
{
    expectQueryPassedOn();
}

TEST_F(GuardedFileMemory, DoesNotCopyTheContentsOfAFile)
{
    std::vector<std::uint8_t> contents(100, 7);
    const auto* place = contents.data();
    EXPECT_CALL(*mock, writeFile).WillOnce([&](const auto&, const auto& bytes, const auto& done) {
        EXPECT_EQ(bytes.data(), place);
        done({});
    });
    control()->writeFile("name", std::move(contents), [](std::error_code) { });
    EXPECT_CALL(*mock, readFile).WillOnce([&](const auto&, const auto& done) {
        std::vector<std::uint8_t> bytes(50, 3);
        place = bytes.data();
        done(std::move(bytes), {});
    });
    control()->readFile({}, [&](const auto& bytes, std::error_code) { EXPECT_EQ(bytes.data(), place); });
}

class GuardedMemoryOperations : public Guarded<IMemoryOperationsControl, tests::MockMemoryOperationsControl> {
protected:
    using Observer = IMemoryOperationsControl::IObserver;
    using Notification = void (Observer::*)(unsigned int, unsigned int);
};

TEST_F(GuardedMemoryOperations, GuardsEveryRequest)
{
    using Memory = IMemoryOperationsControl;
    const std::vector<std::byte> image(5, std::byte{0x5A});
    expectOutcomes<0>(EXPECT_CALL(*mock, read), image, [](Memory& control, auto done) { control.read(done); });
    expectCodes<1>(EXPECT_CALL(*mock, write(image, _)),
                   [&](Memory& control, auto done) { control.write(image, done); });
    expectCodes<0>(EXPECT_CALL(*mock, erase), [](Memory& control, auto done) { control.erase(done); });
    expectCodes<0>(EXPECT_CALL(*mock, integrityCheck),
                   [](Memory& control, auto done) { control.integrityCheck(done); });
    EXPECT_THAT(dropped(), ElementsAre("read", "write", "erase", "integrityCheck"));
}

TEST_F(GuardedMemoryOperations, PassesObserversAndItsQueryOn)
{
    expectObserversPassedOn<Observer>();
    expectQueryPassedOn();
}

TEST_F(GuardedMemoryOperations, WaitsAsLongAsThereIsProgressOfAnyKind)
{
    const auto codeWhile = [this](Notification notification) {
        const auto operations = std::make_shared<NiceMock<tests::MockMemoryOperationsControl>>();
        const auto vna = std::make_shared<tests::FakeVna>();
        vna->offer<IMemoryOperationsControl>(IMemoryOperationsControl::key, operations);
        Observer* observer = nullptr;
        EXPECT_CALL(*operations, addObserver).WillOnce(testing::SaveArg<0>(&observer));
        sdk::Completion<> end;
        EXPECT_CALL(*operations, erase).WillOnce(testing::SaveArg<0>(&end));
        std::promise<std::error_code> ended;
        tarn::guard::guarded(vna, {limit, breaches})
            ->control<IMemoryOperationsControl>(IMemoryOperationsControl::key)
            ->erase([&](std::error_code code) { ended.set_value(code); });
        progress(*observer, notification);
        end({});
        return ended.get_future().get();
    };
    std::vector<std::future<std::error_code>> codes; // of requests at the same time
    for (const Notification notification :
         {&Observer::onReadProgressChanged, &Observer::onWriteProgressChanged, &Observer::onEraseProgressChanged,
          &Observer::onIntegrityCheckProgressChanged})
        codes.push_back(std::async(std::launch::async, codeWhile, notification));
    for (auto& one : codes)
        EXPECT_EQ(one.get(), success);
    EXPECT_THAT(breaches->breaches(), testing::IsEmpty());
}

TEST_F(GuardedMemoryOperations, HearsTheProgressOfARequestThatOutlastsADrop)
{
    std::jthread thread;
    EXPECT_CALL(*mock, erase).WillOnce([&](sdk::Completion<> done) {
        thread = std::jthread{[&, done = std::move(done)] {
            const auto next = std::make_shared<NiceMock<tests::MockMemoryOperationsControl>>();
            Observer* observer = nullptr;
            EXPECT_CALL(*next, addObserver).WillOnce(testing::SaveArg<0>(&observer));
            device->announceRelease();
            device->offer<IMemoryOperationsControl>(IMemoryOperationsControl::key, next);
            device->announceAvailable();
            progress(*observer, &Observer::onEraseProgressChanged);
            done({});
        }};
    });
    EXPECT_EQ(code([](IMemoryOperationsControl& control, auto done) { control.erase(done); }), success);
}

TEST_F(GuardedMemoryOperations, ObserveAControlThatIsOfferedAgain)
{
    Observer* observer = nullptr;
    EXPECT_CALL(*mock, addObserver).Times(2).WillRepeatedly(testing::SaveArg<0>(&observer));
    std::jthread thread;
    EXPECT_CALL(*mock, erase).WillOnce([&](sdk::Completion<> done) {
        thread = std::jthread{[&, done = std::move(done)] {
            device->announceRelease(); // which ends the registration
            observer = nullptr;
            device->announceAvailable();
            if (observer)
                progress(*observer, &Observer::onEraseProgressChanged);
            done({});
        }};
    });
    EXPECT_EQ(code([](IMemoryOperationsControl& control, auto done) { control.erase(done); }), success);
}

TEST_F(GuardedMemoryOperations, DoNotObserveWhatWasDropped)
{
    EXPECT_CALL(*mock, addObserver).Times(0);
    const auto held = control();
    device->announceRelease();
    device->drop(IMemoryOperationsControl::key);
    held->erase([](std::error_code) { });
}

TEST_F(GuardedMemoryOperations, DoNotGoOnObservingWhatIsDroppedMeanwhile)
{
    Observer* observer = nullptr;
    EXPECT_CALL(*mock, addObserver).WillOnce([&](Observer* added) {
        observer = added;
        device->announceRelease();
    });
    EXPECT_CALL(*mock, removeObserver).WillOnce([&](Observer* removed) { EXPECT_EQ(removed, observer); });
    control()->erase([](std::error_code) { });
    EXPECT_NE(observer, nullptr);
}

TEST_F(GuardedMemoryOperations, NeedNoObserverForARequest)
{
    EXPECT_CALL(*mock, addObserver)
        .WillOnce([](Observer* /*added*/) { throw std::runtime_error{"no observers"}; })
        .WillOnce([](Observer* /*added*/) {}); // the next request tries again, and it is the last that has to
    EXPECT_CALL(*mock, erase).Times(3).WillRepeatedly([](sdk::Completion<> done) { done({}); });
    for (int i = 0; i != 3; ++i)
        EXPECT_EQ(code([](IMemoryOperationsControl& control, auto done) { control.erase(done); }), success);
}

TEST_F(GuardedMemoryOperations, MayBeObservedTwiceAtOnce)
{
    EXPECT_CALL(*mock, addObserver).WillOnce([this](Observer* /*added*/) {
        EXPECT_CALL(*mock, addObserver).Times(1);
        device->announceAvailable();
    });
    EXPECT_CALL(*mock, removeObserver).Times(0);
    control()->erase([](std::error_code) { });
}

TEST_F(GuardedMemoryOperations, CanBeToldOfProgressOfAControlThatIsGone)
{
    Observer* observer = nullptr;
    EXPECT_CALL(*mock, addObserver).WillOnce(testing::SaveArg<0>(&observer));
    EXPECT_CALL(*mock, erase).WillOnce(InvokeArgument<0>(success));
    EXPECT_EQ(code([](IMemoryOperationsControl& control, auto done) { control.erase(done); }), success);
    device->drop(IMemoryOperationsControl::key);
    mock.reset();
    guarded.reset(); // gives up what belonged to the control
    observer->onEraseProgressChanged(1, 2);
}

class GuardedPotentiometers : public Guarded<IPotentiometersControl, tests::MockPotentiometersControl> { };

TEST_F(GuardedPotentiometers, GuardsEveryRequest)
{
    expectOutcomes<1>(EXPECT_CALL(*mock, readFromEeprom(3, _)), 42,
                      [](IPotentiometersControl& control, auto done) { control.readFromEeprom(3, done); });
    expectCodes<2>(EXPECT_CALL(*mock, writeToRam(4, -5, _)),
                   [](IPotentiometersControl& control, auto done) { control.writeToRam(4, -5, done); });
    expectCodes<2>(EXPECT_CALL(*mock, writeToEeprom(6, 7, _)),
                   [](IPotentiometersControl& control, auto done) { control.writeToEeprom(6, 7, done); });
    EXPECT_THAT(dropped(), ElementsAre("readFromEeprom", "writeToRam", "writeToEeprom"));
}

TEST_F(GuardedPotentiometers, PassesItsQueriesOn)
{
    const std::vector<IPotentiometersControl::Potentiometer> list{{"gain", -1, 1}};
    EXPECT_CALL(*mock, potentiometers).WillOnce(Return(list));
    EXPECT_EQ(control()->potentiometers(), list);
    expectQueryPassedOn();
}

class GuardedSerialNumber : public Guarded<IMemorySerialNumberControl, tests::MockMemorySerialNumberControl> {
protected:
    using Observer = IMemorySerialNumberControl::Observer;
};

TEST_F(GuardedSerialNumber, GuardsEveryRequest)
{
    expectOutcomes<0>(EXPECT_CALL(*mock, serialNumber), 1000001U,
                      [](IMemorySerialNumberControl& control, auto done) { control.serialNumber(done); });
    expectCodes<1>(EXPECT_CALL(*mock, writeSerialNumber(77, _)),
                   [](IMemorySerialNumberControl& control, auto done) { control.writeSerialNumber(77, done); });
    EXPECT_THAT(dropped(), ElementsAre("serialNumber", "writeSerialNumber"));
}

TEST_F(GuardedSerialNumber, PassesObserversAndItsQueryOn)
{
    expectObserversPassedOn<Observer>();
    expectQueryPassedOn();
}

TEST_F(GuardedSerialNumber, WaitsAsLongAsAWriteProgresses)
{
    Observer* observer = nullptr;
    EXPECT_CALL(*mock, addObserver).WillOnce(testing::SaveArg<0>(&observer));
    std::jthread thread;
    EXPECT_CALL(*mock, writeSerialNumber).WillOnce([&](unsigned int, sdk::Completion<> done) {
        thread = std::jthread{[&, done = std::move(done)] {
            progress(*observer, &Observer::onWriteProgressChanged);
            done({});
        }};
    });
    EXPECT_EQ(code([](IMemorySerialNumberControl& control, auto done) { control.writeSerialNumber(1, done); }),
              success);
}

TEST_F(GuardedSerialNumber, HearsTheProgressOfAWriteThatOutlastsADrop)
{
    std::jthread thread;
    EXPECT_CALL(*mock, writeSerialNumber).WillOnce([&](unsigned int, sdk::Completion<> done) {
        thread = std::jthread{[&, done = std::move(done)] {
            const auto next = std::make_shared<NiceMock<tests::MockMemorySerialNumberControl>>();
            Observer* observer = nullptr;
            EXPECT_CALL(*next, addObserver).WillOnce(testing::SaveArg<0>(&observer));
            device->announceRelease();
            device->offer<IMemorySerialNumberControl>(IMemorySerialNumberControl::key, next);
            device->announceAvailable();
            progress(*observer, &Observer::onWriteProgressChanged);
            done({});
        }};
    });
    EXPECT_EQ(code([](IMemorySerialNumberControl& control, auto done) { control.writeSerialNumber(1, done); }),
              success);
}

TEST_F(GuardedSerialNumber, IsObservedAlthoughTheDeviceThrowsWhenItIsAskedForAnother)
{
    device->whenAsked([](sdk::Key key) {
        if (key == IMemoryOperationsControl::key)
            throw std::runtime_error{"device"};
    });
    EXPECT_CALL(*mock, addObserver);
    device->announceAvailable();
}

TEST_F(GuardedSerialNumber, DoesNotObserveWhatWasDropped)
{
    EXPECT_CALL(*mock, addObserver).Times(0);
    const auto held = control();
    device->announceRelease();
    device->drop(IMemorySerialNumberControl::key);
    held->writeSerialNumber(1, [](std::error_code) { });
}

class GuardedUsbIdentity : public Guarded<IMemoryUsbIdControl, tests::MockMemoryUsbIdControl> { };

TEST_F(GuardedUsbIdentity, GuardsItsRequest)
{
    const IMemoryUsbIdControl::UsbId identity{.vendorId = 1, .productId = 2, .deviceRelease = 3};
    expectCodes<1>(EXPECT_CALL(*mock, writeUsbId(identity, _)),
                   [&](IMemoryUsbIdControl& control, auto done) { control.writeUsbId(identity, done); });
    EXPECT_THAT(dropped(), ElementsAre("writeUsbId"));
}

TEST_F(GuardedUsbIdentity, PassesItsQueriesOn)
{
    const IMemoryUsbIdControl::DeviceRecord record{.usbId = {1, 2, 3}, .model = sdk::Model{"M"}};
    EXPECT_CALL(*mock, currentDevice).WillOnce(Return(record));
    EXPECT_CALL(*mock, supportedDevices).WillOnce(Return(std::vector{record, record}));
    EXPECT_EQ(control()->currentDevice(), record);
    EXPECT_THAT(control()->supportedDevices(), ElementsAre(record, record));
    expectQueryPassedOn();
}

} // namespace tarn::guard
