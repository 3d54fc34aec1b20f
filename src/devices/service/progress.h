#pragma once

namespace tarn::devices::service {

/// How far a long operation has come, in the units of the SDK.
struct Progress {
    unsigned int total; ///< all the work there is
    unsigned int done; ///< of it, the part that is done

    friend bool operator==(const Progress&, const Progress&) = default;
};

/// The record for the SDK's notification `(done, total)`: the second argument comes first.
///
/// Threads: reentrant; at once.
[[nodiscard]] constexpr Progress fromSdkProgress(unsigned int done, unsigned int total) noexcept
{
    return {total, done};
}

} // namespace tarn::devices::service
