// Devices that do not come back from a call, and checks that are ended early.

#include <conformance/fakes.h>

#include <latch>
#include <stdexcept>
#include <stop_token>

namespace tarn::tests {

using conformance::Verdict;
using testing::HasSubstr;

/// Does not come back from a call that is to hang before it is let go.
class StuckDevice : public testing::Test {
protected:
    ~StuckDevice() override
    {
        letGo.count_down();
        while (!device.expired()) // closed by the thread that was stuck
            std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }

    class LoLeakage final : public FakeLoLeakage {
    public:
        explicit LoLeakage(StuckDevice& test)
            : m_test{test}
        {
        }

        bool isEnabled() override
        {
            ++m_test.asked;
            if (m_test.asked == m_test.hangsAt)
                m_test.letGo.wait();
            return m_test.enabled;
        }
        void setEnabled(bool value) override { m_test.enabled = value; }

    private:
        StuckDevice& m_test;
    };

    conformance::Outcome check(const char* name, const conformance::Options& options = quick())
    {
        auto made = std::make_shared<FakeVna>();
        made->offer<sdk::service::ILoLeakageControl>(LoLeakage::key, std::make_shared<LoLeakage>(*this));
        device = made;
        return conformance::check(guarantee(name), std::move(made), options);
    }

    std::latch letGo{1};
    std::weak_ptr<sdk::IVna> device;
    std::atomic<bool> enabled{false};
    std::atomic<int> asked{0};
    int hangsAt = 1;
};

TEST_F(StuckDevice, IsGivenUpAfterTheLimit)
{
    const auto since = std::chrono::steady_clock::now();
    const auto outcome = check("slots");
    EXPECT_LT(std::chrono::steady_clock::now() - since, std::chrono::seconds{20});
    EXPECT_TRUE(outcome.isStuck);
    EXPECT_EQ(outcome.verdict, Verdict::Broken);
    EXPECT_EQ(textOf(outcome), "lo-leakage isEnabled has not returned within 400 ms\n");
}

TEST_F(StuckDevice, IsPutBackByAnotherThread)
{
    hangsAt = 2; // once it was switched on
    const auto outcome = check("values-survive");
    EXPECT_TRUE(outcome.isStuck);
    EXPECT_FALSE(enabled);
    EXPECT_GT(asked, 2); // by the other thread
}

/// Has its check ended while it has another value.
class Interrupting final : public FakeVellSynthesis {
public:
    void setSelectedIf(int index) override
    {
        ++changes;
        FakeVellSynthesis::setSelectedIf(index);
        stop.request_stop();
    }

    std::stop_source stop;
    int changes = 0;
};

TEST(InterruptedCheck, PutsBackWhatItHasChanged)
{
    const auto control = std::make_shared<Interrupting>();
    auto device = std::make_shared<FakeVna>();
    device->offer<sdk::service::IVellSynthesisControl>(Interrupting::key, control);
    auto options = quick();
    options.stop = control->stop.get_token();
    const auto outcome = conformance::check(guarantee("values-survive"), std::move(device), options);
    EXPECT_EQ(control->selected, 0);
    EXPECT_EQ(control->changes, 2); // there and back
    EXPECT_EQ(outcome.reason, "it was interrupted");
    EXPECT_THAT(outcome.findings, testing::IsEmpty());
}

TEST(InterruptedCheck, CallsNothingMore)
{
    std::stop_source source;
    source.request_stop();
    auto options = quick();
    options.stop = source.get_token();
    const auto outcome = conformance::check(guarantee("slots"), simulated("")(), options);
    EXPECT_EQ(outcome.verdict, Verdict::NotChecked);
    EXPECT_EQ(outcome.reason, "it was interrupted");
    EXPECT_EQ(outcome.seen.calls, 1U); // the device is closed
}

/// Refuses the second change.
class RefusesOnce final : public FakeCorrections {
public:
    void setEnabled(sdk::CorrectionFlag changed, bool value) override
    {
        if (++m_changes == 2)
            throw std::runtime_error{"not now"};
        FakeCorrections::setEnabled(changed, value);
    }

private:
    std::atomic<int> m_changes{0};
};

TEST(ProvocationRefusedHalfway, IsPutBack)
{
    for (const auto* const name : {"registered-once", "silent-after-removal", "own-thread"}) {
        const auto control = std::make_shared<RefusesOnce>();
        auto device = std::make_shared<FakeVna>();
        device->offer<sdk::IFactoryCorrectionControl>(RefusesOnce::key, control);
        const auto outcome = conformance::check(guarantee(name), std::move(device), quick());
        EXPECT_FALSE(control->enabled) << name;
        EXPECT_NE(outcome.verdict, Verdict::Broken) << name << ": " << textOf(outcome);
    }
}

/// Waits in a removal for its own notification.
class WaitsForItself final : public FakeMemory {
public:
    explicit WaitsForItself(std::shared_ptr<std::latch> end)
        : m_end{std::move(end)}
    {
    }

    void removeObserver(IObserver* observer) override
    {
        if (m_notifying == std::this_thread::get_id())
            m_end->wait();
        FakeMemory::removeObserver(observer);
    }

    void read(sdk::Completion<std::vector<std::byte>> completion) override
    {
        m_notifying = std::this_thread::get_id();
        notify(&IObserver::onReadProgressChanged, 0U, 1U);
        m_notifying = std::thread::id{};
        completion({}, {});
    }

private:
    const std::shared_ptr<std::latch> m_end;
    std::atomic<std::thread::id> m_notifying;
};

TEST(RemovalFromInside, ThatWaitsForItselfIsFound)
{
    const auto end = std::make_shared<std::latch>(1);
    auto device = std::make_shared<FakeVna>();
    const std::weak_ptr<sdk::IVna> left = device;
    device->offer<sdk::service::IMemoryOperationsControl>(WaitsForItself::key, std::make_shared<WaitsForItself>(end));
    const auto outcome = conformance::check(guarantee("silent-after-removal"), std::move(device), quick());
    EXPECT_TRUE(outcome.isStuck);
    EXPECT_THAT(textOf(outcome), HasSubstr("Observer during read removeObserver has not returned"));
    end->count_down();
    while (!left.expired())
        std::this_thread::sleep_for(std::chrono::milliseconds{1});
}

} // namespace tarn::tests
