#include <fuzz/fuzz.h>

#include <console/correctionnames.h>
#include <console/measurement.h>
#include <console/number.h>
#include <console/text.h>
#include <console/usbidentity.h>
#include <utils/duration.h>

#include <chrono>

using namespace tarn::console;
using tarn::fuzz::require;

namespace {

template <class Number>
void readNumber(std::string_view text, int base)
{
    const auto number = parseNumber<Number>(text, base);
    if (!number)
        return;
    require(text.find_first_not_of(base == 10 ? "-0123456789" : "0123456789abcdefABCDEF") == std::string_view::npos,
            "a number has nothing but its digits");
    require(parseNumber<Number>(fmt::format("{}", *number)) == number, "a number is read back as it was written");
}

void readUsbIdentity(std::string_view text)
{
    const auto identity = parseUsbIdentity(text);
    if (!identity)
        return;
    require(text.find_first_not_of("0123456789abcdefABCDEF:") == std::string_view::npos,
            "an identity has nothing but its digits and the colon");
    require(parseUsbIdentity(fmt::format("{:04x}:{:04x}", identity->vendor, identity->product)) == identity,
            "an identity is read back as it was written");
}

void readTime(std::string_view text)
{
    const auto time = parseTime(std::string{text});
    if (time)
        require(time->isValid() && time->toString(Qt::ISODate).toStdString() == text,
                "there is one way to write a time");
}

void readDuration(std::string_view text)
{
    const auto length = tarn::utils::parseDuration(text);
    if (length)
        require(*length >= std::chrono::microseconds{} && *length <= std::chrono::years{1},
                "a duration is not negative, and a year at most");
}

} // namespace

/// The small words of a command line: each text is tried as all of them.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = tarn::fuzz::textOf(data, size);
    readNumber<int>(text, 10);
    readNumber<unsigned int>(text, 10);
    readNumber<std::size_t>(text, 10);
    readNumber<std::uint16_t>(text, 16);
    readUsbIdentity(text);
    readTime(text);
    readDuration(text);
    if (const auto correction = findCorrection(text))
        require(correctionName(*correction) == text, "a correction is found by its name");
    return 0;
}
