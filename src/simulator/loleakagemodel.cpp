#include <simulator/loleakagemodel.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace tarn::simulator {

namespace {

const QString sectionName = QStringLiteral("loLeakage");
constexpr double leakageRise = 4.0; // kelvin

bool load(const Storage& storage)
{
    const auto section = storage.section(sectionName);
    if (!section.isUndefined() && !section.isBool())
        storage.refuse(QStringLiteral("\"loLeakage\" is neither true nor false"));
    return section.toBool();
}

} // namespace

LoLeakageModel::LoLeakageModel(Storage& storage, ThermalModel& thermal, Clock& clock)
    : m_storage{storage}
    , m_thermal{thermal}
    , m_clock{clock}
    , m_enabled{load(storage)}
{
    const utils::MutexLock lock{m_mutex};
    take(m_enabled);
}

bool LoLeakageModel::isEnabled() const
{
    const utils::MutexLock lock{m_mutex};
    return m_enabled;
}

void LoLeakageModel::setEnabled(bool enabled, QJsonObject others)
{
    const utils::MutexLock lock{m_mutex};
    if (!save(enabled, std::move(others)))
        throw std::runtime_error{std::string{"the LO leakage setting could not be saved and stays "}
                                 + (m_enabled ? "on" : "off")
                                 + "; check that the state folder is there and its disk is not full"};
    take(enabled);
}

void LoLeakageModel::cyclePower()
{
    const utils::MutexLock lock{m_mutex};
    take(false);
    static_cast<void>(save(false, {})); // the power has gone, whether or not this can be saved
}

bool LoLeakageModel::save(bool enabled, QJsonObject others)
{
    others[sectionName] = enabled;
    return !m_storage.save(others, {});
}

void LoLeakageModel::take(bool enabled)
{
    m_enabled = enabled;
    m_thermal.setExtraRise(ThermalModel::loModule, "loLeakage", enabled ? leakageRise : 0.0, m_clock.now());
}

} // namespace tarn::simulator
