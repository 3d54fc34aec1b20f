#include <console/tuning.h>
#include <console/tuningcommand.h>
#include <devices/service/sdkvellsynthesiscontrol.h>

namespace tarn::console {

namespace {

using Control = devices::service::SdkVellSynthesisControl;
using Of = SettingsOf<Control>;

Tuning described()
{
    auto tuning = tuningOf<Control>("vell-synthesis", "The selection of the IF of a Vell device");
    tuning.example = "manual-if-enabled on selected-if 1";
    tuning.harmless = "manual-if-enabled";
    tuning.settings = {
        Of::setting("manual-if-enabled", "whether the IF is selected by hand", onOff(), &Control::manualIfEnabled,
                    &Control::enableManualIf),
        Of::setting("selected-if", "selected IF, its position or itself", position(Unit::Hertz), &Control::selectedIf,
                    &Control::setSelectedIf, Of::oneOf(&Control::supportedIfs)),
        Of::shown("supported-ifs", "IFs that can be selected", list(Unit::Hertz), &Control::supportedIfs),
    };
    return tuning;
}

} // namespace

const Tuning& vellSynthesisTuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace tarn::console
