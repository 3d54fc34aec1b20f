#include <devices/service/progress.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace tarn::tests::progress {
namespace {

using devices::service::fromSdkProgress;
using devices::service::Progress;

static_assert(sizeof(Progress) == 2 * sizeof(unsigned int));
static_assert(std::is_aggregate_v<Progress>);

TEST(Progress, CarriesTheSecondArgumentOfTheNotificationFirst)
{
    const auto [first, second] = fromSdkProgress(7, 100);
    EXPECT_EQ(first, 100U);
    EXPECT_EQ(second, 7U);
    EXPECT_EQ(fromSdkProgress(7, 100).total, 100U);
    EXPECT_EQ(fromSdkProgress(7, 100).done, 7U);
}

} // namespace
} // namespace tarn::tests::progress
