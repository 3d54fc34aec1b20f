#include "workload.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

namespace tarn::soak {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 60s;

/// The decisions of one thread, which its seed settles.
class Decisions {
public:
    Decisions(std::uint64_t seed, std::uint64_t thread, std::uint64_t phase)
    {
        std::seed_seq sequence{seed & 0xFFFFFFFFU, seed >> 32U, thread, phase};
        m_random.seed(sequence);
    }

    /// The same number of decisions each time, whatever they are.
    Choice next(std::size_t thread)
    {
        Choice choice{
            .thread = thread, .operation = m_random(), .isOwn = oneIn(2), .isObserver = oneIn(16), .mishap = {}};
        const bool throws = oneIn(32);
        const bool fails = oneIn(16);
        choice.mishap.trouble = throws ? Trouble::Throws : fails ? Trouble::Fails : Trouble::None;
        choice.mishap.drops = oneIn(4);
        choice.mishap.dropFor = simulator::Duration{10ms} * (oneIn(16) ? 1 : 0);
        choice.mishap.delay = simulator::Duration{20ms} * (oneIn(256) ? 1 : 0);
        return choice;
    }

    std::size_t pick(std::size_t count) { return m_random() % count; }

private:
    bool oneIn(unsigned count) { return m_random() % count == 0; }

    std::mt19937_64 m_random;
};

} // namespace

void Workload::run(unsigned phase, const std::function<bool()>& isEnough)
{
    for (const auto& exercise : m_exercises)
        exercise->begin();
    m_isOver = false;
    {
        std::vector<std::jthread> threads;
        threads.emplace_back([this] { comeAndGo(); });
        for (std::size_t thread = 0; thread != m_options.threads; ++thread)
            threads.emplace_back([this, thread, phase] { use(thread, phase); });
        waitFor("the run", isEnough);
        m_isOver = true;
        threads.clear();
    }
    m_instrument.simulated().offer();
    waitFor("the end of what was begun", [this] {
        return std::ranges::all_of(m_exercises, [](const auto& exercise) { return exercise->isAtRest(); });
    });
    m_instrument.simulated().waitUntilIdle();
    for (const auto& exercise : m_exercises)
        exercise->end();
    m_instrument.simulated().drop();
    m_instrument.simulated().waitUntilIdle();
    if (const auto live = m_instrument.device->liveControls())
        m_instrument.ledger.note(Breach::Leaked, std::to_string(live) + " controls that the instrument has dropped",
                                 live);
}

void Workload::use(std::size_t thread, unsigned phase)
{
    Decisions decisions{m_options.seed, thread, phase};
    while (!m_isOver) {
        auto& exercise = *m_exercises[decisions.pick(m_exercises.size())];
        exercise.perform(decisions.next(thread));
        ++m_steps;
    }
}

void Workload::comeAndGo()
{
    while (!m_isOver) {
        m_instrument.simulated().drop();
        m_instrument.simulated().offer();
    }
}

/// Ends the program if nothing has moved for a long time.
void Workload::waitFor(const char* what, const std::function<bool()>& isTrue)
{
    const auto moved = [this] { return m_steps + m_instrument.ledger.notifications; };
    auto last = moved();
    auto deadline = std::chrono::steady_clock::now() + patience;
    while (!isTrue()) {
        std::this_thread::sleep_for(10ms);
        if (const auto now = moved(); now != last) {
            last = now;
            deadline = std::chrono::steady_clock::now() + patience;
        } else if (std::chrono::steady_clock::now() > deadline) {
            m_instrument.ledger.note(Breach::Lost, std::string{"nothing has moved for a minute: "} + what + " hangs");
            std::_Exit(EXIT_FAILURE);
        }
    }
}

} // namespace tarn::soak
