#include <console/factorycalibration.h>

#include <memory>

namespace tarn::console {

void addCalibrationVerbs(CommandLine& line, Command noun, const FactoryCalibration& calibration)
{
    const auto& [name, about, data, file, moreOptions, isMeasurement, save, example] = calibration;
    const auto options = std::make_shared<SaveOptions>();
    const auto verb = line.addVerb(noun, "save", fmt::format("Save {} in the instrument, after asking", data),
                                   [options, run = save](Session& session) { run(session, *options); });
    verb.addWord("FILE", options->path, fmt::format("The {}; '-' is standard input, with --yes", data));
    if (isMeasurement)
        options->measurement.addTo(verb);
    options->confirmation.addTo(verb);
    verb.addExamples(
        {fmt::format("{} save {}", name, file), fmt::format("{} save {} {}--yes", name, file, moreOptions)});
    addExampleVerb(line, noun, "Print valid " + data, example);
}

Change confirmedChange(const Output& output, const Saving& saving, const SaveOptions& options)
{
    const auto& [name, what, result] = saving;
    const auto doing = "saving the " + name;
    options.confirmation.obtain(
        output, doing,
        fmt::format("Save {} from '{}' in the instrument? The one that it holds now is lost.", what, options.path));
    return {.doing = doing,
            .target = "the " + name,
            .leftBehind = "the instrument may be left with the old or the new " + name,
            .advice = "'tarn-service calibrations status' tells what the instrument holds; save the data again to be "
                      "sure of it",
            .progress = OperationName{.word = "write", .doing = doing, .unit = OperationName::Unit::Percent}};
}

} // namespace tarn::console
