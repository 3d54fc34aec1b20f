#include <simulator/faults.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;

/// Which of the next `count` calls satisfy `property`, counted from 1.
template <class Property>
std::vector<int> which(Faults& faults, int count, Property property)
{
    std::vector<int> numbers;
    for (int number = 1; number <= count; ++number) {
        if (property(faults.nextCall()))
            numbers.push_back(number);
    }
    return numbers;
}

bool drops(const Faults::Decision& decision)
{
    return decision.drops;
}

TEST(FaultsTest, LeavesOperationsAloneWithoutAPlan)
{
    Faults faults{{}, 0};
    for (int i = 0; i < 100; ++i) {
        const auto decision = faults.nextRequest();
        EXPECT_FALSE(decision.throws || decision.drops);
        EXPECT_EQ(decision.delay, Duration{});
        EXPECT_EQ(decision.failure.value(), 0);
    }
}

TEST(FaultsTest, DropsAtEveryNthOperation)
{
    FaultPlan plan;
    plan.dropEvery = 3;
    plan.dropFor = 2s;
    Faults faults{plan, 0};
    EXPECT_THAT(which(faults, 9, drops), ElementsAre(3, 6, 9));
    EXPECT_EQ(faults.nextCall().dropFor, 2s);
}

TEST(FaultsTest, CountsCallsAndRequestsTogetherForDrops)
{
    FaultPlan plan;
    plan.dropEvery = 2;
    Faults faults{plan, 0};
    EXPECT_FALSE(faults.nextCall().drops);
    EXPECT_TRUE(faults.nextRequest().drops);
    EXPECT_FALSE(faults.nextRequest().drops);
    EXPECT_TRUE(faults.nextCall().drops);
}

TEST(FaultsTest, DelaysEveryNthOperation)
{
    FaultPlan plan;
    plan.delayEvery = 2;
    plan.delay = 30ms;
    Faults faults{plan, 0};
    EXPECT_EQ(faults.nextCall().delay, Duration{});
    EXPECT_EQ(faults.nextCall().delay, 30ms);
    EXPECT_EQ(faults.nextCall().delay, Duration{});
}

TEST(FaultsTest, ThrowsAtEveryNthOperationAndDoesNothingElseThen)
{
    FaultPlan plan;
    plan.throwEvery = 2;
    plan.dropEvery = 2;
    plan.failEvery = 2;
    Faults faults{plan, 0};
    EXPECT_FALSE(faults.nextRequest().throws);
    const auto second = faults.nextRequest();
    EXPECT_TRUE(second.throws);
    EXPECT_FALSE(second.drops);
    EXPECT_EQ(second.failure.value(), 0);
}

TEST(FaultsTest, CountsOnlyRequestsForFailures)
{
    FaultPlan plan;
    plan.failEvery = 2;
    plan.failure = Error::Busy;
    Faults faults{plan, 0};
    EXPECT_EQ(faults.nextRequest().failure.value(), 0);
    EXPECT_EQ(faults.nextCall().failure.value(), 0);
    EXPECT_EQ(faults.nextRequest().failure, Error::Busy);
    EXPECT_EQ(faults.nextRequest().failure.value(), 0);
    EXPECT_EQ(faults.nextRequest().failure, Error::Busy);
}

TEST(FaultsTest, MisbehavesAtEveryNthRequestOfAnyKind)
{
    FaultPlan plan;
    plan.misbehaviour = Misbehaviour::Keep;
    plan.misbehaveEvery = 2;
    plan.delay = 3s;
    Faults faults{plan, 0};
    EXPECT_EQ(faults.nextRequest().misbehaviour, Misbehaviour::None);
    EXPECT_EQ(faults.nextCall().misbehaviour, Misbehaviour::None);
    const auto second = faults.nextLongOperation();
    EXPECT_EQ(second.misbehaviour, Misbehaviour::Keep);
    EXPECT_EQ(second.lateness, 3s);
    EXPECT_EQ(second.delay, 0s);
    EXPECT_EQ(faults.nextLongOperation().misbehaviour, Misbehaviour::None);
    EXPECT_EQ(faults.nextRequest().misbehaviour, Misbehaviour::Keep);
}

TEST(FaultsTest, MisbehavesAtEachRequestUnlessToldOtherwise)
{
    FaultPlan plan;
    plan.misbehaviour = Misbehaviour::Drop;
    plan.throwEvery = 2;
    Faults faults{plan, 0};
    EXPECT_EQ(faults.nextRequest().misbehaviour, Misbehaviour::Drop);
    EXPECT_EQ(faults.nextRequest().misbehaviour, Misbehaviour::None) << "throws and does nothing else";
    EXPECT_EQ(faults.nextRequest().misbehaviour, Misbehaviour::Drop);
}

TEST(FaultsTest, FailsTheNextRequestOnce)
{
    Faults faults{{}, 0};
    FaultPlan plan;
    plan.failNext = Error::Corrupt;
    faults.setPlan(plan);
    EXPECT_EQ(faults.nextCall().failure.value(), 0);
    EXPECT_EQ(faults.nextRequest().failure, Error::Corrupt);
    EXPECT_EQ(faults.nextRequest().failure.value(), 0);
}

TEST(FaultsTest, LetsAnArbiterHaveTheLastWordOnEveryOperation)
{
    FaultPlan plan;
    plan.throwEvery = 2;
    Faults faults{plan, 0};
    std::vector<bool> planned;
    faults.setArbiter([&](Faults::Decision& decision) {
        planned.push_back(decision.throws);
        decision.throws = false;
        decision.delay = 7ms;
        EXPECT_FALSE(faults.isWriteProtected()); // no lock is held
    });
    for (const auto& decision : {faults.nextCall(), faults.nextRequest(), faults.nextLongOperation()}) {
        EXPECT_FALSE(decision.throws);
        EXPECT_EQ(decision.delay, 7ms);
    }
    EXPECT_THAT(planned, ElementsAre(false, true, false));
}

TEST(FaultsTest, CountsAnewWithANewPlan)
{
    FaultPlan plan;
    plan.dropEvery = 3;
    Faults faults{plan, 0};
    EXPECT_THAT(which(faults, 2, drops), ElementsAre());
    faults.setPlan(plan);
    EXPECT_THAT(which(faults, 3, drops), ElementsAre(3));
}

TEST(FaultsTest, DropsByChanceAsTheSeedSays)
{
    FaultPlan plan;
    plan.dropChance = 0.25;
    Faults first{plan, 7};
    Faults same{plan, 7};
    Faults other{plan, 8};
    const auto drawn = which(first, 4000, drops);
    EXPECT_EQ(which(same, 4000, drops), drawn);
    EXPECT_NE(which(other, 4000, drops), drawn);
    EXPECT_NEAR(static_cast<double>(drawn.size()), 1000.0, 150.0); // over five standard deviations
}

TEST(FaultsTest, DropsAlwaysWithAChanceOfOne)
{
    FaultPlan plan;
    plan.dropChance = 1.0;
    Faults faults{plan, 3};
    EXPECT_EQ(which(faults, 100, drops).size(), 100U);
}

TEST(ErrorTest, HasAMessageForEveryNameAndNumber)
{
    std::vector<std::string> messages;
    for (const auto* const name : {"not-found", "full", "bad-name", "io", "corrupt", "busy", "timeout", "4711", "-3"}) {
        const auto code = errorFromText(name);
        ASSERT_TRUE(code.has_value()) << name;
        EXPECT_NE(code->value(), 0) << name;
        messages.push_back(code->message());
    }
    EXPECT_THAT(messages, Each(testing::Not(testing::IsEmpty())));
    EXPECT_EQ(messages[7], "instrument error 4711");
    EXPECT_EQ(errorFromText("full"), make_error_code(Error::Full));
}

TEST(ErrorTest, DoesNotTakeSuccessOrNonsenseForAnError)
{
    for (const auto* const text : {"", "0", "-0", "full ", "Full", "1x", "99999999999", "+1"})
        EXPECT_FALSE(errorFromText(text).has_value()) << text;
}

TEST(FaultsTest, InterruptsEveryNthLongOperation)
{
    FaultPlan plan;
    plan.powerLossEvery = 2;
    plan.unplugEvery = 3;
    Faults faults{plan, 0};
    std::vector<int> interruptions;
    for (int i = 0; i < 6; ++i) {
        static_cast<void>(faults.nextRequest()); // does not count
        interruptions.push_back(faults.nextLongOperation().interruption.value());
    }
    constexpr int power = static_cast<int>(Error::PowerLoss);
    constexpr int plug = static_cast<int>(Error::Disconnected);
    EXPECT_THAT(interruptions, ElementsAre(0, power, plug, power, 0, power));
    faults.setPlan(plan);
    EXPECT_EQ(faults.nextLongOperation().interruption.value(), 0) << "counts anew";
}

TEST(FaultsTest, CountsLongOperationsAsRequests)
{
    FaultPlan plan;
    plan.dropEvery = 2;
    plan.failEvery = 3;
    Faults faults{plan, 0};
    EXPECT_FALSE(faults.nextCall().drops);
    EXPECT_TRUE(faults.nextLongOperation().drops);
    EXPECT_EQ(faults.nextRequest().failure.value(), 0);
    EXPECT_EQ(faults.nextLongOperation().failure, Error::Io);
}

TEST(FaultsTest, ProtectsTheMemoryForAsLongAsThePlanSays)
{
    FaultPlan plan;
    plan.writeProtect = true;
    Faults faults{plan, 0};
    EXPECT_TRUE(faults.isWriteProtected());
    faults.setPlan({});
    EXPECT_FALSE(faults.isWriteProtected());
}

} // namespace
} // namespace tarn::simulator
