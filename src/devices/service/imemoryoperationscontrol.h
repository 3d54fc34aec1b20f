#pragma once

#include <devices/service/export.h>
#include <devices/service/progress.h>
#include <utils/association.h>

#include <cstddef>
#include <cstdint>
#include <expected>
#include <vector>

namespace tarn::devices::service {

/// Operations on the instrument's non-volatile memory as a whole.
///
/// `read`, `write`, `erase` and `integrityCheck` yield `Error::Failed`, without a request, while the
/// instrument does not offer the control. Exceptions of the device pass through.
///
/// Threads: thread-safe; blocks until the instrument has answered. Never call an operation from inside
/// a completion or a notification of the device.
class TARN_DEVICES_SERVICE_EXPORT IMemoryOperationsControl {
public:
    static constexpr std::uint64_t registryKey = 0x5664961726404671; ///< of its entry in the host's registry

    /// Why an operation failed.
    enum class Error {
        Failed = 0, ///< the instrument reported an error, or does not offer the control
    };

    /// Learns how far an operation has come, whoever started it; the counts are bytes.
    ///
    /// Threads: called on a thread of the device, with the mutex of the list of observers held: an
    /// observer must not add or remove one from inside.
    class TARN_DEVICES_SERVICE_EXPORT IObserver {
    public:
        IObserver() = default;
        IObserver(const IObserver&) = delete;
        IObserver& operator=(const IObserver&) = delete;
        virtual ~IObserver() = default;

        /// A write has come this far.
        virtual void onWriteProgressChanged(const Progress& progress) = 0;
        /// A read has come this far.
        virtual void onReadProgressChanged(const Progress& progress) = 0;
        /// An erase has come this far.
        virtual void onEraseProgressChanged(const Progress& progress) = 0;
        /// An integrity check has come this far.
        virtual void onIntegrityCheckProgressChanged(const Progress& progress) = 0;
    };

    IMemoryOperationsControl() = default;
    IMemoryOperationsControl(const IMemoryOperationsControl&) = delete;
    IMemoryOperationsControl& operator=(const IMemoryOperationsControl&) = delete;
    virtual ~IMemoryOperationsControl() = default;

    /// The whole image, moved out of the device's hands and never copied.
    [[nodiscard]] virtual std::expected<std::vector<std::byte>, Error> read() = 0;

    /// Writes `image`, of which the device gets a copy of its own.
    [[nodiscard]] virtual std::expected<void, Error> write(const std::vector<std::byte>& image) = 0;

    /// Erases the whole memory.
    [[nodiscard]] virtual std::expected<void, Error> erase() = 0;

    /// Verifies the memory's own checksums; a mismatch is `Error::Failed`.
    [[nodiscard]] virtual std::expected<void, Error> integrityCheck() = 0;

    /// Appends `observer`, whether or not the instrument offers the control. Added twice, it is
    /// notified twice. It stays through any number of drops and offers.
    ///
    /// Threads: thread-safe; blocks while observers are notified on another thread.
    virtual void addObserver(utils::Association<IObserver> observer) = 0;

    /// Removes every entry of `observer`, which is not called any more once this has returned.
    ///
    /// Threads: thread-safe; blocks while observers are notified on another thread.
    virtual void removeObserver(utils::Association<IObserver> observer) = 0;
};

} // namespace tarn::devices::service
