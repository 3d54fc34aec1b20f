#pragma once

#include <conformance/conformance.h>
#include <simulator/address.h>
#include <simulator/simulatedvna.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace tarn::conformance {

inline void PrintTo(const Finding& finding, std::ostream* stream)
{
    *stream << finding.where << ' ' << finding.what;
}

inline void PrintTo(Verdict verdict, std::ostream* stream)
{
    *stream << (verdict == Verdict::Kept ? "kept" : verdict == Verdict::Broken ? "broken" : "not checked");
}

} // namespace tarn::conformance

namespace tarn::tests {

using MakeDevice = std::function<std::shared_ptr<sdk::IVna>()>;

/// Limits for devices without an instrument.
inline conformance::Options quick()
{
    return {.writes = true,
            .limit = std::chrono::milliseconds{400},
            .patience = std::chrono::milliseconds{40},
            .drop = {},
            .stop = {}};
}

inline MakeDevice simulated(const char* address)
{
    return [address] {
        return std::make_shared<simulator::SimulatedVna>(
            simulator::parseAddress(QString::fromUtf8(address)).value().settings);
    };
}

inline const conformance::Guarantee& guarantee(std::string_view name)
{
    return *std::ranges::find(conformance::guarantees(), name, &conformance::Guarantee::name);
}

/// What each guarantee's check finds of devices that are alike.
inline std::map<std::string_view, conformance::Outcome> checkAll(const MakeDevice& make,
                                                                 const conformance::Options& options)
{
    std::map<std::string_view, conformance::Outcome> outcomes;
    for (const auto& one : conformance::guarantees())
        outcomes.emplace(one.name, conformance::check(one, make(), options));
    return outcomes;
}

/// The guarantees that are broken.
inline std::vector<std::string_view> broken(const std::map<std::string_view, conformance::Outcome>& outcomes)
{
    std::vector<std::string_view> names;
    for (const auto& [name, outcome] : outcomes) {
        if (outcome.verdict == conformance::Verdict::Broken)
            names.push_back(name);
    }
    return names;
}

/// The findings, each in a line.
inline std::string textOf(const conformance::Outcome& outcome)
{
    std::string text;
    for (const auto& finding : outcome.findings)
        text += finding.where + ' ' + finding.what + '\n';
    return text;
}

} // namespace tarn::tests
