#include <console/tuning.h>

#include <algorithm>
#include <iterator>

namespace tarn::console {

std::vector<Setting> Tuning::described() const
{
    auto all = settings;
    for (const auto& group : rows)
        std::ranges::move(group.settings("N", 0), std::back_inserter(all));
    return all;
}

std::vector<std::string> Tuning::candidates(std::span<const std::string> given) const
{
    std::vector<std::string> words;
    if (given.empty())
        return words;
    const auto& verb = given.front();
    const auto arguments = given.subspan(1);
    const bool isSet = verb == "set";
    if (verb == "load" && arguments.empty())
        std::ranges::transform(tables, std::back_inserter(words),
                               [](const TuningTable& table) { return std::string{table.name}; });
    if (isSet && arguments.size() % 2 == 1) {
        const auto setting = std::ranges::find(settings, arguments.back(), &Setting::name);
        return setting == settings.end() ? words : valueWords(setting->form);
    }
    if (isSet || (verb == "get" && arguments.empty())) {
        for (const auto& setting : settings) {
            if (!(isSet && setting.isReadOnly()))
                words.push_back(setting.name);
        }
    }
    return words;
}

std::vector<Reading> Tuning::read(const std::any& there) const
{
    std::vector<Reading> readings;
    const auto add = [&](const Setting& setting) {
        readings.push_back({setting, setting.read(there), setting.limits ? setting.limits(there) : Limits{}});
    };
    std::ranges::for_each(settings, add);
    for (const auto& group : rows) {
        const auto count = static_cast<int>(group.count(there));
        for (int row = 0; row < count; ++row)
            std::ranges::for_each(group.settings(std::to_string(row), row), add);
    }
    return readings;
}

} // namespace tarn::console
