#pragma once

#include <devices/service/export.h>
#include <devices/service/progress.h>
#include <utils/association.h>

#include <cstdint>
#include <expected>

namespace tarn::devices::service {

/// The serial number of the instrument, kept in its memory.
///
/// Threads: thread-safe. The read and the write block, without a time limit, until the instrument
/// has answered; never call one from inside a completion or a notification of the device. They
/// yield `Error::Failed` at once, without a request, while the instrument does not offer the
/// control. Exceptions of the device pass through.
class TARN_DEVICES_SERVICE_EXPORT ISerialNumberControl {
public:
    static constexpr std::uint64_t registryKey = 0x2e23977c2578988d;

    enum class Error {
        Failed = 0, ///< the instrument reported an error, or does not offer the control
    };

    /// Learns how far a write has come, whoever started it. Called on the device's thread with the
    /// list of observers locked: an observer must not add or remove one from inside. Once
    /// `removeObserver` has returned it is not called any more.
    class TARN_DEVICES_SERVICE_EXPORT IObserver {
    public:
        IObserver() = default;
        IObserver(const IObserver&) = delete;
        IObserver& operator=(const IObserver&) = delete;
        virtual ~IObserver() = default;

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
    virtual void addObserver(utils::Association<IObserver> observer) = 0;

    /// Removes every entry of `observer`.
    virtual void removeObserver(utils::Association<IObserver> observer) = 0;
};

} // namespace tarn::devices::service
