#pragma once

#include "instrument.h"
#include "stream.h"
#include "ticket.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace tarn::soak {

/// Tells a stream what leaves the instrument.
struct Teller {
    Stream& stream;
    std::atomic<std::uint64_t>& ends; ///< of writes that were ordered

    void tell(int kind, std::uint64_t value = 0) const { stream.issue({{kind, value}}); }
    void tellEnd(int kind, std::uint64_t value = 0) const
    {
        ++ends;
        tell(kind, value);
    }
};

/// Tells a stream what reaches an observer.
struct Hearer {
    Stream& stream;
    Listener listener{};

    void hear(int kind, std::uint64_t value = 0) { stream.hear(listener, {kind, value}); }
};

/// The base of an observer of the SDK, and of one of the application.
template <class Observer>
struct Telling : Observer, Teller {
    Telling(Stream& theStream, std::atomic<std::uint64_t>& theEnds)
        : Teller{theStream, theEnds}
    {
    }
};
template <class Observer>
struct Hearing : Observer, Hearer {
    explicit Hearing(Stream& theStream)
        : Hearer{theStream}
    {
    }
};

/// Of a control without observers.
class NoObservation {
public:
    template <class Control>
    NoObservation(Instrument& /*instrument*/, Control& /*control*/, const char* /*name*/, std::size_t /*threads*/)
    {
    }

    void begin() { }
    void change(std::size_t /*thread*/, std::uint64_t /*random*/) { }
    void end() { }
    [[nodiscard]] static std::uint64_t ends() { return 0; }
};

/// The observers of a control: one that stays, and some that the threads add and remove. `Kind` says how:
///
///     Sdk, Control               the interfaces
///     Witness                    a `Teller` that observes the control of the SDK
///     Observer                   a `Hearer` that observes the control of the application
///     add, remove                an observer, at a control
///     whenOffered(stream)        issues what the control tells by itself with each offer
///     needsOffer                 whether an observer that is added during a drop or an offer may miss something
///     isAddedAnywhere            whether it may be added then all the same
template <class Kind>
class Observation {
    using Control = typename Kind::Control;

public:
    Observation(Instrument& instrument, Control& control, const char* name, std::size_t threads)
        : m_instrument{instrument}
        , m_control{control}
        , m_handles{instrument.device->handles(Kind::Sdk::key)}
        , m_stream{instrument.ledger, name}
        , m_witness{m_stream, m_ends}
    {
        for (std::size_t i = 0; i != threads + 1; ++i)
            m_certain.emplace_back(m_stream);
        if (Kind::isAddedAnywhere) {
            for (std::size_t i = 0; i != threads; ++i)
                m_uncertain.emplace_back(m_stream);
        }
        instrument.follow([this](sdk::IVna& device) {
            device.control<typename Kind::Sdk>(Kind::Sdk::key)->addObserver(&m_witness);
            Kind::whenOffered(m_stream);
        });
    }

    void begin() { change(m_certain.back(), Listener::Promise::Everything); }

    void change(std::size_t thread, std::uint64_t random)
    {
        if (m_uncertain.empty() || random % 2 == 0)
            change(m_certain[thread], Listener::Promise::Everything);
        else
            change(m_uncertain[thread], Listener::Promise::Something);
    }

    void end()
    {
        for (auto* const observers : {&m_certain, &m_uncertain}) {
            for (auto& observer : *observers) {
                if (observer.isAdded)
                    change(observer, Listener::Promise::Everything);
            }
        }
    }

    /// Of writes that were ordered.
    [[nodiscard]] std::uint64_t ends() const { return m_ends; }

private:
    struct Entry {
        explicit Entry(Stream& stream)
            : observer{stream}
        {
        }
        typename Kind::Observer observer;
        bool isAdded = false; ///< the thread of the observer alone
    };

    /// Adds it, or removes it.
    void change(Entry& entry, Listener::Promise promise)
    {
        const auto change = [&] { entry.isAdded ? remove(entry) : add(entry, promise); };
        if (Kind::needsOffer && (promise == Listener::Promise::Everything))
            m_instrument.whileOffered(change);
        else
            change();
    }

    void add(Entry& entry, Listener::Promise promise)
    {
        const Ticket ticket{m_handles};
        m_stream.beginAdding(entry.observer.listener, promise);
        Kind::add(m_instrument, m_control, entry.observer);
        m_stream.endAdding(entry.observer.listener);
        entry.isAdded = true;
        check(ticket);
    }

    void remove(Entry& entry)
    {
        const Ticket ticket{m_handles};
        m_stream.beginRemoving(entry.observer.listener);
        Kind::remove(m_instrument, m_control, entry.observer);
        m_stream.endRemoving(entry.observer.listener);
        entry.isAdded = false;
        check(ticket);
    }

    void check(const Ticket& ticket)
    {
        if (ticket.operations != 0 || ticket.asks > 1 || ticket.needlessAsks != 0)
            m_instrument.ledger.note(Breach::Duplicated,
                                     "an observer that came or went asked the device " + std::to_string(ticket.asks)
                                         + " times, " + std::to_string(ticket.needlessAsks) + " of them needlessly");
    }

    Instrument& m_instrument;
    Control& m_control;
    Handles& m_handles;
    Stream m_stream;
    std::atomic<std::uint64_t> m_ends = 0;
    typename Kind::Witness m_witness;
    std::deque<Entry> m_certain; ///< one for each thread, and one that stays
    std::deque<Entry> m_uncertain;
};

} // namespace tarn::soak
