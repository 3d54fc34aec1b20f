#include <sdk/service/isablepowermodulecontrol.h>
#include <simulator/modulecontrol.h>
#include <simulator/modulecontrols.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace tarn::simulator {

namespace {

using Sdk = sdk::service::ISablePowerModuleControl;

constexpr std::uint16_t highestDac = 4095;
constexpr std::uint16_t defaultDac = 2048;
constexpr std::uint16_t highestDds = 16383;
constexpr std::uint16_t highestStep = 127;

struct SablePower {
    static constexpr const char* section = "sablePower";

    Sdk::DacMode dacMode = Sdk::DacMode::Automatic;
    Sdk::PowerMode powerMode = Sdk::PowerMode::Normal;
    Sdk::StepAttenuatorMode stepAttenuatorMode = Sdk::StepAttenuatorMode::Automatic;
    Sdk::DiscreteAttenuatorMode discreteAttenuatorMode = Sdk::DiscreteAttenuatorMode::Automatic;
    Sdk::PowerConstant powerConstant = Sdk::PowerConstant::Code;
    std::uint16_t rfDac = defaultDac;
    std::uint16_t splitDac = defaultDac;
    std::uint16_t splitDds = 8192;
    double attenuation = 0.0; // dB
    std::uint16_t attenuationStep = 0;
    bool discreteAttenuator = false;
    double squarePatternStep = 0.5; // dB
    Sdk::DdsCorrectionMode ddsCorrectionMode = Sdk::DdsCorrectionMode::Factory;
    bool ddsCorrection = true;
};

void fields(auto& archive, Is<SablePower> auto& record)
{
    archive("DAC mode", record.dacMode, Within{Sdk::DacMode::Automatic, Sdk::DacMode::Manual});
    archive("power mode", record.powerMode, Within{Sdk::PowerMode::Normal, Sdk::PowerMode::High});
    archive("step attenuator mode", record.stepAttenuatorMode,
            Within{Sdk::StepAttenuatorMode::Through, Sdk::StepAttenuatorMode::Automatic});
    archive("discrete attenuator mode", record.discreteAttenuatorMode,
            Within{Sdk::DiscreteAttenuatorMode::Automatic, Sdk::DiscreteAttenuatorMode::Manual});
    archive("power constant", record.powerConstant, Within{Sdk::PowerConstant::Code, Sdk::PowerConstant::Level});
    archive("RF DAC code", record.rfDac, Within{0, highestDac});
    archive("split DAC code", record.splitDac, Within{0, highestDac});
    archive("split DDS code", record.splitDds, Within{0, highestDds});
    archive("attenuation", record.attenuation, Within{0.0, 63.5});
    archive("attenuation step", record.attenuationStep, Within{0, highestStep});
    archive("discrete attenuator", record.discreteAttenuator);
    archive("square pattern step", record.squarePatternStep, Within{0.0, 10.0});
    archive("DDS correction mode", record.ddsCorrectionMode,
            Within{Sdk::DdsCorrectionMode::Factory, Sdk::DdsCorrectionMode::User});
    archive("DDS correction", record.ddsCorrection);
}

void checkTogether(const SablePower& record)
{
    if (record.dacMode == Sdk::DacMode::Manual && record.powerConstant == Sdk::PowerConstant::Level)
        throw std::invalid_argument{"the DACs are set by hand while the level is to stay constant"};
}

/// The codes count while they are in force.
auto rises(const SablePower& record)
{
    const double inForce = record.dacMode == Sdk::DacMode::Manual ? 1.0 : 0.0;
    const double high = record.powerMode == Sdk::PowerMode::High ? 3.0 : 0.0;
    return std::array{Rise{ThermalModel::rfModule, (inForce * 0.002 * (record.rfDac - defaultDac)) + high}};
}

class SablePowerControl final : public ModuleControl<Sdk, SablePower> {
public:
    using ModuleControl::ModuleControl;

    void setDacMode(DacMode mode) override
    {
        change([mode](Record& record) {
            record.dacMode = mode;
            if (mode == DacMode::Manual)
                record.powerConstant = PowerConstant::Code;
        });
    }

    DacMode dacMode() override { return get(&Record::dacMode); }
    void setPowerMode(PowerMode mode) override { set(&Record::powerMode, mode); }
    PowerMode powerMode() override { return get(&Record::powerMode); }
    void setStepAttenuatorMode(StepAttenuatorMode mode) override { set(&Record::stepAttenuatorMode, mode); }
    StepAttenuatorMode stepAttenuatorMode() override { return get(&Record::stepAttenuatorMode); }
    void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode) override { set(&Record::discreteAttenuatorMode, mode); }
    DiscreteAttenuatorMode discreteAttenuatorMode() override { return get(&Record::discreteAttenuatorMode); }

    void setPowerConstant(PowerConstant constant) override
    {
        change([constant](Record& record) {
            record.powerConstant = constant;
            if (constant == PowerConstant::Level)
                record.dacMode = DacMode::Automatic;
        });
    }

    PowerConstant powerConstant() override { return get(&Record::powerConstant); }
    void setRfDac(std::uint16_t code) override { set(&Record::rfDac, code); }
    std::uint16_t rfDac() override { return get(&Record::rfDac); }
    void setSplitDac(std::uint16_t code) override { set(&Record::splitDac, code); }
    std::uint16_t splitDac() override { return get(&Record::splitDac); }
    void setSplitDds(std::uint16_t code) override { set(&Record::splitDds, code); }
    std::uint16_t splitDds() override { return get(&Record::splitDds); }
    void setAttenuation(double attenuation) override { set(&Record::attenuation, attenuation); }
    double attenuation() override { return get(&Record::attenuation); }
    void setAttenuationStep(std::uint16_t step) override { set(&Record::attenuationStep, step); }
    std::uint16_t attenuationStep() override { return get(&Record::attenuationStep); }
    void setDiscreteAttenuatorEnabled(bool enabled) override { set(&Record::discreteAttenuator, enabled); }
    bool discreteAttenuatorEnabled() override { return get(&Record::discreteAttenuator); }
    void setSquarePatternStep(double step) override { set(&Record::squarePatternStep, step); }
    double squarePatternStep() override { return get(&Record::squarePatternStep); }
    void setDdsCorrectionMode(DdsCorrectionMode mode) override { set(&Record::ddsCorrectionMode, mode); }
    DdsCorrectionMode ddsCorrectionMode() override { return get(&Record::ddsCorrectionMode); }
    void setDdsCorrectionEnabled(bool enabled) override { set(&Record::ddsCorrection, enabled); }
    bool ddsCorrectionEnabled() override { return get(&Record::ddsCorrection); }

    void assignPowerCalibrationTable(std::vector<std::uint8_t> table) override
    {
        store(ModuleTables::Table::SablePowerCalibration, table);
    }
};

} // namespace

MakeControl installSablePower(const std::shared_ptr<Bench>& bench)
{
    return installModule<SablePowerControl>(bench);
}

} // namespace tarn::simulator
