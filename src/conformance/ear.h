#pragma once

#include <conformance/record.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::conformance {

/// What one observer hears. Never destroyed, as a device may call it whenever it likes. Thread-safe.
class Ear {
public:
    struct Progress {
        unsigned int done;
        unsigned int total;
    };

    struct Notification {
        std::string what; ///< the function and what matters of its arguments
        std::optional<Progress> progress;
        Clock::time_point time;
        std::string inside; ///< the operation that it came inside of, on the caller's thread
        bool isLate = false; ///< whether the observer had been removed
    };

    explicit Ear(std::shared_ptr<Record> record)
        : m_record{std::move(record)}
    {
    }

    /// Runs in each notification. Before the observer is registered.
    void setReaction(std::function<void()> reaction) { m_reaction = std::move(reaction); }

    void hear(std::string what, std::optional<Progress> progress = {});

    /// The observer is no longer registered: what comes from now on is late.
    void onRemoved();

    [[nodiscard]] std::vector<Notification> heard() const;
    [[nodiscard]] std::size_t lateCount() const;

    /// Whether a notification is running.
    [[nodiscard]] bool isHearing() const;

    /// Waits until there are `count` notifications, one that is running included. False if they do not come in time.
    [[nodiscard]] bool waitFor(std::size_t count, std::chrono::milliseconds patience) const;

private:
    const std::shared_ptr<Record> m_record;
    std::function<void()> m_reaction;
    mutable utils::Mutex m_mutex;
    mutable std::condition_variable_any m_changed;
    std::vector<Notification> m_heard TARN_GUARDED_BY(m_mutex);
    unsigned m_running TARN_GUARDED_BY(m_mutex) = 0;
    bool m_isRemoved TARN_GUARDED_BY(m_mutex) = false;
};

/// An observer's way into a control and out again. Makes the calls, whose exceptions it passes on.
struct Registration {
    std::function<void()> add;
    std::function<void()> remove;
};

/// Keeps `object` until the program ends: a device that breaks its word may still use it.
void keepForEver(std::shared_ptr<void> object);

/// The registration of an observer of the type `Observer`, made with `ear`, at `control`.
template <class Observer, class Control>
[[nodiscard]] Registration registrationOf(std::shared_ptr<Control> control, std::shared_ptr<Ear> ear)
{
    auto owned = std::make_shared<Observer>(std::move(ear));
    auto* const observer = owned.get();
    keepForEver(std::move(owned));
    return {[control, observer] { control->addObserver(observer); },
            [control, observer] { control->removeObserver(observer); }};
}

} // namespace tarn::conformance
