#include <console/number.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace tarn::console {

TEST(Number, IsTheWholeOfTheText)
{
    EXPECT_EQ(parseNumber<unsigned int>("0"), 0U);
    EXPECT_EQ(parseNumber<unsigned int>("4294967295"), 4294967295U);
    EXPECT_EQ(parseNumber<std::uint16_t>("fFfF", 16), 0xFFFF);
    for (const auto* const text : {"", "-1", "+1", " 1", "1 ", "0x1", "1.0", "4294967296", "x"})
        EXPECT_EQ(parseNumber<unsigned int>(text), std::nullopt) << text;
    EXPECT_EQ(parseNumber<std::uint16_t>("10000", 16), std::nullopt);
}

} // namespace tarn::console
