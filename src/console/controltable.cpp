#include <console/controltable.h>

#include <devices/controlregistry.h>

#include <algorithm>

namespace tarn::console {

std::span<const ControlRow> controlRows()
{
    return AllControls::rows;
}

const ControlRow* findControlRow(std::uint64_t registryKey)
{
    const auto rows = controlRows();
    const auto row = std::ranges::find(rows, registryKey, &ControlRow::registryKey);
    return row == rows.end() ? nullptr : &*row;
}

std::string controlName(std::uint64_t registryKey)
{
    const auto* const row = findControlRow(registryKey);
    return row ? std::string{row->name} : devices::ControlRegistry::keyText(registryKey);
}

} // namespace tarn::console
