#pragma once

#include <devices/export.h>

#include <any>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tarn::devices {

/// The host's list of the controls that it can create for a device, by registry key.
///
/// Threads: reentrant; at once. Filled at start-up on one thread; from then on any thread may read it.
class TARN_DEVICES_EXPORT ControlRegistry {
public:
    /// One control: its registry key and the function that creates it. The function takes a
    /// `std::any` holding the device pointer and returns one holding a shared pointer to the
    /// control, or an empty one when the device has none or the argument is of another type.
    struct ControlEntryBase {
        std::uint64_t key; ///< the registry key
        std::function<std::any(std::any)> create; ///< takes and returns what stands above
    };

    /// An entry whose creation function knows its device type.
    ///
    /// Threads: reentrant; at once.
    template <class Device>
    struct ControlEntry {
        std::uint64_t key; ///< the registry key
        std::function<std::any(Device*)> create; ///< as that of `ControlEntryBase`, but for its argument

        /// Gives up the device type. The resulting function returns an empty `std::any` for an
        /// argument that is not exactly a `Device*`; exceptions other than `std::bad_any_cast`
        /// pass through it.
        operator ControlEntryBase() &&;
    };

    /// Adds `entry`, keeping a copy. Throws `std::invalid_argument`, naming the key, if there is
    /// an entry under it already; the registry is then as it was.
    void addEntry(const ControlEntryBase& entry);

    /// The entry under `key`, or null. Valid until the next `addEntry`.
    [[nodiscard]] const ControlEntryBase* find(std::uint64_t key) const;

    /// All entries in the order in which they were added. Valid until the next `addEntry`.
    [[nodiscard]] std::span<const ControlEntryBase> entries() const { return m_entries; }

    /// A registry key as texts show it: `0x` and 16 lower-case hexadecimal digits.
    [[nodiscard]] static std::string keyText(std::uint64_t key);

private:
    std::vector<ControlEntryBase> m_entries;
};

template <class Device>
ControlRegistry::ControlEntry<Device>::operator ControlEntryBase() &&
{
    return {key, [create = std::move(create)](std::any device) -> std::any {
                try {
                    return create(std::any_cast<Device*>(device));
                } catch (const std::bad_any_cast&) {
                    return {};
                }
            }};
}

} // namespace tarn::devices
