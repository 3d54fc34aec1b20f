#pragma once

#include <support/recordedcontrol.h>

#include <sdk/service/idornpowercontrol.h>
#include <sdk/service/idornsynthesiscontrol.h>

namespace tarn::tests {

class RecordedDORNPowerControl final : public sdk::service::IDORNPowerControl, public RecordedControl {
public:
    std::uint8_t maxPowerValue() override { return answered<std::uint8_t>("maxPowerValue"); }
    ControlMode powerControlMode() override { return answered<ControlMode>("powerControlMode"); }
    void setPowerControlMode(ControlMode mode) override { called("setPowerControlMode", mode); }
    std::uint8_t loPower() override { return answered<std::uint8_t>("loPower"); }
    void setLoPower(std::uint8_t code) override { called("setLoPower", code); }
    std::uint8_t rfPower() override { return answered<std::uint8_t>("rfPower"); }
    void setRfPower(std::uint8_t code) override { called("setRfPower", code); }
    std::uint16_t maxDacValue() override { return answered<std::uint16_t>("maxDacValue"); }
    ControlMode dacControlMode() override { return answered<ControlMode>("dacControlMode"); }
    void setDacControlMode(ControlMode mode) override { called("setDacControlMode", mode); }
    DacMode dacMode() override { return answered<DacMode>("dacMode"); }
    void setDacMode(DacMode mode) override { called("setDacMode", mode); }
    std::uint16_t unionDac() override { return answered<std::uint16_t>("unionDac"); }
    void setUnionDac(std::uint16_t code) override { called("setUnionDac", code); }
    std::uint16_t dacA() override { return answered<std::uint16_t>("dacA"); }
    void setDacA(std::uint16_t code) override { called("setDacA", code); }
    std::uint16_t dacB() override { return answered<std::uint16_t>("dacB"); }
    void setDacB(std::uint16_t code) override { called("setDacB", code); }
    Gains availableGains() override { return answered<Gains>("availableGains"); }
    std::uint8_t referenceGain() override { return answered<std::uint8_t>("referenceGain"); }
    void setReferenceGain(std::uint8_t code) override { called("setReferenceGain", code); }
    std::uint8_t signalGain() override { return answered<std::uint8_t>("signalGain"); }
    void setSignalGain(std::uint8_t code) override { called("setSignalGain", code); }
    void assignReceiverCorrectionTable(std::vector<std::uint8_t> table) override
    {
        calledWithTable("assignReceiverCorrectionTable", table);
    }
    void assignPowerCalibrationTable(std::vector<std::uint8_t> table) override
    {
        calledWithTable("assignPowerCalibrationTable", table);
    }
};

class RecordedDORNSynthesisControl final : public sdk::service::IDORNSynthesisControl, public RecordedControl {
public:
    Frequencies availableReferenceFrequencies() override
    {
        return answered<Frequencies>("availableReferenceFrequencies");
    }
    double currentReferenceFrequency() override { return answered<double>("currentReferenceFrequency"); }
    void setReferenceFrequency(double frequency) override { called("setReferenceFrequency", frequency); }
};

} // namespace tarn::tests
