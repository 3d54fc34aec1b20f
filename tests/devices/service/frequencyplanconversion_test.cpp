#include <devices/service/frequencyplanconversion.h>

#include <gmock/gmock.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests::frequencyplanconversion {
namespace {

using devices::service::fromSdkFrequencyPlan;
using devices::service::toSdkFrequencyPlan;
using vna::FrequencySegment;
using Segment = sdk::FrequencyPlan::Segment;

static_assert(offsetof(Segment, startFrequency) == 0 && offsetof(Segment, stopFrequency) == 8);
static_assert(offsetof(Segment, pointCount) == 16 && std::is_same_v<decltype(Segment::pointCount), std::int32_t>);

TEST(FrequencyPlanConversion, MakesAnEmptyPlanOfAnEmptyOne)
{
    EXPECT_THAT(toSdkFrequencyPlan({}).segments, IsEmpty());
    EXPECT_THAT(fromSdkFrequencyPlan({}), IsEmpty());
}

TEST(FrequencyPlanConversion, CopiesFieldByFieldInOrder)
{
    const std::vector<FrequencySegment> plan{{1e9, 2e9, 201}, {1e5, 1e9, 11}, {1e5, 1e9, 11}};
    const auto converted = toSdkFrequencyPlan(plan);
    EXPECT_THAT(converted.segments, ElementsAre(Segment{1e9, 2e9, 201}, Segment{1e5, 1e9, 11}, Segment{1e5, 1e9, 11}));
    EXPECT_EQ(fromSdkFrequencyPlan(converted), plan);
}

TEST(FrequencyPlanConversion, TakesNoMoreMemoryThanThePlanNeeds)
{
    const auto converted = toSdkFrequencyPlan(std::vector<FrequencySegment>(5));
    EXPECT_EQ(converted.segments.capacity(), 5U);
    EXPECT_EQ(fromSdkFrequencyPlan(converted).capacity(), 5U);
}

TEST(FrequencyPlanConversion, KeepsSegmentsThatRunDownwardsOrHoldNoPoint)
{
    const std::vector<FrequencySegment> plan{{2e9, 1e9, 0}, {0.0, 0.0, 1}, {-1.0, 5e-324, 2}};
    EXPECT_EQ(fromSdkFrequencyPlan(toSdkFrequencyPlan(plan)), plan);
}

TEST(FrequencyPlanConversion, KeepsTheBitsOfALargePointCount)
{
    const auto converted = toSdkFrequencyPlan({{0, 0, 0x7fff'ffff}, {0, 0, 0x8000'0000}, {0, 0, 0xffff'ffff}});
    EXPECT_EQ(converted.segments[0].pointCount, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(converted.segments[1].pointCount, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(converted.segments[2].pointCount, -1);
    EXPECT_EQ(fromSdkFrequencyPlan({{{0, 0, -1}}})[0].pointCount, 0xffff'ffffU);
}

/// A frequency of any bits whatever, a NaN with a payload for instance.
TEST(FrequencyPlanConversion, KeepsEveryBitOfAnyPlan)
{
    std::mt19937_64 random{1};
    for (int round = 0; round != 1000; ++round) {
        std::vector<FrequencySegment> plan(random() % 8);
        for (auto& segment : plan)
            segment = {std::bit_cast<double>(random()), std::bit_cast<double>(random()),
                       static_cast<std::uint32_t>(random())};
        const auto converted = fromSdkFrequencyPlan(toSdkFrequencyPlan(plan));
        ASSERT_EQ(converted.size(), plan.size());
        for (std::size_t i = 0; i != plan.size(); ++i) {
            EXPECT_EQ(std::bit_cast<std::uint64_t>(converted[i].start), std::bit_cast<std::uint64_t>(plan[i].start));
            EXPECT_EQ(std::bit_cast<std::uint64_t>(converted[i].stop), std::bit_cast<std::uint64_t>(plan[i].stop));
            EXPECT_EQ(converted[i].pointCount, plan[i].pointCount);
        }
    }
}

} // namespace
} // namespace tarn::tests::frequencyplanconversion
