#pragma once

#include <complex>
#include <cstdint>
#include <vector>

namespace sdk::corrections {

/// The error terms of a full n-port error model, ordered by term: each is a trace over frequency,
/// with one linear, complex value per element of `frequencies`.
struct ErrorTerms {
    /// A term over frequency.
    using Trace = std::vector<std::complex<double>>;

    /// The systematic errors of one test port while it measures a reflection.
    struct Port {
        Trace directivity; ///< leakage of the port's directional device
        Trace sourceMatch; ///< reflection of the port while it is the source
        Trace reflectionTracking; ///< response of the reflection path

        friend bool operator==(const Port&, const Port&) = default;
    };

    /// The systematic errors of an ordered pair of test ports while it measures a transmission.
    struct PortPair {
        std::uint32_t sourcePort{}; ///< number of the port that sends, from 1
        std::uint32_t receiverPort{}; ///< number of the port that receives, from 1
        Trace loadMatch; ///< reflection of the receiving port
        Trace transmissionTracking; ///< response of the transmission path
        Trace isolation; ///< crosstalk from the source to the receiver

        friend bool operator==(const PortPair&, const PortPair&) = default;
    };

    std::vector<double> frequencies; ///< in hertz
    std::vector<Port> ports; ///< port 1 first
    std::vector<PortPair> portPairs; ///< ascending by source port, then by receiver port

    friend bool operator==(const ErrorTerms&, const ErrorTerms&) = default;
};

} // namespace sdk::corrections
