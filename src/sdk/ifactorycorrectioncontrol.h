#pragma once

#include <sdk/correctionflag.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

namespace sdk {

/// The corrections that were stored in the instrument at the factory, and their switches.
///
/// Threads: thread-safe; at once, `setEnabled` when the instrument has taken it.
class SDK_API IFactoryCorrectionControl {
public:
    static constexpr Key key{0xc425cf06760ca2b4}; ///< the device is asked for the control by it

    /// Threads: called on a thread of the device's own choosing, one notification at a time, with no
    /// lock held; an observer may call any operation of the control.
    class SDK_API Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// The set of supported corrections has changed.
        virtual void onSupportedChanged() = 0;

        /// The set of valid corrections has changed.
        virtual void onValidChanged() = 0;

        /// `correction`, a single bit, was switched on or off, by whomever.
        virtual void onEnabledChanged(CorrectionFlag correction, bool enabled) = 0;
    };

    IFactoryCorrectionControl() = default;
    IFactoryCorrectionControl(const IFactoryCorrectionControl&) = delete;
    IFactoryCorrectionControl& operator=(const IFactoryCorrectionControl&) = delete;
    virtual ~IFactoryCorrectionControl() = default;

    /// The corrections that this model knows.
    [[nodiscard]] virtual CorrectionFlag supportedCorrections() = 0;

    /// Of these, the ones whose data is stored and fits the instrument as it is now.
    [[nodiscard]] virtual CorrectionFlag validCorrections() = 0;

    /// The corrections that are switched on.
    [[nodiscard]] virtual CorrectionFlag enabledCorrections() = 0;

    /// The corrections that can be switched now.
    [[nodiscard]] virtual CorrectionFlag modifiableCorrections() = 0;

    /// Switches `correction`, a single bit, on or off. One that is not valid or not modifiable
    /// stays as it is.
    virtual void setEnabled(CorrectionFlag correction, bool enabled) = 0;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per change.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;
};

} // namespace sdk
