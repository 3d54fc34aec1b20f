#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <future>
#include <thread>
#include <utility>

namespace tarn::tests {

/// Runs `call` on a thread of its own and waits for it; what it throws passes through. A call that
/// does not return, because a lock is still held for instance, ends the program.
template <class Call>
void onAnotherThread(Call call)
{
    std::packaged_task<void()> task{std::move(call)};
    auto done = task.get_future();
    const std::jthread thread{std::move(task)};
    if (done.wait_for(std::chrono::seconds{60}) != std::future_status::ready) {
        std::fputs("A call on another thread did not return.\n", stderr);
        std::abort();
    }
    done.get();
}

} // namespace tarn::tests
