#pragma once

#include <devices/service/sdkquillpowercontrol.h>
#include <devices/service/sdkquillsynthesiscontrol.h>

#include <support/recordedquillcontrols.h>
#include <support/tuningcontract.h>

namespace tarn::tests {

struct QuillPower
    : Tuning<sdk::service::IQuillPowerControl, devices::service::SdkQuillPowerControl, RecordedQuillPowerControl> {
    static constexpr auto name = "QuillPower";

    static std::int64_t oneOrZero(std::int64_t number) { return number == 1 ? 1 : 0; }
    static std::int64_t oneToThreeOrZero(std::int64_t number) { return number > 0 && number < 4 ? number : 0; }

    static Operations operations()
    {
        using A = Adapter;
        return Operations{}
            .value("loPower", &A::loPower, &A::setLoPower, {7, 0, 255})
            .value("rfPower", &A::rfPower, &A::setRfPower, {7, 0, 255})
            .value("minPowerCode", &A::minPowerCode, {7, 0, 255})
            .value("maxPowerCode", &A::maxPowerCode, {7, 0, 255})
            .mode<Sdk::SyntPowerMode>("syntPowerMode", &A::syntPowerMode, &A::setSyntPowerMode, oneOrZero)
            .mode<Sdk::AttenuationMode>("attenuationMode", &A::attenuationMode, &A::setAttenuationMode, oneOrZero)
            .value("attenuationStep", &A::attenuationStep, &A::setAttenuationStep, anyIntegers())
            .value("defaultAttenuationStep", &A::defaultAttenuationStep, anyIntegers())
            .mode<Sdk::StepAttenuatorMode>("stepAttenuatorMode", &A::stepAttenuatorMode, &A::setStepAttenuatorMode,
                                           oneToThreeOrZero)
            .value("discreteAttenuatorEnabled", &A::discreteAttenuatorEnabled, &A::enableDiscreteAttenuator,
                   {true, false})
            .mode<Sdk::DiscreteAttenuatorMode>("discreteAttenuatorMode", &A::discreteAttenuatorMode,
                                               &A::setDiscreteAttenuatorMode, oneOrZero)
            .mode<Sdk::CommonAttenuationMode>("commonAttenuationMode", &A::commonAttenuationMode,
                                              &A::setCommonAttenuationMode, oneOrZero)
            .value("commonAttenuationStep", &A::commonAttenuationStep, &A::setCommonAttenuationStep, anyIntegers())
            .mode<Sdk::AmpGain>("ampTPort1", &A::ampTPort1, &A::setAmpTPort1, oneOrZero)
            .mode<Sdk::AmpGain>("ampTPort2", &A::ampTPort2, &A::setAmpTPort2, oneOrZero)
            .mode<Sdk::AmpGain>("ampRPort1", &A::ampRPort1, &A::setAmpRPort1, oneOrZero)
            .writes("setRfPowerCodes({ 1, 255 })", [](A& a) { a.setRfPowerCodes({1, 255}); })
            .writes("setLoPowerCodes({ 2, 0 })", [](A& a) { a.setLoPowerCodes({2, 0}); })
            .writes("reset()", &A::reset);
    }
};

struct QuillSynthesis : Tuning<sdk::service::IQuillSynthesisControl, devices::service::SdkQuillSynthesisControl,
                               RecordedQuillSynthesisControl> {
    static constexpr auto name = "QuillSynthesis";

    static Operations operations()
    {
        using A = Adapter;
        return Operations{}
            .value("loLeakageMode", &A::loLeakageMode, &A::setLoLeakageMode, {true, false})
            .value("manualIfEnabled", &A::manualIfEnabled, &A::enableManualIf, {true, false})
            .value("selectedIf", &A::selectedIf, &A::setSelectedIf, anyIntegers())
            .reads("supportedIfs()", &A::supportedIfs, frequencyLists())
            .value("filter1Frequency", &A::filter1Frequency, &A::setFilter1Frequency, anyNumbers())
            .value("manualRefEnabled", &A::manualRefEnabled, &A::enableManualRef, {true, false})
            .value("selectedRef", &A::selectedRef, &A::setSelectedRef, anyIntegers())
            .reads("supportedRefs()", &A::supportedRefs, frequencyLists())
            .writes("reset()", &A::reset);
    }
};

} // namespace tarn::tests
