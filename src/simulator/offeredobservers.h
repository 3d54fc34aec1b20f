#pragma once

#include <simulator/observers.h>

#include <deque>
#include <functional>
#include <utility>

namespace tarn::simulator {

/// The observers of a part that has something to tell that nobody must miss. While its control is not on offer that is
/// kept, for those who register with the control that is offered next. Everything but `add` and `remove` belongs to the
/// instrument's thread.
template <class T>
class OfferedObservers {
public:
    void add(T* observer) { m_observers.add(observer); }
    void remove(T* observer) { m_observers.remove(observer); }

    /// The control is made, to be offered: who wants to can register.
    void open() { m_observers.open(); }

    /// The control is offered, and who wants to has registered.
    void beginOffer()
    {
        m_isOffered = true;
        deliver();
    }

    /// The control is dropped: ends every registration.
    void endOffer()
    {
        m_isOffered = false;
        m_observers.close();
    }

    /// Tells it now, or when the control is offered again.
    template <class... Values>
    void tell(void (T::*notification)(Values...), std::type_identity_t<Values>... values)
    {
        m_kept.push_back([this, notification, values...] { m_observers.notify(notification, values...); });
        deliver();
    }

    /// Tells it now or not at all.
    template <class... Values>
    void tellNow(void (T::*notification)(Values...), std::type_identity_t<Values>... values)
    {
        if (m_isOffered)
            m_observers.notify(notification, values...);
    }

private:
    /// An observer may take the instrument apart meanwhile.
    void deliver()
    {
        while (m_isOffered && !m_kept.empty()) {
            const auto notify = std::move(m_kept.front());
            m_kept.pop_front();
            notify();
        }
    }

    Observers<T> m_observers;
    std::deque<std::function<void()>> m_kept;
    bool m_isOffered = false;
};

} // namespace tarn::simulator
