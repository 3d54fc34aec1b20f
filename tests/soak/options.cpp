#include "options.h"

#include <charconv>
#include <limits>
#include <string>
#include <string_view>

namespace tarn::soak {

namespace {

std::uint64_t number(const std::string& option, std::string_view text, std::uint64_t least, std::uint64_t most)
{
    std::uint64_t value = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < least || value > most)
        throw BadOption{option + " takes a whole number from " + std::to_string(least) + " to " + std::to_string(most)
                        + ", not \"" + std::string{text} + "\""};
    return value;
}

void take(Options& options, const std::string& option, std::string_view text)
{
    constexpr std::uint64_t any = std::numeric_limits<std::uint64_t>::max();
    constexpr std::uint64_t day = 24 * 60;
    const auto setTime = [&](auto unit, std::uint64_t most) {
        options.time = unit * number(option, text, 1, most);
        options.cycles = 0;
    };
    if (option == "--minutes") {
        setTime(std::chrono::minutes{1}, 7 * day);
    } else if (option == "--seconds") {
        setTime(std::chrono::seconds{1}, 7 * day * 60);
    } else if (option == "--cycles") {
        options.cycles = number(option, text, 1, any);
        options.time = {};
    } else if (option == "--threads") {
        options.threads = number(option, text, 1, 256);
    } else if (option == "--seed") {
        options.seed = number(option, text, 0, any);
    } else {
        throw BadOption{"there is no option " + option
                        + "; the options are --minutes, --seconds, --cycles, --threads and --seed"};
    }
}

} // namespace

Options parse(std::span<const char* const> arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        const std::string option{arguments[i]};
        take(options, option, i + 1 < arguments.size() ? arguments[i + 1] : "");
    }
    return options;
}

} // namespace tarn::soak
