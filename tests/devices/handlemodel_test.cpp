// Every interleaving of the handle's steps.

#include "handlemodel.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tarn::tests::model {

constexpr std::uint8_t operationsOfEach = 2;

TEST(HandleModel, KeepsEveryRuleInEveryInterleavingOfThreeThreads)
{
    Exploration exploration{operationsOfEach, Flaw::None};
    exploration.explore();
    EXPECT_EQ(exploration.broken(), nullptr) << exploration.broken();
    RecordProperty("states", std::to_string(exploration.states()));
    RecordProperty("steps", std::to_string(exploration.steps()));
    EXPECT_GT(exploration.states(), 100'000U) << "the model has lost steps";
}

struct KnownFlaw {
    const char* name;
    Flaw flaw;
    const char* broken; ///< the rule
};

void PrintTo(const KnownFlaw& flaw, std::ostream* stream)
{
    *stream << flaw.name;
}

class FlawedHandleModel : public testing::TestWithParam<KnownFlaw> { };

TEST_P(FlawedHandleModel, BreaksARule)
{
    Exploration exploration{operationsOfEach, GetParam().flaw};
    exploration.explore();
    EXPECT_STREQ(exploration.broken(), GetParam().broken);
}

INSTANTIATE_TEST_SUITE_P(
    Flaws, FlawedHandleModel,
    testing::Values(KnownFlaw{"HoldsTheMutexWhileItAsks", Flaw::HoldsTheMutexWhileItAsks,
                              "the mutex is not held while the device is asked"},
                    KnownFlaw{"HoldsTheMutexWhileItCalls", Flaw::HoldsTheMutexWhileItCalls,
                              "the mutex is not held while the control is called"},
                    KnownFlaw{"ReturnsWithoutUnlocking", Flaw::ReturnsWithoutUnlocking, "nobody waits for ever"},
                    KnownFlaw{"KeepsAStrongHandle", Flaw::KeepsAStrongHandle,
                              "a control lives no longer than the device and the operations keep it"},
                    KnownFlaw{"LetsTheOwnerGoBeforeTheCall", Flaw::LetsTheOwnerGoBeforeTheCall,
                              "no operation calls a control that is destroyed"},
                    KnownFlaw{"ChecksThenPromotes", Flaw::ChecksThenPromotes,
                              "a control that is destroyed does not come back"},
                    KnownFlaw{"AsksForALiveControl", Flaw::AsksForALiveControl,
                              "the device is asked exactly once for each failed promotion"},
                    KnownFlaw{"AsksAgainAfterAFailure", Flaw::AsksAgainAfterAFailure,
                              "the device is asked exactly once for each failed promotion"},
                    KnownFlaw{"RemembersAFailure", Flaw::RemembersAFailure,
                              "the device is asked exactly once for each failed promotion"},
                    KnownFlaw{"DoesNotStore", Flaw::DoesNotStore, "a handle that was asked for is used again"}),
    [](const auto& flaw) { return flaw.param.name; });

} // namespace tarn::tests::model
