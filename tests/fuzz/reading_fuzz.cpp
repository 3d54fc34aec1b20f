#include <fuzz/fuzz.h>

#include <console/output.h>
#include <console/setting.h>
#include <console/text.h>

#include <array>
#include <cmath>
#include <cstring>

using namespace tarn::console;
using tarn::fuzz::require;

namespace {

/// Takes numbers from the input, of which there are zeros behind the end.
class Numbers {
public:
    explicit Numbers(std::string_view bytes)
        : m_bytes{bytes}
    {
    }

    template <class Number>
    Number next()
    {
        Number number{};
        const auto length = std::min(sizeof(number), m_bytes.size());
        std::memcpy(&number, m_bytes.data(), length);
        m_bytes.remove_prefix(length);
        return number;
    }

    std::vector<double> rest()
    {
        std::vector<double> numbers;
        while (!m_bytes.empty())
            numbers.push_back(next<double>());
        return numbers;
    }

private:
    std::string_view m_bytes;
};

Reading makeReading(Numbers& numbers)
{
    const auto kind = numbers.next<std::uint8_t>();
    const auto unit = static_cast<Unit>(numbers.next<std::uint8_t>() % 5);
    Reading reading;
    switch (kind % 7) {
    case 0:
        reading.setting.form = code();
        reading.value = static_cast<double>(numbers.next<std::int64_t>());
        break;
    case 1:
        reading.setting.form = quantity(unit);
        reading.value = numbers.next<double>();
        break;
    case 2: // an enumerator that this program does not know, say
        reading.setting.form = choice({"one", "two"}, numbers.next<std::int8_t>());
        reading.value = static_cast<double>(numbers.next<std::int32_t>());
        break;
    case 3:
        reading.setting.form = onOff();
        reading.value = static_cast<double>(numbers.next<std::uint8_t>() % 2);
        break;
    case 4:
        reading.setting.form = position(unit);
        reading.value = static_cast<double>(numbers.next<std::int32_t>());
        break;
    case 5:
        reading.setting.form = range(unit);
        reading.value = tarn::utils::Range<double>{numbers.next<double>(), numbers.next<double>()};
        break;
    default:
        reading.setting.form = list(unit);
        reading.value = numbers.rest();
    }
    reading.limits = {.lower = numbers.next<double>(), .upper = numbers.next<double>()};
    if (kind >= 0x80)
        reading.limits.list = numbers.rest();
    return reading;
}

} // namespace

/// A setting, what it takes and what an instrument shows of it, however odd that is.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t longest = 400; // some fifty numbers
    Numbers numbers{tarn::fuzz::textOf(data, std::min(size, longest))};
    const auto reading = makeReading(numbers);
    const auto text = valueText(reading, reading.value);
    require(!text.empty() && escaped(text) == text, "a value is shown in characters that print");
    require(!valueWord(reading, reading.value).contains(' '), "the word for a value is one word");
    const auto accepted = acceptedText(reading);
    require(escaped(accepted) == accepted, "what a setting takes is shown in characters that print");
    const auto object = json(reading);
    require(object.contains(QStringLiteral("value")) && object.contains(QStringLiteral("readOnly")),
            "JSON is complete");
    const auto other = otherValue(reading);
    require(!other || *other != reading.value, "another value is another one");
    return 0;
}
