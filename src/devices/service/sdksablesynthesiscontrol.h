#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/service/isablesynthesiscontrol.h>
#include <utils/range.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tarn::devices::service {

/// The synthesizer of a Sable device. Power codes are numbers of the device's own, without a unit.
///
/// While the instrument does not offer the control the setters do nothing, and the getters return
/// what their comments name after "unavailable". Positions, rows and numbers are not checked here;
/// the instrument judges them.
///
/// Exceptions of the device pass through.
///
/// Threads: thread-safe; calls through.
class TARN_DEVICES_SERVICE_EXPORT SdkSableSynthesisControl final {
public:
    static constexpr std::uint64_t registryKey = 0x2b979d4013cdeecd; ///< of its entry in the host's registry

    /// The tuning capacitors. On the way to the SDK, all values but 0 become 1.
    enum class Capacitor : std::int32_t {
        First = 0,
        Second = 1,
    };

    /// How a tuning capacitor is set. On the way to the SDK and back, all other values become 3.
    enum class CapacitorMode : std::int32_t {
        Automatic = 0, ///< by the instrument
        Minimum = 1, ///< lowest capacitance
        Maximum = 2, ///< highest capacitance
        Range = 3, ///< by the instrument, within the range that is set
    };

    /// The RF filters, by ascending frequency. On the way to the SDK and back, all other values
    /// become 3.
    enum class RfFilter : std::int32_t {
        First = 0,
        Second = 1,
        Third = 2,
        Fourth = 3,
    };

    /// Who selects the RF filter. On the way to the SDK and back, all other values become 2.
    enum class FilterMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the filter that is selected
        Bypass = 2, ///< no filter is in the path
    };

    /// Who selects the intermediate frequency (IF). On the way to the SDK and back, all values but
    /// 0 become 1.
    enum class IfMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the IF that is selected
    };

    /// Who sets the delay. On the way to the SDK and back, all values but 0 become 1.
    enum class DelayMode : std::int32_t {
        Automatic = 0, ///< the instrument
        Manual = 1, ///< the delay that is set
    };

    /// Where the RF power code comes from. On the way to the SDK and back, all values but 2
    /// become 1.
    enum class RfPowerMode : std::int32_t {
        Fixed = 1, ///< one code for all frequencies
        Table = 2, ///< the range table
    };

    /// One row of the RF power range table.
    struct RfPowerRange {
        double frequency; ///< Hz, the highest of the row's range
        std::uint8_t power; ///< power code

        friend bool operator==(const RfPowerRange&, const RfPowerRange&) = default;
    };

    /// Reaches its SDK control through `control`, which it takes over.
    explicit SdkSableSynthesisControl(ReacquiringControl<sdk::service::ISableSynthesisControl> control);

    /// The power code of the local oscillator (LO); unavailable: 0.
    [[nodiscard]] std::uint8_t loPower() const;

    /// Sets the power code of the local oscillator (LO).
    void setLoPower(std::uint8_t code);

    /// The power code of the RF output; unavailable: 0.
    [[nodiscard]] std::uint8_t rfPower() const;

    /// Sets the power code of the RF output.
    void setRfPower(std::uint8_t code);

    /// Where the RF power code comes from; unavailable: 0, which is no mode, so that it can be told
    /// from one.
    [[nodiscard]] RfPowerMode rfPowerMode() const;

    /// Chooses where the RF power code comes from.
    void setRfPowerMode(RfPowerMode mode);

    /// The RF power range table; unavailable: empty.
    [[nodiscard]] std::vector<RfPowerRange> rfPowerRangeTable() const;

    /// The range table that the instrument begins with; unavailable: empty.
    [[nodiscard]] std::vector<RfPowerRange> rfPowerDefaultRangeTable() const;

    /// Sets the frequency of one row of the range table, in Hz.
    void setRfPowerRangeFrequency(int row, double frequency);

    /// Sets the power code of one row of the range table.
    void setRfPowerRangePower(int row, std::uint8_t code);

    /// Who selects the IF; unavailable: the value 0.
    [[nodiscard]] IfMode ifMode() const;

    /// Chooses who selects the IF.
    void setIfMode(IfMode mode);

    /// The position of the selected IF in the list; unavailable: 0.
    [[nodiscard]] int selectedIf() const;

    /// Selects an IF by its position in the list.
    void setSelectedIf(int index);

    /// The IFs that can be selected, in Hz; unavailable: empty.
    [[nodiscard]] std::vector<double> supportedIfs() const;

    /// How a capacitor is set; unavailable: the value 0.
    [[nodiscard]] CapacitorMode capacitanceMode(Capacitor capacitor) const;

    /// Chooses how a capacitor is set.
    void setCapacitanceMode(Capacitor capacitor, CapacitorMode mode);

    /// The range of a capacitor, in farads; nothing if it has none; unavailable: nothing.
    [[nodiscard]] std::optional<utils::Range<double>> capacitanceRange(Capacitor capacitor) const;

    /// Sets the range of a capacitor, in farads.
    void setCapacitanceRange(Capacitor capacitor, const utils::Range<double>& range);

    /// Who selects the RF filter; unavailable: the value 0.
    [[nodiscard]] FilterMode rfFilterMode() const;

    /// Chooses who selects the RF filter.
    void setRfFilterMode(FilterMode mode);

    /// The selected RF filter; nothing if none is; unavailable: nothing.
    [[nodiscard]] std::optional<RfFilter> selectedRfFilter() const;

    /// Selects an RF filter.
    void setSelectedRfFilter(RfFilter filter);

    /// The frequency from which on a filter is used, in Hz; nothing if it is not used; unavailable:
    /// nothing.
    [[nodiscard]] std::optional<double> rfFilterFrom(RfFilter filter) const;

    /// Sets the frequency from which on a filter is used, in Hz.
    void setRfFilterFrom(RfFilter filter, double frequency);

    /// The frequency at which the direct digital synthesizer (DDS) takes over, in Hz; unavailable: 0.0.
    [[nodiscard]] double ddsSwitchFreq() const;

    /// Sets the frequency at which the direct digital synthesizer (DDS) takes over, in Hz.
    void setDdsSwitchFreq(double frequency);

    /// Who sets the delay; unavailable: the value 0.
    [[nodiscard]] DelayMode delayMode() const;

    /// Chooses who sets the delay.
    void setDelayMode(DelayMode mode);

    /// The delay before a measurement, in seconds; unavailable: 0.0.
    [[nodiscard]] double measureDelay() const;

    /// Sets the delay before a measurement, in seconds.
    void setMeasureDelay(double delay);

private:
    ReacquiringControl<sdk::service::ISableSynthesisControl> m_control;
};

} // namespace tarn::devices::service
