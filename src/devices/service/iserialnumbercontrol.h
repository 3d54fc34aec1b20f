#pragma once

#include <devices/service/export.h>
#include <devices/service/progress.h>
#include <utils/association.h>

#include <cstdint>
#include <expected>

namespace tarn::devices::service {

/// The serial number of the instrument, kept in its memory.
///
/// The read and the write yield `Error::Failed`, without a request, while the instrument does not offer
/// the control. Exceptions of the device pass through.
///
/// Threads: thread-safe; blocks until the instrument has answered. Never call an operation from inside
/// a completion or a notification of the device.
class TARN_DEVICES_SERVICE_EXPORT ISerialNumberControl {
public:
    static constexpr std::uint64_t registryKey = 0x2e23977c2578988d; ///< of its entry in the host's registry

    /// Why an operation failed.
    enum class Error {
        Failed = 0, ///< the instrument reported an error, or does not offer the control
    };

    /// Learns how far a write has come, whoever started it.
    ///
    /// Threads: called on a thread of the device, with the mutex of the list of observers held: an
    /// observer must not add or remove one from inside.
    class TARN_DEVICES_SERVICE_EXPORT IObserver {
    public:
        IObserver() = default;
        IObserver(const IObserver&) = delete;
        IObserver& operator=(const IObserver&) = delete;
        virtual ~IObserver() = default;

        /// A write has come this far; the counts are steps.
        virtual void onWriteProgressChanged(const Progress& progress) = 0;
    };

    ISerialNumberControl() = default;
    ISerialNumberControl(const ISerialNumberControl&) = delete;
    ISerialNumberControl& operator=(const ISerialNumberControl&) = delete;
    virtual ~ISerialNumberControl() = default;

    /// The serial number in the instrument's memory.
    [[nodiscard]] virtual std::expected<unsigned int, Error> serialNumber() const = 0;

    /// Writes the serial number; every 32-bit value is one.
    [[nodiscard]] virtual std::expected<void, Error> writeSerialNumber(unsigned int serialNumber) = 0;

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
