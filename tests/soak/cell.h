#pragma once

#include <atomic>
#include <cstdint>

namespace tarn::soak {

/// A place in the instrument that one thread writes ascending numbers to, starting at 1, and any thread reads. What is
/// read there is the number modulo `range`.
class Cell {
public:
    explicit Cell(std::uint64_t range)
        : m_range{range}
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
        bool isKnown;
        std::uint64_t wipes;
        std::uint64_t least;
    };
    [[nodiscard]] Reading beginReading() const { return {isFilled(), m_wipes, m_completed}; }

    /// Whether a reading that ends now can have found `value`.
    [[nodiscard]] bool canHold(const Reading& reading, std::uint64_t value) const
    {
        if (!reading.isKnown || m_wipes != reading.wipes)
            return true;
        const auto most = m_started.load();
        return (value + m_range - reading.least % m_range) % m_range <= most - reading.least;
    }

    /// A write has filled what was wiped out.
    void fill() { m_writtenAfter = m_wipes.load(); }

    [[nodiscard]] std::uint64_t last() const { return m_completed; }

private:
    const std::uint64_t m_range;
    std::atomic<std::uint64_t> m_started = 0;
    std::atomic<std::uint64_t> m_completed = 0;
    std::atomic<std::uint64_t> m_wipes = 0;
    std::atomic<std::uint64_t> m_writtenAfter = 0;
};

} // namespace tarn::soak
