#include <console/tuning.h>
#include <console/tuningcommand.h>
#include <devices/service/sdkdornpowercontrol.h>

namespace tarn::console {

namespace {

using Control = devices::service::SdkDornPowerControl;
using Of = SettingsOf<Control>;

Tuning described()
{
    const auto mode = choice({"automatic", "manual"});
    const auto powerCode = Of::upTo(&Control::maxPowerValue);
    const auto dacCode = Of::upTo(&Control::maxDacValue);
    const auto gainCode = Of::oneOf(&Control::availableGains);
    auto tuning = tuningOf<Control>("dorn-power", "The power stage of a Dorn device");
    tuning.example = "dac-mode-union on union-dac 0x200";
    tuning.harmless = "dac-mode-union";
    tuning.settings = {
        Of::shown("max-power-value", "highest power code", code(), &Control::maxPowerValue),
        Of::setting("power-control-mode", "who sets the power", mode, &Control::powerControlMode,
                    &Control::setPowerControlMode),
        Of::setting("lo-power", "power code of the local oscillator", code(), &Control::loPower, &Control::setLoPower,
                    powerCode),
        Of::setting("rf-power", "power code of the RF output", code(), &Control::rfPower, &Control::setRfPower,
                    powerCode),
        Of::shown("max-dac-value", "highest DAC code", code(), &Control::maxDacValue),
        Of::setting("dac-control-mode", "who sets the DACs", mode, &Control::dacControlMode,
                    &Control::setDacControlMode),
        Of::setting("dac-mode-union", "whether one code drives both DACs", onOff(), &Control::isDacModeUnion,
                    &Control::setDacModeUnion),
        Of::setting("union-dac", "code of both DACs in union mode", code(), &Control::unionDac, &Control::setUnionDac,
                    dacCode),
        Of::setting("dac-a", "code of DAC A", code(), &Control::dacA, &Control::setDacA, dacCode),
        Of::setting("dac-b", "code of DAC B", code(), &Control::dacB, &Control::setDacB, dacCode),
        Of::shown("available-gains", "gain codes of the receivers", list(Unit::None), &Control::availableGains),
        Of::setting("reference-gain", "gain code of the reference receiver", code(), &Control::referenceGain,
                    &Control::setReferenceGain, gainCode),
        Of::setting("signal-gain", "gain code of the signal receiver", code(), &Control::signalGain,
                    &Control::setSignalGain, gainCode),
    };
    tuning.tables = {
        TuningTable{"receiver-correction", "correction of the receivers",
                    Of::action(&Control::assignReceiverCorrectionTable)},
        TuningTable{"power-calibration", "calibration of the power", Of::action(&Control::assignPowerCalibrationTable)},
    };
    return tuning;
}

} // namespace

const Tuning& dornPowerTuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace tarn::console
