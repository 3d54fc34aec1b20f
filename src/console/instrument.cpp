#include <console/instrument.h>

#include <console/commandtable.h>
#include <console/controltable.h>
#include <devices/service/servicecontrols.h>

#include <fmt/format.h>

#include <chrono>
#include <thread>
#include <utility>

namespace tarn::console {

namespace {

/// How long a command waits for controls that were dropped.
constexpr std::chrono::seconds longestAbsence{2};

devices::ControlRegistry makeRegistry()
{
    devices::ControlRegistry registry;
    devices::service::servicecontrols::registrate(&registry);
    return registry;
}

} // namespace

Instrument::Instrument(std::shared_ptr<sdk::IVna> device, const Output& output, std::chrono::milliseconds limit)
    : m_limit{limit}
    , m_breaches{std::make_shared<Breaches>(output)}
    , m_device{guard::guarded(std::move(device), {limit, m_breaches})}
    , m_registry{makeRegistry()}
    , m_lifecycle{m_device}
    , m_controls{m_device, m_registry, AllControls::Types{}}
{
}

bool Instrument::isThere(std::uint64_t registryKey) const
{
    const auto* const row = findControlRow(registryKey);
    const DeviceCall call;
    return row && m_device->control(row->sdkKey);
}

bool Instrument::isBack(std::uint64_t registryKey) const
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + longestAbsence;
    for (;;) {
        const auto counts = m_lifecycle.waitUntilBack(std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()));
        if (!counts || isThere(registryKey))
            return counts.has_value();
        if (m_lifecycle.drops() == counts->drops || Clock::now() >= end)
            return false; // gone without a word, or time and again
    }
}

bool Instrument::isCreated(std::uint64_t registryKey) const
{
    using namespace std::chrono_literals;
    for (auto left = longestAbsence / 1ms; left > 0 && !isOffered(registryKey); --left)
        std::this_thread::sleep_for(1ms);
    return isOffered(registryKey);
}

void Instrument::awaitControl(std::uint64_t registryKey) const
{
    if (isBack(registryKey) && isCreated(registryKey))
        return;
    if (!isOffered(registryKey))
        throw notOffered(registryKey);
    throw Error{
        ErrorCode::InstrumentLost,
        fmt::format("the instrument has dropped its {} control and not offered it again", controlName(registryKey)),
        "check the instrument and its connection, then try again"};
}

Error Instrument::notOffered(std::uint64_t registryKey) const
{
    return Error{ErrorCode::NotOffered,
                 fmt::format("this instrument ({}) has no {} control", model().name(), controlName(registryKey)),
                 "'tarn-service controls' shows what it has"};
}

} // namespace tarn::console
