#include <console/interruptguard.h>

#include <utils/mutex.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace tarn::console::platform {

namespace {

/// A value that any thread may read and change.
template <class Type>
class Shared {
public:
    [[nodiscard]] Type get()
    {
        const utils::MutexLock lock{m_mutex};
        return m_value;
    }

    void set(Type value)
    {
        const utils::MutexLock lock{m_mutex};
        m_value = std::move(value);
    }

private:
    utils::Mutex m_mutex;
    Type m_value TARN_GUARDED_BY(m_mutex);
};

// What the thread that waits for Ctrl-C shares with the rest of the program. It outlives `main`, so
// everything here does without a destructor.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): a process has one Ctrl-C
std::atomic<int> guards{0};
std::atomic<bool> requested{false};
std::atomic<bool> ending{false};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

// NOLINTBEGIN(cppcoreguidelines-owning-memory): never destroyed
Shared<std::string>& firstWords()
{
    static auto* const words = new Shared<std::string>;
    return *words;
}

Shared<LastWords>& sharedLastWords()
{
    static auto* const words = new Shared<LastWords>;
    return *words;
}
// NOLINTEND(cppcoreguidelines-owning-memory)

/// Becomes readable with the first Ctrl-C that is only recorded, and stays so.
int interruptEvent()
{
    static const int descriptor = ::eventfd(0, EFD_CLOEXEC);
    return descriptor;
}

/// Whether whoever started the program wants the signal to leave it alone, as a shell does for what
/// a script runs in the background and `nohup` for what is to outlive a terminal.
bool isIgnored(int signal)
{
    struct sigaction action{};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t interruptSignals()
{
    sigset_t signalSet;
    ::sigemptyset(&signalSet);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(signal))
            ::sigaddset(&signalSet, signal);
    }
    return signalSet;
}

void awaitInterrupts(Stream stream)
{
    const auto signalSet = interruptSignals();
    bool hungUp = false;
    for (int signal = 0;;) {
        if (::sigwait(&signalSet, &signal) != 0 || (signal == SIGHUP && std::exchange(hungUp, true)))
            continue;
        if (guards == 0 || requested.exchange(true))
            endProgram(stream, lastWords().interrupted, 130);
        static_cast<void>(::eventfd_write(interruptEvent(), 1));
        tryWrite(Stream::Error, firstWords().get());
    }
}

} // namespace

void holdInterrupts()
{
    const auto signalSet = interruptSignals();
    ::pthread_sigmask(SIG_BLOCK, &signalSet, nullptr); // in every thread to come as well
}

void exitOnInterrupt(Stream stream, LastWords words)
{
    setLastWords(std::move(words));
    std::thread{[stream] { awaitInterrupts(stream); }}.detach();
}

void setLastWords(LastWords words)
{
    sharedLastWords().set(std::move(words));
}

LastWords lastWords()
{
    return sharedLastWords().get();
}

void endProgram(Stream stream, std::string_view words, int exitCode)
{
    while (ending.exchange(true))
        ::pause(); // another thread ends it
    auto signalSet = interruptSignals();
    ::sigdelset(&signalSet, SIGHUP); // it may come twice
    ::pthread_sigmask(SIG_UNBLOCK, &signalSet, nullptr); // another Ctrl-C ends a write that hangs
    writeLastWords(stream, words);
    ::_exit(exitCode);
}

InterruptGuard::InterruptGuard()
    : m_firstWordsBefore{firstWords().get()}
    , m_lastWordsBefore{lastWords()}
{
    ++guards;
}

InterruptGuard::~InterruptGuard()
{
    --guards;
    firstWords().set(m_firstWordsBefore);
    platform::setLastWords(m_lastWordsBefore);
}

bool InterruptGuard::isRequested() const // NOLINT(readability-convert-member-functions-to-static)
{
    return requested;
}

void InterruptGuard::setFirstWords(std::string words) // NOLINT(readability-convert-member-functions-to-static)
{
    firstWords().set(std::move(words));
}

void InterruptGuard::setLastWords(LastWords words) // NOLINT(readability-convert-member-functions-to-static)
{
    platform::setLastWords(std::move(words));
}

int InterruptGuard::descriptor() const // NOLINT(readability-convert-member-functions-to-static)
{
    return interruptEvent();
}

} // namespace tarn::console::platform
