#include <devices/reacquiringcontrol.h>

#include <support/watchdog.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <latch>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace tarn::tests {
namespace {

using Control = int;
using Handle = sdk::ControlHandle<Control>;
using Reacquiring = devices::ReacquiringControl<Control>;

TEST(ReacquiringControlThreads, BothAskTheDeviceWhenTheyFindTheHandleExpiredTogether)
{
    const std::array controls{std::make_shared<Control>(0), std::make_shared<Control>(1)};
    std::atomic<int> calls{0};
    std::barrier insideTheDevice{2}; // nobody gets past it alone
    const Reacquiring control{[&]() -> Handle {
        const int call = calls++;
        if (call == 0)
            return {};
        insideTheDevice.arrive_and_wait();
        return Handle{controls.at(static_cast<std::size_t>(call) - 1)};
    }};

    std::array<std::shared_ptr<Control>, 2> results;
    {
        std::jthread one{[&] { results[0] = control.lock().owner; }};
        std::jthread other{[&] { results[1] = control.lock().owner; }};
    }
    EXPECT_EQ(calls, 3);
    ASSERT_TRUE(results[0] && results[1]);
    EXPECT_NE(results[0], results[1]) << "each returns its own result";
    const auto cached = control.lock().owner;
    EXPECT_TRUE(cached == results[0] || cached == results[1]);
    EXPECT_EQ(calls, 3);
}

TEST(ReacquiringControlThreads, TheLaterStoreWinsAndASlowDeviceHoldsUpNobodyElse)
{
    const auto slow = std::make_shared<Control>(1);
    const auto fast = std::make_shared<Control>(2);
    std::latch slowIsInside{1};
    std::latch slowMayLeave{1};
    std::atomic<int> calls{0};
    const Reacquiring control{[&]() -> Handle {
        switch (calls++) {
        case 0:
            return {};
        case 1:
            slowIsInside.count_down();
            slowMayLeave.wait();
            return Handle{slow};
        default:
            return Handle{fast};
        }
    }};

    std::jthread slowThread{[&] { EXPECT_EQ(control.lock().owner, slow); }};
    slowIsInside.wait();
    EXPECT_EQ(control.lock().owner, fast);
    EXPECT_EQ(control.lock().owner, fast) << "from the cache, while the other is still with the device";
    EXPECT_EQ(calls, 3);
    slowMayLeave.count_down();
    slowThread.join();
    EXPECT_EQ(control.lock().owner, slow);
    EXPECT_EQ(calls, 3);
}

TEST(ReacquiringControlThreads, AllGetAStrongHandleWhenTheDeviceYieldsTheControl)
{
    const auto offered = std::make_shared<Control>(7);
    std::atomic<bool> away{true};
    std::atomic<int> calls{0};
    const Reacquiring control{[&] {
        ++calls;
        return away ? Handle{} : Handle{offered};
    }};
    away = false;

    constexpr int threads = 4;
    std::barrier start{threads};
    std::atomic<int> strong{0};
    {
        std::vector<std::jthread> pool;
        for (int i = 0; i != threads; ++i)
            pool.emplace_back([&] {
                start.arrive_and_wait();
                if (const auto locked = control.lock(); locked && locked.owner == offered)
                    ++strong;
            });
    }
    EXPECT_EQ(strong, threads);
    EXPECT_LE(calls, 1 + threads);
    const int before = calls;
    EXPECT_EQ(control.lock().owner, offered) << "the cache holds the control";
    EXPECT_EQ(calls, before);
}

TEST(ReacquiringControlThreads, AHandleIsWholeWhileTheDeviceDropsAndOffersControls)
{
    const Watchdog watchdog;
    std::mutex mutex;
    std::shared_ptr<Control> offered = std::make_shared<Control>(7);
    const auto offer = [&](std::shared_ptr<Control> next) {
        const std::scoped_lock lock{mutex};
        offered.swap(next);
    };
    const Reacquiring control{[&] {
        const std::scoped_lock lock{mutex};
        return Handle{offered};
    }};
    std::atomic<bool> isOver{false};
    std::atomic<int> whole{0};
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> users;
        for (int i = 0; i != 2; ++i)
            users.emplace_back([&] {
                while (!isOver) {
                    if (const auto locked = control.lock())
                        ++(*locked == 7 ? whole : wrong);
                }
            });
        for (int round = 0; round < 1000 || whole + wrong < 1000; ++round) {
            offer(nullptr);
            offer(std::make_shared<Control>(7));
        }
        isOver = true;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(control.lock().owner, offered);
}

} // namespace
} // namespace tarn::tests
