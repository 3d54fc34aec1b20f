#include <console/correctionnames.h>

#include <console/output.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tarn::console {

namespace {

using devices::FactoryCorrection;

constexpr std::array<std::pair<FactoryCorrection, std::string_view>, 10> names{
    {{FactoryCorrection::System, "system"},
     {FactoryCorrection::SourcePower, "source-power"},
     {FactoryCorrection::ReceiverPower, "receiver-power"},
     {FactoryCorrection::ReceiverLinearity, "receiver-linearity"},
     {FactoryCorrection::IfSwitch, "if-switch"},
     {FactoryCorrection::AttenuatorSteps, "attenuator-steps"},
     {FactoryCorrection::PortExtension, "port-extension"},
     {FactoryCorrection::Crosstalk, "crosstalk"},
     {FactoryCorrection::Temperature, "temperature"},
     {FactoryCorrection::ReferenceOscillator, "reference-oscillator"}}};

} // namespace

std::string_view correctionName(FactoryCorrection correction)
{
    const auto* const row = std::ranges::find(names, correction, &decltype(names)::value_type::first);
    return row == names.end() ? "unknown" : row->second;
}

std::optional<FactoryCorrection> findCorrection(std::string_view name)
{
    const auto* const row = std::ranges::find(names, name, &decltype(names)::value_type::second);
    return row == names.end() ? std::nullopt : std::optional{row->first};
}

std::string correctionNames()
{
    std::string list;
    for (const auto& [correction, name] : names)
        list += (list.empty() ? "" : ", ") + std::string{name};
    return list;
}

NameList namesOf(const std::vector<FactoryCorrection>& corrections)
{
    NameList list;
    for (const auto correction : corrections) {
        const auto name = correctionName(correction);
        list.json.append(toJson(name));
        list.text += fmt::format("{}{}", list.text.empty() ? "" : ", ", name);
    }
    if (list.text.empty())
        list.text = "none";
    return list;
}

} // namespace tarn::console
