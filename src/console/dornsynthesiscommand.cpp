#include <console/tuning.h>
#include <console/tuningcommand.h>
#include <devices/service/sdkdornsynthesiscontrol.h>

namespace tarn::console {

namespace {

using Control = devices::service::SdkDornSynthesisControl;
using Of = SettingsOf<Control>;

Tuning described()
{
    auto tuning = tuningOf<Control>("dorn-synthesis", "The reference frequency of a Dorn device");
    tuning.example = "reference-frequency 10MHz";
    tuning.harmless = "reference-frequency";
    tuning.settings = {
        Of::setting("reference-frequency", "reference frequency", quantity(Unit::Hertz),
                    &Control::currentReferenceFrequency, &Control::setReferenceFrequency,
                    Of::oneOf(&Control::availableReferenceFrequencies)),
        Of::shown("available-reference-frequencies", "reference frequencies that can be set", list(Unit::Hertz),
                  &Control::availableReferenceFrequencies),
    };
    return tuning;
}

} // namespace

const Tuning& dornSynthesisTuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace tarn::console
