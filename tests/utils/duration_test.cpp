#include <utils/duration.h>

#include <gtest/gtest.h>

namespace tarn::utils {

using namespace std::chrono_literals;

TEST(Duration, IsANumberAndAUnit)
{
    EXPECT_EQ(parseDuration("100us"), 100us);
    EXPECT_EQ(parseDuration("500ms"), 500ms);
    EXPECT_EQ(parseDuration("2s"), 2s);
    EXPECT_EQ(parseDuration("1.5s"), 1500ms);
    EXPECT_EQ(parseDuration("3min"), 3min);
    EXPECT_EQ(parseDuration("1h"), 1h);
    EXPECT_EQ(parseDuration("0s"), 0us);
}

class NoDuration : public testing::TestWithParam<const char*> { };

TEST_P(NoDuration, IsRefused)
{
    EXPECT_EQ(parseDuration(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Texts, NoDuration,
                         testing::Values("", "s", "5", "5 s", "5S", "5d", "-1s", "+1s", "infs", "nans", "1e3s", "0x1s",
                                         "1s ", "1ss", ".5s", "99999999999999999999h", "9000h"));

} // namespace tarn::utils
