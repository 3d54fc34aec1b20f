#pragma once

#include "options.h"
#include "table.h"
#include "watch.h"

#include <atomic>
#include <cstddef>
#include <functional>

namespace tarn::soak {

/// The threads that use the controls of an instrument while it comes and goes as fast as it can.
class Workload {
public:
    Workload(Instrument& instrument, const std::vector<std::unique_ptr<Exercise>>& exercises, const Options& options,
             Watch& watch)
        : m_instrument{instrument}
        , m_exercises{exercises}
        , m_options{options}
        , m_watch{watch}
    {
    }

    /// Goes on until `isEnough`, then waits until everything that was begun has ended. `phase` makes the decisions
    /// other ones than those of the phases before.
    void run(unsigned phase, const std::function<bool()>& isEnough);

private:
    void use(std::size_t thread, unsigned phase);
    void comeAndGo();
    void rest();
    void check();

    Instrument& m_instrument;
    const std::vector<std::unique_ptr<Exercise>>& m_exercises;
    const Options& m_options;
    std::atomic<bool> m_isOver = false;
    Watch& m_watch;
};

} // namespace tarn::soak
