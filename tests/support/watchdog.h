#pragma once

#include <chrono>
#include <future>
#include <string>
#include <thread>

namespace tarn::tests {

/// Notes what is being tried, on one thread at a time. It is printed, after the name of the test, if that hangs or
/// crashes.
void nowTrying(const std::string& what);

/// Ends the program with a message.
[[noreturn]] void giveUp(const char* why);

/// Ends the program with a message, and with what is being tried, if it is not destroyed in time.
class Watchdog {
public:
    explicit Watchdog(std::chrono::seconds limit = std::chrono::seconds{60}, const std::string& what = "the test");
    ~Watchdog() { m_end.set_value(); }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    std::promise<void> m_end;
    std::jthread m_thread;
};

} // namespace tarn::tests
