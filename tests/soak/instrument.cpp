#include "instrument.h"

#include "quickclock.h"

#include <devices/service/servicecontrols.h>
#include <simulator/storage.h>

#include <limits>

namespace tarn::soak {

namespace {

simulator::Settings settings(std::uint64_t seed)
{
    simulator::Settings settings;
    settings.seed = seed;
    settings.memorySize = 4096;
    settings.speed = std::numeric_limits<double>::infinity();
    return settings;
}

} // namespace

Instrument::Instrument(Ledger& theLedger)
    : ledger{theLedger}
    , m_simulated{std::make_shared<simulator::SimulatedVna>(settings(theLedger.seed()), std::make_shared<QuickClock>(),
                                                            std::make_unique<simulator::NoStorage>())}
    , device{std::make_shared<CountedVna>(m_simulated, theLedger)}
{
    devices::service::servicecontrols::registrate(&m_registry);
    m_simulated->faults().setArbiter([](simulator::Faults::Decision& decision) {
        if (auto* const ticket = Ticket::current())
            ticket->onOperation(decision);
    });
    m_simulated->drop();
    m_simulated->addObserver(&m_first);
}

void Instrument::start()
{
    m_simulated->addObserver(&m_last);
    m_simulated->offer();
}

Instrument::~Instrument()
{
    m_simulated->removeObserver(&m_last);
    m_controls.reset();
    m_simulated->removeObserver(&m_first);
}

std::any Instrument::create(std::uint64_t registryKey) const
{
    return m_registry.find(registryKey)->create(static_cast<sdk::IVna*>(device.get()));
}

void Instrument::First::onControlsAboutToBeReleased()
{
    owner.m_offered.lock();
    owner.m_isAway = true;
    owner.device->beginNotification();
}

void Instrument::First::onControlsAvailable()
{
    owner.device->beginNotification();
    for (const auto& attach : owner.m_followers)
        attach(*owner.m_simulated);
}

void Instrument::Last::onControlsAboutToBeReleased()
{
    owner.device->endNotification();
}

void Instrument::Last::onControlsAvailable()
{
    owner.device->endNotification();
    ++owner.ledger.cycles;
    if (owner.m_isAway)
        owner.m_offered.unlock();
    owner.m_isAway = false;
}

} // namespace tarn::soak
