#pragma once

#include <sdk/ivna.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tarn::tests {

/// A device that offers whatever a test gives it and counts what it is asked for. Thread-safe,
/// and calls out of itself without a lock held.
class FakeVna final : public sdk::IVna {
public:
    using sdk::IVna::control;

    /// Makes a control each time it is asked for; for devices that do not own their controls.
    using Source = std::function<std::shared_ptr<void>()>;

    /// Offers `control` under `key` and owns it until it is dropped.
    template <class Interface>
    void offer(sdk::Key key, std::shared_ptr<Interface> control)
    {
        offerFrom(key, [control = std::move(control)] { return std::shared_ptr<void>{control}; });
    }

    void offerFrom(sdk::Key key, Source source)
    {
        const std::scoped_lock lock{m_mutex};
        std::swap(m_offers[key], source); // the old control goes without the lock
    }

    void drop(sdk::Key key) { offerFrom(key, nullptr); }

    /// Runs in every `control()`, before the answer; may throw, drop, offer or ask again.
    void whenAsked(std::function<void(sdk::Key)> hook)
    {
        const std::scoped_lock lock{m_mutex};
        m_hook = std::move(hook);
    }

    /// How often the device was asked for `key`.
    [[nodiscard]] int asked(sdk::Key key) const
    {
        const std::scoped_lock lock{m_mutex};
        const auto count = m_asked.find(key);
        return count == m_asked.end() ? 0 : count->second;
    }

    [[nodiscard]] std::vector<Observer*> observers() const
    {
        const std::scoped_lock lock{m_mutex};
        return m_observers;
    }

    void announceRelease() { notify(&Observer::onControlsAboutToBeReleased); }
    void announceAvailable() { notify(&Observer::onControlsAvailable); }

    [[nodiscard]] std::shared_ptr<void> control(sdk::Key key) override
    {
        if (const auto hook = countAndHook(key))
            hook(key);
        const auto source = sourceOf(key);
        return source ? source() : nullptr;
    }

    void addObserver(Observer* observer) override
    {
        const std::scoped_lock lock{m_mutex};
        if (std::ranges::find(m_observers, observer) == m_observers.end())
            m_observers.push_back(observer);
    }

    void removeObserver(Observer* observer) override
    {
        const std::scoped_lock lock{m_mutex};
        std::erase(m_observers, observer);
    }

    [[nodiscard]] sdk::Model model() const override { return sdk::Model{"Fake"}; }

private:
    std::function<void(sdk::Key)> countAndHook(sdk::Key key)
    {
        const std::scoped_lock lock{m_mutex};
        ++m_asked[key];
        return m_hook;
    }

    Source sourceOf(sdk::Key key) const
    {
        const std::scoped_lock lock{m_mutex};
        const auto offer = m_offers.find(key);
        return offer == m_offers.end() ? nullptr : offer->second;
    }

    void notify(void (Observer::*notification)())
    {
        for (auto* const observer : observers())
            (observer->*notification)();
    }

    mutable std::mutex m_mutex;
    std::map<sdk::Key, Source> m_offers;
    std::map<sdk::Key, int> m_asked;
    std::function<void(sdk::Key)> m_hook;
    std::vector<Observer*> m_observers;
};

} // namespace tarn::tests
