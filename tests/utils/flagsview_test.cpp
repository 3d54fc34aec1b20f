#include <utils/flagsview.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <iterator>
#include <limits>
#include <ranges>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests {
namespace {

using utils::flags_view;

enum class Colour : std::uint16_t { Red = 1U << 0U, Green = 1U << 9U, Blue = 1U << 15U };

static_assert(utils::byte_size == 8);
static_assert(std::ranges::forward_range<flags_view<Colour>>);

template <class Flags>
std::vector<Flags> walk(Flags flags)
{
    std::vector<Flags> found;
    for (const auto flag : flags_view{flags})
        found.push_back(flag);
    return found;
}

TEST(FlagsView, WalksNothingWhenNoBitIsSet)
{
    EXPECT_THAT(walk(Colour{}), IsEmpty());
}

TEST(FlagsView, WalksTheFirstAndTheLastBit)
{
    EXPECT_THAT(walk(static_cast<Colour>(0x8201)), ElementsAre(Colour::Red, Colour::Green, Colour::Blue));
    EXPECT_THAT(walk(std::uint8_t{0x81}), ElementsAre(1, 0x80));
    EXPECT_THAT(walk(std::uint64_t{1} << 63U), ElementsAre(std::uint64_t{1} << 63U));
    EXPECT_EQ(walk(std::numeric_limits<std::uint64_t>::max()).size(), 64U);
}

TEST(FlagsView, WalksBitsWithoutANameToo)
{
    EXPECT_THAT(walk(static_cast<Colour>(0x6)), ElementsAre(static_cast<Colour>(2), static_cast<Colour>(4)));
}

TEST(FlagsView, WalksEverySetAsAscendingSingleBitsThatMakeItUp)
{
    for (std::uint32_t set = 0; set <= 0xffff; ++set) {
        std::uint32_t sum = 0;
        std::uint32_t last = 0;
        for (const auto flag : walk(static_cast<std::uint16_t>(set))) {
            ASSERT_EQ(flag & (flag - 1U), 0U) << "more than one bit";
            ASSERT_GT(flag, last);
            last = flag;
            sum += flag;
        }
        ASSERT_EQ(sum, set);
    }
}

TEST(FlagsView, CanBeWalkedAgainFromACopiedPosition)
{
    const flags_view view{static_cast<Colour>(0x8201)};
    auto it = view.begin();
    const auto before = it++;
    EXPECT_EQ(*before, Colour::Red);
    EXPECT_EQ(*it, Colour::Green);
    EXPECT_EQ(before, view.begin());
    EXPECT_EQ(std::ranges::distance(it, view.end()), 2);
}

} // namespace
} // namespace tarn::tests
