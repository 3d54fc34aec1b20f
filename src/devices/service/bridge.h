#pragma once

#include <devices/reacquiringcontrol.h>

#include <QString>

#include <exception>
#include <expected>
#include <functional>
#include <future>
#include <system_error>
#include <type_traits>
#include <utility>

namespace tarn::devices::service {

/// Turns a request that ends in a callback into a call that returns its result.
///
/// Calls `request` with the completion callback to hand to the SDK, then waits, without a limit,
/// until the callback has been called; `Finish` makes the result of what the callback was given.
/// The callback holds nothing but the address of the promise in this frame. What `request` throws
/// passes through, and so does what goes wrong in `Finish`: on the thread of the callback nobody could
/// handle it, and the caller would wait for ever.
template <class Result, class Finish, class Request>
[[nodiscard]] Result awaitCompletion(Request request)
{
    std::promise<Result> promise;
    auto future = promise.get_future();
    request([&promise](auto&&... outcome) {
        try {
            promise.set_value(Finish{}(std::forward<decltype(outcome)>(outcome)...));
        } catch (...) {
            promise.set_exception(std::current_exception());
        }
    });
    return future.get();
}

/// Decides by the error code's value alone: any but 0 is a failure, in whatever category.
/// `Failure` makes the error, `convert` the application's value.
template <class Result, class Failure, auto convert>
struct FinishExpected {
    Result operator()(std::error_code code) const
        requires std::is_void_v<typename Result::value_type>
    {
        if (code.value() != 0)
            return Failure{}(code);
        return {};
    }

    template <class Value>
    Result operator()(Value&& value, std::error_code code) const
    {
        if (code.value() != 0)
            return Failure{}(code);
        return convert(std::forward<Value>(value));
    }
};

/// The SDK's own text for `code`, unchanged.
[[nodiscard]] inline QString toErrorMessage(std::error_code code)
{
    return QString::fromUtf8(code.message());
}

struct FailureMessage {
    auto operator()(std::error_code code) const { return std::unexpected{toErrorMessage(code)}; }
};

template <class Error>
struct FailureValue {
    auto operator()(std::error_code) const { return std::unexpected{Error::Failed}; }
};

struct FinishFlag {
    bool operator()(std::error_code code) const { return code.value() == 0; }
};

/// Message style: the converted value, or the SDK's error text.
template <class T, auto convert = std::identity{}, class Request>
[[nodiscard]] std::expected<T, QString> awaitOrMessage(Request request)
{
    using Result = std::expected<T, QString>;
    return awaitCompletion<Result, FinishExpected<Result, FailureMessage, convert>>(std::move(request));
}

/// Enumeration style: the converted value, or `Error::Failed` whatever the SDK's code.
template <class T, class Error, auto convert = std::identity{}, class Request>
[[nodiscard]] std::expected<T, Error> awaitOrError(Request request)
{
    using Result = std::expected<T, Error>;
    return awaitCompletion<Result, FinishExpected<Result, FailureValue<Error>, convert>>(std::move(request));
}

/// Flag style: whether the SDK reported success.
template <class Request>
[[nodiscard]] bool awaitSuccess(Request request)
{
    return awaitCompletion<bool, FinishFlag>(std::move(request));
}

/// The request of every adapter in enumeration style: `Error::Failed` at once, without a request,
/// when the control is unavailable. The strong handle is held until the request has ended.
template <class T, class Error, class Control, class Request>
[[nodiscard]] std::expected<T, Error> requestOrFailed(const ReacquiringControl<Control>& control, Request request)
{
    const auto locked = control.lock();
    if (!locked)
        return std::unexpected{Error::Failed};
    return awaitOrError<T, Error>([&](auto done) { request(*locked, done); });
}

/// As `requestOrFailed`, in flag style: `false` when the control is unavailable.
template <class Control, class Request>
[[nodiscard]] bool requestOrFalse(const ReacquiringControl<Control>& control, Request request)
{
    const auto locked = control.lock();
    return locked && awaitSuccess([&](auto done) { request(*locked, done); });
}

} // namespace tarn::devices::service
