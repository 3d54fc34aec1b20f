#pragma once

#include <sdk/completion.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

namespace sdk::service {

/// The serial number of the instrument, kept in its memory.
///
/// Threads: thread-safe; at once, but an operation whose request is completed before it returns takes as
/// long as the request. A request reports its end through the completion; see `Completion` for what a
/// binding guarantees.
class SDK_API IMemorySerialNumberControl {
public:
    static constexpr Key key{0x5c028b97cc332087}; ///< the device is asked for the control by it

    /// Threads: called on a thread of the device's own choosing, before the completion of the write,
    /// with no lock held.
    class SDK_API Observer {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer() = default;

        /// A write has come this far: steps done and steps to do, in this order.
        virtual void onWriteProgressChanged(unsigned int done, unsigned int total) = 0;
    };

    IMemorySerialNumberControl() = default;
    IMemorySerialNumberControl(const IMemorySerialNumberControl&) = delete;
    IMemorySerialNumberControl& operator=(const IMemorySerialNumberControl&) = delete;
    virtual ~IMemorySerialNumberControl() = default;

    /// Whether the memory can be used now. No adapter calls it; it holds its slot.
    [[nodiscard]] virtual bool isAvailable() = 0;

    /// Reads the serial number.
    virtual void serialNumber(Completion<unsigned int> completion) = 0;

    /// Writes the serial number; every 32-bit value is one.
    virtual void writeSerialNumber(unsigned int serialNumber, Completion<> completion) = 0;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per step.
    virtual void addObserver(Observer* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(Observer* observer) = 0;
};

} // namespace sdk::service
