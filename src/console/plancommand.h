#pragma once

#include <console/commandline.h>
#include <console/planfile.h>
#include <console/requests.h>
#include <console/tourcommand.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::console {

/// The frequency plan of `Control`, as the instrument has it now. Throws `Error` when the control
/// cannot be had.
template <class Control>
FrequencyPlan planOf(const Instrument& instrument)
{
    FrequencyPlan plan;
    whileThere<Control>(instrument, Control::registryKey, "its frequency plan",
                        [&](const Control& control) { plan = control.frequencyPlan(); });
    return plan;
}

/// Where a `plan` command writes the plan to, if anywhere.
struct PlanOptions {
    std::optional<std::string> path;
    bool overwrite = false;
};

/// Shows `plan`, or writes it into a file.
void showPlan(const Output& output, const FrequencyPlan& plan, const PlanOptions& options);

/// Adds the options of a `plan` command.
void addPlanOptions(Command verb, PlanOptions& options);

/// Adds `plan`, which shows the frequency plan of `Control`.
template <class Control>
void addPlanVerb(CommandLine& line, Command noun)
{
    const auto options = std::make_shared<PlanOptions>();
    const auto verb = line.addVerb(
        noun, "plan", "Show the frequencies at which the instrument wants to be measured",
        [options](Session& session) { showPlan(session.output(), planOf<Control>(session.instrument()), *options); });
    addPlanOptions(verb, *options);
}

/// The command that prints a valid plan file.
inline constexpr std::string_view planExample = "system-terms example-plan";

/// The points of the plan in the file at `path`, or else of the plan for examples. Throws `Error`
/// (`LocalFile`), also when there are too many of them for an example, or they do not ascend.
[[nodiscard]] std::vector<double> examplePoints(const std::optional<std::string>& path);

/// Adds `example`, which prints `text(frequencies)`, a valid file: for the points of a plan, if it is
/// given one. Needs no instrument.
Command addExampleVerb(CommandLine& line, Command noun, const std::string& description,
                       std::function<std::string(std::vector<double>)> text);

/// Prints an example.
void showExample(Session& session, const std::string& text);

/// Shows `plan` in a control's part of the tour.
void showPlanInTour(Tour& tour, const FrequencyPlan& plan);

} // namespace tarn::console
