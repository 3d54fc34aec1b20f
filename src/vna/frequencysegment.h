#pragma once

#include <cstdint>

namespace tarn::vna {

/// One segment of a frequency plan: `pointCount` measurement points spaced evenly from `start` to
/// `stop`, both included. It may run downwards and may hold no point at all. Reentrant.
struct FrequencySegment {
    double start; ///< frequency of the first point, in hertz
    double stop; ///< frequency of the last point, in hertz
    std::uint32_t pointCount; ///< number of measurement points

    friend bool operator==(const FrequencySegment&, const FrequencySegment&) = default;
};

} // namespace tarn::vna
