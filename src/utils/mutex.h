#pragma once

#include <utils/threadannotations.h>

#include <mutex>

namespace tarn::utils {

/// A `std::mutex` that the compiler's lock analysis knows. Locking can fail as the standard one
/// does, with `std::system_error`.
///
/// Threads: thread-safe; `lock` blocks while another thread holds it.
class TARN_CAPABILITY("mutex") Mutex {
public:
    /// As that of `std::mutex`.
    void lock() TARN_ACQUIRE() { m_mutex.lock(); }

    /// As that of `std::mutex`.
    void unlock() TARN_RELEASE() { m_mutex.unlock(); }

private:
    std::mutex m_mutex;
};

/// Holds a `Mutex` for the length of a scope.
///
/// Threads: bound to the thread that made it; making it blocks while another thread holds the mutex.
class TARN_SCOPED_CAPABILITY MutexLock {
public:
    /// Locks `mutex` until the end of this object.
    explicit MutexLock(Mutex& mutex) TARN_ACQUIRE(mutex)
        : m_mutex{mutex}
    {
        m_mutex.lock();
    }
    ~MutexLock() TARN_RELEASE() { m_mutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    Mutex& m_mutex;
};

} // namespace tarn::utils
