#pragma once

#include <functional>
#include <span>
#include <vector>

namespace tarn::devices::service {

/// What `convert` makes of each element of `from`, a vector or a span, in order. A lambda becomes part of the loop; a
/// function may be called for each element, which for records took more than twice the time.
template <class To, class Elements, class Convert>
[[nodiscard]] std::vector<To> convertAll(const Elements& from, Convert convert)
{
    std::vector<To> to;
    to.reserve(from.size());
    for (const auto& element : from)
        to.push_back(std::invoke(convert, element));
    return to;
}

/// The elements of `values`, in order.
template <class Value>
[[nodiscard]] std::vector<Value> copyOf(std::span<const Value> values)
{
    return {values.begin(), values.end()};
}

} // namespace tarn::devices::service
