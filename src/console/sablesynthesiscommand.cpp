#include <console/tuning.h>
#include <console/tuningcommand.h>
#include <devices/service/sdksablesynthesiscontrol.h>

namespace tarn::console {

namespace {

using Control = devices::service::SdkSableSynthesisControl;
using Of = SettingsOf<Control>;

void addCapacitor(std::vector<Setting>& settings, const std::string& name, Control::Capacitor capacitor)
{
    settings.push_back(Of::setting(
        name + "-mode", "how the tuning " + name + " is set", choice({"automatic", "minimum", "maximum", "range"}),
        Of::with(&Control::capacitanceMode, capacitor), Of::with(&Control::setCapacitanceMode, capacitor)));
    settings.push_back(Of::setting(name + "-range", "range of the tuning " + name, range(Unit::Farad),
                                   Of::with(&Control::capacitanceRange, capacitor),
                                   Of::with(&Control::setCapacitanceRange, capacitor)));
}

void addFilter(std::vector<Setting>& settings, const std::string& number, Control::RfFilter filter)
{
    settings.push_back(Of::setting(
        "rf-filter" + number + "-from", "frequency from which on RF filter " + number + " is used",
        quantity(Unit::Hertz), Of::with(&Control::rfFilterFrom, filter), Of::with(&Control::setRfFilterFrom, filter)));
}

/// The cell `member` of a row of the table that `table` returns.
auto cell(std::vector<Control::RfPowerRange> (Control::*table)() const, int row, auto member)
{
    return [=](const Control& control) { return (control.*table)().at(static_cast<std::size_t>(row)).*member; };
}

std::vector<Setting> rangeRow(const std::string& number, int row)
{
    const auto name = "rf-range-" + number;
    const auto of = " of row " + number + " of the RF power range table";
    return {
        Of::setting(name + "-frequency", "highest frequency" + of, quantity(Unit::Hertz),
                    cell(&Control::rfPowerRangeTable, row, &Control::RfPowerRange::frequency),
                    Of::with(&Control::setRfPowerRangeFrequency, row)),
        Of::setting(name + "-power", "power code" + of, code(),
                    cell(&Control::rfPowerRangeTable, row, &Control::RfPowerRange::power),
                    Of::with(&Control::setRfPowerRangePower, row)),
    };
}

std::vector<Setting> defaultRangeRow(const std::string& number, int row)
{
    const auto name = "rf-default-range-" + number;
    return {
        Of::shown(name + "-frequency", "the frequency at the beginning", quantity(Unit::Hertz),
                  cell(&Control::rfPowerDefaultRangeTable, row, &Control::RfPowerRange::frequency)),
        Of::shown(name + "-power", "the power code at the beginning", code(),
                  cell(&Control::rfPowerDefaultRangeTable, row, &Control::RfPowerRange::power)),
    };
}

Tuning described()
{
    const auto mode = choice({"automatic", "manual"});
    auto tuning = tuningOf<Control>("sable-synthesis", "The synthesizer of a Sable device");
    tuning.example = "capacitor1-range 10pF..20pF rf-range-0-power 20";
    tuning.harmless = "delay-mode";
    auto& settings = tuning.settings;
    settings = {
        Of::setting("lo-power", "power code of the local oscillator", code(), &Control::loPower, &Control::setLoPower),
        Of::setting("rf-power", "power code of the RF output", code(), &Control::rfPower, &Control::setRfPower),
        Of::setting("rf-power-mode", "where the RF power code comes from", choice({"fixed", "table"}, 1),
                    &Control::rfPowerMode, &Control::setRfPowerMode),
        Of::setting("if-mode", "who selects the IF", mode, &Control::ifMode, &Control::setIfMode),
        Of::setting("selected-if", "selected IF, its position or itself", position(Unit::Hertz), &Control::selectedIf,
                    &Control::setSelectedIf, Of::oneOf(&Control::supportedIfs)),
        Of::shown("supported-ifs", "IFs that can be selected", list(Unit::Hertz), &Control::supportedIfs),
    };
    addCapacitor(settings, "capacitor1", Control::Capacitor::First);
    addCapacitor(settings, "capacitor2", Control::Capacitor::Second);
    settings.push_back(Of::setting("rf-filter-mode", "who selects the RF filter",
                                   choice({"automatic", "manual", "bypass"}), &Control::rfFilterMode,
                                   &Control::setRfFilterMode));
    settings.push_back(Of::setting("selected-rf-filter", "selected RF filter",
                                   choice({"first", "second", "third", "fourth"}), &Control::selectedRfFilter,
                                   &Control::setSelectedRfFilter));
    addFilter(settings, "1", Control::RfFilter::First);
    addFilter(settings, "2", Control::RfFilter::Second);
    addFilter(settings, "3", Control::RfFilter::Third);
    addFilter(settings, "4", Control::RfFilter::Fourth);
    settings.push_back(Of::setting("dds-switch-freq", "frequency at which the DDS takes over", quantity(Unit::Hertz),
                                   &Control::ddsSwitchFreq, &Control::setDdsSwitchFreq));
    settings.push_back(
        Of::setting("delay-mode", "who sets the delay", mode, &Control::delayMode, &Control::setDelayMode));
    settings.push_back(Of::setting("measure-delay", "delay before a measurement", quantity(Unit::Second),
                                   &Control::measureDelay, &Control::setMeasureDelay));
    tuning.rows = {{Of::rowsOf(&Control::rfPowerRangeTable), &rangeRow},
                   {Of::rowsOf(&Control::rfPowerDefaultRangeTable), &defaultRangeRow}};
    return tuning;
}

} // namespace

const Tuning& sableSynthesisTuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace tarn::console
