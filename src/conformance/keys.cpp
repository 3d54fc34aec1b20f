#include <conformance/bench.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <utility>

namespace tarn::conformance {

namespace {

/// How often the device is asked: controls may be dropped in between.
constexpr int attempts = 3;

/// Keys that stand for nothing, among them such as differ from a known one by little.
std::set<sdk::Key> unknownKeys()
{
    std::set<sdk::Key> unknown{sdk::Key{0}, sdk::Key{1}, sdk::Key{std::numeric_limits<std::uint64_t>::max()}};
    for (const auto& row : controlRows()) {
        for (const auto bit : {0U, 31U, 32U, 63U})
            unknown.insert(sdk::Key{std::to_underlying(row.key) ^ std::uint64_t{1} << bit});
    }
    for (const auto& row : controlRows())
        unknown.erase(row.key);
    return unknown;
}

/// Whether the device gives the same control again, and again.
bool isGivenAgain(const Bench& bench, const ControlRow& row, const std::shared_ptr<void>& control)
{
    for (int time = 0; time < 3; ++time) {
        if (bench.control(std::string{row.name}, row.key) != control)
            return false;
    }
    return true;
}

/// The control under the key; what is wrong with it is a finding.
std::shared_ptr<void> lookAtKey(const Bench& bench, const ControlRow& row)
{
    const std::string name{row.name};
    std::shared_ptr<void> control;
    bool isSteady = false;
    for (int attempt = 0; attempt < attempts && !isSteady; ++attempt) {
        control = bench.control(name, row.key);
        isSteady = isGivenAgain(bench, row, control);
    }
    if (!isSteady)
        bench.record()->finding(name, "is another one each time it is asked for");
    if (control && control.use_count() == 0)
        bench.record()->finding(name, "is given without an owner");
    if (!control && control.use_count() != 0)
        bench.record()->finding(name, "is given as a null pointer that has an owner");
    return control;
}

} // namespace

void lookAtKeys(Bench& bench)
{
    const auto& record = bench.record();
    std::map<const void*, std::string_view> places;
    std::vector<std::shared_ptr<void>> kept; // so that no place is used again
    for (const auto& row : controlRows()) {
        kept.push_back(lookAtKey(bench, row));
        const auto [place, isNew] = places.emplace(kept.back().get(), row.name);
        if (kept.back() && !isNew)
            record->finding(std::string{row.name},
                            "stands where " + std::string{place->second}
                                + " does, so that one of the two is not the interface of its key");
    }
    for (const auto key : unknownKeys()) {
        if (bench.control("of an unknown key", key))
            record->finding("control", "gives something for a key that stands for nothing");
    }
    bench.call("model", [&] {
        const auto model = bench.device()->model();
        if (model.name().empty())
            record->finding("model", "has no name");
        if (!(model == bench.device()->model()))
            record->finding("model", "is another one each time");
    });
    record->checked();
}

} // namespace tarn::conformance
