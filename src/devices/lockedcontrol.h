#pragma once

#include <memory>

namespace tarn::devices {

/// A strong handle to an SDK control, meant for the length of one operation: it keeps the control
/// alive even if the SDK drops it meanwhile. Empty when the control is unavailable; then both
/// fields are.
///
/// Threads: reentrant; at once. Who gives up the last one of a dropped control destroys the control,
/// on the thread at hand.
template <class T>
struct LockedControl {
    std::shared_ptr<T> owner; ///< keeps the control alive
    T* control = nullptr; ///< the control, or null

    /// Whether the control is available.
    [[nodiscard]] explicit operator bool() const noexcept { return control != nullptr; }

    /// The control; null if it is unavailable.
    [[nodiscard]] T* operator->() const noexcept { return control; }

    /// The control, which is available.
    [[nodiscard]] T& operator*() const noexcept { return *control; }
};

} // namespace tarn::devices
