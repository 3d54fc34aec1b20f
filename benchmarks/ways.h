#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <latch>
#include <stop_token>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn::benchmarks {

/// One way of doing what a row of the table is about: `library`, or that of a peer.
struct Way {
    std::string row;
    std::string name;
    std::function<void(std::uint64_t times)> run; ///< measures what it does so many times
    std::uint64_t times = 0; ///< how often it is timed at a time; 0: until that has taken long enough
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

/// Runs a way once. One that has failed, which is quickly done, ends the program.
template <class Run, class... Input>
void once(Run& run, Input&&... input)
{
    if constexpr (std::is_void_v<std::invoke_result_t<Run&, Input...>>) {
        run(std::forward<Input>(input)...);
    } else {
        const auto result = run(std::forward<Input>(input)...);
        if constexpr (requires { result.has_value(); })
            if (!result.has_value())
                std::abort();
        consume(result);
    }
}

/// A way that does the same again and again. The first time does not count: it makes what is made once for all, and
/// gets memory from the system.
template <class Run>
[[nodiscard]] Way repeated(std::string row, std::string name, Run run)
{
    return {std::move(row), std::move(name), [run = std::move(run)](std::uint64_t times) mutable {
                once(run);
                const Measured measured;
                for (; times != 0; --times)
                    once(run);
            }};
}

/// A way that each time uses up what `prepare` makes, which does not count, nor does the first time; timed `times`
/// times at a time, because making it may take much longer.
template <class Prepare, class Run>
[[nodiscard]] Way prepared(std::string row, std::string name, std::uint64_t times, Prepare prepare, Run run)
{
    const auto measure = [prepare = std::move(prepare), run = std::move(run)](std::uint64_t count) mutable {
        once(run, prepare());
        for (; count != 0; --count) {
            auto input = prepare();
            const Measured measured;
            once(run, std::move(input));
        }
    };
    return {std::move(row), std::move(name), measure, times};
}

/// A way while another thread does `task` again and again.
template <class Task>
[[nodiscard]] Way beside(Task task, Way way)
{
    way.run = [task = std::move(task), alone = std::move(way.run)](std::uint64_t times) mutable {
        std::latch started{1};
        const std::jthread other{[&](const std::stop_token& stop) {
            for (started.count_down(); !stop.stop_requested();)
                once(task);
        }};
        started.wait();
        alone(times);
    };
    return way;
}

using Sizes = std::vector<std::size_t>;

/// The ways that each of `make` gives for each size.
template <class... Make>
[[nodiscard]] std::vector<Way> forEach(const Sizes& sizes, Make... make)
{
    std::vector<Way> ways;
    const auto add = [&ways](std::vector<Way> some) { ways.insert(ways.end(), some.begin(), some.end()); };
    for (const auto size : sizes)
        (add(make(size)), ...);
    return ways;
}

} // namespace tarn::benchmarks
