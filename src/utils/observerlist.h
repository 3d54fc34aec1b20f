#pragma once

#include <utils/association.h>
#include <utils/mutex.h>

#include <functional>
#include <vector>

namespace tarn::utils {

/// An ordered list of observers behind a mutex.
///
/// Threads: thread-safe; blocks while another thread notifies; calls the observers with the mutex held.
///
/// The mutex is held for the whole of a notification, deliberately: once `remove` has returned,
/// the observer is not being notified and never will be again. The price is that an observer must
/// not add or remove observers of the same list from inside a notification (it would wait for
/// itself). A mutex that cannot be locked throws `std::system_error`.
template <class T>
class ObserverList {
public:
    /// Appends `observer`. Adding it twice makes it be notified twice.
    void add(Association<T> observer)
    {
        const MutexLock lock{m_mutex};
        m_observers.push_back(observer);
    }

    /// Erases every entry for `observer`; the others keep their order. Does nothing if there is
    /// none.
    void remove(Association<T> observer)
    {
        const MutexLock lock{m_mutex};
        std::erase(m_observers, observer);
    }

    /// Calls `operation` with `arguments` on every observer in the order of registration. An
    /// exception from an observer ends the pass and reaches the caller.
    template <class Operation, class... Arguments>
    void notify(Operation operation, const Arguments&... arguments)
    {
        const MutexLock lock{m_mutex};
        for (const auto& observer : m_observers)
            std::invoke(operation, *observer, arguments...);
    }

private:
    Mutex m_mutex;
    std::vector<Association<T>> m_observers TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::utils
