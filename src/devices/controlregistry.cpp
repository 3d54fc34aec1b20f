#include <devices/controlregistry.h>

#include <QString>

#include <algorithm>
#include <stdexcept>

namespace tarn::devices {

void ControlRegistry::addEntry(const ControlEntryBase& entry)
{
    if (find(entry.key))
        throw std::invalid_argument{"control registry: there is an entry under key " + keyText(entry.key) + " already"};
    m_entries.push_back(entry);
}

const ControlRegistry::ControlEntryBase* ControlRegistry::find(std::uint64_t key) const
{
    const auto entry = std::ranges::find(m_entries, key, &ControlEntryBase::key);
    return entry == m_entries.end() ? nullptr : &*entry;
}

std::string ControlRegistry::keyText(std::uint64_t key)
{
    return QStringLiteral("0x%1").arg(key, 16, 16, QLatin1Char{'0'}).toStdString();
}

} // namespace tarn::devices
