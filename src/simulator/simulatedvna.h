#pragma once

#include <sdk/ivna.h>
#include <simulator/clock.h>
#include <simulator/export.h>
#include <simulator/faults.h>
#include <simulator/potentiometermodel.h>
#include <simulator/settings.h>
#include <utils/mutex.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace tarn::simulator {

class Calibrations;
class ModuleTables;
class Storage;
struct Bench;
struct InstalledControl;
template <class T>
class Observers;

/// A simulated instrument: a model with state behind the contract of the device.
///
/// It has one thread of its own, on which it completes requests (in the inline mode the caller's
/// thread does) and delivers every notification. A completion or an observer may call the device
/// and its controls, but must not wait there for another request to complete.
///
/// A control that was dropped still works for whoever holds it, on the same model as the new one.
/// Destroying the device completes the requests that are outstanding, whatever their latency, and
/// notifies nobody.
///
/// Threads: thread-safe.
class TARN_DEVICE_SIMULATOR_EXPORT SimulatedVna final : public sdk::IVna {
public:
    /// Switches the instrument on, with its controls on offer. Throws `StateError` if what
    /// `storage` holds cannot be used.
    SimulatedVna(const Settings& settings, std::shared_ptr<Clock> clock, std::unique_ptr<Storage> storage);

    /// The same in real time, keeping nothing.
    explicit SimulatedVna(const Settings& settings = {});
    ~SimulatedVna() override;

    [[nodiscard]] std::shared_ptr<void> control(sdk::Key key) override;
    using sdk::IVna::control;
    void addObserver(Observer* observer) override;
    void removeObserver(Observer* observer) override;
    [[nodiscard]] sdk::Model model() const override;

    /// Tells the observers, then lets go of the controls. Nothing when they are away already. Has
    /// happened when it returns; on the instrument's own thread it happens afterwards.
    void drop();

    /// Makes new controls, then tells the observers. Nothing when they are on offer already. Has
    /// happened when it returns; on the instrument's own thread it happens afterwards.
    void offer();

    /// What goes wrong, to be changed at any moment.
    [[nodiscard]] Faults& faults();

    /// What is in the potentiometers, for tests to look at.
    [[nodiscard]] std::vector<PotentiometerModel::Value> potentiometers() const;

    /// What is stored as calibration data, for tests to look at: the contract has no way to read it.
    [[nodiscard]] const Calibrations& calibrations() const;

    /// The tables that the modules were given, for tests to look at: the contract has no way to read them.
    [[nodiscard]] const ModuleTables& tables() const;

    /// How many requests have ended with `Error::Busy`, for tests to count.
    [[nodiscard]] std::uint64_t busyRefusals() const;

    /// Waits until the instrument's thread has nothing to do before the clock goes on. Not on that
    /// thread.
    void waitUntilIdle();

private:
    using Offer = std::unordered_map<sdk::Key, std::shared_ptr<void>>;

    void carryOut(void (SimulatedVna::*change)());
    void dropNow();
    void offerNow();
    void dropFor(Duration away);
    void endRegistrations();
    void setOffer(Offer offer, sdk::Model model);

    const std::unique_ptr<Observers<Observer>> m_observers;
    const std::shared_ptr<Bench> m_bench;
    const std::vector<InstalledControl> m_controls;
    mutable utils::Mutex m_mutex;
    sdk::Model m_model TARN_GUARDED_BY(m_mutex);
    Offer m_offer TARN_GUARDED_BY(m_mutex);
    bool m_isOffered = false; ///< the instrument's thread alone
    std::uint64_t m_drops = 0; ///< counts them; the instrument's thread alone
};

} // namespace tarn::simulator
