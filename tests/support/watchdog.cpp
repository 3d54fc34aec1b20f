#include <support/watchdog.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <deque>

#include <unistd.h>

extern "C" {
// There if a sanitizer is.
[[gnu::weak]] void __sanitizer_set_death_callback(void (*callback)()); // NOLINT
}

namespace tarn::tests {

namespace {

/// What is being tried. It stays where it is, as a crash leaves no time to look for it.
std::atomic<const char*> attempt = nullptr;

void print(const char* text)
{
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text, std::strlen(text));
}

void printAttempt()
{
    const char* const text = attempt;
    if (!text)
        return;
    print(text);
    print(" was being tried\n");
}

/// Prints, then lets the signal end the program as it would have.
void printAndDie(int signal)
{
    printAttempt();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void watchForCrashes()
{
    if (__sanitizer_set_death_callback) {
        __sanitizer_set_death_callback(&printAttempt);
        return;
    }
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT})
        std::signal(signal, &printAndDie);
}

} // namespace

void nowTrying(const std::string& what)
{
    static const bool isWatching = (watchForCrashes(), true);
    static_cast<void>(isWatching);
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    const auto text = std::string{test->test_suite_name()} + "." + test->name() + ": " + what;
    static auto& attempts = *new std::deque<std::string>; // for as long as somebody may print
    attempt = attempts.emplace_back(text).c_str();
}

void giveUp(const char* why)
{
    printAttempt();
    print(why);
    print("\n");
    std::_Exit(EXIT_FAILURE);
}

Watchdog::Watchdog(std::chrono::seconds limit, const std::string& what)
{
    nowTrying(what);
    m_thread = std::jthread{[limit, end = m_end.get_future()] {
        if (end.wait_for(limit) == std::future_status::ready)
            return;
        giveUp("the watchdog has waited in vain");
    }};
}

} // namespace tarn::tests
