#pragma once

#include <cstdint>
#include <vector>

namespace sdk {

/// The frequencies at which an instrument measures, segment by segment.
struct FrequencyPlan {
    /// `pointCount` points spaced evenly from `startFrequency` to `stopFrequency`, both included; a
    /// single point lies at `startFrequency`.
    struct Segment {
        double startFrequency; ///< in hertz
        double stopFrequency; ///< in hertz
        std::int32_t pointCount; ///< number of measurement points

        friend bool operator==(const Segment&, const Segment&) = default;
    };

    std::vector<Segment> segments; ///< in the order in which they are swept

    friend bool operator==(const FrequencyPlan&, const FrequencyPlan&) = default;
};

} // namespace sdk
