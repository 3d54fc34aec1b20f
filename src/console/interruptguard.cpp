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

/// A text that any thread may read and change.
class Words {
public:
    [[nodiscard]] std::string get()
    {
        const utils::MutexLock lock{m_mutex};
        return m_text;
    }

    void set(std::string text)
    {
        const utils::MutexLock lock{m_mutex};
        m_text = std::move(text);
    }

private:
    utils::Mutex m_mutex;
    std::string m_text TARN_GUARDED_BY(m_mutex);
};

// What the thread that waits for Ctrl-C shares with the rest of the program. It outlives `main`, so
// everything here does without a destructor.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): a process has one Ctrl-C
std::atomic<int> guards{0};
std::atomic<bool> requested{false};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

// NOLINTBEGIN(cppcoreguidelines-owning-memory): never destroyed
Words& firstWords()
{
    static auto* const words = new Words;
    return *words;
}

Words& lastWords()
{
    static auto* const words = new Words;
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

[[noreturn]] void endInterrupted(Stream stream)
{
    const auto signalSet = interruptSignals();
    ::pthread_sigmask(SIG_UNBLOCK, &signalSet, nullptr); // another Ctrl-C ends a write that hangs
    writeLastWords(stream, lastWords().get());
    ::_exit(130);
}

void awaitInterrupts(Stream stream)
{
    const auto signalSet = interruptSignals();
    bool hungUp = false;
    for (int signal = 0;;) {
        if (::sigwait(&signalSet, &signal) != 0 || (signal == SIGHUP && std::exchange(hungUp, true)))
            continue;
        if (guards == 0 || requested.exchange(true))
            endInterrupted(stream);
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

void exitOnInterrupt(Stream stream, std::string words)
{
    setLastWords(std::move(words));
    std::thread{[stream] { awaitInterrupts(stream); }}.detach();
}

void setLastWords(std::string words)
{
    lastWords().set(std::move(words));
}

InterruptGuard::InterruptGuard()
    : m_firstWordsBefore{firstWords().get()}
    , m_lastWordsBefore{lastWords().get()}
{
    ++guards;
}

InterruptGuard::~InterruptGuard()
{
    --guards;
    firstWords().set(m_firstWordsBefore);
    lastWords().set(m_lastWordsBefore);
}

bool InterruptGuard::isRequested() const // NOLINT(readability-convert-member-functions-to-static)
{
    return requested;
}

void InterruptGuard::setFirstWords(std::string words) // NOLINT(readability-convert-member-functions-to-static)
{
    firstWords().set(std::move(words));
}

void InterruptGuard::setLastWords(std::string words) // NOLINT(readability-convert-member-functions-to-static)
{
    lastWords().set(std::move(words));
}

int InterruptGuard::descriptor() const // NOLINT(readability-convert-member-functions-to-static)
{
    return interruptEvent();
}

} // namespace tarn::console::platform
