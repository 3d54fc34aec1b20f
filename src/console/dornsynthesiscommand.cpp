#include <console/commandtable.h>
#include <console/tuningcommand.h>

namespace tarn::console {

namespace {

using Control = DornSynthesisCommand::Control;
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

const Tuning& tuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace

void DornSynthesisCommand::addTo(CommandLine& line)
{
    addTuningCommands(line, tuning());
}

void DornSynthesisCommand::tour(Tour& tour)
{
    tourTuning(tour, tuning());
}

} // namespace tarn::console
