#pragma once

#include <sdk/key.h>
#include <sdk/sable/powersynt.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <optional>
#include <span>
#include <utility>

namespace sdk::service {

/// The synthesizer of a Sable device. Power codes are numbers of the device's own, without a unit.
///
/// Threads: thread-safe; returns when the instrument has taken it.
class SDK_API ISableSynthesisControl {
public:
    static constexpr Key key{0x71db0e7ec9bf38c7}; ///< the device is asked for the control by it

    /// Where the RF power code comes from.
    enum class RfPowerMode : std::int32_t {
        Fixed = 1, ///< one code for all frequencies
        Table = 2, ///< the range table
    };

    /// Who selects the intermediate frequency (IF).
    enum class IfMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the IF that is selected
    };

    /// The tuning capacitors.
    enum class Capacitor : std::int32_t {
        First = 0,
        Second = 1,
    };

    /// How a tuning capacitor is set.
    enum class CapacitorMode : std::int32_t {
        Automatic = 0, ///< by the instrument
        Minimum = 1, ///< lowest capacitance
        Maximum = 2, ///< highest capacitance
        Range = 3, ///< by the instrument, within the range that is set
    };

    /// The RF filters, by ascending frequency.
    enum class RfFilter : std::int32_t {
        First = 0,
        Second = 1,
        Third = 2,
        Fourth = 3,
    };

    /// Who selects the RF filter.
    enum class FilterMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the filter that is selected
        Bypass = 2, ///< no filter is in the path
    };

    /// Who sets the delay.
    enum class DelayMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the delay that is set
    };

    /// Rows of the range table, in its order.
    using Rows = std::span<const sable::PowerSynt>;

    ISableSynthesisControl() = default;
    ISableSynthesisControl(const ISableSynthesisControl&) = delete;
    ISableSynthesisControl& operator=(const ISableSynthesisControl&) = delete;
    virtual ~ISableSynthesisControl() = default;

    /// The power code of the local oscillator (LO).
    [[nodiscard]] virtual std::uint8_t loPower() = 0;

    /// The power code of the RF output.
    [[nodiscard]] virtual std::uint8_t rfPower() = 0;

    /// Sets the power code of the LO.
    virtual void setLoPower(std::uint8_t code) = 0;

    /// Sets the power code of the RF output.
    virtual void setRfPower(std::uint8_t code) = 0;

    /// Where the RF power code comes from.
    [[nodiscard]] virtual RfPowerMode rfPowerMode() = 0;

    /// Chooses where the RF power code comes from.
    virtual void setRfPowerMode(RfPowerMode mode) = 0;

    /// The RF power range table. It belongs to the control and stays as it is until a row is set or
    /// the control ends.
    [[nodiscard]] virtual Rows rfPowerRangeTable() = 0;

    /// The range table that the instrument begins with. It belongs to the control and stays as it is
    /// for as long as the control lives.
    [[nodiscard]] virtual Rows rfPowerDefaultRangeTable() = 0;

    /// Sets the frequency of one row of the range table, in Hz.
    virtual void setRfPowerRangeFrequency(int row, double frequency) = 0;

    /// Sets the power code of one row of the range table.
    virtual void setRfPowerRangePower(int row, std::uint8_t code) = 0;

    /// Who selects the IF.
    [[nodiscard]] virtual IfMode ifMode() = 0;

    /// Chooses who selects the IF.
    virtual void setIfMode(IfMode mode) = 0;

    /// Selects an IF by its position in the list.
    virtual void setSelectedIf(int index) = 0;

    /// The position of the selected IF in the list.
    [[nodiscard]] virtual int selectedIf() = 0;

    /// The IFs that can be selected, in Hz. The array belongs to the control and stays as it is for as
    /// long as the control lives.
    [[nodiscard]] virtual std::span<const double> supportedIfs() = 0;

    /// Sets a capacitance, in farads. No adapter calls it; it holds its slot.
    virtual void setCapacitance(Capacitor capacitor, double capacitance) = 0;

    /// A capacitance, in farads. No adapter calls it; it holds its slot.
    [[nodiscard]] virtual double capacitance(Capacitor capacitor) = 0;

    /// Chooses how a capacitor is set.
    virtual void setCapacitanceMode(Capacitor capacitor, CapacitorMode mode) = 0;

    /// Sets the range of a capacitor, in farads.
    virtual void setCapacitanceRange(Capacitor capacitor, double lower, double upper) = 0;

    /// How a capacitor is set.
    [[nodiscard]] virtual CapacitorMode capacitanceMode(Capacitor capacitor) = 0;

    /// The range of a capacitor, lower bound first, in farads; nothing if it has none.
    [[nodiscard]] virtual std::optional<std::pair<double, double>> capacitanceRange(Capacitor capacitor) = 0;

    /// Chooses who selects the RF filter.
    virtual void setRfFilterMode(FilterMode mode) = 0;

    /// Sets the frequency from which on a filter is used, in Hz.
    virtual void setRfFilterFrom(RfFilter filter, double frequency) = 0;

    /// Selects an RF filter.
    virtual void setSelectedRfFilter(RfFilter filter) = 0;

    /// Who selects the RF filter.
    [[nodiscard]] virtual FilterMode rfFilterMode() = 0;

    /// The selected RF filter; nothing if none is.
    [[nodiscard]] virtual std::optional<RfFilter> selectedRfFilter() = 0;

    /// The frequency from which on a filter is used, in Hz; nothing if it is not used.
    [[nodiscard]] virtual std::optional<double> rfFilterFrom(RfFilter filter) = 0;

    /// Sets the frequency at which the direct digital synthesizer (DDS) takes over, in Hz.
    virtual void setDdsSwitchFreq(double frequency) = 0;

    /// The frequency at which the DDS takes over, in Hz.
    [[nodiscard]] virtual double ddsSwitchFreq() = 0;

    /// Who sets the delay.
    [[nodiscard]] virtual DelayMode delayMode() = 0;

    /// Chooses who sets the delay.
    virtual void setDelayMode(DelayMode mode) = 0;

    /// The delay before a measurement, in seconds.
    [[nodiscard]] virtual double measureDelay() = 0;

    /// Sets the delay before a measurement, in seconds.
    virtual void setMeasureDelay(double delay) = 0;
};

} // namespace sdk::service
