#include <console/ifswcalibrationcommand.h>

#include <console/calibrationwrite.h>
#include <console/confirmation.h>
#include <console/ifswfile.h>
#include <console/localfile.h>
#include <console/plancommand.h>

#include <QJsonObject>

#include <array>
#include <memory>

namespace tarn::console {

namespace {

using Control = IfswCalibrationCommand::Control;

class Observer final : public WriteObserver<Control> {
public:
    using WriteObserver::WriteObserver;

    void onError(Control::Error error) override
    {
        static constexpr std::array<std::string_view, 4> words{
            "Failed: no reason was given", "NoData: there is no frequency, or a receiver without ratios or linearities",
            "PlanMismatch: the frequencies are not the points of the plan, in ascending order",
            "ValueOutOfRange: a value that the instrument cannot store"};
        failed(error, words);
    }
};

struct SaveOptions {
    std::string path;
    Confirmation confirmation;
};

void save(Session& session, const SaveOptions& options)
{
    const auto& output = session.output();
    const auto data = readIfswFile({options.path, "ifsw-calibration example"}, readLocalFile(options.path));
    const auto& instrument = session.instrument();
    instrument.awaitControl(IfswCalibrationCommand::registryKey);
    const auto what = fmt::format("the IF-switch calibration at {} frequencies", data.frequencies.size());
    options.confirmation.obtain(
        output, "saving the IF-switch calibration",
        fmt::format("Save {} from '{}' in the instrument? The one that it holds now is lost.", what, options.path));

    const Change change{
        .doing = "saving the IF-switch calibration",
        .target = "the IF-switch calibration",
        .leftBehind = "the instrument may be left with the old or the new IF-switch calibration",
        .advice = "'tarn-service calibrations status' tells what the instrument holds; save the data again to be sure "
                  "of it",
        .progress = OperationName{"write", "saving the IF-switch calibration", OperationName::Unit::Percent}};
    writeCalibration<Observer, Control>(change, instrument, output,
                                        [&](Control& control) { control.saveCalibrationData(data); });
    output.done(QJsonObject{{QStringLiteral("frequencies"), toJson(std::uint64_t{data.frequencies.size()})},
                            {QStringLiteral("confirmed"), true}},
                fmt::format("{}: written and confirmed by the instrument", what));
}

} // namespace

void IfswCalibrationCommand::addTo(CommandLine& line)
{
    auto& noun = line.addNoun("ifsw-calibration", "The factory calibration of the IF switches");
    CommandLine::addExamples(noun, {"ifsw-calibration plan", "ifsw-calibration save ifsw.json"});
    addPlanVerb<Control>(line, noun);

    const auto options = std::make_shared<SaveOptions>();
    auto& verb = line.addVerb(noun, "save", "Save calibration data in the instrument, after asking",
                              [options](Session& session) { save(session, *options); });
    verb.add_option("FILE", options->path, "The data (JSON); '-' is standard input, with --yes")->required();
    options->confirmation.addTo(verb);
    CommandLine::addExamples(verb, {"ifsw-calibration save ifsw.json", "ifsw-calibration save ifsw.json --yes"});

    addExampleVerb(line, noun, "Print valid calibration data", [](std::vector<double> frequencies) {
        return ifswFileText(exampleIfswData(std::move(frequencies)));
    });
}

void IfswCalibrationCommand::tour(Tour& tour)
{
    showPlanInTour(tour, planOf<Control>(tour.instrument()));
}

} // namespace tarn::console
