#pragma once

#include <semaphore.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

namespace tarn::tests {

/// Runs threads of which one goes on at a time. At each point a seed decides which one that is, so that the same seed
/// gives the same run. The points are those that a test sets in what it supplies, and before every lock and after
/// every unlock of a mutex.
///
/// A thread that would wait for a mutex or a future, of this program's own code, goes on when another has come to a
/// point. If all of them wait, a mutex that is waited for fails with the error of a deadlock.
class Schedule {
public:
    explicit Schedule(std::uint32_t seed);
    ~Schedule();
    Schedule(const Schedule&) = delete;
    Schedule& operator=(const Schedule&) = delete;

    void thread(std::function<void()> body);

    /// Runs all threads to their ends. What one of them throws is a failure of the test.
    void run();

    /// Here another thread may go on. Does nothing on a thread that is none of a schedule's.
    static void point(std::string_view name);

    /// Whether the calling thread is one of a schedule's.
    static bool isRunning();

    /// Lets the others go on until one of them has come to a point. False if all of them wait.
    static bool wait();

private:
    struct Thread;

    void begin(Thread& thread);
    void end();
    /// Whoever waits looks again.
    void wakeAll();
    /// One that can go on; null if there is none.
    Thread* choose();
    /// Lets `next` go on instead of the calling thread.
    void handOver(Thread& next) const;

    std::mt19937 m_random;
    std::vector<std::unique_ptr<Thread>> m_threads;
    int m_points = 0;
};

/// Tries `scenario` with the seeds from 0 to `count` until one fails, and prints that one; or with the seed alone that
/// the environment variable TARN_SCHEDULE_SEED names, whose points are printed too.
void forEachSeed(std::uint32_t count, const std::function<void(std::uint32_t seed)>& scenario);

} // namespace tarn::tests
