#pragma once

#include <memory>

namespace sdk {

/// A non-owning handle to a control of interface `T`: the pointer to the control and a weak
/// reference to the ownership record of whoever owns it.
///
/// A handle has expired once the SDK has dropped the last owning reference. Handles are values:
/// copying one copies the weak reference.
///
/// Threads: reentrant; at once. A single handle must not be assigned in one thread while another uses
/// it.
template <class T>
class ControlHandle {
public:
    /// An empty handle; it has expired from the start.
    ControlHandle() noexcept = default;

    /// Refers to `control` without keeping it alive.
    explicit ControlHandle(const std::shared_ptr<T>& control) noexcept
        : m_control{control}
    {
    }

    /// Whether no owner is left. Looks at the owner count alone, never at the pointer.
    [[nodiscard]] bool expired() const noexcept { return m_control.expired(); }

    /// Promotes the handle: an owning reference while an owner exists, otherwise an empty one.
    /// Atomic with respect to the SDK dropping its last reference. The result may own and yet
    /// point at nothing, if that is what the handle was made from.
    [[nodiscard]] std::shared_ptr<T> lock() const noexcept { return m_control.lock(); }

private:
    std::weak_ptr<T> m_control;
};

} // namespace sdk
