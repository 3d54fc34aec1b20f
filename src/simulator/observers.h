#pragma once

#include <utils/mutex.h>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <thread>
#include <type_traits>
#include <vector>

namespace tarn::simulator {

/// The observers of one part of the instrument. A control that somebody still holds after a drop is a way to the same
/// part: it registers nothing while none is on offer, and afterwards the same as the one that is.
/// Thread-safe, except that one thread at a time notifies. No lock is held while an observer is
/// notified.
template <class T>
class Observers {
public:
    Observers() = default;
    Observers(const Observers&) = delete;
    Observers& operator=(const Observers&) = delete;
    virtual ~Observers() = default;

    /// Registers `observer`, unless it is null or there is no registration now; twice is the same as once. From inside
    /// a notification, it takes part from the next one on.
    void add(T* observer)
    {
        const utils::MutexLock lock{m_mutex};
        if (m_isOpen && observer && std::ranges::find(m_observers, observer) == m_observers.end())
            m_observers.push_back(observer);
    }

    /// Ends the registration, and waits for the notification of `observer` that may be running on
    /// another thread.
    void remove(T* observer)
    {
        const utils::MutexLock lock{m_mutex};
        std::erase(m_observers, observer);
        const auto number = m_number;
        while (observer && m_notified == observer && m_number == number && m_thread != std::this_thread::get_id())
            waitForEnd(m_mutex);
    }

    /// There is registration from now on, as there is at first.
    void open()
    {
        const utils::MutexLock lock{m_mutex};
        m_isOpen = true;
    }

    /// Ends every registration, and has no more until it is opened. Does not wait.
    void close()
    {
        const utils::MutexLock lock{m_mutex};
        m_isOpen = false;
        m_observers.clear();
    }

    /// Calls `notification` on every observer in the order of registration. What one of them
    /// throws stays with it: the others are notified all the same, as nobody is there to catch.
    template <class... Values>
    void notify(void (T::*notification)(Values...), std::type_identity_t<Values>... values)
    {
        for (auto* const observer : registered()) {
            if (!begin(observer))
                continue;
            try {
                std::invoke(notification, observer, values...);
            } catch (...) { // NOLINT(bugprone-empty-catch)
            }
            end();
        }
    }

protected:
    /// Waits for the end of a notification. To be watched by tests.
    virtual void waitForEnd(utils::Mutex& mutex) TARN_REQUIRES(mutex) { m_ended.wait(mutex); }

private:
    [[nodiscard]] std::vector<T*> registered()
    {
        const utils::MutexLock lock{m_mutex};
        return m_observers;
    }

    [[nodiscard]] bool begin(T* observer)
    {
        const utils::MutexLock lock{m_mutex};
        if (std::ranges::find(m_observers, observer) == m_observers.end())
            return false;
        m_notified = observer;
        m_thread = std::this_thread::get_id();
        ++m_number;
        return true;
    }

    void end()
    {
        const utils::MutexLock lock{m_mutex};
        m_notified = nullptr;
        m_thread = {};
        m_ended.notify_all();
    }

    utils::Mutex m_mutex;
    std::condition_variable_any m_ended;
    bool m_isOpen TARN_GUARDED_BY(m_mutex) = true;
    std::vector<T*> m_observers TARN_GUARDED_BY(m_mutex);
    T* m_notified TARN_GUARDED_BY(m_mutex) = nullptr;
    std::thread::id m_thread TARN_GUARDED_BY(m_mutex);
    std::uint64_t m_number TARN_GUARDED_BY(m_mutex) = 0; ///< counts the notifications
};

} // namespace tarn::simulator
