#pragma once

#include <sdk/completion.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstddef>
#include <vector>

namespace sdk::service {

/// Operations on the instrument's non-volatile memory as a whole: the image, bytes from the first
/// address to the last.
///
/// Threads: thread-safe; at once, but an operation whose request is completed before it returns takes as
/// long as the request. A request reports its end through the completion; see `Completion` for what a
/// binding guarantees. Only one runs at a time; one that comes while another runs fails with an error
/// code.
class SDK_API IMemoryOperationsControl {
public:
    static constexpr Key key{0x5d412bfd18b02258}; ///< the device is asked for the control by it

    /// Learns how far an operation has come. Each notification carries the bytes done and the
    /// bytes to do, in this order; the counts of one operation never fall.
    ///
    /// Threads: called on a thread of the device's own choosing, one notification at a time, before
    /// the completion of the operation that it speaks of, with no lock held.
    class SDK_API IObserver {
    public:
        IObserver() = default;
        IObserver(const IObserver&) = delete;
        IObserver& operator=(const IObserver&) = delete;
        virtual ~IObserver() = default;

        /// A read has come this far.
        virtual void onReadProgressChanged(unsigned int done, unsigned int total) = 0;
        /// A write has come this far.
        virtual void onWriteProgressChanged(unsigned int done, unsigned int total) = 0;
        /// An erase has come this far.
        virtual void onEraseProgressChanged(unsigned int done, unsigned int total) = 0;
        /// An integrity check has come this far.
        virtual void onIntegrityCheckProgressChanged(unsigned int done, unsigned int total) = 0;
    };

    IMemoryOperationsControl() = default;
    IMemoryOperationsControl(const IMemoryOperationsControl&) = delete;
    IMemoryOperationsControl& operator=(const IMemoryOperationsControl&) = delete;
    virtual ~IMemoryOperationsControl() = default;

    /// Whether the memory can be used now. No adapter calls it; it holds its slot.
    [[nodiscard]] virtual bool isAvailable() = 0;

    /// Reads the whole image.
    virtual void read(Completion<std::vector<std::byte>> completion) = 0;

    /// Writes `image` from the first address on. A binding that cannot take an image of this size
    /// reports an error and leaves the memory as it was.
    virtual void write(std::vector<std::byte> image, Completion<> completion) = 0;

    /// Erases the whole memory: every byte reads 0xFF afterwards.
    virtual void erase(Completion<> completion) = 0;

    /// Verifies the checksums that the memory holds over its own contents.
    virtual void integrityCheck(Completion<> completion) = 0;

    /// Registers `observer`, not owned. Registering one that is registered already changes
    /// nothing: it is still notified once per step.
    virtual void addObserver(IObserver* observer) = 0;

    /// Ends a registration; does nothing for an observer that is not registered. Once it has
    /// returned, no notification of `observer` is running or will start, except for one that the
    /// calling thread itself is in the middle of. Never throws.
    ///
    /// Threads: thread-safe; blocks while a notification of `observer` runs on another thread.
    virtual void removeObserver(IObserver* observer) = 0;
};

} // namespace sdk::service
