#include "watch.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>

namespace tarn::soak {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto patience = 60s;

} // namespace

void Watch::watch(const std::stop_token& stop)
{
    struct Seen {
        std::uint64_t steps = 0;
        Clock::time_point since = Clock::now();
    };
    std::vector<Seen> seen(m_threads.size());
    for (; !stop.stop_requested(); std::this_thread::sleep_for(10ms)) {
        for (std::size_t thread = 0; thread != seen.size(); ++thread) {
            const auto steps = m_threads[thread].steps.load();
            const char* const what = m_threads[thread].what;
            if (!what || steps != seen[thread].steps)
                seen[thread] = {steps, Clock::now()};
            else if (Clock::now() - seen[thread].since > patience)
                giveUp(thread, what);
        }
    }
}

void Watch::giveUp(std::size_t thread, const char* what)
{
    m_ledger.note(Breach::Lost,
                  std::string{what} + ": thread " + std::to_string(thread) + " has been waiting in there for a minute");
    std::cout << m_ledger.summary() << std::endl;
    std::_Exit(EXIT_FAILURE);
}

} // namespace tarn::soak
