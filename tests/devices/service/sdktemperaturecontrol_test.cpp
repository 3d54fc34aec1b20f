#include <devices/service/sdktemperaturecontrol.h>

#include "temperaturebench.h"

#include <support/adaptercontract.h>
#include <support/exceptions.h>
#include <support/mocktemperaturecontrol.h>
#include <support/virtualslot.h>

#include <QMetaMethod>
#include <gmock/gmock.h>

#include <array>
#include <new>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::service::SdkTemperatureControl;
using testing::_;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::NiceMock;
using testing::ReturnRef;
using testing::StrictMock;

namespace tarn::tests::sdktemperaturecontrol {
namespace {

using Sdk = sdk::ITemperatureControl;
using Module = SdkTemperatureControl::ModuleTemperature;

static_assert(std::is_base_of_v<QObject, SdkTemperatureControl>);
static_assert(std::is_base_of_v<IControlLifecycleObserver, SdkTemperatureControl>);
static_assert(std::is_same_v<decltype(Module::temperature), double> && std::is_same_v<decltype(Module::name), QString>);

struct TemperatureContract {
    using Sdk = sdk::ITemperatureControl;
    using Adapter = SdkTemperatureControl;
    using Mock = NiceMock<MockTemperatureControl>;
    using Inside = std::function<void()>;

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        const auto available = [](Adapter& adapter) {
            adapter.onControlsAvailable();
            return Outcome::NoResult;
        };
        const auto released = [](Adapter& adapter) {
            adapter.onControlsAboutToBeReleased();
            return Outcome::NoResult;
        };
        return {
            {"onControlsAvailable, while it attaches", available,
             [](Mock& mock, const Inside& inside) {
                 ON_CALL(mock, addObserver).WillByDefault([inside](auto*) { inside(); });
             }},
            {"onControlsAvailable, while it reads the modules", available,
             [](Mock& mock, const Inside& inside) {
                 ON_CALL(mock, moduleTemperatures).WillByDefault([inside, &mock]() -> const Sdk::ModuleTemperatures& {
                     inside();
                     return mock.modules;
                 });
             }},
            {"onControlsAvailable, while it reads the instrument", available,
             [](Mock& mock, const Inside& inside) {
                 ON_CALL(mock, temperature).WillByDefault([inside] {
                     inside();
                     return 1.0F;
                 });
             }},
            {"onControlsAboutToBeReleased", released, [](Mock& mock, const Inside& inside) {
                 ON_CALL(mock, removeObserver).WillByDefault([inside](auto*) { inside(); });
             }}};
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Temperature, AdapterContract, TemperatureContract);

class SdkTemperatureControlTest : public TemperatureBench { };

TEST_F(SdkTemperatureControlTest, IsZeroAndEmptyBeforeAnyRefresh)
{
    construct();
    EXPECT_EQ(control->temperature(), 0.0);
    EXPECT_THAT(control->modulesTemperature(), IsEmpty());
}

TEST_F(SdkTemperatureControlTest, IsAQObjectFirstWithoutAParent)
{
    construct();
    EXPECT_EQ(static_cast<void*>(static_cast<QObject*>(&*control)), static_cast<void*>(&*control));
    EXPECT_EQ(control->parent(), nullptr);
    EXPECT_EQ(dynamic_cast<IControlLifecycleObserver*>(static_cast<QObject*>(&*control)),
              static_cast<IControlLifecycleObserver*>(&*control));
}

TEST_F(SdkTemperatureControlTest, HasOneSignalAndNoOtherMetaMethodOrProperty)
{
    const QMetaObject& meta = SdkTemperatureControl::staticMetaObject;
    EXPECT_EQ(meta.superClass(), &QObject::staticMetaObject);
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    const auto method = meta.method(meta.methodOffset());
    EXPECT_EQ(method.methodType(), QMetaMethod::Signal);
    EXPECT_EQ(method.methodSignature(), QByteArray{"temperaturesChanged()"});
    EXPECT_EQ(meta.propertyCount(), meta.propertyOffset());
}

TEST_F(SdkTemperatureControlTest, ConstructionAttachesThenReadsTheModulesThenTheInstrument)
{
    offer();
    mock->instrument = 21.5F;
    mock->modules = {{"LO", 40.0F}};
    const InSequence order;
    EXPECT_CALL(*mock, addObserver(testing::NotNull()));
    EXPECT_CALL(*mock, moduleTemperatures);
    EXPECT_CALL(*mock, temperature);
    EXPECT_CALL(*mock, removeObserver(testing::NotNull()));
    construct();
    EXPECT_EQ(control->temperature(), 21.5);
    EXPECT_THAT(control->modulesTemperature(), ElementsAre(Module{QStringLiteral("LO"), 40.0}));
    control.reset();
}

TEST_F(SdkTemperatureControlTest, ConstructionEmitsNothing)
{
    // The SDK is called in the middle of the construction: the first moment at which somebody could connect.
    offer();
    alignas(SdkTemperatureControl) std::array<std::byte, sizeof(SdkTemperatureControl)> storage{};
    auto* const place = reinterpret_cast<SdkTemperatureControl*>(storage.data());
    int emitted = 0;
    EXPECT_CALL(*mock, addObserver)
        .WillOnce(
            [&](auto*) { QObject::connect(place, &SdkTemperatureControl::temperaturesChanged, [&] { ++emitted; }); })
        .WillOnce(testing::Return());
    auto* const built = new (storage.data()) SdkTemperatureControl{handleTo(device)};
    EXPECT_EQ(emitted, 0);
    built->onControlsAvailable();
    EXPECT_EQ(emitted, 1) << "the connection holds";
    built->~SdkTemperatureControl();
}

TEST_F(SdkTemperatureControlTest, RefreshesThenEmitsOnEveryChangeThatTheSdkReports)
{
    offer();
    construct();
    double seen = -1.0;
    QObject::connect(&*control, &SdkTemperatureControl::temperaturesChanged, [&] { seen = control->temperature(); });
    mock->instrument = 30.0F;
    mock->modules = {{"IF", 31.0F}};
    mock->observer()->onTemperatureChanged();
    EXPECT_EQ(signalCount, 1);
    EXPECT_EQ(seen, 30.0) << "the receiver reads the new values";
    EXPECT_THAT(control->modulesTemperature(), ElementsAre(Module{QStringLiteral("IF"), 31.0}));
}

TEST_F(SdkTemperatureControlTest, EmitsEvenIfNoValueChanged)
{
    offer();
    construct();
    mock->observer()->onTemperatureChanged();
    mock->observer()->onTemperatureChanged();
    control->onControlsAvailable();
    EXPECT_EQ(signalCount, 3);
}

TEST_F(SdkTemperatureControlTest, EmitsForADeviceWithoutModules)
{
    offer();
    mock->modules = {{"LO", 40.0F}};
    construct();
    mock->modules.clear();
    mock->observer()->onTemperatureChanged();
    EXPECT_THAT(control->modulesTemperature(), IsEmpty());
    EXPECT_EQ(signalCount, 1);
}

TEST_F(SdkTemperatureControlTest, EmitsOnceWhenControlsBecomeAvailableEvenIfItsOwnIsNot)
{
    construct();
    control->onControlsAvailable();
    EXPECT_EQ(signalCount, 1);
    EXPECT_EQ(control->temperature(), 0.0);
}

TEST_F(SdkTemperatureControlTest, AttachesToANewControlRefreshesAndEmitsAfterAll)
{
    construct();
    offer();
    mock->instrument = 25.0F;
    control->onControlsAvailable();
    EXPECT_EQ(control->temperature(), 25.0);
    EXPECT_EQ(signalCount, 1);
    mock->observer()->onTemperatureChanged();
    EXPECT_EQ(signalCount, 2);
}

TEST_F(SdkTemperatureControlTest, DetachesBeforeAReleaseKeepsTheSnapshotAndEmitsNothing)
{
    offer();
    mock->instrument = 22.0F;
    mock->modules = {{"LO", 40.0F}};
    construct();
    EXPECT_CALL(*mock, removeObserver(mock->observer()));
    EXPECT_CALL(*mock, temperature).Times(0);
    control->onControlsAboutToBeReleased();
    drop();
    EXPECT_EQ(control->temperature(), 22.0);
    EXPECT_THAT(control->modulesTemperature(), ElementsAre(Module{QStringLiteral("LO"), 40.0}));
    EXPECT_EQ(signalCount, 0);
}

TEST_F(SdkTemperatureControlTest, KeepsTheValuesAndEmitsWhenARefreshFindsNoControl)
{
    offer();
    mock->instrument = 22.0F;
    construct();
    auto* const observer = mock->observer();
    drop();
    observer->onTemperatureChanged();
    EXPECT_EQ(control->temperature(), 22.0);
    EXPECT_EQ(signalCount, 1);
    control->onControlsAvailable();
    EXPECT_EQ(control->temperature(), 22.0);
    EXPECT_EQ(signalCount, 2);
}

TEST_F(SdkTemperatureControlTest, UsesOneObserverForEveryControl)
{
    offer();
    construct();
    auto* const observer = mock->observer();
    control->onControlsAboutToBeReleased();
    offer();
    control->onControlsAvailable();
    EXPECT_EQ(mock->observer(), observer);
    EXPECT_CALL(*mock, removeObserver(observer));
    control.reset();
}

TEST_F(SdkTemperatureControlTest, DoesNotGuardAgainstAttachingTwice)
{
    offer();
    EXPECT_CALL(*mock, addObserver).Times(2);
    construct();
    control->onControlsAvailable();
}

TEST_F(SdkTemperatureControlTest, DestructionDetachesBeforeAnythingElseGoes)
{
    offer();
    construct();
    auto* const observer = mock->observer();
    EXPECT_CALL(*mock, removeObserver(observer)).WillOnce([&](auto* detached) {
        detached->onTemperatureChanged(); // the last moment at which the SDK may still notify
    });
    mock->instrument = 33.0F;
    control.reset();
    EXPECT_EQ(signalCount, 1);
}

TEST_F(SdkTemperatureControlTest, DestructionDoesNothingWhenTheControlIsGone)
{
    offer();
    construct();
    drop();
    EXPECT_NO_THROW(control.reset());
}

TEST_F(SdkTemperatureControlTest, DestructionSurvivesADeviceAndAControlThatThrow)
{
    for (const auto& exception : anyExceptions()) {
        offer();
        construct();
        EXPECT_CALL(*mock, removeObserver).WillOnce([&](auto*) { std::rethrow_exception(exception); });
        control.reset();

        construct();
        drop();
        device.whenAsked([&](sdk::Key) { std::rethrow_exception(exception); });
        EXPECT_NO_THROW(control.reset());
        device.whenAsked(nullptr);
    }
}

TEST_F(SdkTemperatureControlTest, ConstructionPassesTheFirstExceptionOnEvenIfDetachingThrowsToo)
{
    for (const auto& exception : anyExceptions()) {
        offer();
        EXPECT_CALL(*mock, temperature).WillOnce([&]() -> float { std::rethrow_exception(exception); });
        EXPECT_CALL(*mock, removeObserver).WillOnce([](auto*) { throw std::logic_error{"detaching"}; });
        EXPECT_EQ(thrownBy([&] { construct(); }), exception);
    }
}

TEST_F(SdkTemperatureControlTest, LeavesNoObserverBehindWhenItsConstructionFails)
{
    for (const auto& exception : anyExceptions()) {
        offer();
        Sdk::Observer* attached = nullptr;
        EXPECT_CALL(*mock, addObserver).WillOnce(testing::SaveArg<0>(&attached));
        EXPECT_CALL(*mock, moduleTemperatures).WillOnce([&]() -> const Sdk::ModuleTemperatures& {
            std::rethrow_exception(exception);
        });
        EXPECT_CALL(*mock, removeObserver).WillOnce([&](auto* detached) { EXPECT_EQ(detached, attached); });
        EXPECT_EQ(thrownBy([&] { construct(); }), exception);
    }
}

TEST_F(SdkTemperatureControlTest, EmitsOnTheThreadOfTheNotification)
{
    offer();
    construct();
    std::thread::id emittedOn;
    QObject::connect(&*control, &SdkTemperatureControl::temperaturesChanged,
                     [&] { emittedOn = std::this_thread::get_id(); });
    std::thread sdkThread{[&] { mock->observer()->onTemperatureChanged(); }};
    const auto id = sdkThread.get_id();
    sdkThread.join();
    EXPECT_EQ(emittedOn, id);
}

TEST_F(SdkTemperatureControlTest, CanBeReadFromItsOwnSignal)
{
    offer();
    construct();
    std::size_t modules = 9;
    QObject::connect(&*control, &SdkTemperatureControl::temperaturesChanged, [&] {
        std::ignore = control->temperature();
        modules = control->modulesTemperature().size();
    });
    control->onControlsAvailable();
    EXPECT_EQ(modules, 0U);
}

TEST(SdkTemperatureInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    EXPECT_EQ(slotOf(&Sdk::temperature), 0);
    EXPECT_EQ(slotOf(&Sdk::moduleTemperatures), 1);
    EXPECT_EQ(slotOf(&Sdk::addObserver), 2);
    EXPECT_EQ(slotOf(&Sdk::removeObserver), 3);
    EXPECT_EQ(slotOf(&Sdk::Observer::onTemperatureChanged), 0);
}

} // namespace
} // namespace tarn::tests::sdktemperaturecontrol
