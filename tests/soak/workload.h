#pragma once

#include "options.h"
#include "table.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace tarn::soak {

/// The threads that use the controls of an instrument while it comes and goes as fast as it can.
class Workload {
public:
    Workload(Instrument& instrument, const std::vector<std::unique_ptr<Exercise>>& exercises, const Options& options)
        : m_instrument{instrument}
        , m_exercises{exercises}
        , m_options{options}
        , m_doing(options.threads)
    {
    }

    /// Goes on until `isEnough`, then waits until everything that was begun has ended. `phase` makes the decisions
    /// other ones than those of the phases before.
    void run(unsigned phase, const std::function<bool()>& isEnough);

private:
    void use(std::size_t thread, unsigned phase);
    void comeAndGo();
    void waitFor(const std::function<bool()>& isTrue);
    void rest();
    [[noreturn]] void giveUp();

    Instrument& m_instrument;
    const std::vector<std::unique_ptr<Exercise>>& m_exercises;
    const Options& m_options;
    std::atomic<bool> m_isOver = false;
    std::atomic<std::uint64_t> m_steps = 0;
    std::vector<std::atomic<const Exercise*>> m_doing; ///< what each thread uses; null: it has ended
};

} // namespace tarn::soak
