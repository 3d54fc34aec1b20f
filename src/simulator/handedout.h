#pragma once

#include <utils/mutex.h>

#include <thread>
#include <unordered_map>
#include <utility>

namespace tarn::simulator {

/// What each thread was given last by reference; it stays in place while other threads ask. Thread-safe.
template <class T>
class HandedOut {
public:
    /// Gives `value` to this thread, in place of what it was given before.
    const T& give(T value)
    {
        const utils::MutexLock lock{m_mutex};
        return m_values[std::this_thread::get_id()] = std::move(value);
    }

private:
    utils::Mutex m_mutex;
    std::unordered_map<std::thread::id, T> m_values TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
