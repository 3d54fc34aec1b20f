#pragma once

#include <simulator/manualinstrument.h>

#include <sdk/service/idornpowercontrol.h>
#include <sdk/service/idornsynthesiscontrol.h>
#include <sdk/service/iquillpowercontrol.h>
#include <sdk/service/iquillsynthesiscontrol.h>
#include <sdk/service/isablepowermodulecontrol.h>
#include <sdk/service/isablesynthesiscontrol.h>
#include <sdk/service/ivellsynthesiscontrol.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn::simulator::test {

using QuillPower = sdk::service::IQuillPowerControl;
using QuillSynthesis = sdk::service::IQuillSynthesisControl;
using DornPower = sdk::service::IDORNPowerControl;
using DornSynthesis = sdk::service::IDORNSynthesisControl;
using SablePower = sdk::service::ISablePowerModuleControl;
using SableSynthesis = sdk::service::ISableSynthesisControl;
using VellSynthesis = sdk::service::IVellSynthesisControl;

// Every setting of a module, as its control tells it.

inline auto settingsOf(QuillPower& c)
{
    return std::tuple{c.loPower(),
                      c.rfPower(),
                      c.syntPowerMode(),
                      c.attenuationMode(),
                      c.attenuationStep(),
                      c.stepAttenuatorMode(),
                      c.discreteAttenuatorEnabled(),
                      c.discreteAttenuatorMode(),
                      c.commonAttenuationMode(),
                      c.commonAttenuationStep(),
                      c.ampTPort2(),
                      c.ampRPort1(),
                      c.ampTPort1()};
}

inline auto settingsOf(QuillSynthesis& c)
{
    return std::tuple{c.loLeakageMode(),    c.manualIfEnabled(),  c.selectedIf(),
                      c.filter1Frequency(), c.manualRefEnabled(), c.selectedRef()};
}

inline auto settingsOf(DornPower& c)
{
    return std::tuple{c.powerControlMode(), c.loPower(), c.rfPower(), c.dacControlMode(), c.dacMode(),
                      c.unionDac(),         c.dacA(),    c.dacB(),    c.referenceGain(),  c.signalGain()};
}

inline auto settingsOf(DornSynthesis& c)
{
    return std::tuple{c.currentReferenceFrequency()};
}

inline auto settingsOf(SablePower& c)
{
    return std::tuple{c.dacMode(),
                      c.powerMode(),
                      c.stepAttenuatorMode(),
                      c.discreteAttenuatorMode(),
                      c.powerConstant(),
                      c.rfDac(),
                      c.splitDac(),
                      c.splitDds(),
                      c.attenuation(),
                      c.attenuationStep(),
                      c.discreteAttenuatorEnabled(),
                      c.squarePatternStep(),
                      c.ddsCorrectionMode(),
                      c.ddsCorrectionEnabled()};
}

inline std::vector<sdk::sable::PowerSynt> copyOf(SableSynthesis::Rows rows)
{
    return {rows.begin(), rows.end()};
}

inline auto settingsOf(SableSynthesis& c)
{
    using enum SableSynthesis::RfFilter;
    using Capacitor = SableSynthesis::Capacitor;
    return std::tuple{c.loPower(),
                      c.rfPower(),
                      c.rfPowerMode(),
                      copyOf(c.rfPowerRangeTable()),
                      c.ifMode(),
                      c.selectedIf(),
                      c.capacitance(Capacitor::First),
                      c.capacitance(Capacitor::Second),
                      c.capacitanceMode(Capacitor::First),
                      c.capacitanceMode(Capacitor::Second),
                      c.capacitanceRange(Capacitor::First),
                      c.capacitanceRange(Capacitor::Second),
                      c.rfFilterMode(),
                      c.selectedRfFilter(),
                      c.rfFilterFrom(First),
                      c.rfFilterFrom(Second),
                      c.rfFilterFrom(Third),
                      c.rfFilterFrom(Fourth),
                      c.ddsSwitchFreq(),
                      c.delayMode(),
                      c.measureDelay()};
}

inline auto settingsOf(VellSynthesis& c)
{
    return std::tuple{c.manualIfEnabled(), c.selectedIf()};
}

// Sets everything to what it is not as delivered.

inline void vary(QuillPower& c)
{
    c.setLoPower(70);
    c.setRfPower(71);
    c.setSyntPowerMode(QuillPower::SyntPowerMode::High);
    c.setAttenuationMode(QuillPower::AttenuationMode::Manual);
    c.setAttenuationStep(33);
    c.setStepAttenuatorMode(QuillPower::StepAttenuatorMode::Second);
    c.setDiscreteAttenuatorEnabled(true);
    c.setDiscreteAttenuatorMode(QuillPower::DiscreteAttenuatorMode::Manual);
    c.setCommonAttenuationStep(22);
    c.setAmpTPort2(QuillPower::AmpGain::High);
    c.setAmpRPort1(QuillPower::AmpGain::High);
    c.setAmpTPort1(QuillPower::AmpGain::High);
}

inline void vary(QuillSynthesis& c)
{
    c.setLoLeakageMode(true);
    c.setManualIfEnabled(true);
    c.setSelectedIf(3);
    c.setFilter1Frequency(123.5e6);
    c.setManualRefEnabled(true);
    c.setSelectedRef(2);
}

inline void vary(DornPower& c)
{
    c.setPowerControlMode(DornPower::ControlMode::Manual);
    c.setLoPower(40);
    c.setRfPower(41);
    c.setDacMode(DornPower::DacMode::Union);
    c.setUnionDac(1001);
    c.setDacA(1002);
    c.setDacB(1003);
    c.setReferenceGain(18);
    c.setSignalGain(30);
}

inline void vary(DornSynthesis& c)
{
    c.setReferenceFrequency(12.8e6);
}

inline void vary(SablePower& c)
{
    c.setDacMode(SablePower::DacMode::Manual);
    c.setPowerMode(SablePower::PowerMode::High);
    c.setStepAttenuatorMode(SablePower::StepAttenuatorMode::Second);
    c.setDiscreteAttenuatorMode(SablePower::DiscreteAttenuatorMode::Manual);
    c.setRfDac(2001);
    c.setSplitDac(2002);
    c.setSplitDds(2003);
    c.setAttenuation(12.25);
    c.setAttenuationStep(44);
    c.setDiscreteAttenuatorEnabled(true);
    c.setSquarePatternStep(1.75);
    c.setDdsCorrectionMode(SablePower::DdsCorrectionMode::User);
    c.setDdsCorrectionEnabled(false);
}

inline void vary(SableSynthesis& c)
{
    using enum SableSynthesis::RfFilter;
    using Capacitor = SableSynthesis::Capacitor;
    c.setLoPower(40);
    c.setRfPower(41);
    c.setRfPowerMode(SableSynthesis::RfPowerMode::Fixed);
    c.setRfPowerRangeFrequency(1, 555e6);
    c.setRfPowerRangePower(2, 29);
    c.setIfMode(SableSynthesis::IfMode::Manual);
    c.setSelectedIf(2);
    c.setCapacitance(Capacitor::First, 5e-12);
    c.setCapacitance(Capacitor::Second, 6e-12);
    c.setCapacitanceMode(Capacitor::First, SableSynthesis::CapacitorMode::Range);
    c.setCapacitanceMode(Capacitor::Second, SableSynthesis::CapacitorMode::Maximum);
    c.setCapacitanceRange(Capacitor::First, 4e-12, 7e-12);
    c.setRfFilterMode(SableSynthesis::FilterMode::Manual);
    c.setSelectedRfFilter(Third);
    c.setRfFilterFrom(First, 1e9);
    c.setRfFilterFrom(Fourth, 4.25e9);
    c.setDdsSwitchFreq(33e6);
    c.setDelayMode(SableSynthesis::DelayMode::Manual);
    c.setMeasureDelay(0.001);
}

inline void vary(VellSynthesis& c)
{
    c.setManualIfEnabled(true);
    c.setSelectedIf(4);
}

/// How many settings differ.
template <class... Values>
int differences(const std::tuple<Values...>& a, const std::tuple<Values...>& b)
{
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return (0 + ... + (std::get<i>(a) == std::get<i>(b) ? 0 : 1));
    }(std::index_sequence_for<Values...>{});
}

/// What an exception of exactly this type says.
template <class Exception>
std::string refusal(const auto& operation)
{
    try {
        operation();
    } catch (const std::exception& reason) {
        return typeid(reason) == typeid(Exception) ? reason.what() : "another exception";
    }
    return "no exception";
}

/// The values of `Value` next to a range, as far as it has them, and those that are no numbers.
template <class Value>
std::vector<Value> besides(Value lowest, Value highest)
{
    if constexpr (std::is_floating_point_v<Value>) {
        constexpr auto infinity = std::numeric_limits<Value>::infinity();
        return {std::nextafter(lowest, -infinity), std::nextafter(highest, infinity), infinity, -infinity,
                std::numeric_limits<Value>::quiet_NaN()};
    } else {
        std::vector<Value> values;
        for (const long value : {static_cast<long>(lowest) - 1, static_cast<long>(highest) + 1}) {
            if (static_cast<long>(static_cast<Value>(value)) == value)
                values.push_back(static_cast<Value>(value));
        }
        return values;
    }
}

/// The setting is `delivered` at first, and takes exactly the values of a range, by itself.
template <class Interface, class Value>
void expectRange(Interface& control, const std::string& name, void (Interface::*set)(std::type_identity_t<Value>),
                 Value (Interface::*get)(), std::type_identity_t<Value> delivered, std::type_identity_t<Value> lowest,
                 std::type_identity_t<Value> highest)
{
    EXPECT_EQ((control.*get)(), delivered) << name;
    const auto before = settingsOf(control);
    for (const auto value : {lowest, highest}) {
        (control.*set)(value);
        EXPECT_EQ((control.*get)(), value) << name;
        EXPECT_EQ(differences(settingsOf(control), before), value == delivered ? 0 : 1) << name;
    }
    const auto outside = besides(lowest, highest);
    EXPECT_FALSE(outside.empty()) << name;
    for (const auto value : outside) {
        const auto text = refusal<std::out_of_range>([&] { (control.*set)(value); });
        EXPECT_THAT(text, testing::MatchesRegex("the " + name + " [^ ]+ is not from [^ ]+ to [^ ]+"));
        EXPECT_EQ((control.*get)(), highest) << name;
    }
    (control.*set)(delivered);
    EXPECT_EQ(settingsOf(control), before) << name;
}

/// The setting is `delivered` at first, and can be switched by itself.
template <class Interface>
void expectSwitch(Interface& control, void (Interface::*set)(bool), bool (Interface::*get)(), bool delivered)
{
    EXPECT_EQ((control.*get)(), delivered);
    const auto before = settingsOf(control);
    (control.*set)(!delivered);
    EXPECT_EQ((control.*get)(), !delivered);
    EXPECT_EQ(differences(settingsOf(control), before), 1);
    (control.*set)(delivered);
    EXPECT_EQ(settingsOf(control), before);
}

/// A module of an instrument that has them all.
template <class Interface>
class ModuleTest : public testing::Test {
protected:
    ManualInstrument instrument;
    std::shared_ptr<Interface> module = instrument.control<Interface>();
};

} // namespace tarn::simulator::test
