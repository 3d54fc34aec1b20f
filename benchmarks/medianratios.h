#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
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
            std::cout << subject << ": " << ratio << " times the plain loop, at most " << limit << '\n';
            ++subjects;
            within += ratio <= limit ? 1 : 0;
        }
        return subjects > 0 && within == subjects;
    }

private:
    std::map<std::string, double> m_medians;
};

} // namespace tarn::benchmarks
