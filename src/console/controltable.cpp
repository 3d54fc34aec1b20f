#include <console/controltable.h>

#include <console/commandtable.h>
#include <devices/controlregistry.h>

#include <algorithm>
#include <array>

namespace tarn::console {

namespace {

template <class... Commands>
constexpr auto rowsOf(ControlCommands<Commands...>)
{
    return std::array{ControlRow{Commands::name, Commands::registryKey, Commands::sdkKey, Commands::purpose,
                                 &Commands::addTo, &Commands::tour}...};
}

constexpr auto rows = rowsOf(AllControls{});

} // namespace

std::span<const ControlRow> controlRows()
{
    return rows;
}

const ControlRow* findControlRow(std::uint64_t registryKey)
{
    const auto* const row = std::ranges::find(rows, registryKey, &ControlRow::registryKey);
    return row == rows.end() ? nullptr : row;
}

std::string controlName(std::uint64_t registryKey)
{
    const auto* const row = findControlRow(registryKey);
    return row ? std::string{row->name} : devices::ControlRegistry::keyText(registryKey);
}

} // namespace tarn::console
