#pragma once

#include <functional>
#include <vector>

namespace tarn::devices::service {

/// What `convert` makes of each element of `from`, in order.
template <class To, class From, class Convert>
[[nodiscard]] std::vector<To> convertAll(const std::vector<From>& from, Convert convert)
{
    std::vector<To> to;
    to.reserve(from.size());
    for (const auto& element : from)
        to.push_back(std::invoke(convert, element));
    return to;
}

} // namespace tarn::devices::service
