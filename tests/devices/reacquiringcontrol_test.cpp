#include <devices/reacquiringcontrol.h>

#include <support/countingallocator.h>
#include <support/exceptions.h>
#include <support/mutexprobe.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <system_error>
#include <type_traits>
#include <utility>

namespace tarn::tests {
namespace {

using Control = int;
using Handle = sdk::ControlHandle<Control>;
using devices::LockedControl;
using Reacquiring = devices::ReacquiringControl<Control>;

static_assert(std::is_move_constructible_v<Reacquiring>);
static_assert(!std::is_copy_constructible_v<Reacquiring>);
static_assert(!std::is_copy_assignable_v<Reacquiring> && !std::is_move_assignable_v<Reacquiring>);
static_assert(std::is_same_v<decltype(std::declval<const Reacquiring&>().lock()), LockedControl<Control>>);
static_assert(std::is_same_v<Reacquiring::Reacquire, std::function<Handle()>>);
static_assert(!std::is_convertible_v<LockedControl<Control>, bool>, "only where a condition is asked for");

/// What a reacquire function of these tests answers, and how often it was called.
class ReacquiringControlTest : public testing::Test {
protected:
    Reacquiring::Reacquire reacquire()
    {
        return [this] {
            ++calls;
            return Handle{offered};
        };
    }

    std::shared_ptr<Control> offered = std::make_shared<Control>(1);
    int calls = 0;
};

TEST(LockedControl, IsTrueExactlyWhenItPointsAtAControl)
{
    const auto owner = std::make_shared<Control>(5);
    EXPECT_FALSE(LockedControl<Control>{});
    EXPECT_EQ(LockedControl<Control>{}.owner, nullptr);
    EXPECT_EQ(LockedControl<Control>{}.control, nullptr);
    EXPECT_FALSE((LockedControl<Control>{owner, nullptr}));
    const LockedControl<Control> locked{owner, owner.get()};
    EXPECT_TRUE(locked);
    EXPECT_EQ(locked.operator->(), owner.get());
    EXPECT_EQ(*locked, 5);
}

TEST_F(ReacquiringControlTest, CallsTheReacquireFunctionOnceWhenItIsBuilt)
{
    const Reacquiring control{reacquire()};
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(offered.use_count(), 1) << "it owns the control";
}

TEST_F(ReacquiringControlTest, NeverAsksAgainWhileTheHandleStaysLive)
{
    const Reacquiring control{reacquire()};
    for (int round = 0; round != 5; ++round) {
        const auto locked = control.lock();
        EXPECT_EQ(locked.control, offered.get());
        EXPECT_EQ(locked.owner, offered);
    }
    EXPECT_EQ(calls, 1);
}

TEST_F(ReacquiringControlTest, AsksTheDeviceExactlyOnceAfterADrop)
{
    const Reacquiring control{reacquire()};
    offered = std::make_shared<Control>(2);
    EXPECT_EQ(*control.lock(), 2);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(*control.lock(), 2);
    EXPECT_EQ(calls, 2);
}

TEST_F(ReacquiringControlTest, DoesNotRememberAFailure)
{
    offered.reset();
    const Reacquiring control{reacquire()};
    for (int call = 2; call != 5; ++call) {
        const auto locked = control.lock();
        EXPECT_FALSE(locked);
        EXPECT_EQ(locked.owner, nullptr);
        EXPECT_EQ(calls, call) << "exactly one question for each lock";
    }
    offered = std::make_shared<Control>(3);
    EXPECT_EQ(*control.lock(), 3);
}

TEST_F(ReacquiringControlTest, IsEmptyForAHandleThatIsExpiredAlready)
{
    const Reacquiring control{[this] {
        ++calls;
        return Handle{std::make_shared<Control>(1)};
    }};
    EXPECT_FALSE(control.lock());
    EXPECT_FALSE(control.lock());
    EXPECT_EQ(calls, 3);
}

TEST_F(ReacquiringControlTest, IsEmptyForANullPointerWithALiveOwnerAndGivesTheOwnerBack)
{
    const auto owner = std::make_shared<Control>(1);
    offered = std::shared_ptr<Control>{owner, nullptr};
    const Reacquiring control{reacquire()};
    const auto before = owner.use_count();
    for (int call = 2; call != 4; ++call) {
        const auto locked = control.lock();
        EXPECT_FALSE(locked);
        EXPECT_EQ(locked.owner, nullptr);
        EXPECT_EQ(owner.use_count(), before);
        EXPECT_EQ(calls, call) << "a handle that points at nothing is asked for again";
    }
    offered = owner;
    EXPECT_EQ(control.lock().control, owner.get());
}

TEST_F(ReacquiringControlTest, IsEmptyAndNeverThrowsWithoutAReacquireFunction)
{
    const Reacquiring control{Reacquiring::Reacquire{}};
    EXPECT_NO_THROW(EXPECT_FALSE(control.lock()));
    EXPECT_NO_THROW(EXPECT_FALSE(control.lock()));
}

TEST_F(ReacquiringControlTest, KeepsAStrongHandleUsableAfterTheDrop)
{
    const Reacquiring control{reacquire()};
    {
        const auto locked = control.lock();
        const std::weak_ptr<Control> life{offered};
        offered.reset();
        EXPECT_EQ(*locked, 1);
        EXPECT_EQ(*control.lock(), 1) << "it can be promoted as long as somebody owns it";
        EXPECT_EQ(calls, 1);
        EXPECT_FALSE(life.expired());
    }
    EXPECT_FALSE(control.lock());
    EXPECT_EQ(calls, 2);
}

TEST_F(ReacquiringControlTest, KeepsTheCachedHandleWhenItIsMoved)
{
    Reacquiring source{reacquire()};
    const Reacquiring target{std::move(source)};
    EXPECT_EQ(*target.lock(), 1);
    EXPECT_EQ(calls, 1);
    offered = std::make_shared<Control>(2);
    EXPECT_EQ(*target.lock(), 2) << "it took over the function too";
}

TEST_F(ReacquiringControlTest, LeavesTheMovedFromObjectItsHandleButNoWayToTheDevice)
{
    Reacquiring source{reacquire()};
    const Reacquiring target{std::move(source)};
    EXPECT_EQ(*source.lock(), 1); // NOLINT(bugprone-use-after-move)
    offered = std::make_shared<Control>(2);
    EXPECT_FALSE(source.lock());
    EXPECT_EQ(calls, 1);
}

TEST_F(ReacquiringControlTest, PassesAnExceptionOfTheFunctionOnUnchangedWhenItIsBuilt)
{
    for (const auto& exception : anyExceptions())
        EXPECT_EQ(thrownBy([&] { const Reacquiring control{[&]() -> Handle { std::rethrow_exception(exception); }}; }),
                  exception);
}

TEST_F(ReacquiringControlTest, PassesAnExceptionOfTheFunctionOnUnchangedAndKeepsItsCache)
{
    for (const auto& exception : anyExceptions()) {
        int records = 0;
        auto old = countedControl(records);
        bool fails = false;
        const Reacquiring control{[&]() -> Handle {
            if (fails)
                std::rethrow_exception(exception);
            return Handle{old};
        }};
        old.reset();
        ASSERT_EQ(records, 1) << "the cached handle holds on to the ownership record";
        fails = true;
        EXPECT_EQ(thrownBy([&] { std::ignore = control.lock(); }), exception);
        EXPECT_EQ(records, 1);

        fails = false;
        EXPECT_FALSE(control.lock());
        EXPECT_EQ(records, 0) << "an empty handle replaces the cached one too";
    }
}

TEST_F(ReacquiringControlTest, LocksOnceOnTheFastPathAndTwiceWhenItAsks)
{
    const Reacquiring control{reacquire()};
    const int start = MutexProbe::locks();
    std::ignore = control.lock();
    const int fast = MutexProbe::locks();
    offered = std::make_shared<Control>(2);
    std::ignore = control.lock();
    const int asked = MutexProbe::locks();
    EXPECT_EQ(fast - start, 1);
    EXPECT_EQ(asked - fast, 2);
}

TEST_F(ReacquiringControlTest, LocksTheSourceOnceWhenItIsMovedAndNothingWhenItIsBuiltOrDestroyed)
{
    const int start = MutexProbe::locks();
    auto source = std::make_unique<Reacquiring>(reacquire());
    const int built = MutexProbe::locks();
    auto target = std::make_unique<Reacquiring>(std::move(*source));
    const int moved = MutexProbe::locks();
    target.reset();
    source.reset();
    const int destroyed = MutexProbe::locks();
    EXPECT_EQ(built - start, 0);
    EXPECT_EQ(moved - built, 1);
    EXPECT_EQ(destroyed - moved, 0);
}

TEST_F(ReacquiringControlTest, ReportsAMutexThatCannotBeLockedAsASystemError)
{
    Reacquiring control{reacquire()};
    MutexProbe::failAfter(0);
    EXPECT_THROW(std::ignore = control.lock(), std::system_error);
    MutexProbe::failAfter(0);
    EXPECT_THROW(const Reacquiring target{std::move(control)}, std::system_error);
    EXPECT_EQ(calls, 1);
}

TEST_F(ReacquiringControlTest, KeepsItsCacheWhenTheFreshHandleCannotBeStored)
{
    const Reacquiring control{reacquire()};
    offered = std::make_shared<Control>(2);
    MutexProbe::failAfter(1);
    EXPECT_THROW(std::ignore = control.lock(), std::system_error);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(offered.use_count(), 1) << "the strong handle was kept";
    EXPECT_EQ(*control.lock(), 2);
    EXPECT_EQ(calls, 3) << "the handle that could not be stored was asked for again";
}

} // namespace
} // namespace tarn::tests
