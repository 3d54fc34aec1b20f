#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/correctionnames.h>
#include <console/correctionswatch.h>
#include <console/requests.h>
#include <console/tourcommand.h>
#include <console/verify.h>
#include <console/watchloop.h>

#include <QJsonArray>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace tarn::console {

namespace {

using Control = CorrectionsCommand::Control;
using devices::FactoryCorrection;

struct State {
    FactoryCorrection correction;
    bool isValid;
    bool isEnabled;
    bool isModifiable;
};

State stateOf(const Control& control, FactoryCorrection correction)
{
    const DeviceCall call;
    return {correction, control.isValid(correction), control.isEnabled(correction), control.isModifiable(correction)};
}

template <class Operation>
void whileHere(const Instrument& instrument, Operation operation)
{
    whileThere<Control>(instrument, Control::registryKey, "its corrections", operation);
}

std::vector<State> list(const Instrument& instrument)
{
    std::vector<State> states;
    whileHere(instrument, [&](const Control& control) {
        for (const auto correction : control.supported())
            states.push_back(stateOf(control, correction));
    });
    return states;
}

QJsonObject json(const State& state)
{
    return {{QStringLiteral("name"), toJson(correctionName(state.correction))},
            {QStringLiteral("valid"), state.isValid},
            {QStringLiteral("enabled"), state.isEnabled},
            {QStringLiteral("modifiable"), state.isModifiable}};
}

void showList(Session& session)
{
    const auto& output = session.output();
    QJsonArray array;
    auto text = output.paint(Output::Style::Heading,
                             fmt::format("{:<22} {:<6} {:<8} {}", "CORRECTION", "VALID", "ENABLED", "MODIFIABLE"));
    const auto word = [](bool yes) { return yes ? "yes" : "no"; };
    for (const auto& state : list(session.instrument())) {
        array.append(json(state));
        text += fmt::format("\n{:<22} {:<6} {:<8} {}", correctionName(state.correction), word(state.isValid),
                            word(state.isEnabled), word(state.isModifiable));
    }
    output.result(array, text);
}

// ---- switching

/// The state of a correction that can be switched; throws `Error` otherwise.
State findSwitchable(const Instrument& instrument, FactoryCorrection correction)
{
    const auto name = correctionName(correction);
    const auto states = list(instrument);
    const auto state = std::ranges::find(states, correction, &State::correction);
    if (state == states.end())
        throw Error{ErrorCode::NotFound, fmt::format("this instrument has no {} correction", name),
                    "'tarn-service corrections list' shows those that it has"};
    if (!state->isValid)
        throw Error{ErrorCode::Failed,
                    fmt::format("the {} correction cannot be switched: the instrument has no valid data for it", name),
                    "write its data first; nothing was changed"};
    if (!state->isModifiable)
        throw Error{ErrorCode::Failed, fmt::format("the {} correction cannot be switched now", name),
                    "'tarn-service corrections list' shows which can; nothing was changed"};
    return *state;
}

void setEnabled(Session& session, FactoryCorrection correction, bool enabled)
{
    const auto& instrument = session.instrument();
    const auto name = correctionName(correction);
    const auto* const word = enabled ? "on" : "off";
    auto state = findSwitchable(instrument, correction);
    const bool identical = state.isEnabled == enabled;
    if (!identical) {
        session.output().expectChange();
        whileHere(instrument, [&](Control& control) { control.setEnabled(correction, enabled); });
        verify(fmt::format("the {} correction was switched {}", name, word),
               "see what the instrument has with 'tarn-service corrections list', then do it again", [&] {
                   whileHere(instrument, [&](const Control& control) { state = stateOf(control, correction); });
                   return state.isEnabled == enabled;
               });
    }
    auto result = json(state);
    result.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    session.output().done(result, fmt::format("the {} correction is {}{}", name, word, identical ? " already" : ""));
}

FactoryCorrection correctionNamed(const std::string& name)
{
    if (const auto correction = findCorrection(name))
        return *correction;
    throw Error{ErrorCode::Usage, fmt::format("'{}' is no correction", name),
                fmt::format("name one of {}", correctionNames())};
}

void addSwitchVerb(CommandLine& line, Command noun, const std::string& name, bool enabled)
{
    const auto correction = std::make_shared<std::string>();
    const auto verb
        = line.addVerb(noun, name, enabled ? "Switch a correction on" : "Switch a correction off",
                       [=](Session& session) { setEnabled(session, correctionNamed(*correction), enabled); });
    verb.addWord("NAME", *correction, "Which; 'corrections list' shows them");
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"corrections list", "corrections disable port-extension", "corrections watch"});
    line.addVerb(noun, "list", "List the corrections that the instrument knows, and their states", &showList);
    addSwitchVerb(line, noun, "enable", true);
    addSwitchVerb(line, noun, "disable", false);

    const auto count = std::make_shared<std::optional<std::uint64_t>>();
    const auto verb
        = line.addVerb(noun, "watch", "Show the supported and the valid corrections, and every change, until Ctrl-C",
                       [count](Session& session) { watchCorrections(session, *count); });
    addCountOption(verb, *count, "End after so many lines");
    verb.addExamples({"corrections watch", "corrections watch --count 10 --json"});
}

} // namespace

void CorrectionsCommand::addTo(CommandLine& line)
{
    line.addNoun("corrections", "The factory corrections and their switches", &addVerbs);
}

void CorrectionsCommand::tour(Tour& tour)
{
    const auto states = list(tour.instrument());
    const auto show = [&](std::string_view label, auto isShown) {
        std::vector<FactoryCorrection> corrections;
        for (const auto& state : states)
            if (std::invoke(isShown, state))
                corrections.push_back(state.correction);
        const auto [json, text] = namesOf(corrections);
        tour.show(label, text, json);
    };
    show("supported", [](const State&) { return true; });
    show("valid", &State::isValid);
    show("switched on", &State::isEnabled);
}

} // namespace tarn::console
