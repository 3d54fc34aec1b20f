#include "workload.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
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
        choice.mishap.drops = oneIn(2);
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
    for (auto& doing : m_doing)
        doing = m_exercises.front().get();
    m_isOver = false;
    {
        std::vector<std::jthread> threads;
        threads.emplace_back([this] { comeAndGo(); });
        for (std::size_t thread = 0; thread != m_options.threads; ++thread)
            threads.emplace_back([this, thread, phase] { use(thread, phase); });
        waitFor(isEnough);
        m_isOver = true;
        waitFor([this] { return std::ranges::all_of(m_doing, [](const auto& doing) { return !doing; }); });
    }
    rest();
}

void Workload::use(std::size_t thread, unsigned phase)
{
    Decisions decisions{m_options.seed, thread, phase};
    while (!m_isOver) {
        auto& exercise = *m_exercises[decisions.pick(m_exercises.size())];
        m_doing[thread] = &exercise;
        exercise.perform(decisions.next(thread));
        ++m_steps;
    }
    m_doing[thread] = nullptr;
}

void Workload::comeAndGo()
{
    while (!m_isOver) {
        m_instrument.simulated().drop();
        m_instrument.simulated().offer();
    }
}

/// Gives up if no thread has made a step for a long time.
void Workload::waitFor(const std::function<bool()>& isTrue)
{
    auto steps = m_steps.load();
    auto deadline = std::chrono::steady_clock::now() + patience;
    while (!isTrue()) {
        std::this_thread::sleep_for(10ms);
        if (const auto now = m_steps.load(); now != steps) {
            steps = now;
            deadline = std::chrono::steady_clock::now() + patience;
        } else if (std::chrono::steady_clock::now() > deadline) {
            giveUp();
        }
    }
}

/// Says who hangs and ends the program, as nothing can be taken apart any more.
void Workload::giveUp()
{
    for (std::size_t thread = 0; thread != m_doing.size(); ++thread) {
        if (const auto* const exercise = m_doing[thread].load())
            m_instrument.ledger.note(Breach::Lost,
                                     std::string{exercise->name()} + ": thread " + std::to_string(thread)
                                         + " has been waiting in there for a minute");
    }
    std::cout << m_instrument.ledger.summary() << std::endl;
    std::_Exit(EXIT_FAILURE);
}

/// Brings everything to rest, and looks at what is left.
void Workload::rest()
{
    auto& simulated = m_instrument.simulated();
    simulated.offer();
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const auto isAtRest = [](const auto& exercise) { return exercise->isAtRest(); };
    while (!std::ranges::all_of(m_exercises, isAtRest) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(10ms);
    simulated.waitUntilIdle();
    for (const auto& exercise : m_exercises)
        exercise->end();
    simulated.drop();
    simulated.waitUntilIdle();
    if (const auto live = m_instrument.device->liveControls())
        m_instrument.ledger.note(Breach::Leaked, std::to_string(live) + " controls that were dropped are alive", live);
}

} // namespace tarn::soak
