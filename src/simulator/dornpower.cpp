#include <sdk/service/idornpowercontrol.h>
#include <simulator/modulecontrol.h>
#include <simulator/modulecontrols.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace tarn::simulator {

namespace {

using Sdk = sdk::service::IDORNPowerControl;
using Table = ModuleTables::Table;

constexpr std::uint8_t highestPower = 63;
constexpr std::uint8_t defaultPower = 32;
constexpr std::uint16_t highestDac = 4095;
constexpr std::uint16_t defaultDac = 2048;
constexpr std::array<std::uint8_t, 5> gains{0, 6, 12, 18, 30};

struct DornPower {
    static constexpr const char* section = "dornPower";

    Sdk::ControlMode powerControlMode = Sdk::ControlMode::Automatic;
    std::uint8_t loPower = defaultPower;
    std::uint8_t rfPower = defaultPower;
    Sdk::ControlMode dacControlMode = Sdk::ControlMode::Automatic;
    Sdk::DacMode dacMode = Sdk::DacMode::Separate;
    std::uint16_t unionDac = defaultDac;
    std::uint16_t dacA = defaultDac;
    std::uint16_t dacB = defaultDac;
    std::uint8_t referenceGain = 6;
    std::uint8_t signalGain = 12;
};

void fields(auto& archive, Is<DornPower> auto& record)
{
    constexpr Within modes{Sdk::ControlMode::Automatic, Sdk::ControlMode::Manual};
    constexpr Within powers{0, highestPower};
    constexpr Within dacs{0, highestDac};
    archive("power control mode", record.powerControlMode, modes);
    archive("LO power code", record.loPower, powers);
    archive("RF power code", record.rfPower, powers);
    archive("DAC control mode", record.dacControlMode, modes);
    archive("DAC mode", record.dacMode, Within{Sdk::DacMode::Separate, Sdk::DacMode::Union});
    archive("union DAC code", record.unionDac, dacs);
    archive("code of DAC A", record.dacA, dacs);
    archive("code of DAC B", record.dacB, dacs);
    archive("reference gain", record.referenceGain, OneOf{gains});
    archive("signal gain", record.signalGain, OneOf{gains});
}

void checkTogether(const DornPower& record)
{
    if (record.powerControlMode == Sdk::ControlMode::Manual && record.dacControlMode == Sdk::ControlMode::Manual)
        throw std::invalid_argument{"the power and the DACs are both controlled by hand"};
}

/// The codes count while they are in force.
auto rises(const DornPower& record)
{
    const double inForce = record.powerControlMode == Sdk::ControlMode::Manual ? 1.0 : 0.0;
    return std::array{Rise{ThermalModel::rfModule, inForce * 0.1 * (record.rfPower - defaultPower)},
                      Rise{ThermalModel::loModule, inForce * 0.08 * (record.loPower - defaultPower)}};
}

class DornPowerControl final : public ModuleControl<Sdk, DornPower> {
public:
    using ModuleControl::ModuleControl;

    std::uint8_t maxPowerValue() override { return constant(highestPower); }
    ControlMode powerControlMode() override { return get(&Record::powerControlMode); }

    void setPowerControlMode(ControlMode mode) override
    {
        change([mode](Record& record) {
            record.powerControlMode = mode;
            if (mode == ControlMode::Manual)
                record.dacControlMode = ControlMode::Automatic;
        });
    }

    std::uint8_t loPower() override { return get(&Record::loPower); }
    void setLoPower(std::uint8_t code) override { set(&Record::loPower, code); }
    std::uint8_t rfPower() override { return get(&Record::rfPower); }
    void setRfPower(std::uint8_t code) override { set(&Record::rfPower, code); }
    std::uint16_t maxDacValue() override { return constant(highestDac); }
    ControlMode dacControlMode() override { return get(&Record::dacControlMode); }

    void setDacControlMode(ControlMode mode) override
    {
        change([mode](Record& record) {
            record.dacControlMode = mode;
            if (mode == ControlMode::Manual)
                record.powerControlMode = ControlMode::Automatic;
        });
    }

    DacMode dacMode() override { return get(&Record::dacMode); }
    void setDacMode(DacMode mode) override { set(&Record::dacMode, mode); }
    std::uint16_t unionDac() override { return get(&Record::unionDac); }
    void setUnionDac(std::uint16_t code) override { set(&Record::unionDac, code); }
    std::uint16_t dacA() override { return get(&Record::dacA); }
    void setDacA(std::uint16_t code) override { set(&Record::dacA, code); }
    std::uint16_t dacB() override { return get(&Record::dacB); }
    void setDacB(std::uint16_t code) override { set(&Record::dacB, code); }
    Gains availableGains() override { return constant(Gains(gains.begin(), gains.end())); }
    std::uint8_t referenceGain() override { return get(&Record::referenceGain); }
    void setReferenceGain(std::uint8_t code) override { set(&Record::referenceGain, code); }
    std::uint8_t signalGain() override { return get(&Record::signalGain); }
    void setSignalGain(std::uint8_t code) override { set(&Record::signalGain, code); }

    void assignReceiverCorrectionTable(std::vector<std::uint8_t> table) override
    {
        store(Table::DornReceiverCorrection, table);
    }

    void assignPowerCalibrationTable(std::vector<std::uint8_t> table) override
    {
        store(Table::DornPowerCalibration, table);
    }
};

} // namespace

MakeControl installDornPower(const std::shared_ptr<Bench>& bench)
{
    return installModule<DornPowerControl>(bench);
}

} // namespace tarn::simulator
