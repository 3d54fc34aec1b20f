#pragma once

#include "observation.h"

#include <memory>

namespace tarn::soak {

/// The same for a control that tells by signals, which nobody stops listening to. `Kind` says how:
///
///     Sdk, key, Control, Witness, whenOffered   as above
///     connect(control, hearer)                  returns what must live as long as something is to be heard
template <class Kind>
class SignalObservation {
public:
    SignalObservation(Instrument& instrument, typename Kind::Control& control, const char* name,
                      std::size_t /*threads*/)
        : m_stream{instrument.ledger, name}
        , m_witness{m_stream, m_ends}
    {
        instrument.follow([this, &control](sdk::IVna& device) {
            const auto offered = device.control<typename Kind::Sdk>(Kind::key);
            offered->addObserver(&m_witness);
            if (!m_connection)
                connect(control);
            Kind::whenOffered(m_stream, m_witness, *offered);
        });
    }

    void begin() { }
    void change(std::size_t /*thread*/, std::uint64_t /*random*/) { }
    void end()
    {
        m_stream.beginRemoving(m_hearer.listener);
        m_stream.check(m_hearer.listener);
    }
    [[nodiscard]] static std::uint64_t ends() { return 0; }

private:
    /// On the instrument's thread, so that whatever it makes there belongs to that.
    void connect(typename Kind::Control& control)
    {
        m_stream.beginAdding(m_hearer.listener, Listener::Promise::Everything);
        m_connection = Kind::connect(control, m_hearer);
        m_stream.endAdding(m_hearer.listener);
    }

    Stream m_stream;
    std::atomic<std::uint64_t> m_ends = 0;
    typename Kind::Witness m_witness;
    Hearer m_hearer{m_stream};
    std::shared_ptr<void> m_connection;
};

} // namespace tarn::soak
