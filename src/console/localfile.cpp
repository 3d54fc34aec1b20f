#include <console/localfile.h>

#include <console/error.h>
#include <console/interruptguard.h>
#include <console/platform.h>

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

namespace tarn::console {

namespace {

Error cannot(std::string_view what, const std::string& path, const std::error_code& error)
{
    return Error{ErrorCode::LocalFile, fmt::format("cannot {} '{}': {}", what, path, error.message()),
                 "check the path, its permissions and the free space"};
}

Error existsAlready(const std::string& path)
{
    return Error{ErrorCode::Refused, fmt::format("'{}' exists already with other contents; it is as it was", path),
                 "--overwrite replaces it, -o PATH writes elsewhere"};
}

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); } // NOLINT(cppcoreguidelines-owning-memory)
};

/// Hands the contents of the file at `path`, `-` being standard input, to `take` in pieces, until it
/// returns false.
template <class Take>
std::error_code readInPieces(const std::string& path, Take take)
{
    const bool isInput = path == "-";
    const std::unique_ptr<std::FILE, Close> opened{isInput ? nullptr : std::fopen(path.c_str(), "rb")};
    auto* const file = isInput ? stdin : opened.get();
    if (!file)
        return {errno, std::generic_category()};
    std::array<char, 65536> block{};
    while (std::feof(file) == 0 && std::ferror(file) == 0) {
        const auto length = std::fread(block.data(), 1, block.size(), file);
        if (length > 0 && !take(std::string_view{block.data(), length}))
            return {};
    }
    return std::ferror(file) ? std::error_code{errno, std::generic_category()} : std::error_code{};
}

/// The contents of a file in any container of bytes.
template <class Container>
Container readWhole(const std::string& path, std::size_t limit)
{
    using Size = decltype(Container{}.size());
    Container contents;
    std::error_code unknown;
    const auto size = std::filesystem::file_size(path, unknown);
    if (!unknown && size <= limit)
        contents.reserve(static_cast<Size>(size)); // growing would cost memory
    std::size_t length = 0;
    const auto error = readInPieces(path, [&](std::string_view piece) {
        const auto old = std::exchange(length, length + piece.size());
        if (length > limit)
            return false;
        contents.resize(static_cast<Size>(length));
        std::memcpy(contents.data() + old, piece.data(), piece.size());
        return true;
    });
    if (error)
        throw cannot("read", path, error);
    if (length > limit)
        throw cannot("read", path, std::make_error_code(std::errc::file_too_large));
    return contents;
}

/// Whether the file at `path` can be read and has exactly these contents.
bool holds(const std::string& path, std::string_view contents)
{
    const auto error = readInPieces(path, [&](std::string_view piece) {
        const bool same = contents.starts_with(piece);
        contents.remove_prefix(same ? piece.size() : 0);
        return same;
    });
    return !error && contents.empty();
}

/// Whether there is a file at `path`. Throws if there is anything else.
bool isFile(const std::string& path)
{
    std::error_code unknown; // it shows in the writing
    switch (std::filesystem::symlink_status(path, unknown).type()) {
    case std::filesystem::file_type::none:
    case std::filesystem::file_type::not_found:
        return false;
    case std::filesystem::file_type::directory:
        throw cannot("write", path, std::make_error_code(std::errc::is_a_directory));
    case std::filesystem::file_type::symlink:
        throw Error{ErrorCode::Refused, fmt::format("'{}' is a link, and nothing is written through a link", path),
                    "delete the link, name another path with -o PATH, or standard output with -o -"};
    case std::filesystem::file_type::regular:
        return true;
    default:
        throw Error{ErrorCode::Refused, fmt::format("'{}' is not a regular file", path),
                    "name another path with -o PATH, or standard output with -o -"};
    }
}

} // namespace

QByteArray readLocalFile(const std::string& path, std::size_t limit)
{
    return readWhole<QByteArray>(path, limit);
}

std::vector<std::byte> readLocalImage(const std::string& path, std::size_t limit)
{
    return readWhole<std::vector<std::byte>>(path, limit);
}

void checkDestination(const std::string& path)
{
    const auto folder = std::filesystem::path{path}.parent_path();
    std::error_code error;
    if (!isFile(path) && !folder.empty() && !std::filesystem::is_directory(folder, error))
        throw cannot("write", path, error ? error : std::make_error_code(std::errc::not_a_directory));
}

LocalWrite writeLocalFile(const std::string& path, QByteArrayView contents, bool overwrite)
{
    if (isFile(path)) {
        if (holds(path, {contents.data(), static_cast<std::size_t>(contents.size())}))
            return LocalWrite::Identical;
        if (!overwrite)
            throw existsAlready(path);
    }
    const platform::InterruptGuard untilItIsWhole;
    const auto error
        = platform::writeFile(path, contents, overwrite ? platform::Existing::Replace : platform::Existing::Keep);
    if (error == std::errc::file_exists)
        throw existsAlready(path);
    if (error)
        throw cannot("write", path, error);
    if (untilItIsWhole.isRequested())
        throw Error{ErrorCode::Interrupted, fmt::format("interrupted after '{}' was written", path),
                    "the file is whole; nothing else was changed"};
    return LocalWrite::Written;
}

} // namespace tarn::console
