#pragma once

#include <atomic>
#include <cstdint>

namespace tarn::soak {

/// A place in the instrument that one thread writes ascending numbers to, starting at 1, and any thread reads. What is
/// read there is the number modulo `range`, and up to `lag` writes old.
class Cell {
public:
    Cell(std::uint64_t range, std::uint64_t lag)
        : m_range{range}
        , m_lag{lag}
    {
    }

    /// The next number is being written. It was, or nothing has changed.
    [[nodiscard]] std::uint64_t begin() { return m_started = m_completed + 1; }
    void end(bool isWritten)
    {
        if (isWritten)
            m_completed = m_started.load();
        else
            m_started = m_completed.load();
    }

    /// What is there is being wiped out.
    void wipe() { ++m_wipes; }

    /// Whether a number is known to be there.
    [[nodiscard]] bool isFilled() const { return m_completed != 0 && m_wipes == m_writtenAfter; }

    /// What a read that begins now can find.
    struct Reading {
        std::uint64_t wipes;
        std::uint64_t least;
    };
    [[nodiscard]] Reading beginReading() const { return {m_wipes, m_completed}; }

    /// Whether a reading that ends now can have found `value`.
    [[nodiscard]] bool canHold(const Reading& reading, std::uint64_t value) const
    {
        const auto most = m_started.load();
        if (reading.least <= m_lag || m_wipes != reading.wipes || reading.wipes != m_writtenAfter)
            return true; // nothing has been written, as far as is known
        const auto least = reading.least - m_lag;
        return (value + m_range - least % m_range) % m_range <= most - least;
    }

    /// A write has filled what was wiped out.
    void fill() { m_writtenAfter = m_wipes.load(); }

    [[nodiscard]] std::uint64_t last() const { return m_completed; }
    [[nodiscard]] std::uint64_t range() const { return m_range; }

private:
    const std::uint64_t m_range;
    const std::uint64_t m_lag;
    std::atomic<std::uint64_t> m_started = 0;
    std::atomic<std::uint64_t> m_completed = 0;
    std::atomic<std::uint64_t> m_wipes = 0;
    std::atomic<std::uint64_t> m_writtenAfter = 0;
};

} // namespace tarn::soak
