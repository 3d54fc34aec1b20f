#pragma once

#include <sdk/key.h>
#include <sdk/model.h>
#include <sdk/visibility.h>

#include <memory>

namespace sdk {

/// A connected vector network analyzer: the place where controls are asked for.
///
/// The device owns its controls and may drop them and offer new ones at any moment. Whoever uses
/// a control therefore keeps a `ControlHandle` between operations and an owning reference only
/// during one.
///
/// Threads: thread-safe; at once or when the instrument has taken it.
///
/// Notifications, those of the controls included, arrive on a thread of the device's own choosing,
/// and the device holds no lock of its own while it delivers them. Those of the device itself come
/// one at a time. Neither an operation of the device nor one of a control that has no completion
/// delivers a notification or waits for one to be delivered, `removeObserver` excepted. What an
/// observer throws ends with that observer: the others are notified all the same.
///
/// Once a control was dropped, none of the observers that were registered with it is being notified or
/// will be. One that is registered later, with a control that is still in use, hears nothing while the
/// device offers none, and nothing once that control is gone, unless it can be removed through the
/// one that is offered then.
/// A device is not destroyed from inside a completion or a notification.
class SDK_API IVna {
public:
    /// Learns when the device's controls come and go. A host forwards both notifications to those
    /// of its objects that keep observers attached to controls.
    ///
    /// Threads: called on a thread of the device's own choosing, one notification at a time, with no
    /// lock held.
    class SDK_API Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// The device is about to drop its controls. They are still obtainable while this runs;
        /// the device waits for it to return before it drops them.
        virtual void onControlsAboutToBeReleased() = 0;

        /// The device's controls can be obtained (again).
        virtual void onControlsAvailable() = 0;
    };

    IVna() = default;
    IVna(const IVna&) = delete;
    IVna& operator=(const IVna&) = delete;
    virtual ~IVna() = default;

    /// The control registered under `key`, or an empty reference when the device has none or has
    /// dropped it.
    ///
    /// The reference points at exactly the interface that `key` stands for: a binding converts its
    /// object to that interface before it gives up the type. The device keeps an owning reference
    /// of its own for as long as it offers the control.
    [[nodiscard]] virtual std::shared_ptr<void> control(Key key) = 0;

    /// As `control(Key)`, with the type: `Interface` must be the interface that `key` stands for.
    template <class Interface>
    [[nodiscard]] std::shared_ptr<Interface> control(Key key)
    {
        return std::static_pointer_cast<Interface>(control(key));
    }

    /// Registers `observer` for the coming and going of controls. Not owned; registering it twice
    /// is the same as once.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;

    /// The model that the instrument identifies itself as.
    [[nodiscard]] virtual Model model() const = 0;
};

} // namespace sdk
