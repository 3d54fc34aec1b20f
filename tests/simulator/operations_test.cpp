#include <simulator/operations.h>

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;

/// A clock that goes on by as much as anybody waits, and at no other time.
class WaitingClock final : public Clock {
public:
    [[nodiscard]] Duration now() const override { return m_now; }
    void wait(Waiter& /*waiter*/, std::optional<Duration> until) override { m_now = until.value_or(m_now); }
    void attach(const std::shared_ptr<Waiter>& /*waiter*/) override { }

private:
    Duration m_now{};
};

class OperationsTest : public testing::TestWithParam<CompletionMode> {
protected:
    Operations make(const FaultPlan& plan)
    {
        faults.setPlan(plan);
        Settings settings;
        settings.completion = GetParam();
        return {callersClock,
                executor,
                faults,
                settings,
                [this](Duration /*away*/) {
                    ++drops;
                    dropper = std::this_thread::get_id();
                },
                [] {}};
    }

    static void call(Operations& operations)
    {
        operations.call([] { });
    }

    /// Whether it was completed.
    static bool request(Operations& operations)
    {
        std::promise<void> done;
        operations.request([&](std::error_code) { done.set_value(); }, [] { return std::error_code{}; });
        done.get_future().get();
        return true;
    }

    std::shared_ptr<WaitingClock> callersClock = std::make_shared<WaitingClock>();
    Faults faults{{}, 0};
    Executor executor{std::make_shared<ManualClock>()};
    int drops = 0;
    std::thread::id dropper;
};

INSTANTIATE_TEST_SUITE_P(Modes, OperationsTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(OperationsTest, DropOnTheInstrumentsThread)
{
    FaultPlan plan;
    plan.dropEvery = 1;
    auto operations = make(plan);
    std::thread::id instrument;
    executor.run([&] { instrument = std::this_thread::get_id(); });
    EXPECT_TRUE(request(operations));
    EXPECT_EQ(drops, 1);
    EXPECT_EQ(dropper, instrument);
}

TEST_P(OperationsTest, DropNothingOnceTheDeviceIsGone)
{
    FaultPlan plan;
    plan.dropEvery = 1;
    auto operations = make(plan);
    executor.stop();
    EXPECT_TRUE(request(operations));
    call(operations);
    EXPECT_EQ(drops, 0);
}

TEST_P(OperationsTest, BlockTheCallerOfAPlainOperationForItsDelay)
{
    FaultPlan plan;
    plan.delayEvery = 2;
    plan.delay = 3s;
    auto operations = make(plan);
    call(operations);
    EXPECT_EQ(callersClock->now(), 0s);
    call(operations);
    EXPECT_EQ(callersClock->now(), 3s);
}

} // namespace
} // namespace tarn::simulator
