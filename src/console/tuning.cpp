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
    if (given.empty())
        return {};
    const auto& verb = given.front();
    const auto arguments = given.subspan(1);
    if (verb == "set")
        return candidatesOfSet(arguments);
    std::vector<std::string> words;
    if (verb == "load" && arguments.empty())
        std::ranges::transform(tables, std::back_inserter(words),
                               [](const TuningTable& table) { return std::string{table.name}; });
    if (verb == "get" && arguments.empty())
        std::ranges::transform(proposed(), std::back_inserter(words), &Setting::name);
    return words;
}

std::vector<std::string> Tuning::candidatesOfSet(std::span<const std::string> given) const
{
    const auto all = proposed();
    if (given.size() % 2 == 1) {
        const auto setting = std::ranges::find(all, given.back(), &Setting::name);
        return setting == all.end() ? std::vector<std::string>{} : valueWords(setting->form);
    }
    std::vector<std::string> words;
    for (const auto& setting : all) {
        if (!setting.isReadOnly() && std::ranges::find(given, setting.name) == given.end())
            words.push_back(setting.name);
    }
    return words;
}

std::vector<Setting> Tuning::proposed() const
{
    constexpr int rowCount = 10; // how many there are only the instrument knows
    auto all = settings;
    for (const auto& group : rows) {
        for (int row = 0; row < rowCount; ++row)
            std::ranges::move(group.settings(std::to_string(row), row), std::back_inserter(all));
    }
    return all;
}

std::vector<Reading> Tuning::read(const std::any& there) const
{
    std::vector<Reading> readings;
    const auto add = [&](const Setting& setting) {
        const DeviceCall call;
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
