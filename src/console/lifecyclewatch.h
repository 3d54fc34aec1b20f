#pragma once

#include <sdk/ivna.h>
#include <utils/mutex.h>
#include <utils/observerlist.h>

#include <QObject>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tarn::console {

/// Keeps count of how often an instrument drops its controls and offers them again, and waits for
/// them to come back.
///
/// Threads: thread-safe.
class LifecycleWatch final : public QObject, private sdk::IVna::Observer {
    Q_OBJECT

public:
    explicit LifecycleWatch(std::shared_ptr<sdk::IVna> device);
    ~LifecycleWatch() override;

    /// Is told of each change on the thread of the device.
    class Listener {
    public:
        Listener() = default;
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;
        virtual ~Listener() = default;

        virtual void onLifecycleChanged() = 0;
    };
    void add(Listener& listener) const { m_listeners.add(utils::Association<Listener>{listener}); }
    void remove(Listener& listener) const { m_listeners.remove(utils::Association<Listener>{listener}); }

    /// How often the instrument has dropped its controls, and offered them again.
    struct Counts {
        std::uint64_t drops = 0;
        std::uint64_t returns = 0;
    };

    [[nodiscard]] std::uint64_t drops() const;

    /// Whether the instrument has dropped its controls and not offered them again yet.
    [[nodiscard]] bool isAway() const;

    /// Runs `operation`, which must be quick, and holds the instrument back from dropping its controls
    /// meanwhile. Returns what it returns; false, without running it, if the controls are away.
    bool whileHere(const std::function<bool()>& operation) const;

    /// Waits, at most for `patience`, until the controls are not away. The counts of that moment,
    /// or nothing if they still are.
    [[nodiscard]] std::optional<Counts> waitUntilBack(std::chrono::milliseconds patience) const;

signals:
    /// The controls are about to go, or are back. Emitted on a thread of the device.
    void changed();

private:
    void onControlsAboutToBeReleased() override;
    void onControlsAvailable() override;
    void tell();

    const std::shared_ptr<sdk::IVna> m_device;
    mutable utils::Mutex m_mutex;
    mutable std::condition_variable_any m_back;
    mutable utils::ObserverList<Listener> m_listeners;
    Counts m_counts TARN_GUARDED_BY(m_mutex);
    bool m_away TARN_GUARDED_BY(m_mutex) = false;
};

} // namespace tarn::console
