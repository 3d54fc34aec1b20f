#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/temperaturewatch.h>
#include <console/text.h>
#include <console/tourcommand.h>

#include <QJsonArray>
#include <QJsonObject>

#include <memory>

namespace tarn::console {

namespace {

using Control = TemperatureCommand::Control;

QJsonObject json(const Control& control)
{
    QJsonArray modules;
    for (const auto& module : control.modulesTemperature())
        modules.append(
            QJsonObject{{QStringLiteral("name"), module.name}, {QStringLiteral("temperature"), module.temperature}});
    return {{QStringLiteral("temperature"), control.temperature()}, {QStringLiteral("modules"), modules}};
}

std::string lines(const Control& control)
{
    auto text = fmt::format("{} {:7.2f} °C\n", padded("instrument", 20), control.temperature());
    for (const auto& module : control.modulesTemperature())
        text += fmt::format("  {} {:7.2f} °C\n", padded(escaped(module.name), 18), module.temperature);
    return text;
}

std::string line(const Control& control)
{
    auto text = fmt::format("{:.2f} °C", control.temperature());
    for (const auto& module : control.modulesTemperature())
        text += fmt::format("  {} {:.2f}", escaped(module.name), module.temperature);
    return text;
}

/// What the control shows, as an object and as `text` has it.
std::pair<QJsonObject, std::string> read(const Control& control, std::string (*text)(const Control&))
{
    const DeviceCall call;
    return {json(control), text(control)};
}

void show(Session& session)
{
    const auto& instrument = session.instrument();
    const auto control = instrument.control<Control>();
    instrument.awaitControl(Control::registryKey); // a snapshot outlives its control
    const auto [object, text] = read(*control, &lines);
    session.output().result(object, text);
}

void showReading(const Output& output, const Control& control)
{
    const auto now = QDateTime::currentDateTimeUtc();
    auto [object, text] = read(control, &line);
    object.insert(QStringLiteral("time"), now.toString(Qt::ISODateWithMs));
    output.part(object, fmt::format("{}  {}", now.toLocalTime().toString(QStringLiteral("HH:mm:ss.zzz")), text));
}

struct WatchOptions {
    std::optional<std::uint64_t> count;
    std::chrono::microseconds interval{0};
};

void watch(Session& session, const WatchOptions& options)
{
    const auto& instrument = session.instrument();
    const auto control = instrument.control<Control>();
    instrument.awaitControl(Control::registryKey);
    TemperatureWatch{instrument.lifecycle(),
                     *control,
                     options.interval,
                     options.count,
                     [&] { showReading(session.output(), *control); },
                     session.output()}
        .run();
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"temperature show", "temperature watch --interval 1s"});
    line.addVerb(noun, "show", "Show the last measurement, in degrees Celsius", &show);

    const auto options = std::make_shared<WatchOptions>();
    const auto verb = line.addVerb(
        noun, "watch", "Show every measurement as it is made, until Ctrl-C; waits while the instrument is away",
        [options](Session& session) { watch(session, *options); });
    addCountOption(verb, options->count, "End after so many readings");
    addIntervalOption(verb, options->interval,
                      "Show at most one reading in this time, for example 500ms; a day at most");
    verb.addExamples({"temperature watch", "temperature watch --count 10 --interval 1s --json"});
}

} // namespace

void TemperatureCommand::addTo(CommandLine& line)
{
    line.addNoun("temperature", "The temperatures of the instrument and its modules", &addVerbs);
}

void TemperatureCommand::tour(Tour& tour)
{
    const auto control = tour.instrument().control<Control>();
    const auto [temperature, modules] = [&] {
        const DeviceCall call;
        return std::pair{control->temperature(), control->modulesTemperature()};
    }();
    tour.show("instrument", fmt::format("{:.2f} °C", temperature), temperature);
    for (const auto& module : modules)
        tour.show(module.name.toStdString(), fmt::format("{:.2f} °C", module.temperature), module.temperature);
}

} // namespace tarn::console
