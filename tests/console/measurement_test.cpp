#include <console/measurement.h>

#include <gtest/gtest.h>

#include <ctime>

namespace tarn::console {

TEST(MeasurementTime, IsIso8601InUtcToTheSecond)
{
    const auto time = parseTime("2026-01-02T03:04:05Z");
    ASSERT_TRUE(time);
    EXPECT_EQ(time->toSecsSinceEpoch(), 1'767'323'045);
    EXPECT_EQ(measurementText({*time, 23.456}), "measured 2026-01-02T03:04:05Z at 23.46 °C");
    for (const auto* const text :
         {"", "now", "2026-01-02", "2026-01-02T03:04:05", "2026-01-02T03:04:05+01:00", "2026-02-30T03:04:05Z",
          "2026-01-02T24:04:05Z", "2026-01-02T03:04:05Z ", "2026-01-02T03:04:05.5Z",
          "\xef\xbb\xbf"
          "2026-01-02T03:04:05Z"})
        EXPECT_FALSE(parseTime(text)) << text;
}

TEST(MeasurementTime, KnowsNoHourThatIsSkippedWhereverItIsRead)
{
    const auto before = qgetenv("TZ");
    qputenv("TZ", "Europe/Berlin");
    ::tzset();
    const auto time = parseTime("2026-03-29T02:30:00Z"); // skipped in Berlin
    if (before.isNull())
        qunsetenv("TZ");
    else
        qputenv("TZ", before);
    ::tzset();
    ASSERT_TRUE(time);
    EXPECT_EQ(time->toSecsSinceEpoch(), 1'774'751'400);
}

} // namespace tarn::console
