#pragma once

#include <devices/reacquiringcontrol.h>

#include <functional>
#include <utility>

namespace tarn::devices::service {

/// The getter of every adapter: what `operation` makes of the SDK control, or `neutral` when the
/// control is unavailable. Locks once, keeps the strong handle for the length of the call.
template <class T, class Value, class Operation>
[[nodiscard]] Value valueOr(Value neutral, const ReacquiringControl<T>& control, Operation operation)
{
    if (const auto locked = control.lock())
        return std::invoke(operation, *locked);
    return neutral;
}

/// As above, for a getter that hands on what `convert` makes of the operation's result. It is
/// called while the strong handle is kept.
template <class T, class Value, class Operation, class Convert>
[[nodiscard]] Value valueOr(Value neutral, const ReacquiringControl<T>& control, Operation operation, Convert convert)
{
    if (const auto locked = control.lock())
        return std::invoke(convert, std::invoke(operation, *locked));
    return neutral;
}

/// The setter of every adapter: calls `operation` on the SDK control with `arguments`, or nothing
/// when the control is unavailable. Locks once, keeps the strong handle for the length of the call.
template <class T, class Operation, class... Arguments>
void ifAvailable(const ReacquiringControl<T>& control, Operation operation, Arguments&&... arguments)
{
    if (const auto locked = control.lock())
        std::invoke(operation, *locked, std::forward<Arguments>(arguments)...);
}

/// As `ifAvailable`, for destructors that call `removeObserver`, which never throws. What is swallowed
/// is the failure of the question for the control or of the handle's mutex; the registration stays then.
template <class T, class Operation, class... Arguments>
void ifAvailableQuietly(const ReacquiringControl<T>& control, Operation operation, Arguments&&... arguments) noexcept
{
    try {
        ifAvailable(control, operation, std::forward<Arguments>(arguments)...);
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace tarn::devices::service
