#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/access.h>
#include <devices/service/enummappings.h>
#include <utils/mutex.h>

#include <atomic>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn::devices::service {

/// The observers of a calibration control: one SDK observer for each of the application's, and for
/// each a flag that tells whether it is registered with the SDK.
///
/// `Sdk` is the SDK's control, `Control` the adapter with its `Observer` and `Error`. Thread-safe.
/// The mutex guards the map and the flags alone; neither the SDK nor an observer is called with it
/// held.
template <class Sdk, class Control>
class WriteObservers {
public:
    using Observer = typename Control::Observer;

    /// Adds `observer` and registers it with the SDK, or leaves that to `attach` if the control is
    /// unavailable. Does nothing for null and for an observer that is there already.
    void add(const ReacquiringControl<Sdk>& control, Observer* observer)
    {
        if (!observer)
            return;
        const auto adapter = insert(*observer);
        if (!adapter)
            return;
        if (const auto locked = control.lock()) {
            registerWith(*locked, *adapter);
            return;
        }
        const utils::MutexLock lock{m_mutex};
        if (const auto entry = m_entries.find(observer); entry != m_entries.end())
            entry->second.isRegistered = false;
    }

    /// Removes `observer` and ends its registration. It may be called until this has returned, and not
    /// any more then.
    void remove(const ReacquiringControl<Sdk>& control, Observer* observer)
    {
        const auto adapter = take(observer);
        if (!adapter)
            return;
        adapter->markRemoved();
        ifAvailable(control, &Sdk::removeObserver, adapter.get());
        adapter->silence();
    }

    /// Registers every observer that is not; does nothing while the control is unavailable.
    void attach(const ReacquiringControl<Sdk>& control)
    {
        const auto locked = control.lock();
        if (!locked)
            return;
        for (const auto& adapter : mark(true))
            registerWith(*locked, *adapter);
    }

    /// Ends the registration of every observer that has one; does nothing while the control is
    /// unavailable.
    void detach(const ReacquiringControl<Sdk>& control)
    {
        const auto locked = control.lock();
        if (!locked)
            return;
        for (const auto& adapter : mark(false))
            locked->removeObserver(adapter.get());
    }

private:
    /// Passes the SDK's notifications on to one observer, on the thread of the SDK and without a lock.
    class SdkObserverAdapter final : public Sdk::Observer {
    public:
        explicit SdkObserverAdapter(Observer& observer)
            : m_observer{&observer}
        {
        }

        void onWriteStarted() override { relay(&Observer::onWriteStarted); }
        void onWriteProgressChanged(unsigned int progress) override
        {
            relay(&Observer::onWriteProgressChanged, progress);
        }
        void onWriteFinished() override { relay(&Observer::onWriteFinished); }
        void onError(typename Sdk::Error error) override
        {
            relay(&Observer::onError, mirrored<Control::Error::ValueOutOfRange>(error));
        }

        /// The observer has been removed: whoever registers the adapter now must take that back.
        void markRemoved() { m_isRemoved = true; }
        [[nodiscard]] bool isRemoved() const { return m_isRemoved; }

        /// From now on nothing is passed on.
        void silence() { m_observer = nullptr; }

    private:
        template <class Notification, class... Values>
        void relay(Notification notification, Values... values)
        {
            if (auto* const observer = m_observer.load())
                (observer->*notification)(values...);
        }

        std::atomic<Observer*> m_observer;
        std::atomic<bool> m_isRemoved = false;
    };

    struct ObserverEntry {
        std::shared_ptr<SdkObserverAdapter> adapter; ///< shared with those who are calling the SDK
        bool isRegistered;
    };

    /// An observer that was removed meanwhile must not stay behind with the SDK.
    static void registerWith(Sdk& sdk, SdkObserverAdapter& adapter)
    {
        sdk.addObserver(&adapter);
        if (adapter.isRemoved())
            sdk.removeObserver(&adapter);
    }

    /// A new adapter for `observer`, flagged as registered; null if it has one already.
    [[nodiscard]] std::shared_ptr<SdkObserverAdapter> insert(Observer& observer)
    {
        const utils::MutexLock lock{m_mutex};
        if (m_entries.contains(&observer))
            return nullptr;
        auto adapter = std::make_shared<SdkObserverAdapter>(observer);
        m_entries.emplace(&observer, ObserverEntry{adapter, true});
        return adapter;
    }

    /// The adapter of `observer`, whose entry goes; null if there is none.
    [[nodiscard]] std::shared_ptr<SdkObserverAdapter> take(Observer* observer)
    {
        const utils::MutexLock lock{m_mutex};
        const auto entry = m_entries.extract(observer);
        return entry ? entry.mapped().adapter : nullptr;
    }

    /// Flags every entry as registered or not, and returns the adapters of those whose flag that
    /// changes.
    [[nodiscard]] std::vector<std::shared_ptr<SdkObserverAdapter>> mark(bool isRegistered)
    {
        std::vector<std::shared_ptr<SdkObserverAdapter>> changed;
        const utils::MutexLock lock{m_mutex};
        changed.reserve(m_entries.size()); // so that no flag changes if memory runs out
        for (auto& [observer, entry] : m_entries) {
            if (std::exchange(entry.isRegistered, isRegistered) != isRegistered)
                changed.push_back(entry.adapter);
        }
        return changed;
    }

    utils::Mutex m_mutex;
    std::unordered_map<Observer*, ObserverEntry> m_entries TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::devices::service
