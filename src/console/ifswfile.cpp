#include <console/ifswfile.h>

#include <console/jsonnode.h>

#include <array>
#include <cmath>
#include <utility>

namespace tarn::console {

namespace {

using Control = devices::service::SdkVellIfswCalibrationControl;
using Ratio = Control::IfswRatio;
using Linearity = Control::IfswLinearity;
using Receiver = Control::ReceiverCalibration;

constexpr std::string_view formatName = "tarn-ifsw-calibration/1";

template <class Record>
struct Member {
    std::string_view name;
    double Record::* value;
};

constexpr std::array<Member<Ratio>, 3> ratioMembers{{{"intermediateFrequency", &Ratio::intermediateFrequency},
                                                     {"magnitude", &Ratio::magnitude},
                                                     {"phase", &Ratio::phase}}};

constexpr std::array<Member<Linearity>, 3> linearityMembers{{{"level", &Linearity::level},
                                                             {"magnitudeError", &Linearity::magnitudeError},
                                                             {"phaseError", &Linearity::phaseError}}};

constexpr std::array<std::pair<std::string_view, Receiver IfswData::*>, 3> receivers{
    {{"reference", &IfswData::reference},
     {"reflection", &IfswData::reflection},
     {"transmission", &IfswData::transmission}}};

template <class Record>
std::vector<Record> readRecords(const JsonNode& array, const std::array<Member<Record>, 3>& members)
{
    std::vector<Record> records;
    for (const auto& node : array.elements("an array of objects")) {
        node.expectMembers({members[0].name, members[1].name, members[2].name});
        auto& record = records.emplace_back();
        for (const auto& [name, value] : members)
            record.*value = node[name].number();
    }
    if (records.empty())
        throw array.bad("at least one object");
    return records;
}

template <class Record>
std::string recordsText(const std::vector<Record>& records, const std::array<Member<Record>, 3>& members)
{
    std::vector<std::string> lines;
    for (const auto& record : records) {
        std::vector<std::string> values;
        values.reserve(members.size());
        for (const auto& [name, value] : members)
            values.push_back(fmt::format("\"{}\": {}", name, record.*value));
        lines.push_back(fmt::format("      {{{}}}", fmt::join(values, ", ")));
    }
    return fmt::format("[\n{}\n    ]", fmt::join(lines, ",\n"));
}

} // namespace

IfswData readIfswFile(const SourceFile& file, const QByteArray& bytes)
{
    const auto root = JsonNode::parse(file, bytes, formatName);
    root.expectMembers({"format", "frequencies", "reference", "reflection", "transmission"});
    IfswData data;
    data.frequencies = root["frequencies"].ascendingFrequencies();
    for (const auto& [name, receiver] : receivers) {
        const auto node = root[name];
        node.expectMembers({"ratios", "linearities"});
        data.*receiver = {.ratios = readRecords(node["ratios"], ratioMembers),
                          .linearities = readRecords(node["linearities"], linearityMembers)};
    }
    return data;
}

std::string ifswFileText(const IfswData& data)
{
    auto text = fmt::format("{{\n  \"format\": \"{}\",\n  \"frequencies\": [{}]", formatName,
                            fmt::join(data.frequencies, ", "));
    for (const auto& [name, receiver] : receivers)
        text += fmt::format(",\n  \"{}\": {{\n    \"ratios\": {},\n    \"linearities\": {}\n  }}", name,
                            recordsText((data.*receiver).ratios, ratioMembers),
                            recordsText((data.*receiver).linearities, linearityMembers));
    return text + "\n}\n";
}

IfswData exampleIfswData(std::vector<double> frequencies)
{
    IfswData data;
    data.frequencies = std::move(frequencies);
    int number = 0;
    for (const auto& [name, receiver] : receivers) {
        auto& [ratios, linearities] = data.*receiver;
        for (const auto intermediateFrequency : {1e6, 7.5e6, 12e6}) {
            ++number;
            ratios.push_back({intermediateFrequency, (1000 - number) / 1000.0, number * 0.25});
        }
        for (const auto level : {-50.0, -30.0, -10.0}) {
            ++number;
            linearities.push_back({level, number / 1000.0, -number / 100.0});
        }
    }
    return data;
}

} // namespace tarn::console
