#include <console/commandtable.h>
#include <console/tuningcommand.h>

namespace tarn::console {

namespace {

using Control = VellSynthesisCommand::Control;
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

const Tuning& tuning()
{
    static const auto tuning = described();
    return tuning;
}

} // namespace

void VellSynthesisCommand::addTo(CommandLine& line)
{
    addTuningCommands(line, tuning());
}

void VellSynthesisCommand::tour(Tour& tour)
{
    tourTuning(tour, tuning());
}

} // namespace tarn::console
