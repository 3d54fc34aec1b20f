#include <console/commandtable.h>
#include <console/factorycalibration.h>
#include <console/ifswfile.h>
#include <console/localfile.h>

namespace tarn::console {

namespace {

using Control = IfswCalibrationCommand::Control;

constexpr std::array<std::string_view, 4> words{
    "Failed: no reason was given", "NoData: there is no frequency, or a receiver without ratios or linearities",
    "PlanMismatch: the frequencies are not the points of the plan, in ascending order",
    "ValueOutOfRange: a value that the instrument cannot store"};

void save(Session& session, const SaveOptions& options)
{
    const auto data = readIfswFile({options.path, "ifsw-calibration example"}, readLocalFile(options.path));
    session.instrument().awaitControl(Control::registryKey);
    const std::uint64_t count = data.frequencies.size();
    saveCalibration<FactoryObserver<Control, words>, Control>(
        session,
        {.name = "IF-switch calibration",
         .what = fmt::format("the IF-switch calibration at {} frequencies", count),
         .result = {{QStringLiteral("frequencies"), toJson(count)}}},
        options, [&](Control& control) { control.saveCalibrationData(data); });
}

} // namespace

void IfswCalibrationCommand::addTo(CommandLine& line)
{
    addFactoryCalibration<Control>(line,
                                   {.noun = "ifsw-calibration",
                                    .about = "the IF switches",
                                    .data = "calibration data (JSON)",
                                    .file = "ifsw.json",
                                    .moreOptions = {},
                                    .isMeasurement = false,
                                    .save = &save,
                                    .example = [](std::vector<double> frequencies) {
                                        return ifswFileText(exampleIfswData(std::move(frequencies)));
                                    }});
}

void IfswCalibrationCommand::tour(Tour& tour)
{
    showPlanInTour(tour, planOf<Control>(tour.instrument()));
}

} // namespace tarn::console
