// The guarantees as tests of another program: this one.

#include <conformance/suite.h>

#include <conformance/checked.h>

#include <gtest/gtest-spi.h>

#include <set>

namespace tarn::tests {

const bool areRegistered = (conformance::registerTests("SimulatedInstrument", simulated(""), {.writes = true}), true);

TEST(ConformanceSuite, HasATestForEveryGuarantee)
{
    std::set<std::string> names;
    const auto& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const auto& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count() && suite.name() == std::string_view{"SimulatedInstrument"}; ++j)
            names.insert(suite.GetTestInfo(j)->name());
    }
    EXPECT_EQ(names.size(), conformance::guarantees().size());
    EXPECT_THAT(names, testing::IsSupersetOf({"Keys", "OneCompletion", "SilentAfterRemoval"}));
}

TEST(ConformanceSuite, FailsWithTheFindings)
{
    EXPECT_NONFATAL_FAILURE(
        conformance::expectKept(guarantee("one-completion"), simulated("misbehave=twice")(), quick()),
        "file-memory fileList was completed 2 times");
}

} // namespace tarn::tests
