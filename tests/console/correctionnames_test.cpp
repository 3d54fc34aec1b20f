#include <console/correctionnames.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

namespace tarn::console {

TEST(CorrectionNames, AreThereForEveryCorrectionAndLeadBackToIt)
{
    std::set<std::string_view> names;
    for (std::uint32_t bit = 0; bit < 16; ++bit) {
        const auto correction = devices::fromSdkCorrection(static_cast<sdk::CorrectionFlag>(1U << bit));
        if (!correction)
            continue;
        const auto name = correctionName(*correction);
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(findCorrection(name), correction) << name;
        EXPECT_NE(correctionNames().find(name), std::string::npos) << name;
    }
    EXPECT_EQ(names.size(), 10U);
    EXPECT_EQ(findCorrection("unknown"), std::nullopt);
    EXPECT_EQ(findCorrection(""), std::nullopt);
}

} // namespace tarn::console
