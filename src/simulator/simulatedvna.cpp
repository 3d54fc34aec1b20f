#include <simulator/simulatedvna.h>

#include <simulator/bench.h>
#include <simulator/controltable.h>
#include <simulator/observers.h>
#include <simulator/storage.h>

#include <utility>

namespace tarn::simulator {

SimulatedVna::SimulatedVna(const Settings& settings, std::shared_ptr<Clock> clock, std::unique_ptr<Storage> storage)
    : m_observers{std::make_unique<Observers<Observer>>()}
    , m_bench{std::make_shared<Bench>(settings, std::move(clock), std::move(storage),
                                      [this](Duration away) { dropFor(away); })}
    , m_controls{installControls(settings.profile, m_bench)}
    , m_model{m_bench->usbIdentity.current().model}
{
    m_bench->executor.run([this] { offerNow(); });
}

SimulatedVna::SimulatedVna(const Settings& settings)
    : SimulatedVna{settings, std::make_shared<SteadyClock>(), std::make_unique<NoStorage>()}
{
}

SimulatedVna::~SimulatedVna()
{
    m_bench->faults.endHanging();
    m_observers->close();
    m_bench->executor.run([this] { endRegistrations(); });
    m_bench->executor.stop();
}

std::shared_ptr<void> SimulatedVna::control(sdk::Key key)
{
    const utils::MutexLock lock{m_mutex};
    const auto control = m_offer.find(key);
    return control != m_offer.end() ? control->second : nullptr;
}

void SimulatedVna::addObserver(Observer* observer)
{
    m_observers->add(observer);
}

void SimulatedVna::removeObserver(Observer* observer)
{
    m_observers->remove(observer);
}

sdk::Model SimulatedVna::model() const
{
    const utils::MutexLock lock{m_mutex};
    return m_model;
}

void SimulatedVna::drop()
{
    carryOut(&SimulatedVna::dropNow);
}

void SimulatedVna::offer()
{
    carryOut(&SimulatedVna::offerNow);
}

Faults& SimulatedVna::faults()
{
    return m_bench->faults;
}

std::vector<PotentiometerModel::Value> SimulatedVna::potentiometers() const
{
    return m_bench->potentiometers.values();
}

const Calibrations& SimulatedVna::calibrations() const
{
    return m_bench->calibrations;
}

const ModuleTables& SimulatedVna::tables() const
{
    return m_bench->tables;
}

std::uint64_t SimulatedVna::busyRefusals() const
{
    return m_bench->operations.busyRefusals();
}

void SimulatedVna::waitUntilIdle()
{
    m_bench->executor.waitUntilIdle();
}

/// Notifications come one at a time: a change that is asked for in the middle of one waits.
void SimulatedVna::carryOut(void (SimulatedVna::*change)())
{
    auto task = [this, change] { (this->*change)(); };
    if (m_bench->executor.isCurrent())
        m_bench->executor.post({}, task, Executor::AtStop::Discard);
    else
        m_bench->executor.run(task);
}

void SimulatedVna::dropNow()
{
    if (!m_isOffered)
        return;
    m_observers->notify(&Observer::onControlsAboutToBeReleased);
    m_isOffered = false;
    ++m_drops;
    endRegistrations();
    setOffer({}, m_bench->usbIdentity.current().model);
}

void SimulatedVna::offerNow()
{
    if (m_isOffered)
        return;
    m_bench->usbIdentity.enumerate();
    const auto model = m_bench->usbIdentity.current().model;
    m_bench->calibrations.setLimits(calibrationLimits(m_bench->settings.profile, model));
    Offer offer;
    for (const auto& control : m_controls) {
        if (isOffered(control, m_bench->settings.profile, model))
            offer.emplace(control.key, control.make());
    }
    setOffer(std::move(offer), model);
    m_isOffered = true;
    m_observers->notify(&Observer::onControlsAvailable);
    for (const auto& react : std::exchange(m_bench->atOffer, {}))
        react();
}

/// On the instrument's thread.
void SimulatedVna::dropFor(Duration away)
{
    if (!m_isOffered)
        return;
    dropNow();
    if (away == Duration{}) {
        offerNow();
        return;
    }
    const auto comeBack = [this, drop = m_drops] {
        if (drop == m_drops)
            offerNow();
    };
    m_bench->executor.post(away, comeBack, Executor::AtStop::Discard);
}

/// Those of the observers of controls. On the instrument's thread.
void SimulatedVna::endRegistrations()
{
    m_bench->atOffer.clear();
    for (const auto& end : m_bench->endRegistrations)
        end();
}

void SimulatedVna::setOffer(Offer offer, sdk::Model model)
{
    const utils::MutexLock lock{m_mutex};
    m_model = model;
    m_offer.swap(offer); // the old controls go with the argument, without the lock
}

} // namespace tarn::simulator
