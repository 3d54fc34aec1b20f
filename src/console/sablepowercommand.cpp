#include <console/tuning.h>
#include <console/tuningcommand.h>
#include <devices/service/sdksablepowercontrol.h>

namespace tarn::console {

namespace {

using Control = devices::service::SdkSablePowerControl;
using Of = SettingsOf<Control>;

Tuning described()
{
    const auto mode = choice({"automatic", "manual"});
    auto tuning = tuningOf<Control>("sable-power", "The power module of a Sable device");
    tuning.example = "dac-mode manual rf-dac 0x200";
    tuning.harmless = "dds-correction-mode";
    tuning.settings = {
        Of::setting("dac-mode", "who sets the DACs", mode, &Control::dacMode, &Control::setDacMode),
        Of::setting("power-mode", "mode of the output power", choice({"normal", "high"}), &Control::powerMode,
                    &Control::setPowerMode),
        Of::setting("step-attenuator-mode", "sections of the step attenuator in the path",
                    choice({"through", "first", "second", "automatic", "both"}), &Control::stepAttenuatorMode,
                    &Control::setStepAttenuatorMode),
        Of::setting("discrete-attenuator-mode", "who sets the discrete attenuator", mode,
                    &Control::discreteAttenuatorMode, &Control::setDiscreteAttenuatorMode),
        Of::setting("power-constant", "what stays constant over the frequencies", choice({"code", "level"}),
                    &Control::powerConstant, &Control::setPowerConstant),
        Of::setting("rf-dac", "code of the RF DAC", code(), &Control::rfDac, &Control::setRfDac),
        Of::setting("split-dac", "code of the split DAC", code(), &Control::splitDac, &Control::setSplitDac),
        Of::setting("split-dds", "code of the split DDS", code(), &Control::splitDds, &Control::setSplitDds),
        Of::setting("attenuation-db", "attenuation", quantity(Unit::Decibel), &Control::attenuationDb,
                    &Control::setAttenuationDb),
        Of::setting("attenuation-step", "attenuation step", code(), &Control::attenuationStep,
                    &Control::setAttenuationStep),
        Of::setting("discrete-attenuator-enabled", "whether the discrete attenuator is in the path", onOff(),
                    &Control::discreteAttenuatorEnabled, &Control::enableDiscreteAttenuator),
        Of::setting("square-pattern-step", "level step of the square pattern", quantity(Unit::Decibel),
                    &Control::squarePatternStep, &Control::setSquarePatternStep),
        Of::setting("dds-correction-mode", "where the DDS correction comes from", choice({"factory", "user"}),
                    &Control::ddsCorrectionMode, &Control::setDdsCorrectionMode),
        Of::setting("dds-correction-enabled", "whether the DDS correction is on", onOff(),
                    &Control::ddsCorrectionEnabled, &Control::enableDdsCorrection),
    };
    tuning.tables = {TuningTable{"power-calibration", "calibration of the power",
                                 Of::action(&Control::assignPowerCalibrationTable)}};
    return tuning;
}

} // namespace

const Tuning& sablePowerTuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace tarn::console
