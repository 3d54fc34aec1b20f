#include <sdk/service/iquillpowercontrol.h>
#include <simulator/modulecontrol.h>
#include <simulator/modulecontrols.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace tarn::simulator {

namespace {

using Sdk = sdk::service::IQuillPowerControl;
using Table = ModuleTables::Table;

constexpr std::uint8_t lowestCode = 8;
constexpr std::uint8_t highestCode = 120;
constexpr std::uint8_t defaultCode = 64;
constexpr int highestStep = 70;
constexpr int defaultStep = 10;
constexpr int highestCommonStep = 31;

struct QuillPower {
    static constexpr const char* section = "quillPower";

    std::uint8_t loPower = defaultCode;
    std::uint8_t rfPower = defaultCode;
    Sdk::SyntPowerMode syntPowerMode = Sdk::SyntPowerMode::Normal;
    Sdk::AttenuationMode attenuationMode = Sdk::AttenuationMode::Automatic;
    int attenuationStep = defaultStep;
    Sdk::StepAttenuatorMode stepAttenuatorMode = Sdk::StepAttenuatorMode::Through;
    bool discreteAttenuator = false;
    Sdk::DiscreteAttenuatorMode discreteAttenuatorMode = Sdk::DiscreteAttenuatorMode::Automatic;
    Sdk::CommonAttenuationMode commonAttenuationMode = Sdk::CommonAttenuationMode::Automatic;
    int commonAttenuationStep = 0;
    Sdk::AmpGain ampTPort2 = Sdk::AmpGain::Low;
    Sdk::AmpGain ampRPort1 = Sdk::AmpGain::Low;
    Sdk::AmpGain ampTPort1 = Sdk::AmpGain::Low;
};

void fields(auto& archive, Is<QuillPower> auto& record)
{
    constexpr Within codes{lowestCode, highestCode};
    constexpr Within gains{Sdk::AmpGain::Low, Sdk::AmpGain::High};
    archive("LO power code", record.loPower, codes);
    archive("RF power code", record.rfPower, codes);
    archive("synthesizer power mode", record.syntPowerMode,
            Within{Sdk::SyntPowerMode::Normal, Sdk::SyntPowerMode::High});
    archive("attenuation mode", record.attenuationMode,
            Within{Sdk::AttenuationMode::Automatic, Sdk::AttenuationMode::Manual});
    archive("attenuation step", record.attenuationStep, Within{0, highestStep});
    archive("step attenuator mode", record.stepAttenuatorMode,
            Within{Sdk::StepAttenuatorMode::Through, Sdk::StepAttenuatorMode::Both});
    archive("discrete attenuator", record.discreteAttenuator);
    archive("discrete attenuator mode", record.discreteAttenuatorMode,
            Within{Sdk::DiscreteAttenuatorMode::Automatic, Sdk::DiscreteAttenuatorMode::Manual});
    archive("common attenuation mode", record.commonAttenuationMode,
            Within{Sdk::CommonAttenuationMode::Automatic, Sdk::CommonAttenuationMode::Manual});
    archive("common attenuation step", record.commonAttenuationStep, Within{0, highestCommonStep});
    archive("gain of transmit port 2", record.ampTPort2, gains);
    archive("gain of receive port 1", record.ampRPort1, gains);
    archive("gain of transmit port 1", record.ampTPort1, gains);
}

void checkTogether(const QuillPower& record)
{
    if (record.attenuationMode == Sdk::AttenuationMode::Manual
        && record.commonAttenuationMode == Sdk::CommonAttenuationMode::Manual)
        throw std::invalid_argument{"the attenuation and the common attenuation are both manual"};
}

auto rises(const QuillPower& record)
{
    const double high = record.syntPowerMode == Sdk::SyntPowerMode::High ? 2.5 : 0.0;
    return std::array{Rise{ThermalModel::rfModule, (0.05 * (record.rfPower - defaultCode)) + high},
                      Rise{ThermalModel::loModule, 0.04 * (record.loPower - defaultCode)}};
}

class QuillPowerControl final : public ModuleControl<Sdk, QuillPower> {
public:
    using ModuleControl::ModuleControl;

    std::uint8_t loPower() override { return get(&Record::loPower); }
    std::uint8_t rfPower() override { return get(&Record::rfPower); }
    void setLoPower(std::uint8_t code) override { set(&Record::loPower, code); }
    void setRfPower(std::uint8_t code) override { set(&Record::rfPower, code); }
    std::uint8_t minPowerCode() override { return constant(lowestCode); }
    std::uint8_t maxPowerCode() override { return constant(highestCode); }
    void setSyntPowerMode(SyntPowerMode mode) override { set(&Record::syntPowerMode, mode); }
    SyntPowerMode syntPowerMode() override { return get(&Record::syntPowerMode); }

    void setAttenuationMode(AttenuationMode mode) override
    {
        change([mode](Record& record) {
            record.attenuationMode = mode;
            if (mode == AttenuationMode::Manual)
                record.commonAttenuationMode = CommonAttenuationMode::Automatic;
        });
    }

    AttenuationMode attenuationMode() override { return get(&Record::attenuationMode); }
    void setAttenuationStep(int step) override { set(&Record::attenuationStep, step); }
    int attenuationStep() override { return get(&Record::attenuationStep); }
    void setStepAttenuatorMode(StepAttenuatorMode mode) override { set(&Record::stepAttenuatorMode, mode); }
    StepAttenuatorMode stepAttenuatorMode() override { return get(&Record::stepAttenuatorMode); }
    int defaultAttenuationStep() override { return constant(defaultStep); }
    void setDiscreteAttenuatorEnabled(bool enabled) override { set(&Record::discreteAttenuator, enabled); }
    bool discreteAttenuatorEnabled() override { return get(&Record::discreteAttenuator); }
    void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode) override { set(&Record::discreteAttenuatorMode, mode); }
    DiscreteAttenuatorMode discreteAttenuatorMode() override { return get(&Record::discreteAttenuatorMode); }

    void setCommonAttenuationMode(CommonAttenuationMode mode) override
    {
        change([mode](Record& record) {
            record.commonAttenuationMode = mode;
            if (mode == CommonAttenuationMode::Manual)
                record.attenuationMode = AttenuationMode::Automatic;
        });
    }

    CommonAttenuationMode commonAttenuationMode() override { return get(&Record::commonAttenuationMode); }
    void setCommonAttenuationStep(int step) override { set(&Record::commonAttenuationStep, step); }
    int commonAttenuationStep() override { return get(&Record::commonAttenuationStep); }
    void setAmpTPort2(AmpGain gain) override { set(&Record::ampTPort2, gain); }
    AmpGain ampTPort2() override { return get(&Record::ampTPort2); }
    void setAmpRPort1(AmpGain gain) override { set(&Record::ampRPort1, gain); }
    AmpGain ampRPort1() override { return get(&Record::ampRPort1); }
    void setAmpTPort1(AmpGain gain) override { set(&Record::ampTPort1, gain); }
    AmpGain ampTPort1() override { return get(&Record::ampTPort1); }
    void setRfPowerCodes(const std::vector<std::uint8_t>& codes) override { store(Table::QuillRfPowerCodes, codes); }
    void setLoPowerCodes(const std::vector<std::uint8_t>& codes) override { store(Table::QuillLoPowerCodes, codes); }
    void reset() override { restoreDefaults(); }
};

} // namespace

MakeControl installQuillPower(const std::shared_ptr<Bench>& bench)
{
    return installModule<QuillPowerControl>(bench);
}

} // namespace tarn::simulator
