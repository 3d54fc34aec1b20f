#pragma once

#include <functional>
#include <system_error>

namespace sdk {

/// The callback by which an asynchronous operation reports its end: the result value, if the
/// operation has one, followed by an error code whose value 0 means success.
///
/// Guarantees that a binding must keep, because callers wait for the callback without a limit and
/// hand out the address of something in their own frame:
///  - it is called exactly once per request that returned, whether it succeeds or fails;
///  - it is called on any thread, also on the caller's before the operation returns, which then takes
///    as long as the request;
///  - an operation that throws does not call it, neither before nor afterwards;
///  - a request outstanding when the controls are released is completed all the same.
/// With a non-zero code the value is meaningless. A callback does not block and does not throw
/// unless memory runs out.
template <class... Values>
using Completion = std::function<void(Values..., std::error_code)>;

} // namespace sdk
