#include "footprint.h"
#include "options.h"
#include "workload.h"

#include <QCoreApplication>

#include <chrono>
#include <iostream>

namespace {

using namespace tarn::soak;

int soak(const Options& options)
{
    Ledger ledger{options.seed};
    Watch watch{ledger, options.threads};
    watch.goOn(watch.main(), "the beginning");
    auto instrument = makeInstrument(ledger);
    {
        const auto exercises = makeExercises(*instrument, options.threads);
        instrument->simulated().drop();
        instrument->simulated().offer();
        Workload workload{*instrument, exercises, options, watch};

        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        const auto until = [&](unsigned tenths) {
            return [&, tenths] {
                return options.cycles != 0 ? ledger.cycles * 10 >= options.cycles * tenths
                                           : (Clock::now() - start) * 10 >= options.time * tenths;
            };
        };
        workload.run(0, until(1));
        const auto warm = footprint();
        instrument->simulated().offer();
        workload.run(1, until(10));
        compare(ledger, warm, footprint());
        watch.goOn(watch.main(), "the end of the adapters");
        std::cerr << "soak: " << instrument->device->asks() << " times the device was asked for a control\n";
    }
    watch.goOn(watch.main(), "the end of the instrument");
    instrument.reset();
    watch.rest(watch.main());
    std::cout << ledger.summary() << '\n';
    return ledger.isClean() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char* argv[])
{
    try {
        const auto options = parse({argv + 1, static_cast<std::size_t>(argc) - 1});
        const QCoreApplication application{argc, argv};
        return soak(options);
    } catch (const BadOption& reason) {
        std::cerr << "soak: " << reason.what() << '\n';
        return 2;
    }
}
