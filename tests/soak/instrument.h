#pragma once

#include "countedvna.h"
#include "ledger.h"

#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>
#include <simulator/simulatedvna.h>

#include <any>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace tarn::soak {

/// The simulated instrument that comes and goes, and the controls of a host that follows it.
class Instrument {
public:
    /// `Types` are those of the controls.
    template <class... Types>
    Instrument(Ledger& theLedger, devices::ControlTypes<Types...> types)
        : Instrument{theLedger}
    {
        m_controls = std::make_unique<devices::InstrumentControls>(device, m_registry, types);
        start();
    }
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;
    ~Instrument();

    [[nodiscard]] simulator::SimulatedVna& simulated() const { return *m_simulated; }
    [[nodiscard]] const devices::InstrumentControls& controls() const { return *m_controls; }

    /// A control of one's own, of which the host knows nothing.
    template <class Control>
    [[nodiscard]] std::shared_ptr<Control> create(std::uint64_t registryKey) const
    {
        return std::any_cast<std::shared_ptr<Control>>(create(registryKey));
    }

    /// `attach` is called with each offer, before anybody else hears of it, on the instrument's thread. To be told
    /// between two offers, or before the threads start.
    void follow(std::function<void(sdk::IVna&)> attach) { m_followers.push_back(std::move(attach)); }

    /// Does something while the controls are on offer and everybody knows of them.
    template <class Action>
    void whileOffered(Action action)
    {
        const std::scoped_lock lock{m_offered};
        action();
    }

    Ledger& ledger;

private:
    /// Hears of every change before the controls do.
    struct First final : sdk::IVna::Observer {
        explicit First(Instrument& theOwner)
            : owner{theOwner}
        {
        }
        void onControlsAboutToBeReleased() override;
        void onControlsAvailable() override;
        Instrument& owner;
    };

    /// Hears of it after them.
    struct Last final : sdk::IVna::Observer {
        explicit Last(Instrument& theOwner)
            : owner{theOwner}
        {
        }
        void onControlsAboutToBeReleased() override;
        void onControlsAvailable() override;
        Instrument& owner;
    };

    explicit Instrument(Ledger& theLedger);
    void start();
    [[nodiscard]] std::any create(std::uint64_t registryKey) const;

    const std::shared_ptr<simulator::SimulatedVna> m_simulated;

public:
    const std::shared_ptr<CountedVna> device;

private:
    devices::ControlRegistry m_registry;
    std::unique_ptr<devices::InstrumentControls> m_controls;
    std::vector<std::function<void(sdk::IVna&)>> m_followers;
    std::mutex m_offered; ///< held by the instrument's thread from each drop until everybody knows of the next offer
    bool m_isAway = false; ///< the instrument's thread alone
    First m_first{*this};
    Last m_last{*this};
};

} // namespace tarn::soak
