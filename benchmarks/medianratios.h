#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace tarn::benchmarks {

/// Collects the medians of benchmarks named `subject/library` and `subject/plain`, and holds one
/// against the other.
class MedianRatios : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const auto& run : runs) {
            if (run.aggregate_name == "median")
                m_medians[run.run_name.function_name] = run.GetAdjustedRealTime();
        }
    }

    /// Prints the ratio of each subject of which both were run. Whether there is one, and none is
    /// above `limit`.
    [[nodiscard]] bool areWithin(double limit) const
    {
        static const std::string suffix = "/library";
        std::size_t subjects = 0;
        std::size_t within = 0;
        for (const auto& [name, median] : m_medians) {
            const auto subject = name.substr(0, name.rfind('/'));
            const auto plain = m_medians.find(subject + "/plain");
            if (!name.ends_with(suffix) || plain == m_medians.end())
                continue;
            const double ratio = median / plain->second;
            std::cout << subject << ": " << ratio << " times the plain way, at most " << limit << '\n';
            ++subjects;
            within += ratio <= limit ? 1 : 0;
        }
        return subjects > 0 && within == subjects;
    }

private:
    std::map<std::string, double> m_medians;
};

/// Runs the benchmarks that `addAll` registers, interleaved, and returns the exit code of a program whose ratios must
/// not be above `limit`.
inline int runWithin(double limit, int argc, char** argv, void (*addAll)())
{
    // What the command line says comes later and therefore counts.
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char repetitions[] = "--benchmark_repetitions=30";
    char seconds[] = "--benchmark_min_time=0.05";
    char aggregates[] = "--benchmark_report_aggregates_only=true";
    std::vector<char*> arguments{argv[0], interleaved, repetitions, seconds, aggregates};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int argumentCount = static_cast<int>(arguments.size());
    benchmark::Initialize(&argumentCount, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments.data()))
        return EXIT_FAILURE;
    addAll();
    MedianRatios medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    return medians.areWithin(limit) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace tarn::benchmarks
