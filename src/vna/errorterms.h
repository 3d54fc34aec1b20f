#pragma once

#include <cassert>
#include <complex>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace tarn::vna {

/// The systematic errors of one test port while it measures a reflection, at one frequency.
struct ReflectionTerms {
    std::complex<double> directivity; ///< leakage of the port's directional device
    std::complex<double> sourceMatch; ///< reflection of the port while it is the source
    std::complex<double> reflectionTracking; ///< response of the reflection path

    friend bool operator==(const ReflectionTerms&, const ReflectionTerms&) = default;
};

/// The systematic errors of one ordered pair of test ports while it measures a transmission, at
/// one frequency.
struct TransmissionTerms {
    std::complex<double> loadMatch; ///< reflection of the receiving port
    std::complex<double> transmissionTracking; ///< response of the transmission path
    std::complex<double> isolation; ///< crosstalk from the source to the receiver

    friend bool operator==(const TransmissionTerms&, const TransmissionTerms&) = default;
};

/// The error terms of a full n-port error model, ordered by frequency point: at each point the
/// reflection terms of every port and the transmission terms of every ordered pair of different
/// ports. For two ports this is the twelve-term model. All terms are linear and complex.
///
/// Ports carry their numbers, from 1. Always complete: a term that was not set is 0.
///
/// Threads: reentrant; at once.
class ErrorTerms {
public:
    /// No port and no frequency.
    ErrorTerms() = default;

    /// Terms of `portCount` ports at `frequencies` (in hertz), all of them 0. Neither order nor
    /// range of the frequencies matters here; an instrument is more particular.
    ErrorTerms(std::size_t portCount, std::vector<double> frequencies)
        : m_portCount{portCount}
        , m_frequencies{std::move(frequencies)}
        , m_reflection(m_frequencies.size() * portCount)
        , m_transmission(m_frequencies.size() * portCount * (portCount > 0 ? portCount - 1 : 0))
    {
    }

    /// The number of ports.
    [[nodiscard]] std::size_t portCount() const noexcept { return m_portCount; }

    /// The frequencies of the points, in hertz.
    [[nodiscard]] std::span<const double> frequencies() const noexcept { return m_frequencies; }

    /// The terms of `port` (1 to `portCount()`) at frequency number `point` (from 0).
    [[nodiscard]] ReflectionTerms& reflection(std::size_t point, std::size_t port)
    {
        return m_reflection[reflectionIndex(point, port)];
    }

    /// The same, to be read.
    [[nodiscard]] const ReflectionTerms& reflection(std::size_t point, std::size_t port) const
    {
        return m_reflection[reflectionIndex(point, port)];
    }

    /// The terms of the signal that port `source` sends and port `receiver` receives, two different
    /// ports, at frequency number `point` (from 0): those of the S-parameter S(receiver, source).
    [[nodiscard]] TransmissionTerms& transmission(std::size_t point, std::size_t receiver, std::size_t source)
    {
        return m_transmission[transmissionIndex(point, receiver, source)];
    }

    /// The same, to be read.
    [[nodiscard]] const TransmissionTerms& transmission(std::size_t point, std::size_t receiver,
                                                        std::size_t source) const
    {
        return m_transmission[transmissionIndex(point, receiver, source)];
    }

    friend bool operator==(const ErrorTerms&, const ErrorTerms&) = default;

private:
    [[nodiscard]] std::size_t reflectionIndex(std::size_t point, std::size_t port) const
    {
        assert(point < m_frequencies.size() && port - 1 < m_portCount);
        return (point * m_portCount) + port - 1;
    }

    [[nodiscard]] std::size_t transmissionIndex(std::size_t point, std::size_t receiver, std::size_t source) const
    {
        assert(point < m_frequencies.size() && receiver - 1 < m_portCount && source - 1 < m_portCount
               && receiver != source);
        const std::size_t column = source - (source < receiver ? 1 : 2); // a row has no entry for its own port
        return (((point * m_portCount) + receiver - 1) * (m_portCount - 1)) + column;
    }

    std::size_t m_portCount = 0;
    std::vector<double> m_frequencies;
    std::vector<ReflectionTerms> m_reflection; ///< by point, then port
    std::vector<TransmissionTerms> m_transmission; ///< by point, then receiver, then source
};

} // namespace tarn::vna
