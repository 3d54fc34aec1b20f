#pragma once

namespace tarn::utils {

/// The values from `lower` to `upper`, both included.
template <class T>
struct Range {
    T lower; ///< the lower bound
    T upper; ///< the upper bound

    friend bool operator==(const Range&, const Range&) = default;
};

} // namespace tarn::utils
