#include <console/planfile.h>

#include <console/jsonnode.h>
#include <console/output.h>

#include <algorithm>

namespace tarn::console {

namespace {

constexpr std::string_view format = "tarn-frequency-plan/1";

vna::FrequencySegment segment(const JsonNode& node)
{
    node.expectMembers({"start", "stop", "points"});
    const auto frequency = [](const JsonNode& member) {
        const auto number = member.number();
        if (number < 0)
            throw member.bad("a frequency in hertz, not below 0");
        return number;
    };
    return {frequency(node["start"]), frequency(node["stop"]), node["points"].count(1)};
}

} // namespace

FrequencyPlan readPlanFile(const SourceFile& file, const QByteArray& bytes)
{
    const auto root = JsonNode::parse(file, bytes, format);
    root.expectMembers({"format", "segments"});
    FrequencyPlan plan;
    for (const auto& node : root["segments"].elements("an array of segments"))
        plan.push_back(segment(node));
    if (plan.empty())
        throw root["segments"].bad("at least one segment");
    return plan;
}

std::string planFileText(std::span<const vna::FrequencySegment> plan)
{
    std::vector<std::string> segments;
    for (const auto& [start, stop, points] : plan)
        segments.push_back(fmt::format(R"(    {{"start": {}, "stop": {}, "points": {}}})", start, stop, points));
    return fmt::format("{{\n  \"format\": \"{}\",\n  \"segments\": [\n{}\n  ]\n}}\n", format,
                       fmt::join(segments, ",\n"));
}

QJsonObject planJson(std::span<const vna::FrequencySegment> plan)
{
    QJsonArray segments;
    for (const auto& [start, stop, points] : plan)
        segments.append(QJsonObject{{QStringLiteral("start"), start},
                                    {QStringLiteral("stop"), stop},
                                    {QStringLiteral("points"), toJson(std::uint64_t{points})}});
    return {{QStringLiteral("format"), toJson(format)}, {QStringLiteral("segments"), segments}};
}

std::vector<double> pointsOf(std::span<const vna::FrequencySegment> plan)
{
    std::vector<double> frequencies;
    for (const auto& [start, stop, points] : plan) {
        const auto step = (stop - start) / std::max(1.0, points - 1.0);
        for (std::uint32_t i = 0; i < points; ++i)
            frequencies.push_back(i > 0 && i + 1 == points ? stop : start + (step * i));
    }
    return frequencies;
}

const FrequencyPlan& examplePlan()
{
    static const FrequencyPlan plan{{1e9, 3e9, 3}, {4e9, 4e9, 1}};
    return plan;
}

} // namespace tarn::console
