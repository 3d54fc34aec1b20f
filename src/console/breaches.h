#pragma once

#include <console/output.h>
#include <guard/guard.h>
#include <utils/mutex.h>

#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace tarn::console {

/// Hears from the guard how an instrument breaks its word: counts the requests that it has not answered, and warns,
/// once for each operation, of what does no harm.
///
/// Threads: thread-safe.
class Breaches final : public guard::IBreachObserver {
public:
    /// The requests that were not answered so far, by what the instrument did instead.
    struct Counts {
        unsigned timedOut = 0; ///< nothing in time
        unsigned dropped = 0; ///< it gave them up
    };

    explicit Breaches(Output output)
        : m_output{std::move(output)}
    {
    }

    [[nodiscard]] Counts counts() const;

private:
    void onBreach(const guard::BreachReport& report) noexcept override;
    void onProgress() noexcept override;

    void warn(const guard::BreachReport& report, std::string_view what) noexcept;

    const Output m_output; ///< a copy: an instrument may break its word when everything else has ended
    mutable utils::Mutex m_mutex;
    Counts m_counts TARN_GUARDED_BY(m_mutex);
    std::set<std::tuple<guard::Breach, sdk::Key, std::string_view>> m_warned TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::console
