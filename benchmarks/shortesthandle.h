#pragma once

#include <sdk/controlhandle.h>

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace tarn::benchmarks {

/// The least that does what `devices::ReacquiringControl` promises: one handle, kept behind a mutex and asked for again
/// once it has expired.
template <class Sdk>
class ShortestHandle {
public:
    using Handle = sdk::ControlHandle<Sdk>;

    explicit ShortestHandle(std::function<Handle()> reacquire)
        : m_reacquire{std::move(reacquire)}
        , m_cached{m_reacquire()}
    {
    }

    [[nodiscard]] std::shared_ptr<Sdk> lock()
    {
        if (auto control = cached().lock())
            return control;
        auto fresh = m_reacquire();
        auto control = fresh.lock();
        const std::scoped_lock lock{m_mutex};
        m_cached = std::move(fresh);
        return control;
    }

private:
    [[nodiscard]] Handle cached()
    {
        const std::scoped_lock lock{m_mutex};
        return m_cached;
    }

    std::function<Handle()> m_reacquire;
    std::mutex m_mutex;
    Handle m_cached;
};

} // namespace tarn::benchmarks
