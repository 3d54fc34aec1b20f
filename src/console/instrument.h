#pragma once

#include <console/breaches.h>
#include <console/devicecall.h>
#include <console/error.h>
#include <console/lifecyclewatch.h>
#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>
#include <sdk/ivna.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tarn::console {

/// A connected instrument behind the guard, and the controls that it offers.
class Instrument {
public:
    /// What `device` is asked for it may take `limit` for, counted from its last progress. Warnings of it go to
    /// `output`.
    Instrument(std::shared_ptr<sdk::IVna> device, const Output& output, std::chrono::milliseconds limit);

    /// The entries of the registry, in its order.
    [[nodiscard]] const devices::ControlRegistry& registry() const { return m_registry; }

    [[nodiscard]] sdk::Model model() const
    {
        const DeviceCall call;
        return m_device->model();
    }
    [[nodiscard]] std::chrono::milliseconds limit() const { return m_limit; }

    /// The requests that it has not answered.
    [[nodiscard]] Breaches::Counts unansweredRequests() const { return m_breaches->counts(); }

    [[nodiscard]] const LifecycleWatch& lifecycle() const { return m_lifecycle; }

    /// Whether the instrument has offered the control since it was opened.
    [[nodiscard]] bool isOffered(std::uint64_t registryKey) const { return m_controls.isOffered(registryKey); }

    /// The control; throws `Error` (`NotOffered`) when the instrument has none.
    template <class Type>
    [[nodiscard]] std::shared_ptr<Type> control(std::uint64_t registryKey = Type::registryKey) const
    {
        if (auto control = m_controls.control<Type>(registryKey))
            return control;
        throw notOffered(registryKey);
    }

    /// See `InstrumentControls::undisturbed`.
    template <class Operation>
    void undisturbed(Operation operation) const
    {
        const DeviceCall call;
        m_controls.undisturbed(std::move(operation));
    }

    /// Keeps `object` until the controls are gone: an observer that a control may not let go.
    void keep(std::shared_ptr<void> object) { m_kept.push_back(std::move(object)); }

    /// Whether the instrument offers the control at this moment: asks the device itself.
    [[nodiscard]] bool isThere(std::uint64_t registryKey) const;

    /// Makes sure that the control is there, waiting a little while for one that was dropped.
    /// Throws `Error`: `NotOffered` if it never was, `InstrumentLost` if it does not come back.
    void awaitControl(std::uint64_t registryKey) const;

private:
    /// Whether a control is there, or comes back in time.
    [[nodiscard]] bool isBack(std::uint64_t registryKey) const;

    /// Whether a control that is there was created. The first time that it is, the lifecycle watch
    /// knows of it a little earlier.
    [[nodiscard]] bool isCreated(std::uint64_t registryKey) const;

    [[nodiscard]] Error notOffered(std::uint64_t registryKey) const;

    const std::chrono::milliseconds m_limit;
    const std::shared_ptr<Breaches> m_breaches;
    const std::shared_ptr<sdk::IVna> m_device;
    const devices::ControlRegistry m_registry;
    const LifecycleWatch m_lifecycle; ///< before the controls: misses no drop while they are created
    std::vector<std::shared_ptr<void>> m_kept;
    devices::InstrumentControls m_controls;
};

} // namespace tarn::console
