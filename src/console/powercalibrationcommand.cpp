#include <console/powercalibrationcommand.h>

#include <console/calibrationwrite.h>
#include <console/confirmation.h>
#include <console/localfile.h>
#include <console/measurement.h>
#include <console/plancommand.h>
#include <console/powerfile.h>

#include <QJsonObject>

#include <array>
#include <chrono>
#include <memory>

namespace tarn::console {

namespace {

using Control = PowerCalibrationCommand::Control;

class Observer final : public WriteObserver<Control> {
public:
    using WriteObserver::WriteObserver;

    void onError(Control::Error error) override
    {
        static constexpr std::array<std::string_view, 4> words{
            "Failed: no reason was given", "NoData: there is no point",
            "PlanMismatch: the frequencies are not the points of the plan, in ascending order",
            "ValueOutOfRange: a value, or the temperature, that the instrument cannot store"};
        failed(error, words);
    }
};

struct SaveOptions {
    std::string path;
    MeasurementOptions measurement;
    Confirmation confirmation;
};

void save(Session& session, const SaveOptions& options)
{
    const auto& output = session.output();
    const auto points = readPowerFile({options.path, "power-calibration example"}, readLocalFile(options.path));
    const auto& instrument = session.instrument();
    instrument.awaitControl(PowerCalibrationCommand::registryKey);
    const auto measurement = options.measurement.obtain(instrument);
    const auto what
        = fmt::format("the power calibration of {} points, {}", points.size(), measurementText(measurement));
    options.confirmation.obtain(
        output, "saving the power calibration",
        fmt::format("Save {} from '{}' in the instrument? The one that it holds now is lost.", what, options.path));

    const Change change{
        .doing = "saving the power calibration",
        .target = "the power calibration",
        .leftBehind = "the instrument may be left with the old or the new power calibration",
        .advice
        = "'tarn-service calibrations status' tells what the instrument holds; save the points again to be sure "
          "of them",
        .progress = OperationName{"write", "saving the power calibration", OperationName::Unit::Percent}};
    const std::chrono::sys_seconds time{std::chrono::seconds{measurement.time.toSecsSinceEpoch()}};
    writeCalibration<Observer, Control>(change, instrument, output, [&](Control& control) {
        control.saveCalibrationData(time, measurement.temperature, points);
    });
    auto result = measurementJson(measurement);
    result.insert(QStringLiteral("points"), toJson(std::uint64_t{points.size()}));
    result.insert(QStringLiteral("confirmed"), true);
    output.done(result, fmt::format("{}: written and confirmed by the instrument", what));
}

} // namespace

void PowerCalibrationCommand::addTo(CommandLine& line)
{
    auto& noun = line.addNoun("power-calibration", "The factory calibration of the power at the test ports");
    CommandLine::addExamples(noun, {"power-calibration plan", "power-calibration save points.csv"});
    addPlanVerb<Control>(line, noun);

    const auto options = std::make_shared<SaveOptions>();
    auto& verb = line.addVerb(noun, "save", "Save calibration points in the instrument, after asking",
                              [options](Session& session) { save(session, *options); });
    verb.add_option("FILE", options->path, "The points (CSV); '-' is standard input, with --yes")->required();
    options->measurement.addTo(verb);
    options->confirmation.addTo(verb);
    CommandLine::addExamples(verb,
                             {"power-calibration save points.csv",
                              "power-calibration save points.csv --value 23.5 --time 2026-11-21T10:00:00Z --yes"});

    addExampleVerb(line, noun, "Print valid calibration points", [](const std::vector<double>& frequencies) {
        return powerFileText(examplePowerPoints(frequencies));
    });
}

void PowerCalibrationCommand::tour(Tour& tour)
{
    showPlanInTour(tour, planOf<Control>(tour.instrument()));
}

} // namespace tarn::console
