#pragma once

#include <console/error.h>

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace tarn::console {

/// A file that a command reads, as messages speak of it.
struct SourceFile {
    std::string path; ///< `-` is standard input
    std::string_view example; ///< the command that prints a valid one: "system-terms example"
};

/// The error of a file that is not as its format asks for: what was `found` at `place` ("line 3",
/// "$.ports[0]") and what was `expected` there.
[[nodiscard]] inline Error badFile(const SourceFile& file, std::string_view place, std::string_view found,
                                   std::string_view expected)
{
    return Error{ErrorCode::LocalFile,
                 fmt::format("'{}', {}: found {}, expected {}", file.path, place, found, expected),
                 fmt::format("nothing was changed; 'tarn-service {}' prints a valid file", file.example)};
}

} // namespace tarn::console
