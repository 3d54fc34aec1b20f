#pragma once

#include <devices/service/sdksablepowercontrol.h>
#include <devices/service/sdksablesynthesiscontrol.h>

#include <support/recordedsablecontrols.h>
#include <support/tuningcontract.h>

#include <array>
#include <optional>

namespace tarn::tests {

/// The number itself from 0 to `last`, `last` for all others.
template <std::int64_t last>
std::int64_t upTo(std::int64_t number)
{
    return number >= 0 && number < last ? number : last;
}

struct SablePower : Tuning<sdk::service::ISablePowerModuleControl, devices::service::SdkSablePowerControl,
                           RecordedSablePowerModuleControl> {
    static constexpr auto name = "SablePower";

    static std::int64_t asItIs(std::int64_t number) { return number; }
    static std::int64_t zeroOrOne(std::int64_t number) { return number == 0 ? 0 : 1; }
    static std::int64_t threeForFour(std::int64_t number) { return number == 3 ? 4 : number == 4 ? 3 : number; }

    static Operations operations()
    {
        using A = Adapter;
        return Operations{}
            .mode<Sdk::DacMode>("dacMode", &A::dacMode, &A::setDacMode, asItIs)
            .mode<Sdk::PowerMode>("powerMode", &A::powerMode, &A::setPowerMode, zeroOrOne)
            .mode<Sdk::StepAttenuatorMode>("stepAttenuatorMode", &A::stepAttenuatorMode, &A::setStepAttenuatorMode,
                                           threeForFour, {1, 0, 2, 3, 4})
            .mode<Sdk::DiscreteAttenuatorMode>("discreteAttenuatorMode", &A::discreteAttenuatorMode,
                                               &A::setDiscreteAttenuatorMode, asItIs)
            .mode<Sdk::PowerConstant>("powerConstant", &A::powerConstant, &A::setPowerConstant, asItIs)
            .value("rfDac", &A::rfDac, &A::setRfDac, {7, 0, 65535})
            .value("splitDac", &A::splitDac, &A::setSplitDac, {7, 0, 65535})
            .value("splitDds", &A::splitDds, &A::setSplitDds, {7, 0, 65535})
            .value("attenuation", &A::attenuationDb, &A::setAttenuationDb, anyNumbers())
            .value("attenuationStep", &A::attenuationStep, &A::setAttenuationStep, {7, 0, 65535})
            .value("discreteAttenuatorEnabled", &A::discreteAttenuatorEnabled, &A::enableDiscreteAttenuator,
                   {true, false})
            .value("squarePatternStep", &A::squarePatternStep, &A::setSquarePatternStep, anyNumbers())
            .mode<Sdk::DdsCorrectionMode>("ddsCorrectionMode", &A::ddsCorrectionMode, &A::setDdsCorrectionMode,
                                          zeroOrOne)
            .value("ddsCorrectionEnabled", &A::ddsCorrectionEnabled, &A::enableDdsCorrection, {true, false})
            .writes("assignPowerCalibrationTable({ 1, 255 })", [](A& a) { a.assignPowerCalibrationTable({1, 255}); });
    }
};

struct SableSynthesis : Tuning<sdk::service::ISableSynthesisControl, devices::service::SdkSableSynthesisControl,
                               RecordedSableSynthesisControl> {
    static constexpr auto name = "SableSynthesis";

    using Row = Adapter::RfPowerRange;
    using Pair = std::pair<double, double>;
    using Range = utils::Range<double>;

    static constexpr std::array<sdk::sable::PowerSynt, 3> rows{{{3e9, 255}, {1e9, 0}, {1e9, 9}}};

    static std::int64_t twoOrOne(std::int64_t number) { return number == 2 ? 2 : 1; }

    static std::vector<std::pair<std::optional<Sdk::RfFilter>, std::optional<Adapter::RfFilter>>> filters()
    {
        std::vector<std::pair<std::optional<Sdk::RfFilter>, std::optional<Adapter::RfFilter>>> pairs;
        for (const auto& [sdkFilter, filter] : Operations::mapped<Sdk::RfFilter, Adapter::RfFilter>(upTo<3>))
            pairs.emplace_back(sdkFilter, filter);
        pairs.emplace_back(std::nullopt, std::nullopt);
        return pairs;
    }

    static Operations operations()
    {
        using A = Adapter;
        using Table = std::pair<Sdk::Rows, std::vector<Row>>;
        const std::vector<Table> tables{{rows, {{3e9, 255}, {1e9, 0}, {1e9, 9}}}, {{}, {}}};
        const std::vector<std::pair<std::optional<double>, std::optional<double>>> froms{
            {2.5e9, 2.5e9}, {0.0, 0.0}, {std::nullopt, std::nullopt}};
        const std::vector<std::pair<std::optional<Pair>, std::optional<Range>>> ranges{
            {Pair{1e-12, 5e-12}, Range{1e-12, 5e-12}}, {Pair{2.0, 1.0}, Range{2.0, 1.0}}, {std::nullopt, std::nullopt}};
        return Operations{}
            .value("loPower", &A::loPower, &A::setLoPower, {7, 0, 255})
            .value("rfPower", &A::rfPower, &A::setRfPower, {7, 0, 255})
            .mode<Sdk::RfPowerMode>("rfPowerMode", &A::rfPowerMode, &A::setRfPowerMode, twoOrOne)
            .reads("rfPowerRangeTable()", &A::rfPowerRangeTable, tables)
            .reads("rfPowerDefaultRangeTable()", &A::rfPowerDefaultRangeTable, tables)
            .writes("setRfPowerRangeFrequency(-3, 2.5)", [](A& a) { a.setRfPowerRangeFrequency(-3, 2.5); })
            .writes("setRfPowerRangePower(1000, 250)", [](A& a) { a.setRfPowerRangePower(1000, 250); })
            .mode<Sdk::IfMode>("ifMode", &A::ifMode, &A::setIfMode, upTo<1>)
            .value("selectedIf", &A::selectedIf, &A::setSelectedIf, anyIntegers())
            .reads("supportedIfs()", &A::supportedIfs, frequencyLists())
            .reads(
                "capacitanceMode(1)", [](const A& a) { return a.capacitanceMode(A::Capacitor{7}); },
                Operations::mapped<Sdk::CapacitorMode, A::CapacitorMode>(upTo<3>))
            .reads(
                "capacitanceMode(0)", [](const A& a) { return a.capacitanceMode(A::Capacitor::First); },
                Operations::mapped<Sdk::CapacitorMode, A::CapacitorMode>(upTo<3>))
            .writesMode<A::CapacitorMode>(
                "setCapacitanceMode(0, ", ")", upTo<3>,
                [](A& a, A::CapacitorMode mode) { a.setCapacitanceMode(A::Capacitor::First, mode); })
            .writesMode<A::Capacitor>(
                "setCapacitanceMode(", ", 2)", upTo<1>,
                [](A& a, A::Capacitor capacitor) { a.setCapacitanceMode(capacitor, A::CapacitorMode::Maximum); })
            .reads(
                "capacitanceRange(1)", [](const A& a) { return a.capacitanceRange(A::Capacitor{-1}); }, ranges)
            .reads(
                "capacitanceRange(0)", [](const A& a) { return a.capacitanceRange(A::Capacitor::First); }, ranges)
            .writesMode<A::Capacitor>(
                "setCapacitanceRange(", ", 2.5, -1)", upTo<1>,
                [](A& a, A::Capacitor capacitor) { a.setCapacitanceRange(capacitor, {2.5, -1.0}); })
            .mode<Sdk::FilterMode>("rfFilterMode", &A::rfFilterMode, &A::setRfFilterMode, upTo<2>)
            .reads("selectedRfFilter()", &A::selectedRfFilter, filters())
            .writesMode<A::RfFilter>("setSelectedRfFilter(", ")", upTo<3>, &A::setSelectedRfFilter)
            .reads(
                "rfFilterFrom(3)", [](const A& a) { return a.rfFilterFrom(A::RfFilter{4}); }, froms)
            .reads(
                "rfFilterFrom(1)", [](const A& a) { return a.rfFilterFrom(A::RfFilter::Second); }, froms)
            .writesMode<A::RfFilter>("setRfFilterFrom(", ", 2.5)", upTo<3>,
                                     [](A& a, A::RfFilter filter) { a.setRfFilterFrom(filter, 2.5); })
            .value("ddsSwitchFreq", &A::ddsSwitchFreq, &A::setDdsSwitchFreq, anyNumbers())
            .mode<Sdk::DelayMode>("delayMode", &A::delayMode, &A::setDelayMode, upTo<1>)
            .value("measureDelay", &A::measureDelay, &A::setMeasureDelay, anyNumbers());
    }
};

} // namespace tarn::tests
