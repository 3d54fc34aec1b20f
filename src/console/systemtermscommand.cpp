#include <console/calibrationwrite.h>
#include <console/commandtable.h>
#include <console/confirmation.h>
#include <console/localfile.h>
#include <console/measurement.h>
#include <console/number.h>
#include <console/plancommand.h>
#include <console/termsfile.h>

#include <QJsonObject>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

namespace tarn::console {

namespace {

using Control = SystemTermsCommand::Control;

class Observer final : public WriteObserver<Control> {
public:
    using WriteObserver::WriteObserver;

    void onErrorOccurred(Control::Error error) override
    {
        static constexpr std::array<std::string_view, 10> words{
            "Failed: no reason was given",
            "NoTerms: there is no frequency or no port",
            "InvalidTerms: terms are incomplete or not finite",
            "PortCountMismatch: the terms are not of as many ports as the instrument has",
            "FrequenciesNotAscending: a frequency is not above the one before it",
            "FrequencyOutOfRange: a frequency that the instrument does not reach",
            "PlanMismatch: the frequencies of the terms are not the points of the plan",
            "TemperatureOutOfRange: no temperature that the instrument works at",
            "OverrideNotSupported: the instrument takes no other plan than its own",
            "WriteFailed: the instrument's memory reported a failure"};
        failed(error, words);
    }
};

struct WriteOptions {
    std::string path;
    std::optional<std::string> planPath;
    MeasurementOptions measurement;
    Confirmation confirmation;
};

std::optional<FrequencyPlan> readPlan(const std::optional<std::string>& path)
{
    return path ? std::optional{readPlanFile({*path, planExample}, readLocalFile(*path))} : std::nullopt;
}

void write(Session& session, const WriteOptions& options)
{
    const auto& output = session.output();
    const auto terms = readTermsFile({options.path, "system-terms example"}, readLocalFile(options.path));
    const auto plan = readPlan(options.planPath);
    const auto& instrument = session.instrument();
    instrument.awaitControl(Control::registryKey);
    const auto measurement = options.measurement.obtain(instrument);
    const auto what = fmt::format("the error terms of {} ports at {} frequencies, {}", terms.portCount(),
                                  terms.frequencies().size(), measurementText(measurement));
    options.confirmation.obtain(
        output, "writing the system terms",
        fmt::format("Write '{}' ({}) as the instrument's system terms{}? Those that it holds now are lost.",
                    options.path, what, plan ? ", for the plan in '" + options.planPath.value_or("") + "'" : ""));

    const Change change{.doing = "writing the system terms",
                        .target = "the set of system terms",
                        .leftBehind = "the instrument may be left with the old or the new system terms",
                        .advice = "'tarn-service corrections list' tells whether the system correction is valid; write "
                                  "the terms again to be sure of them",
                        .progress = OperationName{"write", "writing the system terms", OperationName::Unit::Percent}};
    writeCalibration<Observer, Control>(change, instrument, output, [&](Control& control) {
        if (plan)
            control.requestWriteTerms(measurement.time, measurement.temperature, *plan, terms);
        else
            control.requestWriteTerms(measurement.time, measurement.temperature, terms);
    });

    auto result = measurementJson(measurement);
    result.insert(QStringLiteral("ports"), toJson(std::uint64_t{terms.portCount()}));
    result.insert(QStringLiteral("frequencies"), toJson(std::uint64_t{terms.frequencies().size()}));
    result.insert(QStringLiteral("plan"), plan ? QStringLiteral("given") : QStringLiteral("own"));
    result.insert(QStringLiteral("confirmed"), true);
    output.done(result, fmt::format("{}: written and confirmed by the instrument", what));
}

bool isOverrideSupported(const Instrument& instrument)
{
    bool supported = false;
    whileThere<Control>(instrument, Control::registryKey, "its system terms",
                        [&](const Control& control) { supported = control.isFrequencyOverrideSupported(); });
    return supported;
}

constexpr std::string_view yesNo(bool yes)
{
    return yes ? "yes" : "no";
}

void showOverride(Session& session)
{
    const bool supported = isOverrideSupported(session.instrument());
    session.output().result(QJsonObject{{QStringLiteral("supported"), supported}}, yesNo(supported));
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"system-terms plan", "system-terms plan -o plan.json",
                      "system-terms example --plan plan.json > terms.json", "system-terms write terms.json"});
    addPlanVerb<Control>(line, noun);
    line.addVerb(noun, "override", "Show whether terms can be written for another plan than the instrument's own",
                 &showOverride);

    const auto options = std::make_shared<WriteOptions>();
    const auto verb = line.addVerb(noun, "write", "Write error terms, after asking",
                                   [options](Session& session) { write(session, *options); });
    verb.addWord("FILE", options->path, "The terms (JSON); '-' is standard input, with --yes");
    verb.addOption("--plan", "FILE", options->planPath, "The plan (JSON) that they are for [the instrument's own]");
    options->measurement.addTo(verb);
    options->confirmation.addTo(verb);
    verb.addExamples(
        {"system-terms write terms.json", "system-terms write terms.json --plan plan.json --value 23.5 --yes"});

    const auto ports = std::make_shared<std::uint32_t>(2);
    const auto example
        = addExampleVerb(line, noun, "Print valid error terms", [ports](std::vector<double> frequencies) {
              return termsFileText(exampleTerms(*ports, std::move(frequencies)));
          });
    const auto read = [ports](const std::string& text) -> std::optional<std::string> {
        const auto number = parseNumber<std::uint32_t>(text);
        if (!number || *number < 1 || *number > mostPorts)
            return fmt::format("'{}' is not a number of ports from 1 to {}", text, mostPorts);
        *ports = *number;
        return std::nullopt;
    };
    example.addOption("--ports", "N", read, fmt::format("Of how many ports, {} at most [{}]", mostPorts, *ports));
    line.addVerb(noun, "example-plan", "Print a valid plan, for --plan",
                 [](Session& session) { showExample(session, planFileText(examplePlan())); });
}

} // namespace

void SystemTermsCommand::addTo(CommandLine& line)
{
    line.addNoun("system-terms", "The system error terms that the instrument stores", &addVerbs);
}

void SystemTermsCommand::tour(Tour& tour)
{
    showPlanInTour(tour, planOf<Control>(tour.instrument()));
    const bool supported = isOverrideSupported(tour.instrument());
    tour.show("override", yesNo(supported), supported);
}

} // namespace tarn::console
