#pragma once

#include "ledger.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>

namespace tarn::soak {

/// A notification: which one, and what it says.
struct Event {
    int kind;
    std::uint64_t value;

    friend bool operator==(const Event&, const Event&) = default;
};

/// How one observer stands with a stream. The functions belong to the thread that adds and removes the observer.
class Listener {
public:
    /// What it counts on from the moment when its adding has returned.
    enum class Promise {
        Everything, ///< each event, once and in order
        Something, ///< no event twice: it was added in the middle of whatever
    };

private:
    friend class Stream;
    static constexpr auto never = std::numeric_limits<std::uint64_t>::max();

    std::atomic<bool> m_isRemoved = true;
    std::atomic<Promise> m_promise = Promise::Everything;
    std::atomic<std::uint64_t> m_base = 0; ///< events before it was being added
    std::atomic<std::uint64_t> m_promised = never; ///< the first event that it must hear
    std::atomic<std::uint64_t> m_needed = 0; ///< the last one
    std::atomic<std::uint64_t> m_first = 0; ///< event that it heard; 0: none
    std::atomic<std::uint64_t> m_last = 0;
    std::atomic<std::uint64_t> m_heard = 0; ///< how many
};

/// The notifications of one control, numbered as they leave the instrument, which tells the stream before anybody else.
/// `issue` and `hear` happen on the instrument's thread; everything else on any.
class Stream {
public:
    Stream(Ledger& ledger, std::string name)
        : m_ledger{ledger}
        , m_name{std::move(name)}
    {
    }

    /// Every observer is going to hear these, in this order.
    void issue(std::initializer_list<Event> events);

    /// An observer hears this.
    void hear(Listener& listener, Event event);

    /// Around the adding of an observer, and around its removal.
    void beginAdding(Listener& listener, Listener::Promise promise);
    void endAdding(Listener& listener);
    void beginRemoving(Listener& listener);
    void endRemoving(Listener& listener);

    /// That it has heard what it must, up to the beginning of its removal.
    void check(const Listener& listener);

    [[nodiscard]] std::uint64_t issued() const { return m_issued; }

private:
    static constexpr std::size_t kept = 8;
    static constexpr std::uint64_t mostPerOffer = 2; ///< events that are issued at once

    void hearOne(Listener& listener, Event event, std::uint64_t issued);
    [[nodiscard]] std::uint64_t due(const Listener& listener) const;
    void note(Breach breach, const std::string& what, std::uint64_t count = 1);
    [[nodiscard]] const Event& numbered(std::uint64_t number) const { return m_events.at(number % kept); }

    Ledger& m_ledger;
    const std::string m_name;
    std::atomic<std::uint64_t> m_issued = 0; ///< the number of the last event, from 1
    std::uint64_t m_batch = 0; ///< the number of the first one of those that were issued last
    std::array<Event, kept> m_events{};
};

} // namespace tarn::soak
