#pragma once

#include <chrono>
#include <csignal>
#include <string>
#include <string_view>
#include <thread>

namespace awkward {

/// The call that an instrument never comes back from, by a word of its own; empty: it comes back from all.
inline std::string stuckIn;

/// To be called in the call of that name. Who is stuck there hears no signal that can be held back.
inline void enter(std::string_view call)
{
    if (call != stuckIn)
        return;
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
    for (;;)
        std::this_thread::sleep_for(std::chrono::hours{1});
}

} // namespace awkward
