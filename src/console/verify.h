#pragma once

#include <console/error.h>
#include <console/output.h>
#include <console/requests.h>

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace tarn::console {

/// Checks on a change that the instrument has accepted; what goes wrong now no longer means that
/// it is as it was. `done` says what was done, `hint` what to do about it.
///
/// Throws `Error` when `check` returns false, when it throws each time that it is made, and when the
/// instrument is lost.
template <class Check>
void verify(std::string_view done, const std::string& hint, Check check)
{
    std::string reason;
    auto code = ErrorCode::Failed;
    for (int attempt = 1; attempt <= attempts && code != ErrorCode::InstrumentLost; ++attempt) {
        try {
            if (check())
                return;
            code = ErrorCode::Failed;
            reason = "the instrument shows otherwise";
            break;
        } catch (const OutputClosed&) {
            throw;
        } catch (...) {
            const auto error = caughtError();
            code = error.code();
            reason = error.message();
        }
    }
    throw Error{code, fmt::format("{}, but this could not be confirmed: {}", done, reason), hint};
}

} // namespace tarn::console
