#pragma once

#include <chrono>
#include <functional>

namespace tarn::console {

/// While one is alive, its thread is in the software of an instrument, which may keep it for ever. Calls may nest: the
/// end of an inner one shows that the outer one gets on.
///
/// Threads: any; each ends on the thread that began it.
class DeviceCall {
public:
    DeviceCall();
    DeviceCall(const DeviceCall&) = delete;
    DeviceCall& operator=(const DeviceCall&) = delete;
    ~DeviceCall();

    /// The instrument has come further with what was asked of it.
    static void onProgress();
};

/// From now on `onOverdue` is called, on a thread of its own, when a call lasts longer than `limit` without progress.
/// This is noticed about a quarter of it, at least two seconds, later: the guard, which ends a request without ending
/// the program, comes first.
void limitDeviceCalls(std::chrono::milliseconds limit, std::function<void()> onOverdue);

} // namespace tarn::console
