#pragma once

#include <sdk/completion.h>
#include <sdk/service/ifilememorycontrol.h>

#include <vendorvna.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <system_error>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace binding {

/// A status of the vendor's as an error code, whose value is 0 exactly for `VV_OK` and whose message is the vendor's.
[[nodiscard]] std::error_code codeOf(int status);

/// The data of an answer as the contract's type; the specializations are those that the controls need.
template <class Value>
[[nodiscard]] Value convert(const void* data, std::size_t size);

template <>
unsigned int convert(const void* data, std::size_t size);
template <>
std::vector<std::uint8_t> convert(const void* data, std::size_t size);
template <>
std::vector<sdk::service::IFileMemoryControl::FileInfo> convert(const void* data, std::size_t size);
template <>
sdk::service::IFileMemoryControl::SpaceInfo convert(const void* data, std::size_t size);

/// What the vendor's library calls, with a completion that it was given as the context.
///
/// GUARANTEE, exactly one completion: the answer comes once, takes the completion over and lets it go with its end. It
/// belongs to the request and not to a control, so that a drop meanwhile changes nothing. What cannot be converted is
/// completed all the same, with an error.
///
/// GUARANTEE, threads: it is called on the vendor's thread, with no lock held.
template <class... Values>
void complete(void* context, int status, [[maybe_unused]] const void* data, [[maybe_unused]] std::size_t size) noexcept
{
    const std::unique_ptr<sdk::Completion<Values...>> completion{static_cast<sdk::Completion<Values...>*>(context)};
    std::tuple<Values...> values;
    auto error = codeOf(status);
    try {
        if (!error)
            values = std::tuple<Values...>{convert<Values>(data, size)...};
    } catch (const std::bad_alloc&) {
        error = std::make_error_code(std::errc::not_enough_memory);
    }
    std::apply([&](auto&... value) { (*completion)(std::move(value)..., error); }, values);
}

/// Makes a request: `call` is the function of the vendor's and gets the callback with its context.
///
/// GUARANTEE, exactly one completion: a request that the library refuses gets no answer, and is completed here. What
/// throws before the call, for want of memory, leaves the completion uncalled.
template <class... Values, class Call>
void request(std::type_identity_t<sdk::Completion<Values...>> completion, Call call)
{
    auto context = std::make_unique<sdk::Completion<Values...>>(std::move(completion));
    if (const int status = call(&complete<Values...>, context.get()); status != VV_OK)
        (*context)(Values{}..., codeOf(status));
    else
        static_cast<void>(context.release()); // the answer has it, and may have come already
}

} // namespace binding
