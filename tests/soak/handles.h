#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace tarn::soak {

/// The handle that an adapter keeps of its control, as far as can be told from outside: an answer of the device is
/// stored somewhat later than it is seen, so while operations overlap it is one of several. Thread-safe.
class Handles {
public:
    /// An operation that may ask the device begins. If the handle has expired: how often the device was asked before.
    std::optional<std::uint64_t> begin()
    {
        const std::scoped_lock lock{m_mutex};
        m_isAlone = m_open++ == 0;
        const auto haveExpired = [](const auto& handles) { return std::ranges::all_of(handles, &Handle::expired); };
        return haveExpired(m_kept) && haveExpired(m_answers) ? std::optional{m_asks} : std::nullopt;
    }

    /// The device has answered it. Whether it was asked needlessly: whatever handle was found, it was alive.
    [[nodiscard]] bool answer(const std::shared_ptr<void>& control)
    {
        const std::scoped_lock lock{m_mutex};
        ++m_asks;
        if (m_isAlone)
            store();
        const auto areAlive = [](const auto& handles) { return std::ranges::none_of(handles, &Handle::expired); };
        const bool isNeedless = areAlive(m_kept) && areAlive(m_answers);
        if (std::erase_if(m_answers, [](const auto& handle) { return handle.expired(); }) != 0)
            m_answers.emplace_back(); // one stands for all that have expired
        m_answers.emplace_back(control);
        return isNeedless;
    }

    /// It ends.
    void end()
    {
        const std::scoped_lock lock{m_mutex};
        if (--m_open == 0)
            store();
    }

    [[nodiscard]] std::uint64_t asks() const
    {
        const std::scoped_lock lock{m_mutex};
        return m_asks;
    }

private:
    using Handle = std::weak_ptr<void>;

    /// All answers were stored, the one or the other as the last.
    void store()
    {
        if (!m_answers.empty())
            m_kept = std::exchange(m_answers, {});
    }

    mutable std::mutex m_mutex;
    std::uint64_t m_asks = 0;
    unsigned m_open = 0; ///< operations
    bool m_isAlone = false; ///< the operation that is open: none has overlapped it so far
    std::vector<Handle> m_kept{1}; ///< the adapter had one of these when nothing was open
    std::vector<Handle> m_answers; ///< since then
};

} // namespace tarn::soak
