#pragma once

#include <support/recordedcontrol.h>

#include <sdk/service/iquillpowercontrol.h>
#include <sdk/service/iquillsynthesiscontrol.h>

namespace tarn::tests {

class RecordedQuillPowerControl final : public sdk::service::IQuillPowerControl, public RecordedControl {
public:
    std::uint8_t loPower() override { return answered<std::uint8_t>("loPower"); }
    std::uint8_t rfPower() override { return answered<std::uint8_t>("rfPower"); }
    void setLoPower(std::uint8_t code) override { called("setLoPower", code); }
    void setRfPower(std::uint8_t code) override { called("setRfPower", code); }
    std::uint8_t minPowerCode() override { return answered<std::uint8_t>("minPowerCode"); }
    std::uint8_t maxPowerCode() override { return answered<std::uint8_t>("maxPowerCode"); }
    void setSyntPowerMode(SyntPowerMode mode) override { called("setSyntPowerMode", mode); }
    SyntPowerMode syntPowerMode() override { return answered<SyntPowerMode>("syntPowerMode"); }
    void setAttenuationMode(AttenuationMode mode) override { called("setAttenuationMode", mode); }
    AttenuationMode attenuationMode() override { return answered<AttenuationMode>("attenuationMode"); }
    void setAttenuationStep(int step) override { called("setAttenuationStep", step); }
    int attenuationStep() override { return answered<int>("attenuationStep"); }
    void setStepAttenuatorMode(StepAttenuatorMode mode) override { called("setStepAttenuatorMode", mode); }
    StepAttenuatorMode stepAttenuatorMode() override { return answered<StepAttenuatorMode>("stepAttenuatorMode"); }
    int defaultAttenuationStep() override { return answered<int>("defaultAttenuationStep"); }
    void setDiscreteAttenuatorEnabled(bool enabled) override { called("setDiscreteAttenuatorEnabled", enabled); }
    bool discreteAttenuatorEnabled() override { return answered<bool>("discreteAttenuatorEnabled"); }
    void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode) override { called("setDiscreteAttenuatorMode", mode); }
    DiscreteAttenuatorMode discreteAttenuatorMode() override
    {
        return answered<DiscreteAttenuatorMode>("discreteAttenuatorMode");
    }
    void setCommonAttenuationMode(CommonAttenuationMode mode) override { called("setCommonAttenuationMode", mode); }
    CommonAttenuationMode commonAttenuationMode() override
    {
        return answered<CommonAttenuationMode>("commonAttenuationMode");
    }
    void setCommonAttenuationStep(int step) override { called("setCommonAttenuationStep", step); }
    int commonAttenuationStep() override { return answered<int>("commonAttenuationStep"); }
    void setAmpTPort2(AmpGain gain) override { called("setAmpTPort2", gain); }
    AmpGain ampTPort2() override { return answered<AmpGain>("ampTPort2"); }
    void setAmpRPort1(AmpGain gain) override { called("setAmpRPort1", gain); }
    AmpGain ampRPort1() override { return answered<AmpGain>("ampRPort1"); }
    void setAmpTPort1(AmpGain gain) override { called("setAmpTPort1", gain); }
    AmpGain ampTPort1() override { return answered<AmpGain>("ampTPort1"); }
    void setRfPowerCodes(const std::vector<std::uint8_t>& codes) override { calledWithTable("setRfPowerCodes", codes); }
    void setLoPowerCodes(const std::vector<std::uint8_t>& codes) override { calledWithTable("setLoPowerCodes", codes); }
    void reset() override { called("reset"); }
};

class RecordedQuillSynthesisControl final : public sdk::service::IQuillSynthesisControl, public RecordedControl {
public:
    void setLoLeakageMode(bool enabled) override { called("setLoLeakageMode", enabled); }
    bool loLeakageMode() override { return answered<bool>("loLeakageMode"); }
    void setManualIfEnabled(bool enabled) override { called("setManualIfEnabled", enabled); }
    bool manualIfEnabled() override { return answered<bool>("manualIfEnabled"); }
    void setSelectedIf(int index) override { called("setSelectedIf", index); }
    int selectedIf() override { return answered<int>("selectedIf"); }
    std::span<const double> supportedIfs() override { return answered<std::span<const double>>("supportedIfs"); }
    void setFilter1Frequency(double frequency) override { called("setFilter1Frequency", frequency); }
    double filter1Frequency() override { return answered<double>("filter1Frequency"); }
    void setManualRefEnabled(bool enabled) override { called("setManualRefEnabled", enabled); }
    bool manualRefEnabled() override { return answered<bool>("manualRefEnabled"); }
    void setSelectedRef(int index) override { called("setSelectedRef", index); }
    int selectedRef() override { return answered<int>("selectedRef"); }
    std::span<const double> supportedRefs() override { return answered<std::span<const double>>("supportedRefs"); }
    void reset() override { called("reset"); }
};

} // namespace tarn::tests
