#include "request.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace binding {

namespace {

class Category final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "vendorvna"; }
    [[nodiscard]] std::string message(int status) const override { return vv_text(status); }
};

/// What lies at `data`, which need not be aligned.
template <class T>
T copyOf(const void* data)
{
    T value;
    std::memcpy(&value, data, sizeof(value));
    return value;
}

} // namespace

std::error_code codeOf(int status)
{
    static const Category category;
    return {status, category};
}

template <>
unsigned int convert(const void* data, std::size_t /*size*/)
{
    return copyOf<std::uint32_t>(data);
}

template <>
std::vector<std::uint8_t> convert(const void* data, std::size_t size)
{
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

template <>
std::vector<sdk::service::IFileMemoryControl::FileInfo> convert(const void* data, std::size_t size)
{
    std::vector<sdk::service::IFileMemoryControl::FileInfo> list;
    for (std::size_t at = 0; at + sizeof(vv_file) <= size; at += sizeof(vv_file)) {
        const auto file = copyOf<vv_file>(static_cast<const std::byte*>(data) + at);
        const auto* const end = std::find(std::begin(file.name), std::end(file.name), '\0');
        list.push_back({.name = {std::begin(file.name), end}, .size = file.size});
    }
    return list;
}

template <>
sdk::service::IFileMemoryControl::SpaceInfo convert(const void* data, std::size_t /*size*/)
{
    const auto space = copyOf<vv_space>(data);
    return {.total = space.total, .used = space.used, .free = space.total - space.used};
}

} // namespace binding
