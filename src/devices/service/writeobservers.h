#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/access.h>
#include <devices/service/enummappings.h>
#include <utils/mutex.h>

#include <algorithm>
#include <atomic>
#include <list>
#include <memory>
#include <unordered_map>
#include <utility>

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
    /// unavailable. Does nothing for null and for an observer that is there already. What the device throws
    /// passes through; the observer has not been added then.
    void add(const ReacquiringControl<Sdk>& control, Observer* observer)
    {
        if (!observer)
            return;
        const auto adapter = insert(*observer);
        if (!adapter)
            return;
        try {
            if (const auto locked = control.lock())
                registerWith(*locked, *adapter);
            else
                leaveToAttach(observer, *adapter);
        } catch (...) {
            abandon(take(observer, adapter.get()));
            throw;
        }
    }

    /// Removes `observer` and ends its registration. It may be called until this has returned, and not
    /// any more then. What the device throws passes through; the observer has been removed all the same.
    void remove(const ReacquiringControl<Sdk>& control, Observer* observer)
    {
        auto entry = take(observer);
        if (!entry)
            return;
        auto& adapter = *entry.mapped().adapter.front();
        adapter.markRemoved();
        try {
            ifAvailable(control, &Sdk::removeObserver, &adapter);
        } catch (...) {
            abandon(std::move(entry));
            throw;
        }
        adapter.silence();
    }

    /// Registers every observer that is not; does nothing while the control is unavailable. What the device
    /// throws passes through; the observers that are left are registered by the next call.
    void attach(const ReacquiringControl<Sdk>& control)
    {
        if (const auto locked = control.lock())
            forAllFlagged(true, [&](SdkObserverAdapter& adapter) { registerWith(*locked, adapter); });
    }

    /// Ends the registration of every observer that has one; does nothing while the control is
    /// unavailable. What the device throws passes through; the next call goes on with those that are left.
    void detach(const ReacquiringControl<Sdk>& control)
    {
        if (const auto locked = control.lock())
            forAllFlagged(false, [&](SdkObserverAdapter& adapter) { locked->removeObserver(&adapter); });
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

    using Adapters = std::list<std::shared_ptr<SdkObserverAdapter>>;

    struct ObserverEntry {
        Adapters adapter; ///< one, shared with those who are calling the SDK
        bool isRegistered;
    };
    using Entries = std::unordered_map<Observer*, ObserverEntry>;
    using Entry = typename Entries::node_type;

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
        m_entries.emplace(&observer, ObserverEntry{{adapter}, true});
        return adapter;
    }

    /// The entry of `observer`, unless its adapter is another than `only`.
    [[nodiscard]] auto find(Observer* observer, const SdkObserverAdapter* only) TARN_REQUIRES(m_mutex)
    {
        const auto entry = m_entries.find(observer);
        const bool isMeant = entry != m_entries.end() && (!only || entry->second.adapter.front().get() == only);
        return isMeant ? entry : m_entries.end();
    }

    /// Takes the entry of `observer` out; empty if there is none, or if its adapter is another than `only`.
    [[nodiscard]] Entry take(Observer* observer, const SdkObserverAdapter* only = nullptr)
    {
        const utils::MutexLock lock{m_mutex};
        const auto entry = find(observer, only);
        return entry == m_entries.end() ? Entry{} : m_entries.extract(entry);
    }

    /// Flags `observer` as not registered, unless others have removed `adapter` meanwhile.
    void leaveToAttach(Observer* observer, const SdkObserverAdapter& adapter)
    {
        const utils::MutexLock lock{m_mutex};
        if (const auto entry = find(observer, &adapter); entry != m_entries.end())
            entry->second.isRegistered = false;
    }

    /// After an exception nobody knows whether the SDK has the adapter of `entry`: it passes nothing on any more, but
    /// lives as long as this. Who is about to register it, too, must take that back.
    void abandon(Entry entry)
    {
        if (!entry)
            return;
        auto& adapter = entry.mapped().adapter;
        adapter.front()->markRemoved();
        adapter.front()->silence();
        const utils::MutexLock lock{m_mutex};
        m_abandoned.splice(m_abandoned.end(), adapter);
    }

    /// Flags every entry as registered or not, and calls `call` with the adapters of those whose flag that changes.
    /// Those that an exception leaves over get their flag back.
    template <class Call>
    void forAllFlagged(bool isRegistered, Call call)
    {
        auto changed = mark(isRegistered);
        try {
            for (; !changed.empty(); changed.pop_front())
                call(*changed.front());
        } catch (...) {
            flag(changed, !isRegistered);
            throw;
        }
    }

    [[nodiscard]] Adapters mark(bool isRegistered)
    {
        const utils::MutexLock lock{m_mutex};
        Adapters changed;
        for (const auto& [observer, entry] : m_entries) { // before any flag changes, in case memory runs out
            if (entry.isRegistered != isRegistered)
                changed.push_back(entry.adapter.front());
        }
        for (auto& [observer, entry] : m_entries)
            entry.isRegistered = isRegistered;
        return changed;
    }

    /// Flags the entries that have one of `adapters`.
    void flag(const Adapters& adapters, bool isRegistered)
    {
        const utils::MutexLock lock{m_mutex};
        for (auto& [observer, entry] : m_entries) {
            if (std::ranges::find(adapters, entry.adapter.front()) != adapters.end())
                entry.isRegistered = isRegistered;
        }
    }

    utils::Mutex m_mutex;
    Entries m_entries TARN_GUARDED_BY(m_mutex);
    Adapters m_abandoned TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::devices::service
