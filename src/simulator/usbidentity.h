#pragma once

#include <sdk/service/imemoryusbidcontrol.h>
#include <simulator/export.h>
#include <simulator/storage.h>
#include <utils/mutex.h>

#include <span>
#include <system_error>

namespace tarn::simulator {

/// The USB identity of the instrument, which decides its model: the one that the host sees, and
/// the one that was written and will be seen when the controls are offered anew. Thread-safe.
///
/// Every model of the catalogue has an identity: vendor 0xF3A7, the product ID made of the number
/// of its family (from 1, in catalogue order) in the upper byte and its own number within the
/// family (from 1) in the lower one, and release 1.00. The interface GUID differs in its last two
/// bytes, which are the product ID.
class TARN_DEVICE_SIMULATOR_EXPORT UsbIdentity {
public:
    using UsbId = sdk::service::IMemoryUsbIdControl::UsbId;
    using DeviceRecord = sdk::service::IMemoryUsbIdControl::DeviceRecord;

    /// As `storage` says, or else that of `model`. Throws `StateError` if what is stored cannot be
    /// used.
    UsbIdentity(Storage& storage, sdk::Model model);

    /// All identities, in catalogue order.
    [[nodiscard]] static std::span<const DeviceRecord> supported();

    /// What the host sees.
    [[nodiscard]] DeviceRecord current() const;

    /// Durable when it returns without an error. `Error::BadIdentity` for one that is not
    /// supported.
    [[nodiscard]] std::error_code write(const UsbId& usbId);

    /// From now on the host sees what was written last.
    void enumerate();

private:
    Storage& m_storage;
    mutable utils::Mutex m_mutex;
    const DeviceRecord* m_written TARN_GUARDED_BY(m_mutex);
    const DeviceRecord* m_current TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
