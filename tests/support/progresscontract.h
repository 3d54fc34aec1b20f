#pragma once

#include <support/exceptions.h>
#include <support/fakevna.h>

#include <devices/reacquiringcontrol.h>
#include <devices/service/progress.h>
#include <sdk/controlhandle.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

/// What every adapter promises that forwards the progress of the SDK to observers of its own. Its
/// test names one notification in a trait and instantiates the suite with it:
///
///     struct FooProgress {
///         using Sdk = sdk::service::IFooControl;
///         using SdkObserver = Sdk::Observer;
///         using Adapter = devices::service::SdkFooControl;
///         using Mock = MockFooControl;
///         struct Listener final : devices::service::IFooControl::IObserver { // calls `heard`
///             std::function<void(const devices::service::Progress&)> heard;
///         };
///         static void notify(SdkObserver& observer, unsigned int done, unsigned int total);
///     };
///     INSTANTIATE_TYPED_TEST_SUITE_P(Foo, ProgressContract, FooProgress);
///     INSTANTIATE_TYPED_TEST_SUITE_P(Foo, ProgressRecordContract, FooProgress); // if it has two numbers
namespace tarn::tests {

using devices::service::Progress;

/// The observers of a control that keeps its word: once `remove` has returned, the removed one is
/// not being notified and will not be.
template <class Contract>
class KeptObservers {
public:
    using Observer = typename Contract::SdkObserver;

    void add(Observer* observer)
    {
        const std::scoped_lock lock{m_mutex};
        m_observers.push_back(observer);
    }

    void remove(Observer* observer)
    {
        const std::scoped_lock lock{m_mutex};
        std::erase(m_observers, observer);
    }

    void notify()
    {
        const std::scoped_lock lock{m_mutex};
        for (auto* const observer : m_observers)
            Contract::notify(*observer, 1, 2);
    }

    [[nodiscard]] std::size_t count() const
    {
        const std::scoped_lock lock{m_mutex};
        return m_observers.size();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Observer*> m_observers;
};

/// A device whose control must expect every call, an adapter, and three listeners that write down
/// what they hear.
template <class Contract>
class ProgressContract : public testing::Test {
protected:
    using Sdk = typename Contract::Sdk;
    using Adapter = typename Contract::Adapter;
    using Listener = typename Contract::Listener;
    using Mock = testing::StrictMock<typename Contract::Mock>;
    using Heard = std::pair<char, Progress>;

    ProgressContract()
    {
        const auto writeDown = [this](char name) {
            return [this, name](const Progress& progress) { journal.emplace_back(name, progress); };
        };
        a.heard = writeDown('a');
        b.heard = writeDown('b');
        c.heard = writeDown('c');
    }

    void offer()
    {
        mock = std::make_shared<Mock>();
        device.template offer<Sdk>(Sdk::key, mock);
    }

    /// Drops the control; the test keeps no reference either.
    void drop()
    {
        device.drop(Sdk::key);
        mock.reset();
    }

    void expectAttach(int times = 1)
    {
        EXPECT_CALL(*mock, addObserver(testing::NotNull()))
            .Times(times)
            .WillRepeatedly(testing::SaveArg<0>(&attached))
            .RetiresOnSaturation();
    }

    void expectDetach(int times = 1)
    {
        EXPECT_CALL(*mock, removeObserver(attached)).Times(times).RetiresOnSaturation();
    }

    void construct()
    {
        adapter.emplace(devices::ReacquiringControl<Sdk>{
            [this] { return sdk::ControlHandle<Sdk>{device.template control<Sdk>(Sdk::key)}; }});
    }

    /// An adapter that is attached to a control.
    void begin()
    {
        offer();
        expectAttach();
        construct();
    }

    /// Destroys the adapter, whose control is there.
    void end()
    {
        expectDetach();
        adapter.reset();
    }

    /// The SDK's notification, then the names of those who heard it, in order.
    std::string notify()
    {
        journal.clear();
        Contract::notify(*attached, 3, 10);
        std::string names;
        for (const auto& [name, progress] : journal)
            names += name;
        return names;
    }

    [[nodiscard]] int asked() const { return device.asked(Sdk::key); }

    FakeVna device;
    std::shared_ptr<Mock> mock;
    typename Contract::SdkObserver* attached = nullptr;
    std::vector<Heard> journal;
    Listener a;
    Listener b;
    Listener c;
    std::optional<Adapter> adapter;
};

TYPED_TEST_SUITE_P(ProgressContract);

TYPED_TEST_P(ProgressContract, ConstructionAttachesOnceAndDestructionDetachesTheSameObserver)
{
    this->begin();
    testing::Mock::VerifyAndClearExpectations(this->mock.get());
    this->end();
    EXPECT_EQ(this->asked(), 1) << "a live control is not asked for";
}

TYPED_TEST_P(ProgressContract, WithoutAControlEveryStepOfItsLifeAsksOnceAndDoesNothing)
{
    this->construct();
    EXPECT_EQ(this->asked(), 2) << "the handle, then the attachment";
    this->adapter->onControlsAvailable();
    EXPECT_EQ(this->asked(), 3);
    this->adapter->onControlsAboutToBeReleased();
    EXPECT_EQ(this->asked(), 4);
    this->adapter.reset();
    EXPECT_EQ(this->asked(), 5);
}

TYPED_TEST_P(ProgressContract, UsesOneObserverForEveryControlAndTouchesEachOnceAtEachStep)
{
    this->begin();
    auto* const observer = this->attached;
    this->expectDetach();
    this->adapter->onControlsAboutToBeReleased();
    this->drop();

    this->offer();
    this->expectAttach();
    this->adapter->onControlsAvailable();
    EXPECT_EQ(this->attached, observer);
    this->end();
}

TYPED_TEST_P(ProgressContract, AttachesToAControlThatIsOfferedLate)
{
    this->construct();
    this->offer();
    this->expectAttach();
    this->adapter->onControlsAvailable();
    this->end();
}

TYPED_TEST_P(ProgressContract, GuardsAgainstNeitherASecondAttachmentNorASecondDetachment)
{
    this->begin();
    this->expectAttach(2);
    this->adapter->onControlsAvailable();
    this->adapter->onControlsAvailable();
    this->expectDetach(2);
    this->adapter->onControlsAboutToBeReleased();
    this->adapter->onControlsAboutToBeReleased();
    this->end();
}

TYPED_TEST_P(ProgressContract, DestructionDetachesFromTheControlThatIsThereThen)
{
    this->begin();
    this->drop();
    this->offer(); // and nobody said so
    this->end();
    EXPECT_EQ(this->asked(), 2);
}

TYPED_TEST_P(ProgressContract, DestructionGoesOnWhenTheDeviceOrTheControlThrows)
{
    for (const auto& exception : anyExceptions()) {
        this->begin();
        EXPECT_CALL(*this->mock, removeObserver(this->attached)).WillOnce([&](auto*) {
            std::rethrow_exception(exception);
        });
        EXPECT_NO_THROW(this->adapter.reset());

        this->begin();
        this->drop();
        const int before = this->asked();
        this->device.whenAsked([&](sdk::Key) { std::rethrow_exception(exception); });
        EXPECT_NO_THROW(this->adapter.reset());
        EXPECT_EQ(this->asked(), before + 1);
        this->device.whenAsked(nullptr);
    }
}

TYPED_TEST_P(ProgressContract, AnExceptionDuringConstructionPassesUnchanged)
{
    for (const auto& exception : anyExceptions()) {
        this->offer();
        EXPECT_CALL(*this->mock, addObserver).WillOnce([&](auto*) { std::rethrow_exception(exception); });
        EXPECT_EQ(thrownBy([&] { this->construct(); }), exception);
    }
}

TYPED_TEST_P(ProgressContract, DetachesWhileItCanStillForwardAndTellsItsObserversNothing)
{
    this->begin();
    this->adapter->addObserver(this->a);
    EXPECT_CALL(*this->mock, removeObserver(this->attached)).WillOnce([&](auto* /*detached*/) {
        EXPECT_EQ(this->notify(), "a"); // the last moment at which the SDK may still notify
    });
    this->adapter.reset();
    EXPECT_EQ(this->journal.size(), 1U);
}

TYPED_TEST_P(ProgressContract, NotifiesInTheOrderOfRegistrationOncePerEntry)
{
    this->begin();
    EXPECT_EQ(this->notify(), "");
    for (auto* const listener : {&this->c, &this->a, &this->b, &this->a})
        this->adapter->addObserver(*listener);
    EXPECT_EQ(this->notify(), "caba");
    this->adapter->removeObserver(this->a);
    EXPECT_EQ(this->notify(), "cb");
    this->adapter->removeObserver(this->a); // is not there
    EXPECT_EQ(this->notify(), "cb");
    this->adapter->addObserver(this->a);
    EXPECT_EQ(this->notify(), "cba");
    this->end();
}

TYPED_TEST_P(ProgressContract, AddingAndRemovingTouchesTheListAlone)
{
    this->begin(); // every call of the control would have to be expected
    const int before = this->asked();
    this->adapter->addObserver(this->a);
    this->adapter->removeObserver(this->a);
    this->drop();
    this->adapter->addObserver(this->a);
    this->adapter->removeObserver(this->a);
    EXPECT_EQ(this->asked(), before);
}

TYPED_TEST_P(ProgressContract, AnObserverAddedWhileThereIsNoControlHearsTheOnesThatCome)
{
    this->construct();
    this->adapter->addObserver(this->a);
    for (int round = 0; round != 2; ++round) {
        this->offer();
        this->expectAttach();
        this->adapter->onControlsAvailable();
        EXPECT_EQ(this->notify(), "a");
        this->expectDetach();
        this->adapter->onControlsAboutToBeReleased();
        this->drop();
    }
}

TYPED_TEST_P(ProgressContract, AnExceptionOfAnObserverReachesTheSdkAndTheListGoesOn)
{
    this->begin();
    typename TypeParam::Listener thrower;
    for (const auto& exception : anyExceptions()) {
        thrower.heard = [&](const Progress&) { std::rethrow_exception(exception); };
        this->adapter->addObserver(this->a);
        this->adapter->addObserver(thrower);
        this->adapter->addObserver(this->b);
        this->journal.clear();
        std::exception_ptr caught;
        std::thread{[&] { caught = thrownBy([&] { std::ignore = this->notify(); }); }}.join();
        EXPECT_EQ(caught, exception);
        EXPECT_EQ(this->journal.size(), 1U) << "the pass ends at the one that throws";

        this->adapter->removeObserver(thrower); // would wait for ever on a mutex still held
        EXPECT_EQ(this->notify(), "ab");
        this->adapter->removeObserver(this->a);
        this->adapter->removeObserver(this->b);
    }
    this->end();
}

TYPED_TEST_P(ProgressContract, NotifiesOnTheThreadOfTheSdkBeforeItsCallReturns)
{
    this->begin();
    std::thread::id heardOn;
    this->a.heard = [&](const Progress&) { heardOn = std::this_thread::get_id(); };
    this->adapter->addObserver(this->a);
    std::thread::id notifiedOn;
    std::thread{[&] {
        TypeParam::notify(*this->attached, 1, 2);
        notifiedOn = std::this_thread::get_id();
        EXPECT_EQ(heardOn, notifiedOn);
    }}.join();
    EXPECT_NE(notifiedOn, std::thread::id{});
    this->end();
}

TYPED_TEST_P(ProgressContract, RemovingWaitsForANotificationThatIsBeingDelivered)
{
    this->begin();
    std::latch entered{1};
    std::latch leave{1};
    bool left = false; // nothing but the list's mutex guards it
    this->a.heard = [&](const Progress&) {
        entered.count_down();
        leave.wait();
        left = true;
    };
    this->adapter->addObserver(this->a);
    std::jthread sdkThread{[&] { TypeParam::notify(*this->attached, 1, 2); }};
    entered.wait();
    std::jthread releaser{[&] { leave.count_down(); }};
    this->adapter->removeObserver(this->a);
    EXPECT_TRUE(left);
    sdkThread.join();
    this->end();
}

TYPED_TEST_P(ProgressContract, CanBeDestroyedWhileTheSdkNotifiesFromItsThread)
{
    KeptObservers<TypeParam> observers;
    this->offer();
    EXPECT_CALL(*this->mock, addObserver).WillRepeatedly([&](auto* observer) { observers.add(observer); });
    EXPECT_CALL(*this->mock, removeObserver).WillRepeatedly([&](auto* observer) { observers.remove(observer); });
    std::jthread sdkThread{[&](const std::stop_token& stop) {
        while (!stop.stop_requested())
            observers.notify();
    }};
    for (int round = 0; round != 50; ++round) {
        this->construct();
        std::atomic<int> notifications{0};
        std::latch heard{1};
        typename TypeParam::Listener listener;
        listener.heard = [&](const Progress&) {
            if (notifications.fetch_add(1) == 0)
                heard.count_down();
        };
        this->adapter->addObserver(listener);
        heard.wait();
        this->adapter.reset(); // in the middle of the notifications
        const int atTheEnd = notifications;
        EXPECT_EQ(observers.count(), 0U);
        observers.notify();
        EXPECT_EQ(notifications, atTheEnd);
    }
}

REGISTER_TYPED_TEST_SUITE_P(
    ProgressContract, ConstructionAttachesOnceAndDestructionDetachesTheSameObserver,
    WithoutAControlEveryStepOfItsLifeAsksOnceAndDoesNothing, UsesOneObserverForEveryControlAndTouchesEachOnceAtEachStep,
    AttachesToAControlThatIsOfferedLate, GuardsAgainstNeitherASecondAttachmentNorASecondDetachment,
    DestructionDetachesFromTheControlThatIsThereThen, DestructionGoesOnWhenTheDeviceOrTheControlThrows,
    AnExceptionDuringConstructionPassesUnchanged, DetachesWhileItCanStillForwardAndTellsItsObserversNothing,
    NotifiesInTheOrderOfRegistrationOncePerEntry, AddingAndRemovingTouchesTheListAlone,
    AnObserverAddedWhileThereIsNoControlHearsTheOnesThatCome, AnExceptionOfAnObserverReachesTheSdkAndTheListGoesOn,
    NotifiesOnTheThreadOfTheSdkBeforeItsCallReturns, RemovingWaitsForANotificationThatIsBeingDelivered,
    CanBeDestroyedWhileTheSdkNotifiesFromItsThread);

/// What those promise beyond it whose notifications carry two numbers.
template <class Contract>
class ProgressRecordContract : public ProgressContract<Contract> { };

TYPED_TEST_SUITE_P(ProgressRecordContract);

TYPED_TEST_P(ProgressRecordContract, ARecordCarriesTheSecondNumberOfTheSdkFirst)
{
    this->begin();
    this->adapter->addObserver(this->a);
    for (const auto& [done, total] : {std::pair{3U, 10U}, {0U, 512U}, {0xffff'ffffU, 0U}}) {
        this->journal.clear();
        TypeParam::notify(*this->attached, done, total);
        ASSERT_EQ(this->journal.size(), 1U);
        const auto [first, second] = this->journal[0].second;
        EXPECT_EQ(first, total);
        EXPECT_EQ(second, done);
    }
    this->end();
}

REGISTER_TYPED_TEST_SUITE_P(ProgressRecordContract, ARecordCarriesTheSecondNumberOfTheSdkFirst);

} // namespace tarn::tests
