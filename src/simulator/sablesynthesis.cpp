#include <sdk/service/isablesynthesiscontrol.h>
#include <simulator/handedout.h>
#include <simulator/modulecontrol.h>
#include <simulator/modulecontrols.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>

namespace tarn::simulator {

namespace {

using Sdk = sdk::service::ISableSynthesisControl;
using sdk::sable::PowerSynt;
using Bounds = std::array<double, 2>;

constexpr std::uint8_t lowestPower = 4;
constexpr std::uint8_t highestPower = 60;
constexpr std::uint8_t defaultPower = 32;
constexpr Within powers{lowestPower, highestPower};
constexpr Within frequencies{100e3, 9e9}; // Hz
constexpr Bounds capacitances{1e-12, 20e-12}; // farads
constexpr std::array ifs{1e6, 4e6, 10e6}; // Hz
constexpr std::array<PowerSynt, 6> defaultTable{{
    {.frequency = 50e6, .power = 20},
    {.frequency = 500e6, .power = 24},
    {.frequency = 1.5e9, .power = 28},
    {.frequency = 3e9, .power = 34},
    {.frequency = 6e9, .power = 42},
    {.frequency = 9e9, .power = 50},
}};

constexpr auto column(auto PowerSynt::* member)
{
    std::array<std::remove_cvref_t<decltype(defaultTable[0].*member)>, defaultTable.size()> column{};
    std::ranges::transform(defaultTable, column.begin(), member);
    return column;
}

struct SableSynthesis {
    static constexpr const char* section = "sableSynthesis";

    std::uint8_t loPower = defaultPower;
    std::uint8_t rfPower = defaultPower;
    Sdk::RfPowerMode rfPowerMode = Sdk::RfPowerMode::Table;
    std::array<double, defaultTable.size()> rangeFrequencies = column(&PowerSynt::frequency); // Hz
    std::array<std::uint8_t, defaultTable.size()> rangePowers = column(&PowerSynt::power);
    Sdk::IfMode ifMode = Sdk::IfMode::Automatic;
    int selectedIf = 1;
    std::array<double, 2> capacitances{8e-12, 8e-12}; // farads
    std::array<Sdk::CapacitorMode, 2> capacitorModes{};
    std::array<std::optional<Bounds>, 2> capacitanceRanges; // farads
    Sdk::FilterMode filterMode = Sdk::FilterMode::Automatic;
    std::array<std::optional<double>, 4> filtersFrom; // Hz
    std::optional<Sdk::RfFilter> selectedFilter;
    double ddsSwitchFrequency = 20e6; // Hz
    Sdk::DelayMode delayMode = Sdk::DelayMode::Automatic;
    double measureDelay = 100e-6; // seconds
};

void fields(auto& archive, Is<SableSynthesis> auto& record)
{
    constexpr Within farads{capacitances.front(), capacitances.back()};
    archive("LO power code", record.loPower, powers);
    archive("RF power code", record.rfPower, powers);
    archive("RF power mode", record.rfPowerMode, Within{Sdk::RfPowerMode::Fixed, Sdk::RfPowerMode::Table});
    archive("frequency of the range table", record.rangeFrequencies, frequencies);
    archive("power code of the range table", record.rangePowers, powers);
    archive("IF mode", record.ifMode, Within{Sdk::IfMode::Automatic, Sdk::IfMode::Manual});
    archive("selected IF", record.selectedIf, indexOf(ifs));
    archive("capacitance", record.capacitances, farads);
    archive("capacitor mode", record.capacitorModes, Within{Sdk::CapacitorMode::Automatic, Sdk::CapacitorMode::Range});
    archive("bound of the capacitance", record.capacitanceRanges, farads);
    archive("RF filter mode", record.filterMode, Within{Sdk::FilterMode::Automatic, Sdk::FilterMode::Bypass});
    archive("frequency of the RF filter", record.filtersFrom, frequencies);
    archive("selected RF filter", record.selectedFilter, Within{Sdk::RfFilter::First, Sdk::RfFilter::Fourth});
    archive("DDS switch frequency", record.ddsSwitchFrequency, Within{1e6, 200e6});
    archive("delay mode", record.delayMode, Within{Sdk::DelayMode::Automatic, Sdk::DelayMode::Manual});
    archive("delay", record.measureDelay, Within{0.0, 1.0});
}

void checkTogether(const SableSynthesis& record)
{
    if (std::ranges::adjacent_find(record.rangeFrequencies, std::greater_equal{}) != record.rangeFrequencies.end())
        throw std::invalid_argument{"the frequencies of the range table do not ascend"};
    for (const auto& range : record.capacitanceRanges) {
        if (range && range->front() > range->back())
            throw std::invalid_argument{"the lower bound of the capacitance is above the upper one"};
    }
}

std::array<PowerSynt, defaultTable.size()> rangeTable(const SableSynthesis& record)
{
    std::array<PowerSynt, defaultTable.size()> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = {.frequency = record.rangeFrequencies[i], .power = record.rangePowers[i]};
    return rows;
}

/// An element of a setting that is an array. Throws `std::out_of_range` for an index that it does not have.
auto& element(const char* name, auto& array, auto index)
{
    indexOf(array)(name, toNumber(index));
    return array[static_cast<std::size_t>(index)];
}

class SableSynthesisControl final : public ModuleControl<Sdk, SableSynthesis> {
public:
    using ModuleControl::ModuleControl;

    std::uint8_t loPower() override { return get(&Record::loPower); }
    std::uint8_t rfPower() override { return get(&Record::rfPower); }
    void setLoPower(std::uint8_t code) override { set(&Record::loPower, code); }
    void setRfPower(std::uint8_t code) override { set(&Record::rfPower, code); }
    RfPowerMode rfPowerMode() override { return get(&Record::rfPowerMode); }
    void setRfPowerMode(RfPowerMode mode) override { set(&Record::rfPowerMode, mode); }
    Rows rfPowerRangeTable() override { return m_rangeTable.give(get(rangeTable)); }
    Rows rfPowerDefaultRangeTable() override { return constant(Rows{defaultTable}); }

    void setRfPowerRangeFrequency(int row, double frequency) override
    {
        change([=](Record& record) { element("row", record.rangeFrequencies, row) = frequency; });
    }

    void setRfPowerRangePower(int row, std::uint8_t code) override
    {
        change([=](Record& record) { element("row", record.rangePowers, row) = code; });
    }

    IfMode ifMode() override { return get(&Record::ifMode); }
    void setIfMode(IfMode mode) override { set(&Record::ifMode, mode); }
    void setSelectedIf(int index) override { set(&Record::selectedIf, index); }
    int selectedIf() override { return get(&Record::selectedIf); }
    std::span<const double> supportedIfs() override { return constant(std::span<const double>{ifs}); }

    void setCapacitance(Capacitor capacitor, double capacitance) override
    {
        change([=](Record& record) { element("capacitor", record.capacitances, capacitor) = capacitance; });
    }

    double capacitance(Capacitor capacitor) override
    {
        return get([=](const Record& record) { return capacitanceInForce(record, capacitor); });
    }

    void setCapacitanceMode(Capacitor capacitor, CapacitorMode mode) override
    {
        change([=](Record& record) { element("capacitor", record.capacitorModes, capacitor) = mode; });
    }

    void setCapacitanceRange(Capacitor capacitor, double lower, double upper) override
    {
        change(
            [=](Record& record) { element("capacitor", record.capacitanceRanges, capacitor) = Bounds{lower, upper}; });
    }

    CapacitorMode capacitanceMode(Capacitor capacitor) override
    {
        return get([=](const Record& record) { return element("capacitor", record.capacitorModes, capacitor); });
    }

    std::optional<std::pair<double, double>> capacitanceRange(Capacitor capacitor) override
    {
        const auto range
            = get([=](const Record& record) { return element("capacitor", record.capacitanceRanges, capacitor); });
        return range ? std::optional{std::pair{range->front(), range->back()}} : std::nullopt;
    }

    void setRfFilterMode(FilterMode mode) override
    {
        change([mode](Record& record) {
            record.filterMode = mode;
            if (mode == FilterMode::Bypass)
                record.selectedFilter.reset();
        });
    }

    void setRfFilterFrom(RfFilter filter, double frequency) override
    {
        change([=](Record& record) { element("RF filter", record.filtersFrom, filter) = frequency; });
    }

    void setSelectedRfFilter(RfFilter filter) override { set(&Record::selectedFilter, filter); }
    FilterMode rfFilterMode() override { return get(&Record::filterMode); }
    std::optional<RfFilter> selectedRfFilter() override { return get(&Record::selectedFilter); }

    std::optional<double> rfFilterFrom(RfFilter filter) override
    {
        return get([=](const Record& record) { return element("RF filter", record.filtersFrom, filter); });
    }

    void setDdsSwitchFreq(double frequency) override { set(&Record::ddsSwitchFrequency, frequency); }
    double ddsSwitchFreq() override { return get(&Record::ddsSwitchFrequency); }
    DelayMode delayMode() override { return get(&Record::delayMode); }
    void setDelayMode(DelayMode mode) override { set(&Record::delayMode, mode); }
    double measureDelay() override { return get(&Record::measureDelay); }
    void setMeasureDelay(double delay) override { set(&Record::measureDelay, delay); }

private:
    /// The capacitance that was set, if the mode leaves it alone.
    static double capacitanceInForce(const Record& record, Capacitor capacitor)
    {
        const auto capacitance = element("capacitor", record.capacitances, capacitor);
        const auto index = static_cast<std::size_t>(capacitor);
        switch (record.capacitorModes[index]) {
        case CapacitorMode::Automatic:
            return capacitance;
        case CapacitorMode::Minimum:
            return capacitances.front();
        case CapacitorMode::Maximum:
            return capacitances.back();
        case CapacitorMode::Range:
            break;
        }
        const auto range = record.capacitanceRanges[index].value_or(capacitances);
        return std::clamp(capacitance, range.front(), range.back());
    }

    HandedOut<std::array<PowerSynt, defaultTable.size()>> m_rangeTable;
};

} // namespace

MakeControl installSableSynthesis(const std::shared_ptr<Bench>& bench)
{
    return installModule<SableSynthesisControl>(bench);
}

} // namespace tarn::simulator
