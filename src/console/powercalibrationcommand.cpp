#include <console/commandtable.h>
#include <console/factorycalibration.h>
#include <console/localfile.h>
#include <console/powerfile.h>

#include <chrono>

namespace tarn::console {

namespace {

using Control = PowerCalibrationCommand::Control;

constexpr std::array<std::string_view, 4> words{
    "Failed: no reason was given", "NoData: there is no point",
    "PlanMismatch: the frequencies are not the points of the plan, in ascending order",
    "ValueOutOfRange: a value, or the temperature, that the instrument cannot store"};

void save(Session& session, const SaveOptions& options)
{
    const auto points = readPowerFile({options.path, "power-calibration example"}, readLocalFile(options.path));
    session.instrument().awaitControl(Control::registryKey);
    const auto measurement = options.measurement.obtain(session.instrument());
    const std::chrono::sys_seconds time{std::chrono::seconds{measurement.time.toSecsSinceEpoch()}};
    auto result = measurementJson(measurement);
    result.insert(QStringLiteral("points"), toJson(std::uint64_t{points.size()}));
    saveCalibration<FactoryObserver<Control, words>, Control>(
        session,
        {.name = "power calibration",
         .what = fmt::format("the power calibration of {} points, {}", points.size(), measurementText(measurement)),
         .result = std::move(result)},
        options, [&](Control& control) { control.saveCalibrationData(time, measurement.temperature, points); });
}

} // namespace

void PowerCalibrationCommand::addTo(CommandLine& line)
{
    addFactoryCalibration<Control>(line,
                                   {.noun = "power-calibration",
                                    .about = "the power at the test ports",
                                    .data = "calibration points (CSV)",
                                    .file = "points.csv",
                                    .moreOptions = "--value 23.5 --time 2026-11-21T10:00:00Z ",
                                    .isMeasurement = true,
                                    .save = &save,
                                    .example = [](const std::vector<double>& frequencies) {
                                        return powerFileText(examplePowerPoints(frequencies));
                                    }});
}

void PowerCalibrationCommand::tour(Tour& tour)
{
    showPlanInTour(tour, planOf<Control>(tour.instrument()));
}

} // namespace tarn::console
