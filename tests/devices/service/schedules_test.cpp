// The adapters in any order of what several threads and the device do. At every point a seed decides who goes on:
// see support/schedule.h.

#include "tuningcontrols.h"

#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkpotentiometerscontrol.h>
#include <devices/service/sdkusbidcontrol.h>

#include <support/contractbench.h>
#include <support/mockcalibrationcontroller.h>
#include <support/mockfilememorycontrol.h>
#include <support/mockloleakagecontrol.h>
#include <support/mockmemoryusbidcontrol.h>
#include <support/mockpotentiometerscontrol.h>
#include <support/mutexprobe.h>
#include <support/schedule.h>

#include <gmock/gmock.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace tarn::tests::schedules {
namespace {

/// Who came to his points in which order.
std::string orderOf(std::uint32_t seed)
{
    std::string order;
    Schedule schedule{seed};
    for (const char name : {'a', 'b', 'c'})
        schedule.thread([&order, name] {
            for (int i = 0; i != 4; ++i) {
                order += name;
                Schedule::point("");
            }
        });
    schedule.run();
    return order;
}

TEST(Schedules, AreTheSameForTheSameSeedAndOthersForOthers)
{
    std::set<std::string> orders;
    for (std::uint32_t seed = 0; seed != 100; ++seed) {
        const auto order = orderOf(seed);
        EXPECT_EQ(orderOf(seed), order);
        orders.insert(order);
    }
    EXPECT_GT(orders.size(), 90U);
}

/// What the operation in which a thread is has done so far.
struct Done {
    bool nests = false; ///< does another one inside of its SDK call
    int asked = 0;
    int called = 0;
    std::weak_ptr<void> answer = {}; ///< of the device
    std::weak_ptr<void> control = {}; ///< that was called
};
thread_local Done done;

/// Requests that the device has still to complete, and their controls.
struct Request {
    std::function<void()> complete;
    std::weak_ptr<void> control;
};
using Pending = std::deque<Request>;

/// A request, `call`, that ends on the device's thread. `whenCalled` gives a mock what it does when it is asked for it.
template <class Adapter, class Mock, class Call, class WhenCalled>
Operation<Adapter, Mock> endingLater(const char* name, Pending& pending, Call call, WhenCalled whenCalled)
{
    return {name, [call](Adapter& adapter) { return call(adapter) ? Outcome::Answered : Outcome::Unavailable; },
            [&pending, whenCalled](Mock& mock, const std::function<void()>& inside) {
                whenCalled(mock, [&pending, inside](const auto&... arguments) {
                    const sdk::Completion<> completion = std::get<sizeof...(arguments) - 1>(std::tie(arguments...));
                    inside();
                    pending.push_back({[completion] { completion({}); }, done.control});
                    inside();
                });
            }};
}

/// Getters and setters of one adapter.
template <class Tuning>
struct Gets : Tuning {
    using Call = Operation<typename Tuning::Adapter, typename Tuning::Mock>;

    static std::vector<Call> operations(Pending& /*pending*/)
    {
        std::vector<Call> result;
        for (auto& entry : Tuning::operations().entries)
            result.push_back(entry.operation);
        return result;
    }
};

struct Leakage {
    using Sdk = sdk::service::ILoLeakageControl;
    using Adapter = devices::service::SdkLoLeakageControl;
    using Mock = testing::NiceMock<MockLoLeakageControl>;

    static std::vector<Operation<Adapter, Mock>> operations(Pending& /*pending*/)
    {
        return {{"isEnabled",
                 [](Adapter& adapter) { return adapter.isEnabled() ? Outcome::Answered : Outcome::Unavailable; },
                 [](Mock& mock, std::function<void()> inside) {
                     ON_CALL(mock, isEnabled).WillByDefault([inside = std::move(inside)] {
                         inside();
                         return true;
                     });
                 }}};
    }
};

/// Requests that end in the SDK call, and on the device's thread.
struct Files {
    using Sdk = sdk::service::IFileMemoryControl;
    using Adapter = devices::service::SdkFileMemoryControl;
    using Mock = testing::NiceMock<MockFileMemoryControl>;

    static std::vector<Operation<Adapter, Mock>> operations(Pending& pending)
    {
        return {{"fileList",
                 [](Adapter& adapter) { return adapter.fileList() ? Outcome::Answered : Outcome::Unavailable; },
                 [](Mock& mock, const std::function<void()>& inside) {
                     ON_CALL(mock, fileList).WillByDefault([inside](const auto& completion) {
                         inside();
                         completion({}, {});
                         inside();
                     });
                 }},
                endingLater<Adapter, Mock>(
                    "deleteFile", pending, [](Adapter& adapter) { return adapter.deleteFile({}); },
                    [](Mock& mock, const auto& action) { ON_CALL(mock, deleteFile).WillByDefault(action); })};
    }
};

struct Potentiometers {
    using Sdk = sdk::service::IPotentiometersControl;
    using Adapter = devices::service::SdkPotentiometersControl;
    using Mock = testing::NiceMock<MockPotentiometersControl>;

    static std::vector<Operation<Adapter, Mock>> operations(Pending& pending)
    {
        return {endingLater<Adapter, Mock>(
            "writeToRam", pending, [](Adapter& adapter) { return adapter.writeToRam(0, 1); },
            [](Mock& mock, const auto& action) { ON_CALL(mock, writeToRam).WillByDefault(action); })};
    }
};

struct UsbId {
    using Sdk = sdk::service::IMemoryUsbIdControl;
    using Adapter = devices::service::SdkMemoryUsbId;
    using Mock = testing::NiceMock<MockMemoryUsbIdControl>;

    static std::vector<Operation<Adapter, Mock>> operations(Pending& pending)
    {
        return {endingLater<Adapter, Mock>(
            "writeUsbId", pending, [](Adapter& adapter) { return adapter.writeUsbId({}); },
            [](Mock& mock, const auto& action) { ON_CALL(mock, writeUsbId).WillByDefault(action); })};
    }
};

/// Hands the control itself out, which the caller then uses.
struct Controller {
    using Sdk = sdk::service::calibrations::ICalibrationController;
    using Adapter = devices::service::SdkCalibrationControlHandle;
    using Mock = testing::NiceMock<MockCalibrationController>;
    static constexpr auto key = Sdk::firstKey;

    static std::vector<Operation<Adapter, Mock>> operations(Pending& /*pending*/)
    {
        return {{"lock",
                 [](Adapter& adapter) {
                     const auto controller = adapter.lock();
                     if (!controller)
                         return Outcome::Unavailable;
                     EXPECT_TRUE(controller->units().empty());
                     return Outcome::Answered;
                 },
                 [](Mock& mock, std::function<void()> inside) {
                     ON_CALL(mock, units).WillByDefault([inside = std::move(inside)] {
                         inside();
                         return std::vector<sdk::service::calibrations::ICalibrationUnit*>{};
                     });
                 }}};
    }
};

bool isSame(const std::weak_ptr<void>& one, const std::weak_ptr<void>& other)
{
    return !one.owner_before(other) && !other.owner_before(one);
}

/// One operation of an adapter on several threads, while the device drops and offers.
template <class Row>
class Calls {
public:
    explicit Calls(std::uint32_t seed)
        : m_seed{seed}
    {
        if (m_seed % 2 == 0)
            offer();
        m_adapter.emplace(devices::ReacquiringControl<Sdk>{[this] { return ask(); }});
        if (m_seed % 2 != 0)
            offer();
    }

    void run()
    {
        const auto callTwice = [this](bool nests) {
            return [this, nests] {
                operate(nests);
                Schedule::point("between two calls");
                operate(false);
            };
        };
        run({callTwice(m_seed % 3 == 0), callTwice(false)}, 2);
        for (const auto& life : m_lives)
            EXPECT_EQ(life.expired(), !isSame(life, m_lives.back())) << "a dropped control is left over";
        run({[this] { callLater(); }}, 0);
    }

private:
    using Sdk = typename Row::Sdk;
    using Mock = typename Row::Mock;

    void run(const std::vector<std::function<void()>>& callers, int cycles)
    {
        Schedule schedule{m_seed};
        m_callers = callers.size();
        for (const auto& caller : callers)
            schedule.thread([this, caller] {
                caller();
                --m_callers;
            });
        schedule.thread([this, cycles] { serve(cycles); });
        schedule.run();
    }

    void callLater()
    {
        for (const int questions : {1, 0}) {
            const auto what = operate(false);
            EXPECT_LE(what.asked, questions);
            EXPECT_TRUE(isSame(what.control, m_lives.back())) << "a later call does not see the new control";
        }
    }

    Done operate(bool nests)
    {
        auto outer = std::exchange(done, Done{.nests = nests});
        const auto outcome = m_operation.run(*m_adapter);
        auto what = std::exchange(done, std::move(outer));
        EXPECT_LE(what.asked, 1);
        EXPECT_NE(outcome, what.called ? Outcome::Unavailable : Outcome::Answered);
        if (what.called == 0) {
            EXPECT_TRUE(what.asked == 1 && what.answer.expired()) << "a control that was there was not called";
        } else if (what.asked == 1) {
            EXPECT_TRUE(isSame(what.control, what.answer)) << "another control was called than was asked for";
        }
        return what;
    }

    /// The device's thread.
    void serve(int cycles)
    {
        for (int cycle = 0; cycle != cycles; ++cycle) {
            bringCompletions();
            m_device.drop(keyOf<Row>);
            bringCompletions();
            offer();
        }
        while (m_callers != 0)
            bringCompletions();
    }

    void bringCompletions()
    {
        Schedule::point("device");
        while (!m_pending.empty()) {
            const auto request = std::move(m_pending.front());
            m_pending.pop_front();
            EXPECT_FALSE(request.control.expired()) << "a control is destroyed before its request has ended";
            request.complete();
            Schedule::point("completed");
        }
    }

    void offer()
    {
        const auto mock = std::make_shared<Mock>();
        m_lives.emplace_back(mock);
        m_operation.stub(*mock, [this, life = m_lives.back()] { inside(life); });
        m_device.offer<Sdk>(keyOf<Row>, mock);
    }

    /// The SDK call.
    void inside(const std::weak_ptr<void>& life)
    {
        done.called = 1;
        done.control = life;
        EXPECT_EQ(MutexProbe::held(), 0);
        Schedule::point("called");
        EXPECT_FALSE(life.expired()) << "a control is destroyed while it is called";
        if (std::exchange(done.nests, false))
            operate(false);
    }

    sdk::ControlHandle<Sdk> ask()
    {
        ++done.asked;
        EXPECT_EQ(MutexProbe::held(), 0);
        Schedule::point("asked");
        auto owner = m_device.control<Sdk>(keyOf<Row>);
        Schedule::point("about to answer");
        const sdk::ControlHandle<Sdk> handle{owner};
        done.answer = owner;
        owner.reset();
        Schedule::point("answered");
        return handle;
    }

    const std::uint32_t m_seed;
    Pending m_pending;
    const std::vector<Operation<typename Row::Adapter, Mock>> m_operations = Row::operations(m_pending);
    const Operation<typename Row::Adapter, Mock>& m_operation = m_operations[m_seed % m_operations.size()];
    FakeVna m_device;
    std::vector<std::weak_ptr<void>> m_lives; ///< of the controls that were offered
    std::size_t m_callers = 0;
    std::optional<typename Row::Adapter> m_adapter;
};

template <class Row>
class CallSchedules : public testing::Test { };

using CallRows
    = testing::Types<Leakage, Files, Gets<QuillPower>, Gets<QuillSynthesis>, Gets<DornPower>, Gets<DornSynthesis>,
                     Gets<SablePower>, Gets<SableSynthesis>, Gets<VellSynthesis>, Potentiometers, UsbId, Controller>;
TYPED_TEST_SUITE(CallSchedules, CallRows);

TYPED_TEST(CallSchedules, KeepTheRulesOfTheHandle)
{
    forEachSeed(600, [](std::uint32_t seed) { Calls<TypeParam>{seed}.run(); });
}

} // namespace
} // namespace tarn::tests::schedules
