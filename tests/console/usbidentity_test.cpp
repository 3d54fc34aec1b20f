#include <console/usbidentity.h>

#include <gtest/gtest.h>

namespace tarn::console {

TEST(UsbIdentity, IsAVendorAndAProductInHexadecimal)
{
    EXPECT_EQ(parseUsbIdentity("f3a7:0101"), (UsbIdentity{0xf3a7, 0x0101}));
    EXPECT_EQ(parseUsbIdentity("F:FFFF"), (UsbIdentity{0xf, 0xffff}));
}

TEST(UsbIdentity, IsNothingElse)
{
    for (const auto* const text : {"", ":", "f3a7", "f3a7:", ":0101", "f3a7:0101:", "f3a7::0101", "f3a7: 0101",
                                   "0xf3a7:0101", "-1:0101", "10000:0101", "f3a7:10000", "g:1"})
        EXPECT_FALSE(parseUsbIdentity(text)) << text;
}

} // namespace tarn::console
