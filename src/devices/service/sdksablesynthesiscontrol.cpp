#include <devices/service/sdksablesynthesiscontrol.h>

#include <devices/service/access.h>
#include <devices/service/convertall.h>
#include <devices/service/enummappings.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::ISableSynthesisControl;

namespace {

template <class Mode>
constexpr auto tableOrFixed = [](auto mode) { return std::to_underlying(mode) == 2 ? Mode::Table : Mode::Fixed; };

std::vector<SdkSableSynthesisControl::RfPowerRange> toBridgeTable(Sdk::Rows rows)
{
    using Row = SdkSableSynthesisControl::RfPowerRange;
    return convertAll<Row>(rows, [](const sdk::sable::PowerSynt& row) -> Row { return {row.frequency, row.power}; });
}

utils::Range<double> toRange(const std::pair<double, double>& range)
{
    return {range.first, range.second};
}

} // namespace

SdkSableSynthesisControl::SdkSableSynthesisControl(ReacquiringControl<sdk::service::ISableSynthesisControl> control)
    : m_control{std::move(control)}
{
}

std::uint8_t SdkSableSynthesisControl::loPower() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::loPower);
}

void SdkSableSynthesisControl::setLoPower(std::uint8_t code)
{
    ifAvailable(m_control, &Sdk::setLoPower, code);
}

std::uint8_t SdkSableSynthesisControl::rfPower() const
{
    return valueOr(std::uint8_t{0}, m_control, &Sdk::rfPower);
}

void SdkSableSynthesisControl::setRfPower(std::uint8_t code)
{
    ifAvailable(m_control, &Sdk::setRfPower, code);
}

SdkSableSynthesisControl::RfPowerMode SdkSableSynthesisControl::rfPowerMode() const
{
    return valueOr(RfPowerMode{}, m_control, &Sdk::rfPowerMode, tableOrFixed<RfPowerMode>);
}

void SdkSableSynthesisControl::setRfPowerMode(RfPowerMode mode)
{
    ifAvailable(m_control, &Sdk::setRfPowerMode, tableOrFixed<Sdk::RfPowerMode>(mode));
}

std::vector<SdkSableSynthesisControl::RfPowerRange> SdkSableSynthesisControl::rfPowerRangeTable() const
{
    return valueOr(std::vector<RfPowerRange>{}, m_control, &Sdk::rfPowerRangeTable, toBridgeTable);
}

std::vector<SdkSableSynthesisControl::RfPowerRange> SdkSableSynthesisControl::rfPowerDefaultRangeTable() const
{
    return valueOr(std::vector<RfPowerRange>{}, m_control, &Sdk::rfPowerDefaultRangeTable, toBridgeTable);
}

void SdkSableSynthesisControl::setRfPowerRangeFrequency(int row, double frequency)
{
    ifAvailable(m_control, &Sdk::setRfPowerRangeFrequency, row, frequency);
}

void SdkSableSynthesisControl::setRfPowerRangePower(int row, std::uint8_t code)
{
    ifAvailable(m_control, &Sdk::setRfPowerRangePower, row, code);
}

SdkSableSynthesisControl::IfMode SdkSableSynthesisControl::ifMode() const
{
    return valueOr(IfMode{}, m_control, &Sdk::ifMode, saturated<IfMode::Manual>);
}

void SdkSableSynthesisControl::setIfMode(IfMode mode)
{
    ifAvailable(m_control, &Sdk::setIfMode, saturated<Sdk::IfMode::Manual>(mode));
}

int SdkSableSynthesisControl::selectedIf() const
{
    return valueOr(0, m_control, &Sdk::selectedIf);
}

void SdkSableSynthesisControl::setSelectedIf(int index)
{
    ifAvailable(m_control, &Sdk::setSelectedIf, index);
}

std::vector<double> SdkSableSynthesisControl::supportedIfs() const
{
    return valueOr(std::vector<double>{}, m_control, &Sdk::supportedIfs, copyOf<double>);
}

SdkSableSynthesisControl::CapacitorMode SdkSableSynthesisControl::capacitanceMode(Capacitor capacitor) const
{
    return valueOr(CapacitorMode{}, m_control, [&](Sdk& sdk) {
        return saturated<CapacitorMode::Range>(sdk.capacitanceMode(saturated<Sdk::Capacitor::Second>(capacitor)));
    });
}

void SdkSableSynthesisControl::setCapacitanceMode(Capacitor capacitor, CapacitorMode mode)
{
    ifAvailable(m_control, &Sdk::setCapacitanceMode, saturated<Sdk::Capacitor::Second>(capacitor),
                saturated<Sdk::CapacitorMode::Range>(mode));
}

std::optional<utils::Range<double>> SdkSableSynthesisControl::capacitanceRange(Capacitor capacitor) const
{
    return valueOr(std::optional<utils::Range<double>>{}, m_control, [&](Sdk& sdk) {
        return sdk.capacitanceRange(saturated<Sdk::Capacitor::Second>(capacitor)).transform(toRange);
    });
}

void SdkSableSynthesisControl::setCapacitanceRange(Capacitor capacitor, const utils::Range<double>& range)
{
    ifAvailable(m_control, &Sdk::setCapacitanceRange, saturated<Sdk::Capacitor::Second>(capacitor), range.lower,
                range.upper);
}

SdkSableSynthesisControl::FilterMode SdkSableSynthesisControl::rfFilterMode() const
{
    return valueOr(FilterMode{}, m_control, &Sdk::rfFilterMode, saturated<FilterMode::Bypass>);
}

void SdkSableSynthesisControl::setRfFilterMode(FilterMode mode)
{
    ifAvailable(m_control, &Sdk::setRfFilterMode, saturated<Sdk::FilterMode::Bypass>(mode));
}

std::optional<SdkSableSynthesisControl::RfFilter> SdkSableSynthesisControl::selectedRfFilter() const
{
    return valueOr(std::optional<RfFilter>{}, m_control,
                   [&](Sdk& sdk) { return sdk.selectedRfFilter().transform(saturated<RfFilter::Fourth>); });
}

void SdkSableSynthesisControl::setSelectedRfFilter(RfFilter filter)
{
    ifAvailable(m_control, &Sdk::setSelectedRfFilter, saturated<Sdk::RfFilter::Fourth>(filter));
}

std::optional<double> SdkSableSynthesisControl::rfFilterFrom(RfFilter filter) const
{
    return valueOr(std::optional<double>{}, m_control,
                   [&](Sdk& sdk) { return sdk.rfFilterFrom(saturated<Sdk::RfFilter::Fourth>(filter)); });
}

void SdkSableSynthesisControl::setRfFilterFrom(RfFilter filter, double frequency)
{
    ifAvailable(m_control, &Sdk::setRfFilterFrom, saturated<Sdk::RfFilter::Fourth>(filter), frequency);
}

double SdkSableSynthesisControl::ddsSwitchFreq() const
{
    return valueOr(0.0, m_control, &Sdk::ddsSwitchFreq);
}

void SdkSableSynthesisControl::setDdsSwitchFreq(double frequency)
{
    ifAvailable(m_control, &Sdk::setDdsSwitchFreq, frequency);
}

SdkSableSynthesisControl::DelayMode SdkSableSynthesisControl::delayMode() const
{
    return valueOr(DelayMode{}, m_control, &Sdk::delayMode, saturated<DelayMode::Manual>);
}

void SdkSableSynthesisControl::setDelayMode(DelayMode mode)
{
    ifAvailable(m_control, &Sdk::setDelayMode, saturated<Sdk::DelayMode::Manual>(mode));
}

double SdkSableSynthesisControl::measureDelay() const
{
    return valueOr(0.0, m_control, &Sdk::measureDelay);
}

void SdkSableSynthesisControl::setMeasureDelay(double delay)
{
    ifAvailable(m_control, &Sdk::setMeasureDelay, delay);
}

} // namespace tarn::devices::service
