#include <fuzz/fuzz.h>

#include <console/quantity.h>

#include <array>
#include <cmath>
#include <cstring>

using namespace tarn::console;
using tarn::fuzz::require;

namespace {

constexpr std::array units{Unit::None, Unit::Hertz, Unit::Second, Unit::Farad, Unit::Decibel};

void readBack(double value, Unit unit)
{
    require(parseQuantity(quantityText(value, unit), unit) == value, "a quantity is read back as it was written");
}

} // namespace

/// A unit, then a quantity as text, whose first bytes are taken for a number too.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto unit = units.at(data[0] % units.size());
    const auto text = tarn::fuzz::textOf(data + 1, size - 1);
    if (const auto value = parseQuantity(text, unit)) {
        require(std::isfinite(*value), "a quantity is finite");
        require(unit != Unit::None || *value == std::trunc(*value), "a number of the instrument's own is whole");
        if (unit != Unit::None || std::abs(*value) < 0x1p63)
            readBack(*value, unit);
    }
    double number = 0;
    if (unit != Unit::None && text.size() >= sizeof(number)) {
        std::memcpy(&number, text.data(), sizeof(number));
        if (std::isfinite(number))
            readBack(number, unit);
    }
    return 0;
}
