// The observers of the two calibration controls.

#include <devices/service/writeobservers.h>

#include <support/calibrationbench.h>
#include <support/exceptions.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <atomic>
#include <cstddef>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests::writeobservers {
namespace {

/// Writes down what it hears.
template <class Adapter>
struct Notes final : Adapter::Observer {
    void onWriteStarted() override { journal.emplace_back("started"); }
    void onWriteProgressChanged(std::uint32_t progress) override { journal.push_back(std::to_string(progress)); }
    void onWriteFinished() override { journal.emplace_back("finished"); }
    void onError(typename Adapter::Error error) override
    {
        journal.push_back("error " + std::to_string(static_cast<int>(error)));
    }

    std::vector<std::string> journal;
};

template <class Calibration>
class WriteObservers : public CalibrationBench<Calibration> {
protected:
    using Base = CalibrationBench<Calibration>;
    using typename Base::SdkObserver;
    using Adapter = typename Calibration::Adapter;

    WriteObservers()
    {
        a.heard = [this](auto) { journal += 'a'; };
        b.heard = [this](auto) { journal += 'b'; };
    }

    /// Who hears a notification of the SDK.
    std::string notify()
    {
        journal.clear();
        this->registered()->notify(1);
        std::ranges::sort(journal);
        return journal;
    }

    std::string journal;
    ProgressListener<Adapter> a;
    ProgressListener<Adapter> b;
};

TYPED_TEST_SUITE(WriteObservers, CalibrationControls);

TYPED_TEST(WriteObservers, AnAddedObserverHearsEveryNotificationAsItIs)
{
    typename TypeParam::Sdk::Observer* attached = nullptr;
    this->whenAdded = [&](auto* observer) { attached = observer; };
    this->offer();
    Notes<typename TypeParam::Adapter> notes;
    this->control.addObserver(&notes);
    ASSERT_NE(attached, nullptr);

    attached->onWriteStarted();
    for (const auto progress : {0U, 1U, 100U, 101U, 0xffff'ffffU})
        attached->onWriteProgressChanged(progress);
    attached->onWriteFinished();
    EXPECT_THAT(notes.journal, ElementsAre("started", "0", "1", "100", "101", "4294967295", "finished"));
}

TYPED_TEST(WriteObservers, KeepTheErrorsOneToThreeAndMakeZeroOfAllOthers)
{
    typename TypeParam::Sdk::Observer* attached = nullptr;
    this->whenAdded = [&](auto* observer) { attached = observer; };
    this->offer();
    Notes<typename TypeParam::Adapter> notes;
    this->control.addObserver(&notes);
    for (unsigned int number = 0; number <= 255; ++number) {
        notes.journal.clear();
        attached->onError(static_cast<typename TypeParam::Sdk::Error>(number));
        EXPECT_THAT(notes.journal, ElementsAre("error " + std::to_string(number >= 1 && number <= 3 ? number : 0)));
    }
}

TYPED_TEST(WriteObservers, NothingIsRegisteredBeforeAnObserverIsAdded)
{
    this->offer();
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 0U);
}

TYPED_TEST(WriteObservers, AddingNullDoesNothing)
{
    this->offer();
    this->whenAdded = [](auto* /*observer*/) { ADD_FAILURE(); };
    this->control.addObserver(nullptr);
    this->control.onControlsAvailable();
    this->control.removeObserver(nullptr);
    EXPECT_EQ(this->registered()->count(), 0U);
    EXPECT_EQ(this->asked(), 1 + 1) << "the handle, then onControlsAvailable";
}

TYPED_TEST(WriteObservers, AddingTwiceKeepsOneEntry)
{
    this->offer();
    this->control.addObserver(&this->a);
    this->control.addObserver(&this->a);
    EXPECT_EQ(this->registered()->count(), 1U);
    EXPECT_EQ(this->notify(), "a");
    this->control.removeObserver(&this->a);
    EXPECT_EQ(this->registered()->count(), 0U);
    EXPECT_EQ(this->notify(), "");
}

TYPED_TEST(WriteObservers, AnObserverAddedWhileThereIsNoControlIsRegisteredOnceWhenThereIs)
{
    this->control.addObserver(&this->a);
    this->offer();
    EXPECT_EQ(this->notify(), "");
    this->control.onControlsAvailable();
    EXPECT_EQ(this->notify(), "a");
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 1U);
}

TYPED_TEST(WriteObservers, EveryObserverIsRegisteredWithEveryControlInTurn)
{
    this->offer();
    this->control.addObserver(&this->a);
    this->control.addObserver(&this->b);
    for (int round = 0; round != 3; ++round) {
        EXPECT_EQ(this->notify(), "ab");
        this->control.onControlsAboutToBeReleased();
        EXPECT_EQ(this->registered()->count(), 0U);
        this->offer();
        this->control.onControlsAvailable();
    }
    EXPECT_EQ(this->registered()->count(), 2U);
}

TYPED_TEST(WriteObservers, ARemovedObserverDoesNotReturn)
{
    this->offer();
    this->control.addObserver(&this->a);
    this->control.addObserver(&this->b);
    this->control.removeObserver(&this->a);
    EXPECT_EQ(this->notify(), "b");
    this->drop();
    this->control.removeObserver(&this->b); // while there is no control
    this->offer();
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 0U);
}

TYPED_TEST(WriteObservers, ARemovedObserverHearsWhatTheSdkSaysBeforeItLetsGo)
{
    this->offer();
    this->control.addObserver(&this->a);
    int removals = 0;
    this->whenRemoved = [&](auto* observer) {
        ++removals;
        observer->onWriteProgressChanged(1);
    };
    this->control.removeObserver(&this->a);
    EXPECT_EQ(removals, 1);
    EXPECT_EQ(this->journal, "a");
}

TYPED_TEST(WriteObservers, AnObserverHearsWhatTheSdkNotifiesWhileItsControlIsBeingReleased)
{
    this->offer();
    this->control.addObserver(&this->a);
    this->whenRemoved = [](auto* observer) { observer->onWriteProgressChanged(1); };
    this->control.onControlsAboutToBeReleased();
    EXPECT_EQ(this->journal, "a");
}

TYPED_TEST(WriteObservers, AnObserverRemovedWhileItIsBeingRegisteredDoesNotStayBehind)
{
    this->offer();
    this->whenAdded = [this](auto* /*observer*/) { this->control.removeObserver(&this->a); };
    this->control.addObserver(&this->a);
    EXPECT_EQ(this->registered()->count(), 0U);

    this->drop();
    this->control.addObserver(&this->a);
    this->offer();
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 0U);
}

TYPED_TEST(WriteObservers, AnObserverRemovedWhileItIsBeingRegisteredHearsNothingMore)
{
    this->offer();
    this->whenAdded = [this](auto* observer) {
        this->control.removeObserver(&this->a);
        observer->onWriteProgressChanged(1);
    };
    this->control.addObserver(&this->a);
    EXPECT_EQ(this->journal, "");
}

TYPED_TEST(WriteObservers, AnObserverRemovedWhileTheDeviceIsAskedForTheControlDoesNotReturn)
{
    this->device.whenAsked([this](sdk::Key) {
        this->device.whenAsked(nullptr);
        this->control.removeObserver(&this->a);
    });
    this->control.addObserver(&this->a);
    this->offer();
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 0U);
}

TYPED_TEST(WriteObservers, AnObserverAddedAnewWhileTheDeviceIsAskedIsRegisteredOnce)
{
    std::shared_ptr<void> offered;
    this->device.whenAsked([&](sdk::Key key) {
        this->device.whenAsked(nullptr);
        this->offer();
        this->control.removeObserver(&this->a);
        this->control.addObserver(&this->a);
        offered = this->device.control(key);
        this->device.drop(key); // for the answer to this question alone
    });
    this->control.addObserver(&this->a);
    this->device.offerFrom(TypeParam::Sdk::key, [offered] { return offered; });
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 1U);
    EXPECT_EQ(this->notify(), "a");
}

TYPED_TEST(WriteObservers, TheSdkIsCalledWithoutALock) // which would be waited for here for ever
{
    this->offer();
    this->whenAdded = [this](auto* /*observer*/) {
        this->whenAdded = nullptr;
        this->control.addObserver(&this->b);
    };
    this->control.addObserver(&this->a);
    EXPECT_EQ(this->notify(), "ab");

    const auto removeB = [this](auto* /*observer*/) {
        this->whenRemoved = nullptr;
        this->control.removeObserver(&this->b);
    };
    this->whenRemoved = removeB;
    this->control.removeObserver(&this->a);
    EXPECT_EQ(this->notify(), "");

    this->control.addObserver(&this->a);
    this->control.addObserver(&this->b);
    this->whenRemoved = removeB;
    this->control.onControlsAboutToBeReleased();
    this->whenAdded = [this](auto* /*observer*/) {
        this->whenAdded = nullptr;
        this->control.addObserver(&this->b);
    };
    this->control.onControlsAvailable();
    EXPECT_EQ(this->notify(), "ab");
}

TYPED_TEST(WriteObservers, AnObserverIsCalledWithoutALock)
{
    typename TypeParam::Sdk::Observer* attached = nullptr;
    this->whenAdded = [&](auto* observer) { attached = attached ? attached : observer; };
    this->offer();
    this->a.heard = [this](auto) {
        this->control.addObserver(&this->b);
        this->control.removeObserver(&this->a);
    };
    this->control.addObserver(&this->a);
    attached->onWriteProgressChanged(1);
    EXPECT_EQ(this->notify(), "b");
}

TYPED_TEST(WriteObservers, AnObserverIsCalledOnTheThreadOfTheSdk)
{
    this->offer();
    std::thread::id heardOn;
    this->a.heard = [&](auto) { heardOn = std::this_thread::get_id(); };
    this->control.addObserver(&this->a);
    std::thread::id notifiedOn;
    std::thread{[&] {
        notifiedOn = std::this_thread::get_id();
        this->registered()->notify(1);
    }}.join();
    EXPECT_EQ(heardOn, notifiedOn);
}

TYPED_TEST(WriteObservers, AnObserverWhoseRegistrationThrowsHasNotBeenAdded)
{
    for (const auto& exception : anyExceptions()) {
        this->offer();
        this->whenAdded = [&](auto* /*observer*/) { std::rethrow_exception(exception); };
        EXPECT_EQ(thrownBy([&] { this->control.addObserver(&this->a); }), exception);
        this->whenAdded = nullptr;
        EXPECT_EQ(this->notify(), "");
        this->drop();
        this->offer();
        this->control.onControlsAvailable();
        EXPECT_EQ(this->registered()->count(), 0U);

        this->control.addObserver(&this->a); // now it is
        EXPECT_EQ(this->notify(), "a");
        this->control.removeObserver(&this->a);
        EXPECT_EQ(this->registered()->count(), 0U);
    }
}

TYPED_TEST(WriteObservers, AnObserverThatTheSdkKeepsWhenItThrowsInTheRegistrationHearsNothing)
{
    this->offer();
    this->onceAdded = [] { throw std::runtime_error{"added"}; };
    EXPECT_THROW(this->control.addObserver(&this->a), std::runtime_error);
    EXPECT_EQ(this->registered()->count(), 1U);
    EXPECT_EQ(this->notify(), "");
}

TYPED_TEST(WriteObservers, AnObserverWhoseRegistrationThrowsDoesNotStayBehindWithAControlThatReturns)
{
    this->offer();
    std::jthread returning;
    std::promise<void> registersToo;
    std::promise<void> hasThrown;
    std::atomic<int> registrations = 0;
    this->whenAdded = [&](auto* /*observer*/) {
        if (++registrations == 1) {
            returning = std::jthread{[this] {
                this->control.onControlsAboutToBeReleased();
                this->control.onControlsAvailable();
            }};
            registersToo.get_future().wait();
            throw std::runtime_error{"not added"};
        }
        registersToo.set_value();
        hasThrown.get_future().wait();
    };
    EXPECT_THROW(this->control.addObserver(&this->a), std::runtime_error);
    hasThrown.set_value();
    returning.join();
    EXPECT_EQ(this->registered()->count(), 0U);
}

TYPED_TEST(WriteObservers, AnObserverAddedAndRemovedByOthersWhileItsRegistrationThrowsStays)
{
    this->offer();
    this->whenAdded = [this](auto* /*observer*/) {
        this->whenAdded = nullptr;
        this->control.removeObserver(&this->a);
        this->control.addObserver(&this->a);
        throw std::runtime_error{"not added"};
    };
    EXPECT_THROW(this->control.addObserver(&this->a), std::runtime_error);
    EXPECT_EQ(this->notify(), "a");

    this->whenAdded = [this](auto* /*observer*/) {
        this->whenAdded = nullptr;
        this->control.removeObserver(&this->b);
        throw std::runtime_error{"not added"};
    };
    EXPECT_THROW(this->control.addObserver(&this->b), std::runtime_error);
    EXPECT_EQ(this->notify(), "a");
}

TYPED_TEST(WriteObservers, AnObserverWhoseRemovalThrowsHearsNothingMore)
{
    for (const auto& exception : anyExceptions()) {
        this->offer();
        this->control.addObserver(&this->a);
        this->whenRemoving = [&](auto* /*observer*/) { std::rethrow_exception(exception); };
        EXPECT_EQ(thrownBy([&] { this->control.removeObserver(&this->a); }), exception);
        this->whenRemoving = nullptr;
        EXPECT_EQ(this->registered()->count(), 1U) << "the SDK has kept it";
        EXPECT_EQ(this->notify(), "");
        this->control.removeObserver(&this->a); // as one that is not there

        this->control.addObserver(&this->a);
        EXPECT_EQ(this->notify(), "a");
        this->control.removeObserver(&this->a);
    }
}

TYPED_TEST(WriteObservers, AnObserverWhoseRemovalCannotAskTheDeviceHasBeenRemoved)
{
    this->offer();
    this->control.addObserver(&this->a);
    this->drop();
    this->device.whenAsked([](sdk::Key) { throw std::runtime_error{"no answer"}; });
    EXPECT_THROW(this->control.removeObserver(&this->a), std::runtime_error);
    this->device.whenAsked(nullptr);
    this->offer();
    this->control.onControlsAvailable();
    EXPECT_EQ(this->registered()->count(), 0U);
}

TYPED_TEST(WriteObservers, ALifecycleNotificationThatThrowsIsFinishedByTheNext)
{
    for (const auto& exception : anyExceptions()) {
        for (const int nth : {1, 2}) {
            int calls = 0;
            const auto fail = [&](auto* /*observer*/) {
                if (++calls == nth)
                    std::rethrow_exception(exception);
            };
            this->drop();
            this->control.addObserver(&this->a);
            this->control.addObserver(&this->b);
            this->offer();
            this->whenAdded = fail;
            EXPECT_EQ(thrownBy([&] { this->control.onControlsAvailable(); }), exception);
            this->whenAdded = nullptr;
            this->control.onControlsAvailable();
            EXPECT_EQ(this->registered()->count(), 2U);
            EXPECT_EQ(this->notify(), "ab");

            calls = 0;
            this->whenRemoving = fail;
            EXPECT_EQ(thrownBy([&] { this->control.onControlsAboutToBeReleased(); }), exception);
            EXPECT_EQ(this->registered()->count(), static_cast<std::size_t>(3 - nth));
            this->whenRemoving = nullptr;
            this->control.onControlsAboutToBeReleased();
            EXPECT_EQ(this->registered()->count(), 0U);
            this->control.removeObserver(&this->a);
            this->control.removeObserver(&this->b);
        }
    }
}

TYPED_TEST(WriteObservers, DestructionCallsNeitherTheSdkNorTheDevice)
{
    this->offer();
    std::optional<typename TypeParam::Adapter> other;
    other.emplace(this->handle());
    other->addObserver(&this->a);
    int removals = 0;
    this->whenRemoved = [&](auto* /*observer*/) { ++removals; };
    other.reset();
    EXPECT_EQ(removals, 0);

    other.emplace(this->handle());
    this->drop();
    const int before = this->asked();
    other.reset();
    EXPECT_EQ(this->asked(), before);
}

TYPED_TEST(WriteObservers, HaveTheirNotificationsInAFixedOrder)
{
    const auto check = []<class Observer>(std::type_identity<Observer>) {
        EXPECT_EQ(slotOf(&Observer::onWriteStarted), 0);
        EXPECT_EQ(slotOf(&Observer::onWriteProgressChanged), 1);
        EXPECT_EQ(slotOf(&Observer::onWriteFinished), 2);
        EXPECT_EQ(slotOf(&Observer::onError), 3);
    };
    check(std::type_identity<typename TypeParam::Sdk::Observer>{});
    check(std::type_identity<typename TypeParam::Adapter::Observer>{});
    EXPECT_EQ(slotOf(&TypeParam::Sdk::addObserver), 0);
    EXPECT_EQ(slotOf(&TypeParam::Sdk::removeObserver), 1);
    EXPECT_EQ(slotOf(&TypeParam::Sdk::frequencyPlan), 2);
    EXPECT_EQ(slotOf(&TypeParam::Sdk::saveCalibrationData), 3);
}

/// A control of the SDK whose observers are counted when they are made.
struct CountingSdk {
    enum class Error { };

    struct Observer {
        Observer() { ++made; }
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;
        virtual void onWriteStarted() = 0;
        virtual void onWriteProgressChanged(unsigned int progress) = 0;
        virtual void onWriteFinished() = 0;
        virtual void onError(Error error) = 0;

        static inline int made = 0;
    };

    void addObserver(Observer* /*observer*/) { }
    void removeObserver(Observer* /*observer*/) { }
};

TEST(WriteObserversEntries, AnObserverThatIsThereGetsNoOtherSdkObserver)
{
    const auto control = handleTo<CountingSdk>(std::make_shared<CountingSdk>());
    devices::service::WriteObservers<CountingSdk, Power::Adapter> observers;
    ProgressListener<Power::Adapter> a;
    ProgressListener<Power::Adapter> b;
    CountingSdk::Observer::made = 0;
    for (auto* const observer : {&a, &a, &b, &a, &b})
        observers.add(control, observer);
    EXPECT_EQ(CountingSdk::Observer::made, 2);

    observers.remove(control, &a);
    observers.add(control, &a);
    EXPECT_EQ(CountingSdk::Observer::made, 3);
}

} // namespace
} // namespace tarn::tests::writeobservers
