#pragma once

#include <console/number.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn::console {

/// What tells the models of instruments apart on the USB.
struct UsbIdentity {
    std::uint16_t vendor = 0;
    std::uint16_t product = 0;

    friend bool operator==(const UsbIdentity&, const UsbIdentity&) = default;
};

/// The identity that the whole of `text` spells as VENDOR:PRODUCT in hexadecimal; nothing when it spells none.
[[nodiscard]] inline std::optional<UsbIdentity> parseUsbIdentity(std::string_view text)
{
    const auto colon = text.find(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const auto vendor = parseNumber<std::uint16_t>(text.substr(0, colon), 16);
    const auto product = parseNumber<std::uint16_t>(text.substr(colon + 1), 16);
    if (!vendor || !product)
        return std::nullopt;
    return UsbIdentity{*vendor, *product};
}

} // namespace tarn::console
