#include <simulator/watchedinstrument.h>

#include <support/watchdog.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <limits>
#include <thread>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::Journal;
using test::ManualInstrument;
using test::WatchedInstrument;
using testing::ElementsAre;
using testing::IsEmpty;

/// Makes a request and has `end` called with its end.
struct Request {
    const char* name;
    void (*make)(const ManualInstrument& instrument, std::function<void(std::error_code)> end);
};

constexpr auto withValue = [](auto end) { return [end](const auto&, std::error_code code) { end(code); }; };

/// One of each kind: plain or long, with or without a value.
constexpr std::array requests{
    Request{
        "file",
        [](const auto& instrument, auto end) { instrument.template control<test::Files>()->writeFile("f", {1}, end); }},
    Request{
        "list",
        [](const auto& instrument, auto end) { instrument.template control<test::Files>()->fileList(withValue(end)); }},
    Request{"erase", [](const auto& instrument, auto end) { instrument.template control<test::Memory>()->erase(end); }},
    Request{
        "image",
        [](const auto& instrument, auto end) { instrument.template control<test::Memory>()->read(withValue(end)); }},
};

Settings withMisbehaviour(Misbehaviour misbehaviour, CompletionMode mode)
{
    Settings settings;
    settings.completion = mode;
    settings.speed = std::numeric_limits<double>::infinity();
    settings.memorySize = 4096;
    settings.faults.misbehaviour = misbehaviour;
    settings.faults.delay = 1min;
    return settings;
}

class MisbehaviourTest : public testing::TestWithParam<std::tuple<CompletionMode, Request>> {
protected:
    /// Switches an instrument on that misbehaves.
    void use(Misbehaviour misbehaviour)
    {
        const auto mode = std::get<CompletionMode>(GetParam());
        instrument = std::make_unique<WatchedInstrument>(withMisbehaviour(misbehaviour, mode));
        instrument->observer.atRelease = [this] { EXPECT_FALSE(completion.expired()); };
    }

    /// Makes a request whose completion notes where it is called, and waits for what is due.
    void request()
    {
        const auto held = std::make_shared<int>();
        completion = held;
        std::get<Request>(GetParam()).make(*instrument, [this, held, caller = std::this_thread::get_id()](auto code) {
            EXPECT_EQ(code, std::error_code{});
            ends.note(std::this_thread::get_id() == caller ? "on the caller's" : "on another");
        });
    }

    [[nodiscard]] auto takeEnds()
    {
        if (instrument->vna)
            instrument->vna->waitUntilIdle();
        return ends.take();
    }

    /// The thread that the mode says.
    [[nodiscard]] const char* itsThread() const
    {
        return std::get<CompletionMode>(GetParam()) == CompletionMode::Inline ? "on the caller's" : "on another";
    }

    Journal ends;
    std::weak_ptr<int> completion; ///< of the last request, or a copy of it
    std::unique_ptr<WatchedInstrument> instrument;
};

std::string nameOf(const testing::TestParamInfo<MisbehaviourTest::ParamType>& parameter)
{
    const auto& [mode, request] = parameter.param;
    return request.name + std::string{mode == CompletionMode::Inline ? "Inline" : ""};
}

INSTANTIATE_TEST_SUITE_P(Requests, MisbehaviourTest,
                         testing::Combine(testing::Values(CompletionMode::Thread, CompletionMode::Inline),
                                          testing::ValuesIn(requests)),
                         nameOf);

TEST_P(MisbehaviourTest, OfNoneIsOneCompletion)
{
    use(Misbehaviour::None);
    request();
    EXPECT_THAT(takeEnds(), ElementsAre(itsThread()));
    EXPECT_TRUE(completion.expired());
}

TEST_P(MisbehaviourTest, CompletesTwiceOnTheThreadOfTheMode)
{
    use(Misbehaviour::Twice);
    request();
    EXPECT_THAT(takeEnds(), ElementsAre(itsThread(), itsThread()));
    EXPECT_TRUE(completion.expired());
}

TEST_P(MisbehaviourTest, DropsTheCompletion)
{
    use(Misbehaviour::Drop);
    request();
    EXPECT_THAT(takeEnds(), IsEmpty());
    EXPECT_TRUE(completion.expired());
    EXPECT_THAT(instrument->journal.take(), IsEmpty());
}

TEST_P(MisbehaviourTest, DropsTheControlsAndThenTheCompletion)
{
    use(Misbehaviour::DropControls);
    request();
    EXPECT_THAT(takeEnds(), IsEmpty());
    EXPECT_TRUE(completion.expired());
    EXPECT_THAT(instrument->journal.take(), ElementsAre("about to be released", "available"));
}

TEST_P(MisbehaviourTest, KeepsTheCompletionAsLongAsTheInstrumentLives)
{
    use(Misbehaviour::Keep);
    request();
    instrument->advance(1h);
    EXPECT_FALSE(completion.expired());
    instrument->vna.reset();
    EXPECT_TRUE(completion.expired());
    EXPECT_THAT(takeEnds(), IsEmpty());
}

TEST_P(MisbehaviourTest, CompletesWhileTheInstrumentIsDestroyed)
{
    use(Misbehaviour::AtEnd);
    request();
    instrument->advance(1h);
    EXPECT_THAT(takeEnds(), IsEmpty());
    instrument->vna.reset();
    EXPECT_THAT(takeEnds(), ElementsAre("on another"));
    EXPECT_TRUE(completion.expired());
}

TEST_P(MisbehaviourTest, CompletesLateOnTheInstrumentsThread)
{
    use(Misbehaviour::Late);
    request();
    instrument->advance(1min - 1ns);
    EXPECT_THAT(takeEnds(), IsEmpty());
    instrument->advance(1ns);
    EXPECT_THAT(takeEnds(), ElementsAre("on another"));
    EXPECT_TRUE(completion.expired());
}

TEST_P(MisbehaviourTest, ThrowsAndCompletesLater)
{
    use(Misbehaviour::ThrowLate);
    EXPECT_THROW(request(), DeviceFault);
    instrument->advance(1min - 1ns);
    EXPECT_THAT(takeEnds(), IsEmpty());
    instrument->advance(1ns);
    EXPECT_THAT(takeEnds(), ElementsAre("on another"));
    EXPECT_TRUE(completion.expired());
}

TEST_P(MisbehaviourTest, IsThatOfEveryNthRequest)
{
    use({});
    FaultPlan plan;
    plan.misbehaviour = Misbehaviour::Drop;
    plan.misbehaveEvery = 3;
    instrument->vna->faults().setPlan(plan);
    for (const auto completions : {1U, 1U, 0U, 1U, 1U, 0U}) {
        request();
        EXPECT_EQ(takeEnds().size(), completions);
    }
}

class MisbehaviourModes : public testing::TestWithParam<CompletionMode> { };

INSTANTIATE_TEST_SUITE_P(Modes, MisbehaviourModes, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(MisbehaviourModes, CarriesTheRequestOut)
{
    const ManualInstrument instrument{withMisbehaviour(Misbehaviour::Drop, GetParam())};
    const auto files = instrument.control<test::Files>();
    files->writeFile("f", {1, 2}, [](auto) { });
    instrument.vna->waitUntilIdle();
    instrument.vna->faults().setPlan({});
    EXPECT_THAT(test::list(*files), ElementsAre(test::Files::FileInfo{"f", 2}));
}

TEST_P(MisbehaviourModes, BringsTheErrorOfAFailureEachTime)
{
    auto settings = withMisbehaviour(Misbehaviour::Twice, GetParam());
    settings.faults.failEvery = 1;
    const ManualInstrument instrument{settings};
    std::vector<std::error_code> codes;
    instrument.control<test::Memory>()->read([&](const auto&, auto code) { codes.push_back(code); });
    instrument.control<test::Files>()->spaceInfo([&](auto, auto code) { codes.push_back(code); });
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(codes, ElementsAre(Error::Io, Error::Io, Error::Io, Error::Io));
}

TEST_P(MisbehaviourModes, LeavesTheControlsAwayForTheTimeOfADrop)
{
    auto settings = withMisbehaviour(Misbehaviour::DropControls, GetParam());
    settings.faults.dropFor = 2s;
    ManualInstrument instrument{settings};
    instrument.control<test::Files>()->spaceInfo([](auto, auto) { });
    instrument.advance(2s - 1ns);
    EXPECT_EQ(instrument.control<test::Files>(), nullptr);
    instrument.advance(1ns);
    EXPECT_NE(instrument.control<test::Files>(), nullptr);
}

TEST_P(MisbehaviourModes, DoesNotConcernWhatAnObserverRequests)
{
    WatchedInstrument instrument{withMisbehaviour(Misbehaviour::Twice, GetParam())};
    int completions = 0;
    instrument.observer.atOffer = [&] {
        instrument.control<test::Files>()->spaceInfo([&](auto, auto) { ++completions; });
        instrument.control<test::Memory>()->read([&](const auto&, auto) { ++completions; });
    };
    instrument.vna->drop();
    instrument.vna->offer();
    instrument.vna->waitUntilIdle();
    EXPECT_EQ(completions, 2);
}

TEST_P(MisbehaviourModes, KeepsNothingOnceTheInstrumentHasGone)
{
    for (const auto misbehaviour : {Misbehaviour::Keep, Misbehaviour::AtEnd, Misbehaviour::Late}) {
        ManualInstrument instrument{withMisbehaviour(misbehaviour, GetParam())};
        const auto files = instrument.control<test::Files>();
        instrument.vna.reset();
        int completions = 0;
        auto held = std::make_shared<int>();
        files->spaceInfo([&, held](auto, auto) { ++completions; });
        EXPECT_EQ(held.use_count(), 1);
        EXPECT_EQ(completions, misbehaviour == Misbehaviour::Keep ? 0 : 1);
    }
}

/// Operations that do not return.
class HangTest : public testing::TestWithParam<CompletionMode> {
protected:
    void hang(std::uint64_t every)
    {
        auto settings = withMisbehaviour({}, GetParam());
        settings.faults.hangEvery = every;
        instrument = std::make_unique<ManualInstrument>(settings);
        files = instrument->control<test::Files>();
        memory = instrument->control<test::Memory>();
    }

    void waitUntilOneHangs() const
    {
        while (instrument->vna->faults().hanging() != 1)
            std::this_thread::sleep_for(1ms);
    }

    const tests::Watchdog watchdog;
    std::unique_ptr<ManualInstrument> instrument;
    std::shared_ptr<test::Files> files;
    std::shared_ptr<test::Memory> memory;
};

INSTANTIATE_TEST_SUITE_P(Modes, HangTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(HangTest, HoldsUpNoOther)
{
    hang(2);
    const auto write = [&] { return test::write(*files, "f", {1}); };
    std::array writes{std::async(std::launch::async, write), std::async(std::launch::async, write),
                      std::async(std::launch::async, write)}; // the second one to arrive hangs
    const auto isDone = [](const auto& operation) { return operation.wait_for(1ms) == std::future_status::ready; };
    while (std::ranges::count_if(writes, isDone) < 2)
        ;
    waitUntilOneHangs();
    instrument->vna->faults().setPlan({});
    for (auto& one : writes)
        EXPECT_EQ(one.get(), std::error_code{});
}

TEST_P(HangTest, EndsWithThePlan)
{
    hang(1);
    auto write = std::async(std::launch::async, [&] { return test::write(*files, "f", {1}); });
    waitUntilOneHangs();
    instrument->vna->faults().setPlan({});
    EXPECT_EQ(write.get(), std::error_code{});
    EXPECT_EQ(instrument->vna->faults().hanging(), 0);
    EXPECT_EQ(test::list(*files).size(), 1U);
}

TEST_P(HangTest, EndsWithTheInstrument)
{
    using Operation = std::function<std::error_code()>;
    const Operation plain = [&] { return files->isAvailable() ? std::error_code{} : Error::Io; };
    const Operation request = [&] { return test::write(*files, "f", {1}); };
    const Operation longOne = [&] { return test::erase(*memory); };
    for (const auto& operation : {plain, request, longOne}) {
        hang(1);
        auto ended = std::async(std::launch::async, operation);
        waitUntilOneHangs();
        instrument->vna.reset();
        EXPECT_EQ(ended.get(), std::error_code{});
        EXPECT_TRUE(files->isAvailable()) << "nothing hangs any more";
    }
}

} // namespace
} // namespace tarn::simulator
