#include <console/breaches.h>

#include <sdk/service/imemoryserialnumbercontrol.h>
#include <support/allocationfaults.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tarn::console {

using tests::AllocationFaults;

TEST(BreachWarning, IsLeftOutWhenThereIsNoMemoryForIt)
{
    Breaches breaches{Output{{}, {}}};
    guard::IBreachObserver& observer = breaches;
    const std::string names(1000, 'n'); // a new operation each time: each is warned of once
    testing::internal::CaptureStderr();
    std::size_t failing = 0;
    do {
        const auto operation = std::string_view{names}.substr(0, ++failing);
        AllocationFaults::arm(static_cast<int>(failing), true);
        observer.onBreach({guard::Breach::CompletedAgain, sdk::service::IMemorySerialNumberControl::key, operation, 2});
    } while (AllocationFaults::disarm() && failing < names.size());
    EXPECT_GT(failing, 2U);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "warning: the instrument answered '" + std::string(failing, 'n')
                  + "' of its serial-number control more than once; the first answer counts\n");
}

} // namespace tarn::console
