#include <console/tuningcommand.h>

#include <console/commandline.h>
#include <console/text.h>
#include <console/tourcommand.h>
#include <console/tuning.h>
#include <console/tuningverbs.h>
#include <console/tuningwatch.h>
#include <console/watchloop.h>

#include <algorithm>
#include <memory>

namespace tarn::console {

namespace {

std::string purposeText(const TuningTable& table)
{
    return std::string{table.purpose};
}

std::string purposeText(const Setting& setting)
{
    const auto form = formText(setting.form);
    return form.empty() ? setting.purpose : fmt::format("{}: {}", setting.purpose, form);
}

/// Puts a list of names, each with its purpose, before what ends the help of `command`.
template <class Items>
void addList(Command command, std::string_view heading, const Items& items)
{
    std::string list = fmt::format("\n{}:\n", heading);
    for (const auto& item : items)
        list += fmt::format("  {:<32}{}\n", item.name, purposeText(item));
    command.addHelp(list);
}

void addExample(Command command, const Tuning& tuning, std::string_view words)
{
    command.addExamples({fmt::format("{} {}", tuning.name, words)});
}

/// Has the words after `verb` completed.
void addCandidates(CommandLine& line, Command verb, const Tuning& tuning)
{
    line.addCandidates(verb, [&tuning, name = verb.name()](std::span<const std::string> given) {
        std::vector<std::string> words{name};
        words.insert(words.end(), given.begin(), given.end());
        return tuning.candidates(words);
    });
}

void addSettingVerbs(CommandLine& line, Command noun, const Tuning& tuning)
{
    line.addVerb(noun, "show", "Show all settings with their units and limits",
                 [&tuning](Session& session) { tuningverbs::show(session, tuning); });

    const auto name = std::make_shared<std::string>();
    const auto get = line.addVerb(noun, "get", "Show the value of a setting",
                                  [&tuning, name](Session& session) { tuningverbs::get(session, tuning, *name); });
    get.addWord("NAME", *name, "The setting");
    addCandidates(line, get, tuning);
    addExample(get, tuning, fmt::format("get {}", tuning.settings.front().name));
    addList(get, "Settings", tuning.described());

    const auto words = std::make_shared<std::vector<std::string>>();
    const auto set = line.addVerb(noun, "set", "Change settings, read them back and compare",
                                  [&tuning, words](Session& session) { tuningverbs::set(session, tuning, *words); });
    set.addWords("NAME-and-VALUE", *words,
                 "The setting and its value: a name, a number, or a number with its unit; then more of them");
    addCandidates(line, set, tuning);
    addExample(set, tuning, fmt::format("set {}", tuning.example));
    auto changeable = tuning.described();
    std::erase_if(changeable, &Setting::isReadOnly);
    addList(set, "Settings", changeable);
}

void addLoad(CommandLine& line, Command noun, const Tuning& tuning)
{
    const auto options = std::make_shared<tuningverbs::LoadOptions>();
    const auto load
        = line.addVerb(noun, "load", "Replace a table of the instrument, after asking",
                       [&tuning, options](Session& session) { tuningverbs::load(session, tuning, *options); });
    load.addWord("TABLE", options->table, "The table");
    load.addWord("FILE", options->path, "The local file with its bytes; '-' is standard input");
    options->confirmation.addTo(load);
    addCandidates(line, load, tuning);
    addExample(load, tuning, fmt::format("load {} table.bin", tuning.tables.front().name));
    addList(load, "Tables", tuning.tables);
}

struct WatchOptions {
    std::optional<std::uint64_t> count;
    std::chrono::microseconds interval = std::chrono::seconds{1};
};

void addWatch(CommandLine& line, Command noun, const Tuning& tuning)
{
    const auto options = std::make_shared<WatchOptions>();
    const auto watch = line.addVerb(
        noun, "watch", "Show all settings, then each change, until Ctrl-C; waits while the instrument is away",
        [&tuning, options](Session& session) { watchTuning(session, tuning, options->interval, options->count); });
    addCountOption(watch, options->count, "End after so many lines, the first one with all settings");
    addIntervalOption(watch, options->interval, "How often to look, for example 500ms; a day at most [1s]");
    addExample(watch, tuning, "watch --count 10 --interval 500ms --json");
}

void addVerbs(CommandLine& line, Command noun, const Tuning& tuning)
{
    noun.addExamples({fmt::format("{} show", tuning.name), fmt::format("{} set {}", tuning.name, tuning.example)});
    addSettingVerbs(line, noun, tuning);
    if (!tuning.tables.empty())
        addLoad(line, noun, tuning);
    if (tuning.reset)
        line.addVerb(noun, "reset", "Return all settings to their defaults and show what has changed",
                     [&tuning](Session& session) { tuningverbs::reset(session, tuning); });
    if (tuning.connect)
        addWatch(line, noun, tuning);
}

} // namespace

void addTuningCommands(CommandLine& line, const Tuning& tuning)
{
    line.addNoun(std::string{tuning.name}, std::string{tuning.description},
                 [&tuning](CommandLine& ofNoun, Command noun) { addVerbs(ofNoun, noun, tuning); });
}

void tourTuning(Tour& tour, const Tuning& tuning)
{
    const auto& instrument = tour.instrument();
    const auto show = [&](std::string_view label, const Reading& reading, const SettingValue& value) {
        tour.show(label, valueText(reading, value), valueJson(reading, value));
    };
    const auto all = tuningverbs::readings(instrument, tuning);
    for (const auto& reading : all)
        show(reading.setting.name, reading, reading.value);

    const auto& reading = *std::ranges::find(all, tuning.harmless,
                                             [](const Reading& each) -> std::string_view { return each.setting.name; });
    const auto other = otherValue(reading);
    if (!other)
        return tour.say(fmt::format("{} has no other value, so it is not changed.", tuning.harmless));
    const auto before = valueWord(reading, reading.value);
    const auto after = valueText(reading, *other);
    if (!tour.mayChange(fmt::format("set {} to {} for a moment", tuning.harmless, after)))
        return;
    tour.restoring(
        [&] {
            tuningverbs::assign(instrument, tuning, {{reading, *other}});
            show(fmt::format("set {}", tuning.harmless), reading, *other);
        },
        [&] { tuningverbs::assign(instrument, tuning, {{reading, reading.value}}); },
        {fmt::format("{} may still be {}", tuning.harmless, after),
         fmt::format("'tarn-service {} set {} {}' puts it back", tuning.name, tuning.harmless, before)});
    show("put back", reading, reading.value);
}

} // namespace tarn::console
