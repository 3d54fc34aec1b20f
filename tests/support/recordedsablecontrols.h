#pragma once

#include <support/recordedcontrol.h>

#include <sdk/service/isablepowermodulecontrol.h>
#include <sdk/service/isablesynthesiscontrol.h>

namespace tarn::tests {

class RecordedSablePowerModuleControl final : public sdk::service::ISablePowerModuleControl, public RecordedControl {
public:
    void setDacMode(DacMode mode) override { called("setDacMode", mode); }
    DacMode dacMode() override { return answered<DacMode>("dacMode"); }
    void setPowerMode(PowerMode mode) override { called("setPowerMode", mode); }
    PowerMode powerMode() override { return answered<PowerMode>("powerMode"); }
    void setStepAttenuatorMode(StepAttenuatorMode mode) override { called("setStepAttenuatorMode", mode); }
    StepAttenuatorMode stepAttenuatorMode() override { return answered<StepAttenuatorMode>("stepAttenuatorMode"); }
    void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode) override { called("setDiscreteAttenuatorMode", mode); }
    DiscreteAttenuatorMode discreteAttenuatorMode() override
    {
        return answered<DiscreteAttenuatorMode>("discreteAttenuatorMode");
    }
    void setPowerConstant(PowerConstant constant) override { called("setPowerConstant", constant); }
    PowerConstant powerConstant() override { return answered<PowerConstant>("powerConstant"); }
    void setRfDac(std::uint16_t code) override { called("setRfDac", code); }
    std::uint16_t rfDac() override { return answered<std::uint16_t>("rfDac"); }
    void setSplitDac(std::uint16_t code) override { called("setSplitDac", code); }
    std::uint16_t splitDac() override { return answered<std::uint16_t>("splitDac"); }
    void setSplitDds(std::uint16_t code) override { called("setSplitDds", code); }
    std::uint16_t splitDds() override { return answered<std::uint16_t>("splitDds"); }
    void setAttenuation(double attenuation) override { called("setAttenuation", attenuation); }
    double attenuation() override { return answered<double>("attenuation"); }
    void setAttenuationStep(std::uint16_t step) override { called("setAttenuationStep", step); }
    std::uint16_t attenuationStep() override { return answered<std::uint16_t>("attenuationStep"); }
    void setDiscreteAttenuatorEnabled(bool enabled) override { called("setDiscreteAttenuatorEnabled", enabled); }
    bool discreteAttenuatorEnabled() override { return answered<bool>("discreteAttenuatorEnabled"); }
    void setSquarePatternStep(double step) override { called("setSquarePatternStep", step); }
    double squarePatternStep() override { return answered<double>("squarePatternStep"); }
    void setDdsCorrectionMode(DdsCorrectionMode mode) override { called("setDdsCorrectionMode", mode); }
    DdsCorrectionMode ddsCorrectionMode() override { return answered<DdsCorrectionMode>("ddsCorrectionMode"); }
    void setDdsCorrectionEnabled(bool enabled) override { called("setDdsCorrectionEnabled", enabled); }
    bool ddsCorrectionEnabled() override { return answered<bool>("ddsCorrectionEnabled"); }
    void assignPowerCalibrationTable(std::vector<std::uint8_t> table) override
    {
        calledWithTable("assignPowerCalibrationTable", table);
    }
};

class RecordedSableSynthesisControl final : public sdk::service::ISableSynthesisControl, public RecordedControl {
public:
    std::uint8_t loPower() override { return answered<std::uint8_t>("loPower"); }
    std::uint8_t rfPower() override { return answered<std::uint8_t>("rfPower"); }
    void setLoPower(std::uint8_t code) override { called("setLoPower", code); }
    void setRfPower(std::uint8_t code) override { called("setRfPower", code); }
    RfPowerMode rfPowerMode() override { return answered<RfPowerMode>("rfPowerMode"); }
    void setRfPowerMode(RfPowerMode mode) override { called("setRfPowerMode", mode); }
    Rows rfPowerRangeTable() override { return answered<Rows>("rfPowerRangeTable"); }
    Rows rfPowerDefaultRangeTable() override { return answered<Rows>("rfPowerDefaultRangeTable"); }
    void setRfPowerRangeFrequency(int row, double frequency) override
    {
        called("setRfPowerRangeFrequency", row, frequency);
    }
    void setRfPowerRangePower(int row, std::uint8_t code) override { called("setRfPowerRangePower", row, code); }
    IfMode ifMode() override { return answered<IfMode>("ifMode"); }
    void setIfMode(IfMode mode) override { called("setIfMode", mode); }
    void setSelectedIf(int index) override { called("setSelectedIf", index); }
    int selectedIf() override { return answered<int>("selectedIf"); }
    std::span<const double> supportedIfs() override { return answered<std::span<const double>>("supportedIfs"); }
    void setCapacitance(Capacitor capacitor, double capacitance) override
    {
        called("setCapacitance", capacitor, capacitance);
    }
    double capacitance(Capacitor capacitor) override { return answered<double>("capacitance", capacitor); }
    void setCapacitanceMode(Capacitor capacitor, CapacitorMode mode) override
    {
        called("setCapacitanceMode", capacitor, mode);
    }
    void setCapacitanceRange(Capacitor capacitor, double lower, double upper) override
    {
        called("setCapacitanceRange", capacitor, lower, upper);
    }
    CapacitorMode capacitanceMode(Capacitor capacitor) override
    {
        return answered<CapacitorMode>("capacitanceMode", capacitor);
    }
    std::optional<std::pair<double, double>> capacitanceRange(Capacitor capacitor) override
    {
        return answered<std::optional<std::pair<double, double>>>("capacitanceRange", capacitor);
    }
    void setRfFilterMode(FilterMode mode) override { called("setRfFilterMode", mode); }
    void setRfFilterFrom(RfFilter filter, double frequency) override { called("setRfFilterFrom", filter, frequency); }
    void setSelectedRfFilter(RfFilter filter) override { called("setSelectedRfFilter", filter); }
    FilterMode rfFilterMode() override { return answered<FilterMode>("rfFilterMode"); }
    std::optional<RfFilter> selectedRfFilter() override
    {
        return answered<std::optional<RfFilter>>("selectedRfFilter");
    }
    std::optional<double> rfFilterFrom(RfFilter filter) override
    {
        return answered<std::optional<double>>("rfFilterFrom", filter);
    }
    void setDdsSwitchFreq(double frequency) override { called("setDdsSwitchFreq", frequency); }
    double ddsSwitchFreq() override { return answered<double>("ddsSwitchFreq"); }
    DelayMode delayMode() override { return answered<DelayMode>("delayMode"); }
    void setDelayMode(DelayMode mode) override { called("setDelayMode", mode); }
    double measureDelay() override { return answered<double>("measureDelay"); }
    void setMeasureDelay(double delay) override { called("setMeasureDelay", delay); }
};

} // namespace tarn::tests
