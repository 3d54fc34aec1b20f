#pragma once

#include <devices/lockedcontrol.h>
#include <sdk/controlhandle.h>
#include <utils/mutex.h>

#include <functional>
#include <memory>
#include <utility>

namespace tarn::devices {

/// The one way by which an adapter reaches its SDK control: a weak handle that is asked for again
/// from the device once it has expired. It never keeps the control alive beyond one result of
/// `lock()`.
///
/// Threads: thread-safe; calls through, as the reacquire function does. The mutex guards the cached
/// handle alone and is never held while the device or a control is called.
template <class T>
class ReacquiringControl {
public:
    /// Asks the device for the control; may be empty, may return an empty or expired handle.
    using Reacquire = std::function<sdk::ControlHandle<T>()>;

    /// Keeps `reacquire` and calls it once for the first handle. What it throws passes through.
    explicit ReacquiringControl(Reacquire reacquire)
        : m_reacquire{std::move(reacquire)}
        , m_cached{m_reacquire ? m_reacquire() : sdk::ControlHandle<T>{}}
    {
    }

    /// Takes over the function and the cached handle. The source keeps its handle but can no
    /// longer ask the device. Not noexcept: the mutex of the source, taken for the handle, can fail.
    ///
    /// Threads: reentrant; at once. Nobody else may be using `other`.
    // NOLINTNEXTLINE(*-noexcept-move*)
    ReacquiringControl(ReacquiringControl&& other)
        : m_reacquire{std::exchange(other.m_reacquire, nullptr)}
        , m_cached{other.cached()}
    {
    }

    ReacquiringControl& operator=(ReacquiringControl&&) = delete;
    ~ReacquiringControl() = default;

    /// A strong handle to the control, or an empty one when the device does not offer it.
    ///
    /// A live handle costs no call to the device, an unavailable one exactly one call each time:
    /// failure is not cached, nothing is retried. Threads that find the handle expired at the same
    /// moment may each ask the device; each returns its own result and the last store stays.
    ///
    /// Throws `std::system_error` if the mutex cannot be locked, and whatever the reacquire
    /// function throws; the cached handle is then as it was.
    [[nodiscard]] LockedControl<T> lock() const
    {
        if (auto locked = promote(cached()))
            return locked;
        if (!m_reacquire)
            return {};
        auto fresh = m_reacquire();
        auto locked = promote(fresh);
        const utils::MutexLock lock{m_mutex};
        m_cached = std::move(fresh);
        return locked;
    }

private:
    [[nodiscard]] sdk::ControlHandle<T> cached() const
    {
        const utils::MutexLock lock{m_mutex};
        return m_cached;
    }

    [[nodiscard]] static LockedControl<T> promote(const sdk::ControlHandle<T>& handle)
    {
        auto owner = handle.lock();
        auto* const control = owner.get();
        if (!control)
            return {};
        return {std::move(owner), control};
    }

    Reacquire m_reacquire;
    mutable sdk::ControlHandle<T> m_cached TARN_GUARDED_BY(m_mutex);
    mutable utils::Mutex m_mutex;
};

} // namespace tarn::devices
