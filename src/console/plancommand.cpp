#include <console/plancommand.h>

#include <console/localfile.h>

#include <algorithm>
#include <numeric>

namespace tarn::console {

namespace {

constexpr std::uint64_t mostExamplePoints = 100'000; // nobody reads a longer example

std::string segmentText(const vna::FrequencySegment& segment)
{
    return fmt::format("{} Hz to {} Hz in {} {}", segment.start, segment.stop, segment.pointCount,
                       segment.pointCount == 1 ? "point" : "points");
}

std::uint64_t pointCount(const FrequencyPlan& plan)
{
    return std::accumulate(plan.begin(), plan.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const auto& segment) { return sum + segment.pointCount; });
}

double lastPoint(const vna::FrequencySegment& segment)
{
    return segment.pointCount > 1 ? segment.stop : segment.start;
}

/// A plan may go down, and a frequency stand in it twice; in calibration data they ascend.
void expectAscending(const SourceFile& file, const FrequencyPlan& plan)
{
    const auto expect = [&](std::size_t i, std::string_view member, double found, double below) {
        if (found <= below)
            throw badFile(file, fmt::format("$.segments[{}].{}", i, member), fmt::format("{}", found),
                          fmt::format("a frequency above the one before it, {}, for an example", below));
    };
    for (std::size_t i = 0; i < plan.size(); ++i) {
        if (i > 0)
            expect(i, "start", plan[i].start, lastPoint(plan[i - 1]));
        if (plan[i].pointCount > 1)
            expect(i, "stop", plan[i].stop, plan[i].start);
    }
}

} // namespace

void addPlanOptions(Command verb, PlanOptions& options)
{
    verb.addOption("-o,--output", "PATH", options.path, "Write it into a plan file instead, for --plan");
    verb.addFlag("--overwrite", options.overwrite, "Replace a local file that has other contents", "--output");
}

void showPlan(const Output& output, const FrequencyPlan& plan, const PlanOptions& options)
{
    auto json = planJson(plan);
    if (!options.path) {
        std::string text;
        for (const auto& segment : plan)
            text += segmentText(segment) + '\n';
        return output.result(json, text);
    }
    const auto contents = planFileText(plan);
    if (*options.path == "-")
        return output.data(contents);
    const bool identical = writeLocalFile(*options.path, contents, options.overwrite) == LocalWrite::Identical;
    json.insert(QStringLiteral("path"), toJson(*options.path));
    json.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    output.done(json,
                identical ? fmt::format("'{}' is there already, identical", *options.path)
                          : fmt::format("wrote the plan into '{}' ({} segments)", *options.path, plan.size()));
}

std::vector<double> examplePoints(const std::optional<std::string>& path)
{
    if (!path)
        return pointsOf(examplePlan());
    const SourceFile file{*path, planExample};
    const auto plan = readPlanFile(file, readLocalFile(*path));
    if (pointCount(plan) > mostExamplePoints)
        throw badFile(file, "$.segments", fmt::format("{} points", pointCount(plan)),
                      fmt::format("at most {} for an example", mostExamplePoints));
    expectAscending(file, plan);
    return pointsOf(plan);
}

Command addExampleVerb(CommandLine& line, Command noun, const std::string& description,
                       std::function<std::string(std::vector<double>)> text)
{
    const auto plan = std::make_shared<std::optional<std::string>>();
    const auto verb = line.addVerb(noun, "example", description, [plan, text = std::move(text)](Session& session) {
        showExample(session, text(examplePoints(*plan)));
    });
    verb.addOption("--plan", "FILE", *plan, "For the points of the plan in this file instead of a few");
    return verb;
}

void showExample(Session& session, const std::string& text)
{
    session.output().result(QJsonObject{{QStringLiteral("example"), toJson(text)}}, text);
}

void showPlanInTour(Tour& tour, const FrequencyPlan& plan)
{
    tour.show("plan", fmt::format("{} points in {} segments", pointCount(plan), plan.size()), toJson(pointCount(plan)));
    if (!plan.empty())
        tour.show("first segment", segmentText(plan.front()), planJson(plan));
}

} // namespace tarn::console
