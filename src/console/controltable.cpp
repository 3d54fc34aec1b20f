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

constexpr auto controlTable = rowsOf(AllControls{});

} // namespace

std::span<const ControlRow> controlRows()
{
    return controlTable;
}

const ControlRow* findControlRow(std::uint64_t registryKey)
{
    const auto* const row = std::ranges::find(controlTable, registryKey, &ControlRow::registryKey);
    return row == controlTable.end() ? nullptr : row;
}

std::string controlName(std::uint64_t registryKey)
{
    const auto* const row = findControlRow(registryKey);
    return row ? std::string{row->name} : devices::ControlRegistry::keyText(registryKey);
}

} // namespace tarn::console
