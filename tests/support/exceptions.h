#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace tarn::tests {

/// One exception of each kind that a device or the system may throw.
[[nodiscard]] inline std::vector<std::exception_ptr> anyExceptions()
{
    struct OutsideTheStandardHierarchy { };
    return {std::make_exception_ptr(std::runtime_error{"device"}), std::make_exception_ptr(std::bad_alloc{}),
            std::make_exception_ptr(std::system_error{std::make_error_code(std::errc::io_error)}),
            std::make_exception_ptr(OutsideTheStandardHierarchy{})};
}

/// The exception object that comes out of `call`, or null.
template <class Call>
[[nodiscard]] std::exception_ptr thrownBy(Call call)
{
    try {
        call();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

} // namespace tarn::tests
