#include <console/progressdisplay.h>

#include <gtest/gtest.h>

namespace tarn::console {

using namespace std::chrono_literals;

const OperationName writing{"write", "writing", OperationName::Unit::Bytes};
constexpr int wide = 200;

TEST(ProgressText, ShowsSizesInBinaryUnits)
{
    EXPECT_EQ(sizeText(0), "0 B");
    EXPECT_EQ(sizeText(1023), "1023 B");
    EXPECT_EQ(sizeText(1024), "1.0 KiB");
    EXPECT_EQ(sizeText(4.5 * 1024 * 1024), "4.5 MiB");
    EXPECT_EQ(sizeText(5.0 * 1024 * 1024 * 1024 * 1024), "5120.0 GiB");
}

TEST(ProgressText, ShowsTimesByTheirTwoLargestUnits)
{
    EXPECT_EQ(timeText(0s), "0 s");
    EXPECT_EQ(timeText(59s), "59 s");
    EXPECT_EQ(timeText(125s), "2 min 5 s");
    EXPECT_EQ(timeText(2h + 3min + 4s), "2 h 3 min");
}

TEST(ProgressText, OfABarShowsShareRateAndRemainingTime)
{
    EXPECT_EQ(barText(writing, {.total = 4096, .done = 1024}, 2s, wide),
              "writing [#####...............]  25 % of 4.0 KiB, 512 B/s, 6 s left");
    EXPECT_EQ(barText(writing, {.total = 4096, .done = 4096}, 2s, wide),
              "writing [####################] 100 % of 4.0 KiB, 2.0 KiB/s, 0 s left");
    EXPECT_EQ(barText({"write", "writing", OperationName::Unit::Steps}, {.total = 4, .done = 2}, 1s, wide),
              "writing [##########..........]  50 % of 4 steps, 2 steps/s, 1 s left");
}

TEST(ProgressText, OfABarFitsTheTerminalAndLeavesRoomForTheCursor)
{
    const devices::service::Progress progress{.total = 4096, .done = 1024};
    EXPECT_EQ(barText(writing, progress, 2s, 66), "writing [####...............]  25 % of 4.0 KiB, 512 B/s, 6 s left");
    EXPECT_EQ(barText(writing, progress, 2s, 52), "writing [#....]  25 % of 4.0 KiB, 512 B/s, 6 s left");
    EXPECT_EQ(barText(writing, progress, 2s, 51), "writing  25 % of 4.0 KiB, 512 B/s, 6 s left");
    EXPECT_EQ(barText(writing, progress, 2s, 12), "writing  25");
    EXPECT_EQ(barText(writing, progress, 2s, 0), "");
    for (int columns = 1; columns < 100; ++columns)
        EXPECT_LT(barText(writing, progress, 2s, columns).size(), static_cast<std::size_t>(columns));
}

TEST(ProgressText, OfABarInPerCentShowsTheShareOnce)
{
    EXPECT_EQ(barText({"write", "writing", OperationName::Unit::Percent}, {.total = 100, .done = 25}, 5s, wide),
              "writing [#####...............]  25 %, 5 %/s, 15 s left");
}

TEST(ProgressText, OfABarKnowsNoRateAtTheStart)
{
    EXPECT_EQ(barText(writing, {.total = 4096, .done = 0}, 2s, wide),
              "writing [....................]   0 % of 4.0 KiB");
    EXPECT_EQ(barText(writing, {.total = 4096, .done = 1024}, 0s, wide),
              "writing [#####...............]  25 % of 4.0 KiB");
}

TEST(ProgressText, OfABarStandsCountsThatMakeNoSense)
{
    EXPECT_EQ(barText(writing, {.total = 0, .done = 0}, 1s, wide), "writing [....................]   0 % of 0 B");
    EXPECT_EQ(barText(writing, {.total = 1, .done = 4}, 1s, wide),
              "writing [####################] 100 % of 1 B, 4 B/s, 0 s left");
    EXPECT_EQ(barText(writing, {.total = 4294967295U, .done = 4294967295U}, 1s, wide),
              "writing [####################] 100 % of 4.0 GiB, 4.0 GiB/s, 0 s left");
}

} // namespace tarn::console
