#pragma once

#include <mutex>
#include <set>

namespace awkward {

/// What the controls with observers have in common.
template <class Control>
class Observed : public Control {
public:
    using Observer = typename Control::Observer;

    void addObserver(Observer* observer) override
    {
        const std::scoped_lock lock{m_mutex};
        m_observers.insert(observer);
    }

    void removeObserver(Observer* observer) override
    {
        const std::scoped_lock lock{m_mutex};
        m_observers.erase(observer);
    }

protected:
    template <class... Arguments>
    void notify(void (Observer::*notification)(Arguments...), Arguments... arguments)
    {
        const std::scoped_lock lock{m_mutex};
        for (auto* const observer : std::set{m_observers}) { // one may remove itself
            if (m_observers.contains(observer))
                (observer->*notification)(arguments...);
        }
    }

private:
    std::recursive_mutex m_mutex;
    std::set<Observer*> m_observers;
};

} // namespace awkward
