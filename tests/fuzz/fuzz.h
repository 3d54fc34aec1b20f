#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <source_location>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::fuzz {

/// Ends the program unless `holds`: that is a finding.
inline void require(bool holds, const char* what, std::source_location where = std::source_location::current())
{
    if (holds)
        return;
    std::fprintf(stderr, "%s:%u: not so: %s\n", where.file_name(), static_cast<unsigned>(where.line()), what);
    std::abort();
}

/// What the fuzzer hands out, as text.
[[nodiscard]] inline std::string_view textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// The parts of `text` between `separator`; at least one.
[[nodiscard]] inline std::vector<std::string> split(std::string_view text, std::string_view separator)
{
    std::vector<std::string> parts;
    for (auto end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end + separator.size());
    }
    parts.emplace_back(text);
    return parts;
}

} // namespace tarn::fuzz

/// Every target defines it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
