#include "ledger.h"

#include <algorithm>
#include <iostream>

namespace tarn::soak {

namespace {

constexpr std::array names{"lost", "duplicated", "late", "leaked"};

} // namespace

void Ledger::note(Breach breach, const std::string& what, std::uint64_t count)
{
    const auto kind = static_cast<std::size_t>(breach);
    m_counts.at(kind) += count;
    const std::scoped_lock lock{m_mutex};
    if (m_told++ < toldAtMost)
        std::cerr << "soak: seed " << m_seed << ": " << names.at(kind) << ": " << what << '\n';
}

bool Ledger::isClean() const
{
    return cycles != 0 && calls != 0 && notifications != 0
        && std::ranges::all_of(m_counts, [](const auto& count) { return count == 0; });
}

std::string Ledger::summary() const
{
    const auto number = [](std::uint64_t count, const char* name) { return std::to_string(count) + ' ' + name; };
    auto line
        = "soak: " + number(cycles, "cycles, ") + number(calls, "calls, ") + number(notifications, "notifications");
    for (const auto breach : {Breach::Lost, Breach::Duplicated, Breach::Late, Breach::Leaked})
        line += ", " + number(count(breach), names.at(static_cast<std::size_t>(breach)));
    return line;
}

} // namespace tarn::soak
