#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/requests.h>
#include <console/text.h>
#include <console/tourcommand.h>
#include <console/verify.h>

#include <QJsonObject>

namespace tarn::console {

namespace {

using Control = LoLeakageCommand::Control;

constexpr std::string_view stateText(bool enabled)
{
    return enabled ? "on" : "off";
}

QJsonValue json(bool enabled)
{
    return QJsonObject{{QStringLiteral("enabled"), enabled}};
}

template <class Operation>
void whileHere(const Instrument& instrument, Operation operation)
{
    whileThere<Control>(instrument, Control::registryKey, "LO leakage", operation);
}

/// The state as the instrument reports it.
bool read(const Instrument& instrument)
{
    bool enabled = false;
    whileHere(instrument, [&](const Control& control) { enabled = control.isEnabled(); });
    return enabled;
}

/// Switches and reads back.
void set(const Instrument& instrument, bool enabled)
{
    whileHere(instrument, [&](Control& control) { control.setEnabled(enabled); });
    verify(fmt::format("LO leakage was switched {}", stateText(enabled)),
           "see what the instrument has with 'tarn-service lo-leakage show', then do it again",
           [&] { return read(instrument) == enabled; });
}

void show(Session& session)
{
    const bool enabled = read(session.instrument());
    session.output().result(json(enabled), stateText(enabled));
}

CommandLine::Run switchTo(bool enabled)
{
    return [enabled](Session& session) {
        const auto& instrument = session.instrument();
        session.output().expectChange();
        set(instrument, enabled);
        session.output().done(json(enabled), fmt::format("LO leakage is {}", stateText(enabled)));
    };
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"lo-leakage show", "lo-leakage on"});
    line.addVerb(noun, "show", "Show whether it is on", &show);
    line.addVerb(noun, "on", "Switch it on", switchTo(true));
    line.addVerb(noun, "off", "Switch it off", switchTo(false));
}

} // namespace

void LoLeakageCommand::addTo(CommandLine& line)
{
    line.addNoun("lo-leakage", "The local-oscillator leakage function", &addVerbs);
}

void LoLeakageCommand::tour(Tour& tour)
{
    const auto& instrument = tour.instrument();
    const bool before = read(instrument);
    tour.show("state", stateText(before), before);
    if (!tour.mayChange(fmt::format("switch LO leakage {} for a moment", stateText(!before))))
        return;
    tour.restoring(
        [&] {
            set(instrument, !before);
            tour.show("switched", stateText(!before), !before);
        },
        [&] { set(instrument, before); },
        {fmt::format("LO leakage may still be {}", stateText(!before)),
         fmt::format("'tarn-service lo-leakage {}' puts it back", stateText(before))});
    tour.show("switched back", stateText(before), before);
}

} // namespace tarn::console
