#include <conformance/controls.h>

#include <sdk/service/idornpowercontrol.h>
#include <sdk/service/idornsynthesiscontrol.h>
#include <sdk/service/iquillpowercontrol.h>
#include <sdk/service/iquillsynthesiscontrol.h>
#include <sdk/service/isablepowermodulecontrol.h>
#include <sdk/service/isablesynthesiscontrol.h>
#include <sdk/service/ivellsynthesiscontrol.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace tarn::conformance {

namespace {

using DornPower = sdk::service::IDORNPowerControl;
using DornSynthesis = sdk::service::IDORNSynthesisControl;
using QuillPower = sdk::service::IQuillPowerControl;
using QuillSynthesis = sdk::service::IQuillSynthesisControl;
using SablePower = sdk::service::ISablePowerModuleControl;
using SableSynthesis = sdk::service::ISableSynthesisControl;
using VellSynthesis = sdk::service::IVellSynthesisControl;

Domain between(double lowest, double highest)
{
    return {.lowest = lowest, .highest = highest};
}

/// The codes of a type, of which the instrument may take fewer.
template <class Code>
Domain codes()
{
    return between(0, std::numeric_limits<Code>::max());
}

/// A quantity that is not negative, near to `now`.
Domain quantity(double now)
{
    return {.lowest = 0.0, .step = now > 0.0 ? now / 8.0 : 1.0, .isRounded = true};
}

template <class List>
Domain oneOf(const List& list)
{
    Domain domain;
    domain.choices.assign(list.begin(), list.end());
    return domain;
}

/// What is wrong with a list of frequencies.
template <class List>
std::string wrongFrequencies(const List& list)
{
    const auto isWrong = [](double frequency) { return !std::isfinite(frequency) || frequency <= 0.0; };
    return wrongIf(std::ranges::any_of(list, isWrong), "lists one that is no frequency");
}

/// The list of the intermediate frequencies, and the one that is selected.
template <class Control>
void describeIfs(const Describe<Control>& describe)
{
    describe.reading("supportedIfs", [](Control& one) { return wrongFrequencies(one.supportedIfs()); })
        .reference("supportedIfs", &Control::supportedIfs)
        .setting("selectedIf", &Control::selectedIf, &Control::setSelectedIf,
                 positions(describe.control()->supportedIfs().size()));
}

/// What a Sable synthesizer has for each capacitor and each RF filter.
void describeParts(const Describe<SableSynthesis>& describe)
{
    using Capacitor = SableSynthesis::Capacitor;
    using Filter = SableSynthesis::RfFilter;
    for (const auto capacitor : {Capacitor::First, Capacitor::Second}) {
        const auto number = ' ' + std::to_string(static_cast<int>(capacitor));
        describe
            .setting(
                "capacitanceMode" + number,
                [=](SableSynthesis& one) { return toValue(one.capacitanceMode(capacitor)); },
                [=](SableSynthesis& one, double value) {
                    one.setCapacitanceMode(capacitor, fromValue<SableSynthesis::CapacitorMode>(value));
                },
                enumerators(SableSynthesis::CapacitorMode::Automatic, SableSynthesis::CapacitorMode::Range))
            .reading("capacitance" + number,
                     [=](SableSynthesis& one) { return wrongIf(!(one.capacitance(capacitor) >= 0.0), "is negative"); })
            .reading("capacitanceRange" + number, [=](SableSynthesis& one) {
                const auto range = one.capacitanceRange(capacitor);
                return wrongIf(range && range->first > range->second, "has its lower bound above its upper one");
            });
    }
    for (const auto filter : {Filter::First, Filter::Second, Filter::Third, Filter::Fourth}) {
        const auto from = describe.control()->rfFilterFrom(filter).value_or(0.0);
        describe.setting(
            "rfFilterFrom " + std::to_string(static_cast<int>(filter)),
            [=](SableSynthesis& one) { return toValue(one.rfFilterFrom(filter)); },
            [=](SableSynthesis& one, double value) { one.setRfFilterFrom(filter, value); }, quantity(from));
    }
}

/// The first row of a Sable synthesizer's range table.
void describeFirstRow(const Describe<SableSynthesis>& describe)
{
    if (describe.control()->rfPowerRangeTable().empty())
        return;
    describe
        .setting(
            "rfPowerRangeTable 0 power",
            [](SableSynthesis& one) { return toValue(one.rfPowerRangeTable().front().power); },
            [](SableSynthesis& one, double value) { one.setRfPowerRangePower(0, fromValue<std::uint8_t>(value)); },
            codes<std::uint8_t>())
        .setting(
            "rfPowerRangeTable 0 frequency",
            [](SableSynthesis& one) { return toValue(one.rfPowerRangeTable().front().frequency); },
            [](SableSynthesis& one, double value) { one.setRfPowerRangeFrequency(0, value); },
            quantity(describe.control()->rfPowerRangeTable().front().frequency));
}

} // namespace

void describeQuillSynthesis(Description& description, std::shared_ptr<void> control)
{
    using Control = QuillSynthesis;
    const Describe<Control> describe{description, std::static_pointer_cast<Control>(std::move(control))};
    describeIfs(describe);
    describe.reading("supportedRefs", [](Control& one) { return wrongFrequencies(one.supportedRefs()); })
        .reference("supportedRefs", &Control::supportedRefs)
        .setting("loLeakageMode", &Control::loLeakageMode, &Control::setLoLeakageMode, onOff())
        .setting("manualIfEnabled", &Control::manualIfEnabled, &Control::setManualIfEnabled, onOff())
        .setting("filter1Frequency", &Control::filter1Frequency, &Control::setFilter1Frequency,
                 quantity(describe.control()->filter1Frequency()))
        .setting("manualRefEnabled", &Control::manualRefEnabled, &Control::setManualRefEnabled, onOff())
        .setting("selectedRef", &Control::selectedRef, &Control::setSelectedRef,
                 positions(describe.control()->supportedRefs().size()));
}

void describeQuillPower(Description& description, std::shared_ptr<void> control)
{
    using Control = QuillPower;
    using Gain = Control::AmpGain;
    const Describe<Control> describe{description, std::static_pointer_cast<Control>(std::move(control))};
    const auto power = between(describe.control()->minPowerCode(), describe.control()->maxPowerCode());
    const auto gains = enumerators(Gain::Low, Gain::High);
    describe
        .reading("maxPowerCode",
                 [](Control& one) { return wrongIf(one.maxPowerCode() < one.minPowerCode(), "is below minPowerCode"); })
        .reading("defaultAttenuationStep", &Control::defaultAttenuationStep)
        .setting("loPower", &Control::loPower, &Control::setLoPower, power)
        .setting("rfPower", &Control::rfPower, &Control::setRfPower, power)
        .setting("syntPowerMode", &Control::syntPowerMode, &Control::setSyntPowerMode,
                 enumerators(Control::SyntPowerMode::Normal, Control::SyntPowerMode::High))
        .setting("attenuationMode", &Control::attenuationMode, &Control::setAttenuationMode,
                 enumerators(Control::AttenuationMode::Automatic, Control::AttenuationMode::Manual))
        .setting("attenuationStep", &Control::attenuationStep, &Control::setAttenuationStep, {})
        .setting("stepAttenuatorMode", &Control::stepAttenuatorMode, &Control::setStepAttenuatorMode,
                 enumerators(Control::StepAttenuatorMode::Through, Control::StepAttenuatorMode::Both))
        .setting("discreteAttenuatorEnabled", &Control::discreteAttenuatorEnabled,
                 &Control::setDiscreteAttenuatorEnabled, onOff())
        .setting("discreteAttenuatorMode", &Control::discreteAttenuatorMode, &Control::setDiscreteAttenuatorMode,
                 enumerators(Control::DiscreteAttenuatorMode::Automatic, Control::DiscreteAttenuatorMode::Manual))
        .setting("commonAttenuationMode", &Control::commonAttenuationMode, &Control::setCommonAttenuationMode,
                 enumerators(Control::CommonAttenuationMode::Automatic, Control::CommonAttenuationMode::Manual))
        .setting("commonAttenuationStep", &Control::commonAttenuationStep, &Control::setCommonAttenuationStep, {})
        .setting("ampTPort2", &Control::ampTPort2, &Control::setAmpTPort2, gains)
        .setting("ampRPort1", &Control::ampRPort1, &Control::setAmpRPort1, gains)
        .setting("ampTPort1", &Control::ampTPort1, &Control::setAmpTPort1, gains);
}

void describeSableSynthesis(Description& description, std::shared_ptr<void> control)
{
    using Control = SableSynthesis;
    const Describe<Control> describe{description, std::static_pointer_cast<Control>(std::move(control))};
    describeIfs(describe);
    describe.reference("rfPowerRangeTable", &Control::rfPowerRangeTable)
        .reference("rfPowerDefaultRangeTable", &Control::rfPowerDefaultRangeTable)
        .reading("rfPowerRangeTable",
                 [](Control& one) {
                     return wrongIf(one.rfPowerRangeTable().size() != one.rfPowerDefaultRangeTable().size(),
                                    "has another number of rows than rfPowerDefaultRangeTable");
                 })
        .setting("loPower", &Control::loPower, &Control::setLoPower, codes<std::uint8_t>())
        .setting("rfPower", &Control::rfPower, &Control::setRfPower, codes<std::uint8_t>())
        .setting("rfPowerMode", &Control::rfPowerMode, &Control::setRfPowerMode,
                 enumerators(Control::RfPowerMode::Fixed, Control::RfPowerMode::Table))
        .setting("ifMode", &Control::ifMode, &Control::setIfMode,
                 enumerators(Control::IfMode::Automatic, Control::IfMode::Manual))
        .setting("rfFilterMode", &Control::rfFilterMode, &Control::setRfFilterMode,
                 enumerators(Control::FilterMode::Automatic, Control::FilterMode::Bypass))
        .setting("selectedRfFilter", &Control::selectedRfFilter, &Control::setSelectedRfFilter,
                 enumerators(Control::RfFilter::First, Control::RfFilter::Fourth))
        .setting("ddsSwitchFreq", &Control::ddsSwitchFreq, &Control::setDdsSwitchFreq,
                 quantity(describe.control()->ddsSwitchFreq()))
        .setting("delayMode", &Control::delayMode, &Control::setDelayMode,
                 enumerators(Control::DelayMode::Automatic, Control::DelayMode::Manual))
        .setting("measureDelay", &Control::measureDelay, &Control::setMeasureDelay,
                 quantity(describe.control()->measureDelay()));
    describeParts(describe);
    describeFirstRow(describe);
}

void describeSablePower(Description& description, std::shared_ptr<void> control)
{
    using Control = SablePower;
    const Describe<Control> describe{description, std::static_pointer_cast<Control>(std::move(control))};
    describe
        .setting("dacMode", &Control::dacMode, &Control::setDacMode,
                 enumerators(Control::DacMode::Automatic, Control::DacMode::Manual))
        .setting("powerMode", &Control::powerMode, &Control::setPowerMode,
                 enumerators(Control::PowerMode::Normal, Control::PowerMode::High))
        .setting("stepAttenuatorMode", &Control::stepAttenuatorMode, &Control::setStepAttenuatorMode,
                 enumerators(Control::StepAttenuatorMode::Through, Control::StepAttenuatorMode::Automatic))
        .setting("discreteAttenuatorMode", &Control::discreteAttenuatorMode, &Control::setDiscreteAttenuatorMode,
                 enumerators(Control::DiscreteAttenuatorMode::Automatic, Control::DiscreteAttenuatorMode::Manual))
        .setting("powerConstant", &Control::powerConstant, &Control::setPowerConstant,
                 enumerators(Control::PowerConstant::Code, Control::PowerConstant::Level))
        .setting("rfDac", &Control::rfDac, &Control::setRfDac, codes<std::uint16_t>())
        .setting("splitDac", &Control::splitDac, &Control::setSplitDac, codes<std::uint16_t>())
        .setting("splitDds", &Control::splitDds, &Control::setSplitDds, codes<std::uint16_t>())
        .setting("attenuation", &Control::attenuation, &Control::setAttenuation, {.lowest = 0.0, .isRounded = true})
        .setting("attenuationStep", &Control::attenuationStep, &Control::setAttenuationStep, codes<std::uint16_t>())
        .setting("discreteAttenuatorEnabled", &Control::discreteAttenuatorEnabled,
                 &Control::setDiscreteAttenuatorEnabled, onOff())
        .setting("squarePatternStep", &Control::squarePatternStep, &Control::setSquarePatternStep,
                 quantity(describe.control()->squarePatternStep()))
        .setting("ddsCorrectionMode", &Control::ddsCorrectionMode, &Control::setDdsCorrectionMode,
                 enumerators(Control::DdsCorrectionMode::Factory, Control::DdsCorrectionMode::User))
        .setting("ddsCorrectionEnabled", &Control::ddsCorrectionEnabled, &Control::setDdsCorrectionEnabled, onOff());
}

void describeDornPower(Description& description, std::shared_ptr<void> control)
{
    using Control = DornPower;
    const Describe<Control> describe{description, std::static_pointer_cast<Control>(std::move(control))};
    const auto power = between(0, describe.control()->maxPowerValue());
    const auto dac = between(0, describe.control()->maxDacValue());
    const auto gains = oneOf(describe.control()->availableGains());
    const auto modes = enumerators(Control::ControlMode::Automatic, Control::ControlMode::Manual);
    describe.setting("powerControlMode", &Control::powerControlMode, &Control::setPowerControlMode, modes)
        .setting("loPower", &Control::loPower, &Control::setLoPower, power)
        .setting("rfPower", &Control::rfPower, &Control::setRfPower, power)
        .setting("dacControlMode", &Control::dacControlMode, &Control::setDacControlMode, modes)
        .setting("dacMode", &Control::dacMode, &Control::setDacMode,
                 enumerators(Control::DacMode::Separate, Control::DacMode::Union))
        .setting("unionDac", &Control::unionDac, &Control::setUnionDac, dac)
        .setting("dacA", &Control::dacA, &Control::setDacA, dac)
        .setting("dacB", &Control::dacB, &Control::setDacB, dac)
        .setting("referenceGain", &Control::referenceGain, &Control::setReferenceGain, gains)
        .setting("signalGain", &Control::signalGain, &Control::setSignalGain, gains);
}

void describeDornSynthesis(Description& description, std::shared_ptr<void> control)
{
    using Control = DornSynthesis;
    const Describe<Control> describe{description, std::static_pointer_cast<Control>(std::move(control))};
    describe
        .reading("availableReferenceFrequencies",
                 [](Control& one) { return wrongFrequencies(one.availableReferenceFrequencies()); })
        .setting("currentReferenceFrequency", &Control::currentReferenceFrequency, &Control::setReferenceFrequency,
                 oneOf(describe.control()->availableReferenceFrequencies()));
}

void describeVellSynthesis(Description& description, std::shared_ptr<void> control)
{
    using Control = VellSynthesis;
    const Describe<Control> describe{description, std::static_pointer_cast<Control>(std::move(control))};
    describeIfs(describe);
    describe.setting("manualIfEnabled", &Control::manualIfEnabled, &Control::setManualIfEnabled, onOff());
}

} // namespace tarn::conformance
