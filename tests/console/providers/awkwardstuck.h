#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <thread>

namespace awkward {

/// The call that an instrument never comes back from, by a word of its own; empty: it comes back from all.
inline std::string stuckIn;

/// To be called in the call of that name.
inline void enter(std::string_view call)
{
    while (call == stuckIn)
        std::this_thread::sleep_for(std::chrono::hours{1});
}

} // namespace awkward
