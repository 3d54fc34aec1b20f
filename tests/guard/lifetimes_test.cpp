#include <guard/error.h>
#include <guard/guardfixture.h>

#include <sdk/controlhandle.h>
#include <sdk/service/iloleakagecontrol.h>
#include <support/mockloleakagecontrol.h>
#include <support/mockmemoryserialnumbercontrol.h>

#include <utility>
#include <variant>

namespace tarn::guard {

using testing::ElementsAre;
using testing::IsEmpty;

class GuardLifetimes : public GuardTest { };

TEST_F(GuardLifetimes, AHandleExpiresWithTheDevicesControl)
{
    auto memory = offer({});
    const sdk::ControlHandle<FileMemory> handle{control()};
    EXPECT_FALSE(handle.expired());
    device->drop(FileMemory::key);
    EXPECT_FALSE(handle.expired());
    memory.reset();
    EXPECT_TRUE(handle.expired());
}

TEST_F(GuardLifetimes, AReferenceKeepsTheDevicesControlAlive)
{
    const std::weak_ptr<ScriptedFileMemory> memory = offer({});
    auto held = control();
    device->drop(FileMemory::key);
    EXPECT_FALSE(memory.expired());
    EXPECT_TRUE(held->isAvailable());
    held.reset();
    EXPECT_TRUE(memory.expired());
}

TEST_F(GuardLifetimes, TheSameControlHasTheSameDecorationEachTime)
{
    const auto memory = offer({});
    EXPECT_EQ(control(), control());
    EXPECT_NE(control(), memory);
}

TEST_F(GuardLifetimes, AnotherControlHasAnotherDecoration)
{
    auto first = offer({});
    const auto held = control();
    const auto second = offer({});
    EXPECT_NE(control(), held);
}

TEST_F(GuardLifetimes, EachInterfaceOfOneObjectHasItsOwnDecoration)
{
    struct Object {
        ScriptedFileMemory files{[](const FilesDone& done) { done({}, {}); }};
        ScriptedFileMemory otherFiles{[](const FilesDone& /*done*/) { }};
        testing::NiceMock<tests::MockMemorySerialNumberControl> serialNumber;
    };
    using sdk::service::IMemorySerialNumberControl;
    const auto object = std::make_shared<Object>();
    const auto offerPart = [&]<class Interface>(Interface& part) {
        device->offer<Interface>(Interface::key, std::shared_ptr<Interface>{object, &part});
    };
    offerPart.operator()<FileMemory>(object->files);
    offerPart.operator()<IMemorySerialNumberControl>(object->serialNumber);
    EXPECT_CALL(object->serialNumber, serialNumber).WillOnce(testing::InvokeArgument<0>(7, std::error_code{}));
    const auto files = control();
    const auto serialNumber = guarded->control<IMemorySerialNumberControl>(IMemorySerialNumberControl::key);
    EXPECT_NE(static_cast<void*>(files.get()), serialNumber.get());
    EXPECT_EQ(control(), files);
    unsigned int number = 0;
    serialNumber->serialNumber([&](unsigned int value, std::error_code /*code*/) { number = value; });
    EXPECT_EQ(number, 7U);
    EXPECT_EQ(fileList().code, std::error_code{});
    offerPart.operator()<FileMemory>(object->otherFiles);
    EXPECT_EQ(fileList().code, Error::Dropped);
}

TEST_F(GuardLifetimes, AnInterfaceInThePlaceOfAnotherHasItsOwnDecoration)
{
    using sdk::service::IMemorySerialNumberControl;
    using Object = std::variant<ScriptedFileMemory, testing::NiceMock<tests::MockMemorySerialNumberControl>>;
    const auto object = std::make_shared<Object>(std::in_place_index<0>, nullptr);
    device->offer<FileMemory>(FileMemory::key, {object, &std::get<0>(*object)});
    const auto files = control();
    IMemorySerialNumberControl& serialNumber = object->emplace<1>();
    device->offer<IMemorySerialNumberControl>(IMemorySerialNumberControl::key, {object, &serialNumber});
    EXPECT_NE(guarded->control(IMemorySerialNumberControl::key).get(), files.get());
}

TEST_F(GuardLifetimes, TwoGuardsOfOneDeviceKeepApart)
{
    offer([](const FilesDone& /*done*/) { });
    const auto others = std::make_shared<BreachLog>();
    const auto other = tarn::guard::guarded(device, {std::chrono::seconds{20}, others});
    other->control<FileMemory>(FileMemory::key)->fileList([](const Files& /*files*/, std::error_code /*code*/) { });
    EXPECT_THAT(breaches->breaches(), IsEmpty());
    EXPECT_THAT(others->breaches(), ElementsAre(Breach::Dropped));
}

TEST_F(GuardLifetimes, AControlThatNeedsNoDecorationIsTheDevicesOwn)
{
    using sdk::service::ILoLeakageControl;
    const auto leakage = std::make_shared<tests::MockLoLeakageControl>();
    device->offer<ILoLeakageControl>(ILoLeakageControl::key, leakage);
    EXPECT_EQ(guarded->control<ILoLeakageControl>(ILoLeakageControl::key), leakage);
}

TEST_F(GuardLifetimes, AControlThatTheDeviceDoesNotHaveIsNone)
{
    EXPECT_EQ(control(), nullptr);
}

TEST_F(GuardLifetimes, TheDeviceIsAskedOnceForEachTime)
{
    offer({});
    const auto first = control();
    const auto second = control();
    EXPECT_EQ(device->asked(FileMemory::key), 2);
}

TEST_F(GuardLifetimes, TheGuardedDeviceIsTheDevice)
{
    struct Nobody final : sdk::IVna::Observer {
        void onControlsAboutToBeReleased() override { }
        void onControlsAvailable() override { }
    } observer;
    const auto own = device->observers();
    guarded->addObserver(&observer);
    EXPECT_THAT(device->observers(), testing::Contains(&observer));
    guarded->removeObserver(&observer);
    EXPECT_EQ(device->observers(), own);
    EXPECT_EQ(guarded->model(), device->model());
    guarded.reset();
    EXPECT_THAT(device->observers(), IsEmpty());
}

TEST_F(GuardLifetimes, AControlOutlivesTheGuardedDevice)
{
    useLimit(returnLimit);
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    const auto held = control();
    guarded.reset();
    std::promise<std::error_code> ended;
    held->fileList([&](const Files& /*files*/, std::error_code code) { ended.set_value(code); });
    EXPECT_EQ(ended.get_future().get(), Error::TimedOut);
    EXPECT_EQ(breaches->await(1).at(0).breach, Breach::TimedOut);
}

TEST_F(GuardLifetimes, ARequestThatOutlivesEverythingTimesOut)
{
    for (int i = 0; i < 5; ++i) {
        useLimit(std::chrono::seconds{20});
        std::this_thread::sleep_for(2 * shortLimit); // does not count
        useLimit(shortLimit);
        FilesDone kept;
        offer([&](FilesDone done) { kept = std::move(done); });
        std::promise<std::error_code> ended;
        const auto start = std::chrono::steady_clock::now();
        control()->fileList([&](const Files& /*files*/, std::error_code code) { ended.set_value(code); });
        device->drop(FileMemory::key);
        guarded.reset(); // and what belonged to the control
        EXPECT_EQ(ended.get_future().get(), Error::TimedOut);
        EXPECT_GE(std::chrono::steady_clock::now() - start, shortLimit);
        kept(someFiles, {});
    }
}

TEST_F(GuardLifetimes, ACompletionThatOutlivesEverythingIsHarmless)
{
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    int ended = 0;
    control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) { ++ended; });
    device->drop(FileMemory::key);
    guarded.reset();
    device.reset();
    kept(someFiles, {});
    EXPECT_EQ(ended, 1);
    kept(someFiles, {});
    EXPECT_EQ(ended, 1);
}

TEST_F(GuardLifetimes, LetsGoOfTheObserverWithTheLastControl)
{
    const std::weak_ptr<BreachLog> log = breaches;
    offer([&](const FilesDone& done) { done(someFiles, {}); });
    auto held = control();
    breaches.reset();
    guarded.reset();
    EXPECT_FALSE(log.expired());
    device->drop(FileMemory::key);
    held.reset();
    tarn::guard::guarded(device, {shortLimit, nullptr}).reset(); // any that ends looks what has gone
    EXPECT_TRUE(log.expired());
}

} // namespace tarn::guard
