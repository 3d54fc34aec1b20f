#include <support/schedule.h>

#include <support/mutexprobe.h>
#include <support/watchdog.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <utility>

#include <sched.h>

namespace tarn::tests {

namespace {

constexpr auto seedVariable = "TARN_SCHEDULE_SEED";

thread_local Schedule* current = nullptr;

/// Keeps this thread, and those that it starts, on the processor that it is on: where one of them runs at a time, to
/// wake another processor is most of what a hand-over costs.
class OnOneProcessor {
public:
    OnOneProcessor()
    {
        ::sched_getaffinity(0, sizeof m_before, &m_before);
        cpu_set_t here{};
        CPU_SET(static_cast<unsigned>(::sched_getcpu()), &here);
        ::sched_setaffinity(0, sizeof here, &here);
    }
    ~OnOneProcessor() { ::sched_setaffinity(0, sizeof m_before, &m_before); }
    OnOneProcessor(const OnOneProcessor&) = delete;
    OnOneProcessor& operator=(const OnOneProcessor&) = delete;

private:
    cpu_set_t m_before{};
};

} // namespace

struct Schedule::Thread {
    Thread(std::size_t number, std::function<void()> what)
        : index{number}
        , body{std::move(what)}
    {
        sem_init(&turn, 0, 0);
    }
    ~Thread() { sem_destroy(&turn); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    void await()
    {
        while (sem_wait(&turn) != 0)
            ; // a signal came
    }

    static thread_local Thread* self;

    const std::size_t index;
    const std::function<void()> body;
    sem_t turn{};
    bool isOver = false;
    bool waits = false;
};

thread_local Schedule::Thread* Schedule::Thread::self = nullptr;

Schedule::Schedule(std::uint32_t seed)
    : m_random{seed}
{
}

Schedule::~Schedule() = default;

void Schedule::thread(std::function<void()> body)
{
    m_threads.push_back(std::make_unique<Thread>(m_threads.size(), std::move(body)));
}

void Schedule::run()
{
    const OnOneProcessor here;
    std::vector<std::jthread> threads;
    for (const auto& thread : m_threads)
        threads.emplace_back([this, &thread] { begin(*thread); });
    sem_post(&choose()->turn);
}

void Schedule::begin(Thread& thread)
{
    current = this;
    Thread::self = &thread;
    Thread::self->await();
    MutexProbe::hook({.pass = [] { Schedule::point("mutex"); }, .wait = &Schedule::wait});
    try {
        Thread::self->body();
    } catch (const std::exception& exception) {
        ADD_FAILURE() << "thread " << thread.index << " threw: " << exception.what();
    }
    end();
}

void Schedule::end()
{
    Thread::self->isOver = true;
    wakeAll();
    if (auto* const next = choose())
        sem_post(&next->turn);
}

void Schedule::point(std::string_view name)
{
    if (!current)
        return;
    if (++current->m_points > 100'000)
        giveUp("it comes to no end");
    if (std::getenv(seedVariable))
        std::cerr << "thread " << Thread::self->index << ": " << name << '\n';
    current->wakeAll();
    current->handOver(*current->choose());
}

bool Schedule::isRunning()
{
    return current;
}

bool Schedule::wait()
{
    Thread::self->waits = true;
    auto* const next = current->choose();
    if (next)
        current->handOver(*next);
    else
        Thread::self->waits = false;
    return next;
}

void Schedule::wakeAll()
{
    for (const auto& thread : m_threads)
        thread->waits = false;
}

Schedule::Thread* Schedule::choose()
{
    std::vector<Thread*> ready;
    for (const auto& thread : m_threads) {
        if (!thread->isOver && !thread->waits)
            ready.push_back(thread.get());
    }
    return ready.empty() ? nullptr : ready[m_random() % ready.size()];
}

void Schedule::handOver(Thread& next) const
{
    auto* const self = Thread::self;
    if (&next == self)
        return;
    sem_post(&next.turn);
    self->await();
}

void forEachSeed(std::uint32_t count, const std::function<void(std::uint32_t seed)>& scenario)
{
    const auto attempt = [&scenario](std::uint32_t seed) {
        const auto replay = std::string{seedVariable} + "=" + std::to_string(seed);
        const Watchdog watchdog;
        nowTrying(replay);
        scenario(seed);
        if (testing::Test::HasFailure())
            ADD_FAILURE() << "to try this again, set " << replay;
        return !testing::Test::HasFailure();
    };
    if (const char* const chosen = std::getenv(seedVariable)) {
        attempt(static_cast<std::uint32_t>(std::stoul(chosen)));
        return;
    }
    for (std::uint32_t seed = 0; seed != count && attempt(seed); ++seed)
        ;
}

} // namespace tarn::tests

// The linker sends the program's own waits for futures here (--wrap).
extern "C" {
bool realFutexWait(void* self, unsigned int* value, unsigned int old, bool hasLimit, std::chrono::seconds seconds,
                   std::chrono::nanoseconds nanoseconds) __asm__("__real_" TARN_FUTEX_WAIT);
bool wrappedFutexWait(void* self, unsigned int* value, unsigned int old, bool hasLimit, std::chrono::seconds seconds,
                      std::chrono::nanoseconds nanoseconds) __asm__("__wrap_" TARN_FUTEX_WAIT);

bool wrappedFutexWait(void* self, unsigned int* value, unsigned int old, bool hasLimit, std::chrono::seconds seconds,
                      std::chrono::nanoseconds nanoseconds)
{
    if (!tarn::tests::Schedule::isRunning())
        return realFutexWait(self, value, old, hasLimit, seconds, nanoseconds);
    while (std::atomic_ref{*value} == old) {
        if (!tarn::tests::Schedule::wait())
            tarn::tests::giveUp("everybody waits, one for a completion that never comes");
    }
    return true;
}
}
