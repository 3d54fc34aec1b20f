#include <guard/error.h>
#include <guard/guardfixture.h>

#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>
#include <simulator/simulatedvna.h>
#include <simulator/storage.h>
#include <simulator/usbidentity.h>
#include <support/success.h>
#include <support/watchdog.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

namespace tarn::guard {

namespace {

using namespace std::chrono_literals;
using sdk::service::IMemoryOperationsControl;
using sdk::service::IMemorySerialNumberControl;
using sdk::service::IMemoryUsbIdControl;
using sdk::service::IPotentiometersControl;
using simulator::CompletionMode;
using simulator::DeviceFault;
using simulator::FaultPlan;
using simulator::Misbehaviour;
using simulator::SimulatedVna;

using tests::success;

/// Keeps what a request ended with, however often it does.
class Ends {
public:
    void add(std::error_code code)
    {
        {
            const std::scoped_lock lock{m_mutex};
            m_codes.push_back(code);
        }
        m_ended.notify_all();
    }

    /// All ends, once there are as many; fewer if they do not come.
    [[nodiscard]] std::vector<std::error_code> await(std::size_t count = 1) const
    {
        std::unique_lock lock{m_mutex};
        m_ended.wait_for(lock, 20s, [&] { return m_codes.size() >= count; });
        return m_codes;
    }

    [[nodiscard]] std::vector<std::error_code> soFar() const
    {
        const std::scoped_lock lock{m_mutex};
        return m_codes;
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_ended;
    std::vector<std::error_code> m_codes;
};

/// What a request is completed by: a completion with or without a value.
struct End {
    void operator()(std::error_code code) const { ends->add(code); }
    void operator()(const auto& /*value*/, std::error_code code) const { ends->add(code); }

    std::shared_ptr<Ends> ends;
};

/// A kind of request that ends in a completion.
struct Operation {
    sdk::Key control;
    std::string_view name;
    std::function<void(sdk::IVna& device, const End& end)> make;
};

template <class Control, class Make>
Operation operation(std::string_view name, Make make)
{
    return {Control::key, name,
            [make](sdk::IVna& device, const End& end) { make(*device.control<Control>(Control::key), end); }};
}

std::vector<Operation> operations()
{
    using Memory = IMemoryOperationsControl;
    using Number = IMemorySerialNumberControl;
    using Potentiometers = IPotentiometersControl;
    const auto identity = simulator::UsbIdentity::supported().back().usbId;
    return {
        operation<FileMemory>("fileList", [](auto& files, auto end) { files.fileList(end); }),
        operation<FileMemory>("spaceInfo", [](auto& files, auto end) { files.spaceInfo(end); }),
        operation<FileMemory>("readFile", [](auto& files, auto end) { files.readFile({"f", 3}, end); }),
        operation<FileMemory>("writeFile", [](auto& files, auto end) { files.writeFile("g", {4, 5}, end); }),
        operation<FileMemory>("deleteFile", [](auto& files, auto end) { files.deleteFile({"f", 3}, end); }),
        operation<Memory>("read", [](auto& memory, auto end) { memory.read(end); }),
        operation<Memory>("write", [](auto& memory, auto end) { memory.write({std::byte{1}}, end); }),
        operation<Memory>("erase", [](auto& memory, auto end) { memory.erase(end); }),
        operation<Memory>("integrityCheck", [](auto& memory, auto end) { memory.integrityCheck(end); }),
        operation<Number>("serialNumber", [](auto& number, auto end) { number.serialNumber(end); }),
        operation<Number>("writeSerialNumber", [](auto& number, auto end) { number.writeSerialNumber(7, end); }),
        operation<IMemoryUsbIdControl>("writeUsbId",
                                       [identity](auto& usb, auto end) { usb.writeUsbId(identity, end); }),
        operation<Potentiometers>("readFromEeprom", [](auto& all, auto end) { all.readFromEeprom(0, end); }),
        operation<Potentiometers>("writeToRam", [](auto& all, auto end) { all.writeToRam(0, 1, end); }),
        operation<Potentiometers>("writeToEeprom", [](auto& all, auto end) { all.writeToEeprom(0, 1, end); }),
    };
}

/// A breach, and the completions of the request by then.
struct Heard {
    Breach breach;
    unsigned completions;

    bool operator==(const Heard&) const = default;
};

} // namespace

/// A simulated instrument behind a guard, switched on for requests and off again. Its time stands still.
class GuardedInstrument : public testing::TestWithParam<CompletionMode> {
protected:
    static constexpr std::chrono::milliseconds hasty{100}; ///< for what never comes
    static constexpr std::chrono::milliseconds impatient{1000}; ///< but with what returns at once
    static constexpr std::chrono::milliseconds patient = 1h;

    static FaultPlan planOf(Misbehaviour misbehaviour)
    {
        FaultPlan plan;
        plan.misbehaviour = misbehaviour;
        plan.delay = 1min;
        return plan;
    }

    void switchOn(const FaultPlan& plan, std::chrono::milliseconds limit)
    {
        simulator::Settings settings;
        settings.completion = GetParam();
        settings.memorySize = 4096;
        settings.speed = std::numeric_limits<double>::infinity();
        auto device = std::make_shared<SimulatedVna>(settings, clock, std::make_unique<simulator::NoStorage>());
        instrument = device.get();
        requests.clear();
        controls.clear();
        const auto prepared = std::make_shared<Ends>();
        device->control<FileMemory>(FileMemory::key)->writeFile("f", {1, 2, 3}, End{prepared});
        EXPECT_THAT(prepared->await(), testing::ElementsAre(success));
        device->faults().setPlan(plan);
        breaches = std::make_shared<BreachLog>();
        guardedForOthers = tarn::guard::guarded(device, {patient, breaches});
        guarded = tarn::guard::guarded(std::move(device), {limit, breaches});
        watchControls();
    }

    void request(const Operation& operation)
    {
        tests::nowTrying(std::string{operation.name});
        requests.push_back({operation, std::make_shared<Ends>()});
        operation.make(*guarded, End{requests.back().ends});
    }

    /// What the caller of the last request gets.
    [[nodiscard]] std::error_code outcome() const { return outcome(requests.back()); }

    std::error_code outcome(const Operation& operation)
    {
        request(operation);
        return outcome();
    }

    void expectTimeOuts()
    {
        for (const auto& operation : operations()) {
            request(operation);
            instrument->waitUntilIdle(); // one of them offers the controls anew
        }
        for (const auto& one : requests)
            EXPECT_EQ(outcome(one), Error::TimedOut) << one.operation.name;
    }

    /// Lets the time of a late completion come.
    void beLate() const
    {
        instrument->waitUntilIdle();
        clock->advance(1min);
        instrument->waitUntilIdle();
    }

    /// Afterwards each caller has got as many completions, the host has heard of exactly these breaches by each
    /// request, and all is gone.
    void switchOff(const std::vector<Heard>& expected, std::size_t completions = 1)
    {
        watchControls();
        guardedForOthers.reset();
        guarded.reset();
        if (hanging.valid())
            hanging.get();
        const auto reports = requests.size() * expected.size();
        EXPECT_EQ(breaches->await(reports).size(), reports);
        for (const auto& one : requests) {
            EXPECT_EQ(one.ends->soFar().size(), completions) << one.operation.name;
            EXPECT_TRUE(isLetGo(one.ends)) << one.operation.name;
            EXPECT_EQ(heardOf(one.operation), expected) << one.operation.name;
        }
        for (const auto& control : controls)
            EXPECT_TRUE(control.expired());
    }

    std::shared_ptr<simulator::ManualClock> clock = std::make_shared<simulator::ManualClock>();
    std::shared_ptr<BreachLog> breaches;
    std::shared_ptr<sdk::IVna> guarded;
    std::shared_ptr<sdk::IVna> guardedForOthers; ///< the same instrument
    SimulatedVna* instrument = nullptr;
    std::future<void> hanging;

    /// Whether the instrument has dropped its controls since it was switched on and offered others.
    [[nodiscard]] bool hasOtherControls() const
    {
        const auto now = guarded->control(requests.back().operation.control);
        return now && std::ranges::none_of(controls, [&](const auto& known) { return known.lock() == now; });
    }

private:
    struct Requested {
        Operation operation;
        std::shared_ptr<Ends> ends;
    };

    [[nodiscard]] static std::error_code outcome(const Requested& request)
    {
        const auto all = request.ends->await();
        return all.empty() ? make_error_code(std::errc::no_message) : all.front();
    }

    /// Whether nobody has the caller's completion any more. The guard's thread may be about to let go.
    [[nodiscard]] static bool isLetGo(const std::shared_ptr<Ends>& ends)
    {
        for (int i = 0; i < 20'000 && ends.use_count() != 1; ++i)
            std::this_thread::sleep_for(1ms);
        return ends.use_count() == 1;
    }

    [[nodiscard]] std::vector<Heard> heardOf(const Operation& operation) const
    {
        std::vector<Heard> heard;
        for (const auto& report : breaches->await(0)) {
            if (report.control == operation.control && report.operation == operation.name)
                heard.push_back({report.breach, report.completions});
        }
        return heard;
    }

    void watchControls()
    {
        for (const auto& operation : operations())
            controls.emplace_back(guarded->control(operation.control));
    }

    const tests::Watchdog watchdog;
    std::vector<Requested> requests; ///< since it was switched on
    std::vector<std::weak_ptr<void>> controls; ///< that were on offer since then
};

INSTANTIATE_TEST_SUITE_P(Modes, GuardedInstrument, testing::Values(CompletionMode::Thread, CompletionMode::Inline),
                         [](const auto& mode) { return mode.param == CompletionMode::Inline ? "Inline" : "Thread"; });

TEST_P(GuardedInstrument, ThatKeepsItsWordIsNotNoticed)
{
    for (const auto& operation : operations()) {
        switchOn({}, patient);
        EXPECT_EQ(outcome(operation), success) << operation.name;
        switchOff({});
    }
}

TEST_P(GuardedInstrument, MayEndARequestWithAnError)
{
    FaultPlan plan;
    plan.failEvery = 1;
    for (const auto& operation : operations()) {
        switchOn(plan, patient);
        EXPECT_EQ(outcome(operation), simulator::Error::Io) << operation.name;
        switchOff({});
    }
}

TEST_P(GuardedInstrument, MayDropItsControlsMeanwhile)
{
    FaultPlan plan;
    plan.dropEvery = 1;
    for (const auto& operation : operations()) {
        switchOn(plan, patient);
        EXPECT_EQ(outcome(operation), success) << operation.name;
        EXPECT_TRUE(hasOtherControls()) << operation.name;
        switchOff({});
    }
}

TEST_P(GuardedInstrument, ThatCompletesTwiceIsListenedToOnce)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::Twice), patient);
        EXPECT_EQ(outcome(operation), success) << operation.name;
        switchOff({{Breach::CompletedAgain, 2}});
    }
}

TEST_P(GuardedInstrument, ThatDropsACompletionMeansAnError)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::Drop), patient);
        EXPECT_EQ(outcome(operation), Error::Dropped) << operation.name;
        switchOff({{Breach::Dropped, 0}});
    }
}

TEST_P(GuardedInstrument, ThatDropsACompletionWithTheControlsMeansAnError)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::DropControls), patient);
        EXPECT_EQ(outcome(operation), Error::Dropped) << operation.name;
        EXPECT_TRUE(hasOtherControls()) << operation.name;
        switchOff({{Breach::Dropped, 0}});
    }
}

TEST_P(GuardedInstrument, ThatKeepsACompletionForEverMeansATimeOut)
{
    switchOn(planOf(Misbehaviour::Keep), impatient);
    expectTimeOuts();
    switchOff({{Breach::TimedOut, 0}});
}

TEST_P(GuardedInstrument, ThatIsDestroyedWithACompletionHasDroppedIt)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::Keep), patient);
        request(operation);
        switchOff({{Breach::Dropped, 0}});
        EXPECT_EQ(outcome(), Error::Dropped) << operation.name;
    }
}

TEST_P(GuardedInstrument, MayCompleteLateAfterTheTimeOut)
{
    switchOn(planOf(Misbehaviour::Late), impatient);
    expectTimeOuts();
    beLate();
    EXPECT_EQ(breaches->await(2 * operations().size()).size(), 2 * operations().size());
    switchOff({{Breach::TimedOut, 0}, {Breach::CompletedLate, 1}});
}

TEST_P(GuardedInstrument, IsNotLateWithinTheLimit)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::Late), patient);
        request(operation);
        beLate();
        EXPECT_EQ(outcome(), success) << operation.name;
        switchOff({});
    }
}

TEST_P(GuardedInstrument, MayCompleteInItsDestructorAfterTheTimeOut)
{
    switchOn(planOf(Misbehaviour::AtEnd), impatient);
    expectTimeOuts();
    switchOff({{Breach::TimedOut, 0}, {Breach::CompletedLate, 1}});
}

TEST_P(GuardedInstrument, MayCompleteInItsDestructorWithinTheLimit)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::AtEnd), patient);
        request(operation);
        switchOff({});
        EXPECT_EQ(outcome(), success) << operation.name;
    }
}

TEST_P(GuardedInstrument, ThatThrowsIsNotNoticed)
{
    FaultPlan plan;
    plan.throwEvery = 1;
    for (const auto& operation : operations()) {
        switchOn(plan, patient);
        EXPECT_THROW(request(operation), DeviceFault) << operation.name;
        switchOff({}, 0);
    }
}

TEST_P(GuardedInstrument, ThatThrowsIsNotListenedToAfterwards)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::ThrowLate), patient);
        EXPECT_THROW(request(operation), DeviceFault) << operation.name;
        beLate();
        EXPECT_EQ(breaches->breaches().size(), 1U) << operation.name;
        switchOff({{Breach::CompletedAndThrew, 1}}, 0);
    }
}

TEST_P(GuardedInstrument, ThatThrowsIsNotListenedToInItsDestructor)
{
    for (const auto& operation : operations()) {
        switchOn(planOf(Misbehaviour::ThrowLate), patient);
        EXPECT_THROW(request(operation), DeviceFault) << operation.name;
        switchOff({{Breach::CompletedAndThrew, 1}}, 0);
    }
}

TEST_P(GuardedInstrument, ThatDoesNotReturnAnswersOthers)
{
    FaultPlan plan;
    plan.hangEvery = 2;
    std::set<sdk::Key> tried;
    for (const auto& operation : operations()) {
        if (!tried.insert(operation.control).second)
            continue; // it takes its time
        switchOn(plan, hasty);
        const auto others = std::make_shared<Ends>();
        operation.make(*guardedForOthers, End{others});
        EXPECT_EQ(others->await().size(), 1U) << operation.name;
        hanging = std::async(std::launch::async, [&] { request(operation); });
        EXPECT_EQ(breaches->await(1).size(), 1U) << operation.name;
        operation.make(*guardedForOthers, End{others});
        EXPECT_THAT(others->await(2), testing::ElementsAre(success, success)) << operation.name;
        EXPECT_EQ(hanging.wait_for(0ms), std::future_status::timeout) << operation.name;
        EXPECT_EQ(outcome(), Error::TimedOut) << operation.name;
        switchOff({{Breach::NotReturned, 0}, {Breach::CompletedLate, 1}});
    }
}

TEST_P(GuardedInstrument, AnswersEachOfManyCallersOnce)
{
    struct Case {
        Misbehaviour misbehaviour;
        std::optional<Breach> breach;
    };
    constexpr std::size_t threads = 4;
    constexpr std::size_t each = 90;
    for (const auto& [misbehaviour, breach] :
         {Case{Misbehaviour::Twice, Breach::CompletedAgain}, Case{Misbehaviour::Drop, Breach::Dropped},
          Case{Misbehaviour::DropControls, Breach::Dropped}, Case{Misbehaviour::Keep, Breach::Dropped},
          Case{Misbehaviour::Late, std::nullopt}, Case{Misbehaviour::AtEnd, std::nullopt}}) {
        auto plan = planOf(misbehaviour);
        plan.misbehaveEvery = 3;
        switchOn(plan, patient);
        const auto control = guarded->control<FileMemory>(FileMemory::key);
        std::vector<std::shared_ptr<Ends>> all(threads * each);
        std::vector<std::jthread> callers;
        for (std::size_t thread = 0; thread < threads; ++thread) {
            callers.emplace_back([&, thread] {
                for (auto i = thread; i < all.size(); i += threads) {
                    all[i] = std::make_shared<Ends>();
                    control->spaceInfo(End{all[i]});
                }
            });
        }
        callers.clear();
        guardedForOthers.reset();
        guarded.reset();
        for (const auto& one : all)
            EXPECT_EQ(one->soFar().size(), 1U);
        const auto heard = breaches->breaches();
        EXPECT_EQ(heard.size(), breach ? all.size() / 3 : 0U);
        for (const auto one : heard)
            EXPECT_EQ(one, breach);
    }
}

} // namespace tarn::guard
