// The handle of a calibration controller and its watcher.

#include <devices/controlregistry.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/servicecontrols.h>

#include <support/devicehandle.h>
#include <support/exceptions.h>
#include <support/mockcalibrationcontroller.h>
#include <support/virtualslot.h>

#include <QCoreApplication>
#include <QMetaMethod>
#include <gmock/gmock.h>

#include <any>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::service::SdkCalibrationControlHandle;
using tarn::devices::service::SdkCalibrationControlWatcher;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::NotNull;
using testing::SaveArg;
using testing::StrictMock;

namespace tarn::tests::calibrationcontroller {
namespace {

using Sdk = sdk::service::calibrations::ICalibrationController;
using sdk::service::calibrations::Progress;

static_assert(std::is_base_of_v<QObject, SdkCalibrationControlHandle>);
static_assert(std::is_base_of_v<IControlLifecycleObserver, SdkCalibrationControlHandle>);
static_assert(std::is_base_of_v<QObject, SdkCalibrationControlWatcher>);
static_assert(!std::is_base_of_v<IControlLifecycleObserver, SdkCalibrationControlWatcher>);
static_assert(std::is_constructible_v<SdkCalibrationControlWatcher, SdkCalibrationControlHandle&, QObject*>);
static_assert(sizeof(Progress) == 16 && offsetof(Progress, done) == 0 && offsetof(Progress, total) == 8);

/// The names of the signals that `Object` declares, in their order.
template <class Object>
std::vector<std::string> signalsOf()
{
    std::vector<std::string> names;
    const auto& meta = Object::staticMetaObject;
    for (int i = meta.methodOffset(); i != meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            names.push_back(meta.method(i).methodSignature().toStdString());
    }
    return names;
}

TEST(CalibrationSignals, AreDeclaredInTheGivenOrder)
{
    EXPECT_THAT(signalsOf<SdkCalibrationControlHandle>(),
                ElementsAre("controlsAboutToBeReleased()", "controlsAvailable()"));
    EXPECT_THAT(signalsOf<SdkCalibrationControlWatcher>(),
                ElementsAre("unitStatusChanged()", "saveProgressChanged(int)", "configurationChanged()"));
}

TEST(CalibrationSlots, StandInTheGivenOrder)
{
    EXPECT_EQ(slotOf(&Sdk::addObserver), 0);
    EXPECT_EQ(slotOf(&Sdk::removeObserver), 1);
    EXPECT_EQ(slotOf(&Sdk::units), 2);
    EXPECT_EQ(slotOf(&Sdk::Observer::onUnitStatusChanged), 0);
    EXPECT_EQ(slotOf(&Sdk::Observer::onSaveProgress), 1);
    EXPECT_EQ(slotOf(&Sdk::Observer::onConfigurationChanged), 2);
}

class CalibrationController : public testing::Test {
protected:
    using Mock = StrictMock<MockCalibrationController>;

    void offer()
    {
        mock = std::make_shared<Mock>();
        device.offer<Sdk>(Sdk::firstKey, mock);
    }

    /// Drops the controller; the test keeps no reference either.
    void drop()
    {
        device.drop(Sdk::firstKey);
        mock.reset();
    }

    /// The observer is removed, if it is there, and then registered.
    void expectAttach()
    {
        const InSequence order;
        EXPECT_CALL(*mock, removeObserver(NotNull())).WillOnce(SaveArg<0>(&attached)).RetiresOnSaturation();
        EXPECT_CALL(*mock, addObserver(NotNull()))
            .WillOnce([this](Sdk::Observer* observer) {
                EXPECT_EQ(observer, attached);
                journal.emplace_back("attached");
            })
            .RetiresOnSaturation();
    }

    void expectDetach() { EXPECT_CALL(*mock, removeObserver(attached)).RetiresOnSaturation(); }

    /// A watcher whose signals are written down from then on.
    void watch()
    {
        watcher.emplace(handle, nullptr);
        using Watcher = SdkCalibrationControlWatcher;
        QObject::connect(&*watcher, &Watcher::unitStatusChanged, [this] { journal.emplace_back("units"); });
        QObject::connect(&*watcher, &Watcher::configurationChanged, [this] { journal.emplace_back("configuration"); });
        QObject::connect(
            &*watcher, &Watcher::saveProgressChanged, &*watcher,
            [this](int percent) { journal.push_back(std::to_string(percent)); }, Qt::DirectConnection);
    }

    /// A watcher that is attached to a controller.
    void begin()
    {
        offer();
        expectAttach();
        watch();
        journal.clear();
    }

    /// Destroys the watcher, whose controller is there.
    void end()
    {
        expectDetach();
        watcher.reset();
    }

    [[nodiscard]] int asked() const { return device.asked(Sdk::firstKey); }

    FakeVna device;
    std::shared_ptr<Mock> mock;
    Sdk::Observer* attached = nullptr;
    std::vector<std::string> journal;
    SdkCalibrationControlHandle handle{handleTo<Sdk>(device, Sdk::firstKey)};
    std::optional<SdkCalibrationControlWatcher> watcher;
};

class CalibrationHandle : public CalibrationController { };

TEST_F(CalibrationHandle, HandsOutTheControllerThatIsOfferedNow)
{
    EXPECT_FALSE(handle.lock());
    offer();
    EXPECT_EQ(handle.lock().control, mock.get());
    const int before = asked();
    EXPECT_EQ(handle.lock().control, mock.get());
    EXPECT_EQ(asked(), before) << "a live controller is not asked for";
    drop();
    EXPECT_FALSE(handle.lock());
}

TEST_F(CalibrationHandle, KeepsAControllerAliveThroughTheResultAlone)
{
    offer();
    auto locked = handle.lock();
    const std::weak_ptr<Mock> controller{mock};
    drop();
    EXPECT_FALSE(controller.expired());
    locked = {};
    EXPECT_TRUE(controller.expired());
}

TEST_F(CalibrationHandle, TurnsTheLifecycleIntoSignalsAndDoesNothingElse)
{
    offer(); // the mock expects no call
    QObject::connect(&handle, &SdkCalibrationControlHandle::controlsAboutToBeReleased,
                     [this] { journal.emplace_back("release"); });
    QObject::connect(&handle, &SdkCalibrationControlHandle::controlsAvailable,
                     [this] { journal.emplace_back("available"); });
    const int before = asked();
    handle.onControlsAboutToBeReleased();
    EXPECT_THAT(journal, ElementsAre("release"));
    handle.onControlsAvailable();
    EXPECT_THAT(journal, ElementsAre("release", "available"));
    EXPECT_EQ(asked(), before);
}

TEST_F(CalibrationHandle, HasNoParentAndLetsExceptionsOfTheDevicePass)
{
    EXPECT_EQ(handle.parent(), nullptr);
    for (const auto& exception : anyExceptions()) {
        device.whenAsked([&](sdk::Key) { std::rethrow_exception(exception); });
        EXPECT_EQ(thrownBy([&] { std::ignore = handle.lock(); }), exception);
        device.whenAsked(nullptr);
    }
}

TEST_F(CalibrationHandle, IsBoundToTheControllerOfItsRow)
{
    devices::ControlRegistry registry;
    devices::service::servicecontrols::registrate(&registry);
    const auto first = std::make_shared<Mock>();
    const auto second = std::make_shared<Mock>();
    device.offer<Sdk>(Sdk::firstKey, first);
    device.offer<Sdk>(Sdk::secondKey, second);
    const auto controllerOf = [&](std::uint64_t registryKey) {
        const auto created = registry.find(registryKey)->create(static_cast<sdk::IVna*>(&device));
        return std::any_cast<std::shared_ptr<SdkCalibrationControlHandle>>(created)->lock().control;
    };
    EXPECT_EQ(controllerOf(SdkCalibrationControlHandle::firstRegistryKey), first.get());
    EXPECT_EQ(controllerOf(SdkCalibrationControlHandle::secondRegistryKey), second.get());
}

class CalibrationWatcher : public CalibrationController { };

TEST_F(CalibrationWatcher, AttachesWhenItIsMadeAndDetachesWhenItIsDestroyed)
{
    offer();
    expectAttach();
    QObject parent;
    auto* const owned = new SdkCalibrationControlWatcher{handle, &parent};
    EXPECT_EQ(owned->parent(), &parent);
    testing::Mock::VerifyAndClearExpectations(mock.get());
    EXPECT_CALL(*mock, removeObserver(attached));
    delete owned;
}

TEST_F(CalibrationWatcher, EmitsWhatTheControllerNotifiesWithoutTheUnit)
{
    begin();
    attached->onUnitStatusChanged(nullptr);
    attached->onConfigurationChanged();
    attached->onSaveProgress(nullptr, {1, 4});
    EXPECT_THAT(journal, ElementsAre("units", "configuration", "25"));
    end();
}

TEST_F(CalibrationWatcher, EmitsThePerCentRoundedDownAndUnlimited)
{
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    constexpr struct {
        std::uint64_t done;
        std::uint64_t total;
        int percent;
    } cases[] = {
        {0, 0, 0},
        {7, 0, 0}, // no total, no quotient
        {0, 3, 0},
        {1, 3, 33},
        {2, 3, 66},
        {3, 3, 100},
        {5, 4, 125},
        {1, largest, 0},
        {std::uint64_t{1} << 63U, 1, 0}, // the product is 50 times 2^64
        {largest, largest, 0}, // the product is 2^64 - 100
        {largest, 1, -100}, // and so is this quotient, of which the lower 32 bits are left
        {42'949'673, 1, 4}, // 2^32 + 4
        {184'467'440'737'095'517, 50, 1}, // 2^64 + 84
        {184'467'440'737'095'516, 100, -171'798'692}, // the lower 32 bits of a hundredth of 2^64 - 16
    };
    begin();
    for (const auto& [done, total, percent] : cases) {
        journal.clear();
        attached->onSaveProgress(nullptr, {done, total});
        EXPECT_THAT(journal, ElementsAre(std::to_string(percent))) << done << " of " << total;
    }
    end();
}

TEST_F(CalibrationWatcher, AttachesOnEveryReturnThenTellsOfTheUnitsThenOfTheConfiguration)
{
    begin();
    for (int round = 0; round != 2; ++round) {
        expectDetach();
        handle.onControlsAboutToBeReleased();
        drop();
        EXPECT_THAT(journal, IsEmpty());
        offer();
        expectAttach();
        handle.onControlsAvailable();
        EXPECT_THAT(journal, ElementsAre("attached", "units", "configuration"));
        journal.clear();
    }
    end();
}

TEST_F(CalibrationWatcher, AttachesNothingWhileThereIsNoControllerAndAttachesAsSoonAsThereIs)
{
    watch();
    handle.onControlsAvailable(); // there is still none; whoever watches reads that too
    EXPECT_THAT(journal, ElementsAre("units", "configuration"));
    journal.clear();
    handle.onControlsAboutToBeReleased();
    EXPECT_THAT(journal, IsEmpty());
    offer();
    expectAttach();
    handle.onControlsAvailable();
    EXPECT_THAT(journal, ElementsAre("attached", "units", "configuration"));
    end();
}

TEST_F(CalibrationWatcher, LeavesOneRegistrationHoweverOftenItAttaches)
{
    begin();
    for (int round = 0; round != 2; ++round) {
        expectAttach();
        watcher->attach();
    }
    EXPECT_THAT(journal, ElementsAre("attached", "attached"));
    expectDetach();
    watcher->detach();
    end();
}

TEST_F(CalibrationWatcher, FollowsItsHandleNoMoreOnceItIsDestroyed)
{
    begin();
    end();
    handle.onControlsAboutToBeReleased(); // the mock expects no call
    handle.onControlsAvailable();
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(CalibrationWatcher, CanBeDestroyedWhateverThrows)
{
    for (const auto& exception : anyExceptions()) {
        begin();
        EXPECT_CALL(*mock, removeObserver(attached)).WillOnce([&](auto*) { std::rethrow_exception(exception); });
        EXPECT_NO_THROW(watcher.reset());

        begin();
        drop();
        device.whenAsked([&](sdk::Key) { std::rethrow_exception(exception); });
        EXPECT_NO_THROW(watcher.reset());
        device.whenAsked(nullptr);
    }
}

TEST_F(CalibrationWatcher, EmitsOnTheThreadOfTheSdk)
{
    begin();
    std::thread::id emittedOn;
    QObject::connect(
        &*watcher, &SdkCalibrationControlWatcher::configurationChanged, &*watcher,
        [&] { emittedOn = std::this_thread::get_id(); }, Qt::DirectConnection);
    std::thread sdkThread{[&] { attached->onConfigurationChanged(); }};
    const auto expected = sdkThread.get_id();
    sdkThread.join();
    EXPECT_EQ(emittedOn, expected);
    end();
}

TEST_F(CalibrationWatcher, FollowsItsHandleOnItsOwnThread)
{
    int argumentCount = 0;
    const QCoreApplication application{argumentCount, nullptr}; // brings the events to their receivers
    begin();
    std::thread{[&] { handle.onControlsAboutToBeReleased(); }}.join(); // the mock expects no call on this thread
    expectDetach();
    QCoreApplication::sendPostedEvents(&*watcher);
    testing::Mock::VerifyAndClearExpectations(mock.get());

    std::thread{[&] { handle.onControlsAvailable(); }}.join(); // nor on this one
    EXPECT_THAT(journal, IsEmpty());
    expectAttach();
    QCoreApplication::sendPostedEvents(&*watcher);
    EXPECT_THAT(journal, ElementsAre("attached", "units", "configuration"));
    end();
}

} // namespace
} // namespace tarn::tests::calibrationcontroller
