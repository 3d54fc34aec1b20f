#pragma once

#include "observation.h"

#include <deque>
#include <memory>

namespace tarn::soak {

/// The same for a control that tells by signals. `Kind` says how:
///
///     Sdk, key, Control, Witness, whenOffered   as above
///     stay(control, hearer)             returns what hears the shared control until it is given up; made on the
///                                       instrument's thread
///     pass(instrument, control, hearer) the same for a thread that comes and goes
///     makesAdapter                      whether that is an adapter of its own
template <class Kind>
class SignalObservation {
public:
    SignalObservation(Instrument& instrument, typename Kind::Control& control, const char* name, std::size_t threads)
        : m_instrument{instrument}
        , m_control{control}
        , m_stream{instrument.ledger, name}
        , m_witness{m_stream, m_ends}
        , m_staying{m_stream, instrument.device->handles(Kind::key)}
    {
        for (std::size_t i = 0; i != threads; ++i)
            m_passing.emplace_back(m_stream, m_staying.handles);
        instrument.follow([this](sdk::IVna& device) {
            const auto offered = device.control<typename Kind::Sdk>(Kind::key);
            offered->addObserver(&m_witness);
            if (!m_staying.listening)
                add(m_staying, Listener::Promise::Everything, [&] { return Kind::stay(m_control, m_staying.hearer); });
            Kind::whenOffered(m_stream, m_witness, *offered);
        });
    }

    void begin() { }

    /// Nothing takes a listener back that registers with a control that has been dropped, so it comes during an offer.
    void change(std::size_t thread, std::uint64_t random)
    {
        auto& entry = m_passing[thread];
        const bool comes = !entry.listening;
        if (comes)
            m_instrument.whileOffered([&] { come(entry); });
        if (!comes || random % 2 == 0)
            leave(entry);
    }

    void end()
    {
        for (auto& entry : m_passing) {
            if (entry.listening)
                leave(entry);
        }
        if (m_staying.listening)
            leave(m_staying);
    }

    [[nodiscard]] static std::uint64_t ends() { return 0; }

private:
    struct Entry {
        Entry(Stream& stream, Handles& shared)
            : hearer{stream}
            , handles{shared}
        {
        }
        Hearer hearer;
        std::shared_ptr<void> listening;
        Handles own;
        Handles& handles;
    };

    template <class Make>
    void add(Entry& entry, Listener::Promise promise, Make make)
    {
        m_stream.beginAdding(entry.hearer.listener, promise);
        entry.listening = make();
        m_stream.endAdding(entry.hearer.listener);
    }

    /// To make an adapter the device is asked twice in any case.
    void come(Entry& entry)
    {
        const Ticket ticket{handlesOf(entry)};
        add(entry, Listener::Promise::Something, [&] { return Kind::pass(m_instrument, m_control, entry.hearer); });
        check(ticket, Kind::makesAdapter ? 2 : 0);
    }

    void leave(Entry& entry)
    {
        const Ticket ticket{&entry == &m_staying ? entry.handles : handlesOf(entry)};
        m_stream.beginRemoving(entry.hearer.listener);
        entry.listening.reset();
        m_stream.endRemoving(entry.hearer.listener);
        check(ticket, 0);
    }

    static Handles& handlesOf(Entry& entry) { return Kind::makesAdapter ? entry.own : entry.handles; }

    void check(const Ticket& ticket, unsigned needless)
    {
        m_instrument.ledger.calls += ticket.operations;
        if (ticket.needlessAsks > needless)
            m_instrument.ledger.note(Breach::Duplicated, "a listener that came or went asked the device needlessly");
    }

    Instrument& m_instrument;
    typename Kind::Control& m_control;
    Stream m_stream;
    std::atomic<std::uint64_t> m_ends = 0;
    typename Kind::Witness m_witness;
    Entry m_staying;
    std::deque<Entry> m_passing; ///< by thread
};

} // namespace tarn::soak
