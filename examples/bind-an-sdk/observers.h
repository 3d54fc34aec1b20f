#pragma once

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

namespace binding {

/// The observers of a device or of a control, not owned. Any thread adds and removes; the vendor's alone notifies.
///
/// GUARANTEE, threads: no lock is held while an observer is notified, so that it may call whatever it likes.
template <class T>
class Observers {
public:
    /// GUARANTEE: registering an observer twice is the same as once.
    void add(T* observer)
    {
        const std::scoped_lock lock{m_mutex};
        if (std::ranges::find(m_observers, observer) == m_observers.end())
            m_observers.push_back(observer);
    }

    /// GUARANTEE, removal: once it has returned, no notification of the observer is running or will start. Inside that
    /// very notification there is nothing to wait for.
    void remove(T* observer)
    {
        std::unique_lock lock{m_mutex};
        std::erase(m_observers, observer);
        m_ended.wait(lock, [&] { return m_notified != observer || m_thread == std::this_thread::get_id(); });
    }

    /// GUARANTEE: what an observer throws ends with it; the others are notified all the same.
    template <class... Values>
    void notify(void (T::*notification)(Values...), std::type_identity_t<Values>... values) noexcept
    {
        for (auto* const observer : registered()) {
            if (!begin(observer))
                continue; // removed meanwhile
            try {
                std::invoke(notification, observer, values...);
            } catch (...) { // NOLINT(bugprone-empty-catch)
            }
            end();
        }
    }

private:
    std::vector<T*> registered()
    {
        const std::scoped_lock lock{m_mutex};
        return m_observers;
    }

    bool begin(T* observer)
    {
        const std::scoped_lock lock{m_mutex};
        if (std::ranges::find(m_observers, observer) == m_observers.end())
            return false;
        m_notified = observer;
        m_thread = std::this_thread::get_id();
        return true;
    }

    void end()
    {
        const std::scoped_lock lock{m_mutex};
        m_notified = nullptr;
        m_ended.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::vector<T*> m_observers;
    T* m_notified = nullptr; ///< who is being notified
    std::thread::id m_thread; ///< and on which thread
};

} // namespace binding
