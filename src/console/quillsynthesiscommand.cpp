#include <console/tuning.h>
#include <console/tuningcommand.h>
#include <devices/service/sdkquillsynthesiscontrol.h>

namespace tarn::console {

namespace {

using Control = devices::service::SdkQuillSynthesisControl;
using Of = SettingsOf<Control>;

Tuning described()
{
    auto tuning = tuningOf<Control>("quill-synthesis", "The synthesizer of a Quill module");
    tuning.example = "manual-if-enabled on selected-if 1";
    tuning.harmless = "manual-ref-enabled";
    tuning.settings = {
        Of::setting("lo-leakage-mode", "whether the local oscillator leaks to the ports", onOff(),
                    &Control::loLeakageMode, &Control::setLoLeakageMode),
        Of::setting("manual-if-enabled", "whether the IF is selected by hand", onOff(), &Control::manualIfEnabled,
                    &Control::enableManualIf),
        Of::setting("selected-if", "selected IF, its position or itself", position(Unit::Hertz), &Control::selectedIf,
                    &Control::setSelectedIf, Of::oneOf(&Control::supportedIfs)),
        Of::shown("supported-ifs", "IFs that can be selected", list(Unit::Hertz), &Control::supportedIfs),
        Of::setting("filter1-frequency", "frequency of the first filter", quantity(Unit::Hertz),
                    &Control::filter1Frequency, &Control::setFilter1Frequency),
        Of::setting("manual-ref-enabled", "whether the reference is selected by hand", onOff(),
                    &Control::manualRefEnabled, &Control::enableManualRef),
        Of::setting("selected-ref", "selected reference, its position or itself", position(Unit::Hertz),
                    &Control::selectedRef, &Control::setSelectedRef, Of::oneOf(&Control::supportedRefs)),
        Of::shown("supported-refs", "references that can be selected", list(Unit::Hertz), &Control::supportedRefs),
    };
    tuning.reset = Of::action(&Control::reset);
    return tuning;
}

} // namespace

const Tuning& quillSynthesisTuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace tarn::console
