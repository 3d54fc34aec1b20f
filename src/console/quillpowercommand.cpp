#include <console/tuning.h>
#include <console/tuningcommand.h>
#include <devices/service/sdkquillpowercontrol.h>

namespace tarn::console {

namespace {

using Control = devices::service::SdkQuillPowerControl;
using Of = SettingsOf<Control>;

Tuning described()
{
    const auto mode = choice({"automatic", "manual"});
    const auto gain = choice({"low", "high"});
    const auto powerCode = Of::between(&Control::minPowerCode, &Control::maxPowerCode);
    auto tuning = tuningOf<Control>("quill-power", "The power stage of a Quill module");
    tuning.example = "lo-power 20 rf-power 0x20";
    tuning.harmless = "amp-r-port1";
    tuning.settings = {
        Of::setting("lo-power", "power code of the local oscillator", code(), &Control::loPower, &Control::setLoPower,
                    powerCode),
        Of::setting("rf-power", "power code of the RF output", code(), &Control::rfPower, &Control::setRfPower,
                    powerCode),
        Of::shown("min-power-code", "lowest power code", code(), &Control::minPowerCode),
        Of::shown("max-power-code", "highest power code", code(), &Control::maxPowerCode),
        Of::setting("synt-power-mode", "power mode of the synthesizer", choice({"normal", "high"}),
                    &Control::syntPowerMode, &Control::setSyntPowerMode),
        Of::setting("attenuation-mode", "who sets the attenuation", mode, &Control::attenuationMode,
                    &Control::setAttenuationMode),
        Of::setting("attenuation-step", "attenuation step", code(), &Control::attenuationStep,
                    &Control::setAttenuationStep),
        Of::shown("default-attenuation-step", "attenuation step after a reset", code(),
                  &Control::defaultAttenuationStep),
        Of::setting("step-attenuator-mode", "sections of the step attenuator in the path",
                    choice({"through", "first", "second", "both"}), &Control::stepAttenuatorMode,
                    &Control::setStepAttenuatorMode),
        Of::setting("discrete-attenuator-enabled", "whether the discrete attenuator is in the path", onOff(),
                    &Control::discreteAttenuatorEnabled, &Control::enableDiscreteAttenuator),
        Of::setting("discrete-attenuator-mode", "who sets the discrete attenuator", mode,
                    &Control::discreteAttenuatorMode, &Control::setDiscreteAttenuatorMode),
        Of::setting("common-attenuation-mode", "who sets the attenuation of all ports", mode,
                    &Control::commonAttenuationMode, &Control::setCommonAttenuationMode),
        Of::setting("common-attenuation-step", "attenuation step of all ports", code(), &Control::commonAttenuationStep,
                    &Control::setCommonAttenuationStep),
        Of::setting("amp-t-port1", "gain of the amplifier of transmit port 1", gain, &Control::ampTPort1,
                    &Control::setAmpTPort1),
        Of::setting("amp-t-port2", "gain of the amplifier of transmit port 2", gain, &Control::ampTPort2,
                    &Control::setAmpTPort2),
        Of::setting("amp-r-port1", "gain of the amplifier of receive port 1", gain, &Control::ampRPort1,
                    &Control::setAmpRPort1),
    };
    tuning.tables = {
        TuningTable{"rf-power-codes", "codes of the RF power", Of::action(&Control::setRfPowerCodes)},
        TuningTable{"lo-power-codes", "codes of the LO power", Of::action(&Control::setLoPowerCodes)},
    };
    tuning.reset = Of::action(&Control::reset);
    tuning.connect
        = Of::changeSignals({&Control::loPowerChanged, &Control::rfPowerChanged, &Control::syntPowerModeChanged,
                             &Control::attenuationStepChanged, &Control::stepAttenuatorModeChanged,
                             &Control::discreteAttenuatorEnabledChanged, &Control::discreteAttenuatorModeChanged,
                             &Control::attenuationModeChanged, &Control::commonAttenuationModeChanged,
                             &Control::commonAttenuationStepChanged, &Control::ampTPort1Changed,
                             &Control::ampTPort2Changed, &Control::ampRPort1Changed});
    return tuning;
}

} // namespace

const Tuning& quillPowerTuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace tarn::console
