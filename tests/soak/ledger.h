#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

namespace tarn::soak {

enum class Breach { Lost, Duplicated, Late, Leaked };

/// What has happened, and what of it should not have. Thread-safe.
class Ledger {
public:
    explicit Ledger(std::uint64_t seed)
        : m_seed{seed}
    {
    }

    /// Counts a breach; the first ones are told on the standard error output.
    void note(Breach breach, const std::string& what, std::uint64_t count = 1);

    /// Whether there was no breach, and something that could have been one.
    [[nodiscard]] bool isClean() const;

    /// The one line in which it ends.
    [[nodiscard]] std::string summary() const;

    [[nodiscard]] std::uint64_t seed() const { return m_seed; }

    std::atomic<std::uint64_t> cycles = 0; ///< drops that were followed by an offer
    std::atomic<std::uint64_t> calls = 0; ///< operations that reached the instrument
    std::atomic<std::uint64_t> notifications = 0; ///< that reached an observer
    std::atomic<std::uint64_t> refusals = 0; ///< long requests that failed as the instrument was busy

private:
    static constexpr int toldAtMost = 20;

    [[nodiscard]] std::uint64_t count(Breach breach) const { return m_counts.at(static_cast<std::size_t>(breach)); }

    const std::uint64_t m_seed;
    std::array<std::atomic<std::uint64_t>, 4> m_counts{};
    std::mutex m_mutex;
    int m_told = 0;
};

} // namespace tarn::soak
