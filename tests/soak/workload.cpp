#include "workload.h"

#include <chrono>
#include <random>
#include <string>
#include <thread>

namespace tarn::soak {

namespace {

using namespace std::chrono_literals;

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
    m_instrument.device->takeStrayAsks(); // those of the preparations
    for (const auto& exercise : m_exercises) {
        m_watch.goOn(m_watch.main(), exercise->name());
        exercise->begin();
    }
    m_watch.rest(m_watch.main());
    m_isOver = false;
    {
        std::vector<std::jthread> threads;
        threads.emplace_back([this] { comeAndGo(); });
        for (std::size_t thread = 0; thread != m_options.threads; ++thread)
            threads.emplace_back([this, thread, phase] { use(thread, phase); });
        while (!isEnough())
            std::this_thread::sleep_for(10ms);
        m_isOver = true;
    }
    rest();
}

void Workload::use(std::size_t thread, unsigned phase)
{
    Decisions decisions{m_options.seed, thread, phase};
    while (!m_isOver) {
        auto& exercise = *m_exercises[decisions.pick(m_exercises.size())];
        m_watch.goOn(thread, exercise.name());
        exercise.perform(decisions.next(thread));
    }
    m_watch.rest(thread);
}

void Workload::comeAndGo()
{
    while (!m_isOver) {
        m_watch.goOn(m_watch.coming(), "drop");
        m_instrument.simulated().drop();
        m_watch.goOn(m_watch.coming(), "offer");
        m_instrument.simulated().offer();
    }
    m_watch.rest(m_watch.coming());
}

/// Brings everything to rest, and looks at what is left.
void Workload::rest()
{
    auto& simulated = m_instrument.simulated();
    m_watch.goOn(m_watch.main(), "the last offer");
    simulated.offer();
    for (const auto& exercise : m_exercises) {
        m_watch.goOn(m_watch.main(), exercise->name());
        while (!exercise->isAtRest())
            std::this_thread::sleep_for(10ms);
    }
    m_watch.goOn(m_watch.main(), "the instrument's thread");
    simulated.waitUntilIdle();
    for (const auto& exercise : m_exercises) {
        m_watch.goOn(m_watch.main(), exercise->name());
        exercise->end();
    }
    m_watch.goOn(m_watch.main(), "the last drop");
    simulated.drop();
    simulated.waitUntilIdle();
    m_watch.rest(m_watch.main());
    check();
}

void Workload::check()
{
    auto& ledger = m_instrument.ledger;
    auto& device = *m_instrument.device;
    if (const auto live = device.liveControls())
        ledger.note(Breach::Leaked, std::to_string(live) + " controls that were dropped are alive", live);
    if (const auto asks = device.takeStrayAsks())
        ledger.note(Breach::Duplicated, std::to_string(asks) + " questions for a control belong to nobody", asks);
    const std::uint64_t refusals = ledger.refusals;
    if (const auto told = m_instrument.simulated().busyRefusals(); refusals != told)
        ledger.note(refusals < told ? Breach::Lost : Breach::Duplicated,
                    std::to_string(refusals)
                        + " requests failed although nothing was wrong, but the instrument was busy "
                        + std::to_string(told) + " times");
}

} // namespace tarn::soak
