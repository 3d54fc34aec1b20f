#pragma once

#include <console/calibrationwrite.h>
#include <console/confirmation.h>
#include <console/measurement.h>
#include <console/plancommand.h>

#include <QJsonObject>

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::console {

/// What the command that saves a factory calibration is given.
struct SaveOptions {
    std::string path;
    MeasurementOptions measurement;
    Confirmation confirmation;
};

/// The command of a factory calibration.
struct FactoryCalibration {
    std::string noun; ///< "power-calibration"
    std::string about; ///< "the power at the test ports"
    std::string data; ///< what a file of it holds: "calibration points"
    std::string file; ///< the name of one: "points.csv"
    std::string moreOptions; ///< of `save`, for an example: "--value 23.5 "
    bool isMeasurement; ///< `save` takes the options of a measurement
    std::function<void(Session&, const SaveOptions&)> save;
    std::function<std::string(std::vector<double>)> example; ///< a file for these frequencies
};

/// Adds the verbs `save` and `example`.
void addCalibrationVerbs(CommandLine& line, Command noun, const FactoryCalibration& calibration);

/// Adds the noun of `calibration`, whose plan is that of `Control`.
template <class Control>
void addFactoryCalibration(CommandLine& line, const FactoryCalibration& calibration)
{
    line.addNoun(calibration.noun, "The factory calibration of " + calibration.about,
                 [calibration](CommandLine& ofNoun, Command noun) {
                     const auto& name = calibration.noun;
                     noun.addExamples({name + " plan", fmt::format("{} save {}", name, calibration.file)});
                     addPlanVerb<Control>(ofNoun, noun);
                     addCalibrationVerbs(ofNoun, noun, calibration);
                 });
}

/// Hears of the write of a factory calibration; `words` as in `WriteObserver`.
template <class Control, const std::array<std::string_view, 4>& words>
class FactoryObserver final : public WriteObserver<Control> {
public:
    using WriteObserver<Control>::WriteObserver;

    void onError(typename Control::Error error) override { this->failed(error, words); }
};

/// What is to be saved.
struct Saving {
    std::string name; ///< "power calibration"
    std::string what; ///< "the power calibration of 8 points"
    QJsonObject result; ///< what the result says of it
};

/// Asks whether to save it from the file of `options`; the change that this is.
[[nodiscard]] Change confirmedChange(const Output& output, const Saving& saving, const SaveOptions& options);

/// Saves it in the instrument, after asking; `request(control)` asks for the write. Throws as
/// `Confirmation` and `writeCalibration`.
template <class Observer, class Control, class Request>
void saveCalibration(Session& session, Saving saving, const SaveOptions& options, Request request)
{
    const auto& output = session.output();
    const auto change = confirmedChange(output, saving, options);
    writeCalibration<Observer, Control>(change, session.instrument(), output, request);
    saving.result.insert(QStringLiteral("confirmed"), true);
    output.done(saving.result, saving.what + ": written and confirmed by the instrument");
}

} // namespace tarn::console
