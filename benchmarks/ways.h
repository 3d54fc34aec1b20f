#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::benchmarks {

/// One way of doing what a row of the table is about: `library`, or that of a peer.
struct Way {
    std::string row;
    std::string name;
    std::function<void(std::uint64_t times)> run; ///< measures what it does so many times
};

/// While one lives, what its thread does is measured: timed, or counted, as the program is linked for.
class Measured {
public:
    Measured();
    ~Measured();
    Measured(const Measured&) = delete;
    Measured& operator=(const Measured&) = delete;
};

/// Whether this program counts, which is slow: then the larger sizes are left out.
extern const bool isCounted;

/// Every way that this program measures. Each benchmark is a file that defines it.
[[nodiscard]] std::vector<Way> allWays();

/// Has the compiler believe that `value`, with all that it leads to, is needed.
template <class T>
void consume(const T& value)
{
    asm volatile("" : : "g"(&value) : "memory"); // NOLINT(hicpp-no-assembler)
}

/// A way that does the same again and again. What it makes once for all, the first time, does not count.
template <class Run>
[[nodiscard]] Way repeated(std::string row, std::string name, Run run)
{
    return {std::move(row), std::move(name), [run = std::move(run)](std::uint64_t times) mutable {
                run();
                const Measured measured;
                for (; times != 0; --times)
                    run();
            }};
}

/// A way that each time uses up what `prepare` makes, which does not count.
template <class Prepare, class Run>
[[nodiscard]] Way prepared(std::string row, std::string name, Prepare prepare, Run run)
{
    return {std::move(row), std::move(name),
            [prepare = std::move(prepare), run = std::move(run)](std::uint64_t times) mutable {
                for (; times != 0; --times) {
                    auto input = prepare();
                    const Measured measured;
                    run(std::move(input));
                }
            }};
}

/// A way while a thread of its own does `task` again and again.
template <class Task>
[[nodiscard]] Way beside(Task task, Way way)
{
    way.run = [task = std::move(task), alone = std::move(way.run)](std::uint64_t times) {
        const std::jthread other{[&task](const std::stop_token& stop) {
            while (!stop.stop_requested())
                task();
        }};
        alone(times);
    };
    return way;
}

} // namespace tarn::benchmarks
