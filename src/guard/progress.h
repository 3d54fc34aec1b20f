#pragma once

#include <guard/host.h>
#include <guard/pool.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <utils/mutex.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace tarn::guard {

/// Hears of progress and tells a host of it. Listeners are used again and never destroyed, so that a device can call
/// one whatever has become of the control. Thread-safe.
template <class Observer>
class Listener : public Observer {
public:
    void tell(std::weak_ptr<Host> host)
    {
        const utils::MutexLock lock{m_mutex};
        m_host.swap(host);
    }

protected:
    void onProgress()
    {
        if (const auto host = told())
            host->onProgress();
    }

private:
    [[nodiscard]] std::shared_ptr<Host> told()
    {
        const utils::MutexLock lock{m_mutex};
        return m_host.lock();
    }

    utils::Mutex m_mutex;
    std::weak_ptr<Host> m_host TARN_GUARDED_BY(m_mutex);
};

class MemoryListener final : public Listener<sdk::service::IMemoryOperationsControl::IObserver>,
                             public Pooled<MemoryListener> {
public:
    static MemoryListener& create() { return *new MemoryListener; }

    void onReadProgressChanged(unsigned int /*done*/, unsigned int /*total*/) override { onProgress(); }
    void onWriteProgressChanged(unsigned int /*done*/, unsigned int /*total*/) override { onProgress(); }
    void onEraseProgressChanged(unsigned int /*done*/, unsigned int /*total*/) override { onProgress(); }
    void onIntegrityCheckProgressChanged(unsigned int /*done*/, unsigned int /*total*/) override { onProgress(); }
};

class SerialNumberListener final : public Listener<sdk::service::IMemorySerialNumberControl::Observer>,
                                   public Pooled<SerialNumberListener> {
public:
    static SerialNumberListener& create() { return *new SerialNumberListener; }

    void onWriteProgressChanged(unsigned int /*done*/, unsigned int /*total*/) override { onProgress(); }
};

/// Tells the host of the progress that one control tells of.
template <class Type>
class Progress {
public:
    explicit Progress(const std::shared_ptr<Host>& host) { m_listener.tell(host); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress()
    {
        m_listener.tell({});
        Pool<Type>::giveBack(m_listener);
    }

    /// From now on, until the device drops `control`, which is the same one each time. Calls that come at once may
    /// register twice: nobody counts. What the device throws then costs progress, and no more.
    template <class Control>
    void observe(Control& control) noexcept
    {
        auto state = m_state.load();
        if (state != State::Unobserved)
            return;
        try {
            control.addObserver(&m_listener);
            if (!m_state.compare_exchange_strong(state, State::Observed) && state == State::Dropped)
                control.removeObserver(&m_listener);
        } catch (...) { // NOLINT(bugprone-empty-catch)
        }
    }

    /// The device drops the control, and what observes it. Who observed it later would have to stop.
    void onDrop() { m_state = State::Dropped; }

    /// The device offers the control, which it may have dropped before.
    void onOffer() { m_state = State::Unobserved; }

private:
    enum class State : std::uint8_t { Unobserved, Observed, Dropped };

    Type& m_listener = Pool<Type>::take();
    std::atomic<State> m_state = State::Unobserved;
};

} // namespace tarn::guard
