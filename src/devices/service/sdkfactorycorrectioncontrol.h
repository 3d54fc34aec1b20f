#pragma once

#include <devices/factorycorrection.h>
#include <devices/icontrollifecycleobserver.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/ifactorycorrectioncontrol.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace tarn::devices::service {

/// The corrections that were stored in the instrument at the factory, and their switches.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through. No two of `addObserver`, `removeObserver`, a lifecycle
/// notification and the destructor may run at the same time; see `InstrumentControls::undisturbed`.
class TARN_DEVICES_SERVICE_EXPORT SdkFactoryCorrectionControl final : public IControlLifecycleObserver {
public:
    static constexpr std::uint64_t registryKey = 0x1a94c41b6c234d42; ///< of its entry in the host's registry

    /// Threads: called on a thread of the device, with no lock held; by `onControlsAvailable()`, which
    /// walks the observers, with the lifecycle mutex of `InstrumentControls` held. An observer must not
    /// add or remove one from inside.
    class TARN_DEVICES_SERVICE_EXPORT Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// The set of supported corrections may have changed.
        virtual void onSupportedChanged() = 0;

        /// The set of valid corrections may have changed.
        virtual void onValidChanged() = 0;

        /// `correction` was switched on or off, by whomever.
        virtual void onEnabledChanged(FactoryCorrection correction, bool enabled) = 0;
    };

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkFactoryCorrectionControl(ReacquiringControl<sdk::IFactoryCorrectionControl> control);

    /// Ends no registration with the instrument: remove the observers or have the device release
    /// its controls before.
    ~SdkFactoryCorrectionControl() override;

    /// Whether data for `correction` is stored and fits the instrument as it is now; `false` while
    /// the instrument does not offer the control.
    [[nodiscard]] bool isValid(FactoryCorrection correction) const;

    /// Whether `correction` is switched on; `false` while the instrument does not offer the control.
    [[nodiscard]] bool isEnabled(FactoryCorrection correction) const;

    /// Whether `correction` can be switched now; `false` while the instrument does not offer the
    /// control.
    [[nodiscard]] bool isModifiable(FactoryCorrection correction) const;

    /// Switches `correction` on or off. Does nothing if it is not valid, not modifiable, or if the
    /// instrument stops offering the control between these questions and the switching.
    void setEnabled(FactoryCorrection correction, bool enabled);

    /// The corrections that this model knows and that have a counterpart here, in the order of the
    /// SDK's bits; none while the instrument does not offer the control.
    [[nodiscard]] std::vector<FactoryCorrection> supported() const;

    /// Adds `observer`, not owned, whether or not the instrument offers the control. Null, and an
    /// observer that was added already, change nothing. It stays through any number of drops and
    /// offers; after each new offer it is told that the supported and then that the valid
    /// corrections may have changed. If the instrument throws, that passes through, and `observer` has
    /// not been added.
    ///
    /// Threads: bound to `InstrumentControls::undisturbed`; calls through.
    void addObserver(Observer* observer);

    /// Removes `observer`; once this has returned it is not called any more, except by a
    /// notification that the calling thread itself is in the middle of.
    ///
    /// While the instrument does not offer the control this does nothing, deliberately: the observer
    /// stays, is attached to the next control that is offered, and must live on until it has been
    /// removed while there is a control, or until this object is destroyed.
    ///
    /// Threads: bound to `InstrumentControls::undisturbed`; blocks while a notification of `observer`
    /// runs on another thread.
    void removeObserver(Observer* observer);

    void onControlsAboutToBeReleased() override;
    void onControlsAvailable() override;

private:
    class SdkObserverAdapter;

    ReacquiringControl<sdk::IFactoryCorrectionControl> m_control;
    std::unordered_map<Observer*, std::unique_ptr<SdkObserverAdapter>> m_observers;
};

} // namespace tarn::devices::service
