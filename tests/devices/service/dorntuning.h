#pragma once

#include <devices/service/sdkdornpowercontrol.h>
#include <devices/service/sdkdornsynthesiscontrol.h>

#include <support/recordeddorncontrols.h>
#include <support/tuningcontract.h>

namespace tarn::tests {

struct DornPower
    : Tuning<sdk::service::IDORNPowerControl, devices::service::SdkDornPowerControl, RecordedDORNPowerControl> {
    static constexpr auto name = "DornPower";

    static std::int64_t asItIs(std::int64_t number) { return number; }

    static std::vector<std::pair<Sdk::DacMode, bool>> unions()
    {
        std::vector<std::pair<Sdk::DacMode, bool>> pairs;
        for (const auto number : modeNumbers())
            pairs.emplace_back(static_cast<Sdk::DacMode>(number), number == 1);
        return pairs;
    }

    static Operations operations()
    {
        using A = Adapter;
        return Operations{}
            .value("maxPowerValue", &A::maxPowerValue, {7, 0, 255})
            .mode<Sdk::ControlMode>("powerControlMode", &A::powerControlMode, &A::setPowerControlMode, asItIs)
            .value("loPower", &A::loPower, &A::setLoPower, {7, 0, 255})
            .value("rfPower", &A::rfPower, &A::setRfPower, {7, 0, 255})
            .value("maxDacValue", &A::maxDacValue, {7, 0, 65535})
            .mode<Sdk::ControlMode>("dacControlMode", &A::dacControlMode, &A::setDacControlMode, asItIs)
            .reads("dacMode()", &A::isDacModeUnion, unions())
            .writes("setDacMode(1)", [](A& a) { a.setDacModeUnion(true); })
            .writes("setDacMode(0)", [](A& a) { a.setDacModeUnion(false); })
            .value("unionDac", &A::unionDac, &A::setUnionDac, {7, 0, 65535})
            .value("dacA", &A::dacA, &A::setDacA, {7, 0, 65535})
            .value("dacB", &A::dacB, &A::setDacB, {7, 0, 65535})
            .value("availableGains", &A::availableGains, {{9, 0, 255}, {}})
            .value("referenceGain", &A::referenceGain, &A::setReferenceGain, {7, 0, 255})
            .value("signalGain", &A::signalGain, &A::setSignalGain, {7, 0, 255})
            .writes("assignReceiverCorrectionTable({ 1, 255 })",
                    [](A& a) { a.assignReceiverCorrectionTable({1, 255}); })
            .writes("assignPowerCalibrationTable({ 2, 0 })", [](A& a) { a.assignPowerCalibrationTable({2, 0}); });
    }
};

struct DornSynthesis : Tuning<sdk::service::IDORNSynthesisControl, devices::service::SdkDornSynthesisControl,
                              RecordedDORNSynthesisControl> {
    static constexpr auto name = "DornSynthesis";

    static Operations operations()
    {
        using A = Adapter;
        return Operations{}
            .value("availableReferenceFrequencies", &A::availableReferenceFrequencies, {{3e6, 1e6, 2e6}, {}})
            .value("currentReferenceFrequency", &A::currentReferenceFrequency, anyNumbers())
            .writes("setReferenceFrequency(1.5)", [](A& a) { a.setReferenceFrequency(1.5); })
            .writes("setReferenceFrequency(-0.5)", [](A& a) { a.setReferenceFrequency(-0.5); });
    }
};

} // namespace tarn::tests
