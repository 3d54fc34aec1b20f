#include <console/devicecall.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace tarn::console {

namespace {

using namespace std::chrono_literals;

/// Calls that may take 100 ms, and about two seconds more until that is noticed.
class DeviceCallTest : public testing::Test {
protected:
    void SetUp() override
    {
        limitDeviceCalls(100ms, [overdue = overdue] { ++*overdue; }); // may come when the test has ended
    }

    void TearDown() override
    {
        limitDeviceCalls(24h, [] { });
    }

    [[nodiscard]] bool isOverdueWithin(std::chrono::milliseconds time) const
    {
        const auto end = std::chrono::steady_clock::now() + time;
        while (*overdue == 0 && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(5ms);
        return *overdue > 0;
    }

    const std::shared_ptr<std::atomic<int>> overdue = std::make_shared<std::atomic<int>>(0);
};

/// Stops the program, as Ctrl-Z does, for longer than a call may take.
void beStopped()
{
    const auto child = ::fork();
    if (child == 0) {
        ::kill(::getppid(), SIGSTOP);
        ::sleep(4);
        ::kill(::getppid(), SIGCONT);
        ::_exit(0);
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
}

} // namespace

TEST_F(DeviceCallTest, IsOverdueWhenItDoesNotEnd)
{
    const DeviceCall call;
    EXPECT_FALSE(isOverdueWithin(200ms));
    EXPECT_TRUE(isOverdueWithin(30s));
}

TEST_F(DeviceCallTest, IsNotOverdueForTheTimeThatTheProgramWasStopped)
{
    const DeviceCall call;
    beStopped();
    EXPECT_FALSE(isOverdueWithin(200ms));
    EXPECT_TRUE(isOverdueWithin(30s));
}

TEST_F(DeviceCallTest, IsOverdueOnAnyThread)
{
    std::atomic<bool> isOver{false};
    const std::jthread other{[&isOver] {
        const DeviceCall call;
        isOver.wait(false);
    }};
    {
        const DeviceCall shortOne;
    }
    EXPECT_TRUE(isOverdueWithin(30s));
    isOver = true;
    isOver.notify_all();
}

TEST_F(DeviceCallTest, IsNotOverdueOnceItHasEnded)
{
    std::optional<DeviceCall> call{std::in_place};
    {
        const DeviceCall inner;
    }
    call.reset();
    EXPECT_FALSE(isOverdueWithin(4s));
}

TEST_F(DeviceCallTest, GetsOnWithEachInnerOne)
{
    const DeviceCall call;
    for (int i = 0; i < 20; ++i) {
        std::this_thread::sleep_for(150ms);
        const DeviceCall inner;
    }
    EXPECT_EQ(*overdue, 0);
    EXPECT_TRUE(isOverdueWithin(30s));
}

TEST_F(DeviceCallTest, DoesNotGetOnWithThoseOfAnotherThread)
{
    const DeviceCall call;
    const std::jthread other{[](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const DeviceCall inner;
            std::this_thread::sleep_for(5ms);
        }
    }};
    EXPECT_TRUE(isOverdueWithin(30s));
}

TEST_F(DeviceCallTest, GetsOnWithTheProgressOfTheInstrument)
{
    const DeviceCall call;
    for (int i = 0; i < 20; ++i) {
        std::this_thread::sleep_for(150ms);
        DeviceCall::onProgress();
    }
    EXPECT_EQ(*overdue, 0);
    EXPECT_TRUE(isOverdueWithin(30s));
}

} // namespace tarn::console
