#include <simulator/potentiometermodel.h>

#include <simulator/error.h>

#include <QJsonArray>
#include <QJsonObject>

#include <array>
#include <limits>
#include <string_view>

namespace tarn::simulator {

namespace {

using Value = PotentiometerModel::Value;

const QString sectionName = QStringLiteral("potentiometers");

struct Kind {
    std::string_view name;
    std::int32_t minimum;
    std::int32_t maximum;
    std::int32_t delivered;
};

constexpr std::array kinds{
    Kind{"LO level", 0, 255, 128},
    Kind{"Source ALC gain", 0, 1023, 512},
    Kind{"Source ALC offset", -128, 127, 0},
    Kind{"Reference trim", 0, 1023, 480},
    Kind{"Receiver A offset", -512, 511, 12},
    Kind{"Receiver B offset", -512, 511, -7},
    Kind{"IF gain", 0, 63, 31},
    Kind{"Mixer bias", 0, 255, 96},
};

bool isWhole(const QJsonValue& value, double least, double most)
{
    const auto number = value.toDouble(least - 1.0);
    return number >= least && number <= most && number == static_cast<double>(static_cast<std::int64_t>(number));
}

Value load(const Storage& storage, const Kind& kind, const QJsonObject& entry)
{
    const auto ram = entry[QStringLiteral("ram")];
    const auto eeprom = entry[QStringLiteral("eeprom")];
    const auto writes = entry[QStringLiteral("writes")];
    if (!isWhole(ram, kind.minimum, kind.maximum) || !isWhole(eeprom, kind.minimum, kind.maximum)
        || !isWhole(writes, 0.0, std::numeric_limits<std::uint32_t>::max()))
        storage.refuse(QStringLiteral("an entry of \"potentiometers\" is not two values in their range and a number "
                                      "of writes"));
    return {.ram = static_cast<std::int32_t>(ram.toDouble()),
            .eeprom = static_cast<std::int32_t>(eeprom.toDouble()),
            .eepromWrites = static_cast<std::uint32_t>(writes.toDouble())};
}

std::vector<Value> load(const Storage& storage)
{
    std::vector<Value> values;
    const auto section = storage.section(sectionName);
    if (section.isUndefined()) {
        for (const auto& kind : kinds)
            values.push_back({.ram = kind.delivered, .eeprom = kind.delivered, .eepromWrites = 0});
        return values;
    }
    const auto entries = section.toArray();
    if (entries.size() != static_cast<qsizetype>(kinds.size()))
        storage.refuse(QStringLiteral("\"potentiometers\" is not a list of %1 entries").arg(kinds.size()));
    for (std::size_t i = 0; i < kinds.size(); ++i)
        values.push_back(load(storage, kinds[i], entries[static_cast<qsizetype>(i)].toObject()));
    return values;
}

QJsonArray toSection(const std::vector<Value>& values)
{
    QJsonArray section;
    for (const auto& value : values)
        section.append(QJsonObject{{QStringLiteral("ram"), value.ram},
                                   {QStringLiteral("eeprom"), value.eeprom},
                                   {QStringLiteral("writes"), static_cast<double>(value.eepromWrites)}});
    return section;
}

std::error_code check(unsigned long index, int value)
{
    if (index >= kinds.size())
        return Error::BadIndex;
    if (value < kinds[index].minimum || value > kinds[index].maximum)
        return Error::OutOfRange;
    return {};
}

} // namespace

PotentiometerModel::PotentiometerModel(Storage& storage)
    : m_storage{storage}
    , m_values{load(storage)}
{
}

std::vector<PotentiometerModel::Potentiometer> PotentiometerModel::list()
{
    std::vector<Potentiometer> list;
    list.reserve(kinds.size());
    for (const auto& kind : kinds)
        list.push_back({std::string{kind.name}, kind.minimum, kind.maximum});
    return list;
}

std::vector<Value> PotentiometerModel::values() const
{
    const utils::MutexLock lock{m_mutex};
    return m_values;
}

std::expected<int, std::error_code> PotentiometerModel::readEeprom(unsigned long index) const
{
    if (index >= kinds.size())
        return std::unexpected{make_error_code(Error::BadIndex)};
    const utils::MutexLock lock{m_mutex};
    return m_values[index].eeprom;
}

std::error_code PotentiometerModel::writeRam(unsigned long index, int value)
{
    if (const auto failure = check(index, value))
        return failure;
    const utils::MutexLock lock{m_mutex};
    auto values = m_values;
    values[index].ram = value;
    return keep(std::move(values));
}

std::error_code PotentiometerModel::writeEeprom(unsigned long index, int value)
{
    if (const auto failure = check(index, value))
        return failure;
    const utils::MutexLock lock{m_mutex};
    auto values = m_values;
    values[index].eeprom = value;
    ++values[index].eepromWrites;
    return keep(std::move(values));
}

void PotentiometerModel::cyclePower()
{
    const utils::MutexLock lock{m_mutex};
    for (auto& value : m_values)
        value.ram = value.eeprom;
    // The power has gone, whether or not this can be saved.
    static_cast<void>(m_storage.save(sectionName, toSection(m_values), {}));
}

std::error_code PotentiometerModel::keep(std::vector<Value> values)
{
    if (const auto failure = m_storage.save(sectionName, toSection(values), {}))
        return failure;
    m_values = std::move(values);
    return {};
}

} // namespace tarn::simulator
