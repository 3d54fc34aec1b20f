#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/requests.h>
#include <console/text.h>
#include <console/tourcommand.h>
#include <console/watchloop.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QThread>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tarn::console {

namespace {

using Handle = devices::service::SdkCalibrationControlHandle;
using Watcher = devices::service::SdkCalibrationControlWatcher;
using Status = sdk::service::calibrations::ICalibrationUnit::Status;

struct Controller {
    int number;
    std::uint64_t registryKey;
};

constexpr Controller controllers[] = {{1, Handle::firstRegistryKey}, {2, Handle::secondRegistryKey}};

struct Unit {
    std::string name;
    Status status;
};

constexpr std::string_view statusText(Status status)
{
    switch (status) {
    case Status::Empty:
        return "empty";
    case Status::Saving:
        return "saving";
    case Status::Valid:
        return "valid";
    case Status::Invalid:
        return "invalid";
    }
    return "unknown";
}

/// The units of a controller; nothing while the instrument does not offer it.
std::optional<std::vector<Unit>> unitsOf(const Handle& handle)
{
    const DeviceCall call;
    const auto controller = handle.lock();
    if (!controller)
        return std::nullopt;
    std::vector<Unit> units;
    for (auto* const unit : controller->units())
        units.push_back({unit->name(), unit->status()});
    return units;
}

std::vector<Unit> unitsOf(const Instrument& instrument, std::uint64_t registryKey)
{
    std::vector<Unit> units;
    whileThere<Handle>(instrument, registryKey, "its calibration units",
                       [&](const Handle& handle) { units = unitsOf(handle).value_or(units); });
    return units;
}

QJsonArray json(const std::vector<Unit>& units)
{
    QJsonArray array;
    for (const auto& [name, status] : units)
        array.append(QJsonObject{{QStringLiteral("name"), toJson(name)},
                                 {QStringLiteral("status"), toJson(statusText(status))}});
    return array;
}

/// The controllers that the instrument offers; throws `Error` (`NotOffered`) if it offers none.
std::vector<Controller> offered(const Instrument& instrument)
{
    const auto isOffered = [&](const Controller& controller) { return instrument.isOffered(controller.registryKey); };
    if (std::ranges::none_of(controllers, isOffered))
        instrument.awaitControl(controllers[0].registryKey); // may have been away while it was opened
    std::vector<Controller> found;
    std::ranges::copy_if(controllers, std::back_inserter(found), isOffered);
    return found;
}

void showStatus(Session& session)
{
    const auto& instrument = session.instrument();
    QJsonArray array;
    std::string text;
    for (const auto& [number, registryKey] : offered(instrument)) {
        const auto units = unitsOf(instrument, registryKey);
        array.append(QJsonObject{{QStringLiteral("controller"), number}, {QStringLiteral("units"), json(units)}});
        for (const auto& [name, status] : units)
            text += fmt::format("{}  {} {}\n", number, padded(escaped(name), 30), statusText(status));
    }
    session.output().result(array, text);
}

// ---- watching

/// Posts what one controller notifies.
class Reporter {
public:
    Reporter(Handle& handle, int number, WatchLoop& loop)
        : m_handle{handle}
        , m_number{number}
        , m_loop{loop}
        , m_watcher{handle}
    {
        QObject::connect(&m_watcher, &Watcher::unitStatusChanged, [this] { onUnitsChanged("status"); });
        QObject::connect(&m_watcher, &Watcher::configurationChanged, [this] { onUnitsChanged("configuration"); });
        QObject::connect(&m_watcher, &Watcher::saveProgressChanged, [this](int percent) { postProgress(percent); });
        onUnitsChanged("status");
    }

private:
    /// What the instrument notifies is read on its thread, so that what is shown is what was notified.
    /// On this thread it is the watcher that tells of a return.
    void onUnitsChanged(std::string_view event)
    {
        if (QThread::currentThread() == m_loop.thread())
            m_loop.ask([this, event] { postUnits(event); });
        else
            postUnits(event);
    }

    void postUnits(std::string_view event) const
    {
        const auto units = unitsOf(m_handle);
        if (!units)
            return; // it is away; its return will be notified
        auto text = fmt::format("{}  {}:", m_number, event);
        for (const auto& [name, status] : *units)
            text += fmt::format(" {} {};", escaped(name), statusText(status));
        m_loop.post({{QStringLiteral("event"), toJson(event)},
                     {QStringLiteral("controller"), m_number},
                     {QStringLiteral("units"), json(*units)}},
                    std::move(text));
    }

    void postProgress(int percent) const
    {
        m_loop.post({{QStringLiteral("event"), QStringLiteral("saving")},
                     {QStringLiteral("controller"), m_number},
                     {QStringLiteral("percent"), percent}},
                    fmt::format("{}  saving: {} %", m_number, percent));
    }

    const Handle& m_handle;
    const int m_number;
    WatchLoop& m_loop;
    Watcher m_watcher; ///< the last: nothing may be notified to less than a whole reporter
};

void watch(Session& session, std::optional<std::uint64_t> count)
{
    const auto& instrument = session.instrument();
    WatchLoop loop{instrument.lifecycle(), count, session.output()};
    const auto controls = offered(instrument);
    for (const auto& [number, registryKey] : controls)
        instrument.awaitControl(registryKey);
    std::optional<DeviceCall> call{std::in_place}; // also for reporters that another one's failure ends
    std::vector<std::shared_ptr<Handle>> handles;
    std::vector<std::unique_ptr<Reporter>> reporters;
    for (const auto& [number, registryKey] : controls) {
        const auto& handle = handles.emplace_back(instrument.control<Handle>(registryKey));
        reporters.push_back(std::make_unique<Reporter>(*handle, number, loop));
    }
    call.reset();
    loop.run();
}

void showUnits(Tour& tour, std::uint64_t registryKey)
{
    for (const auto& [name, status] : unitsOf(tour.instrument(), registryKey))
        tour.show(name, statusText(status), toJson(statusText(status)));
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"calibrations status", "calibrations watch"});
    line.addVerb(noun, "status", "Show every unit and whether its data is valid", &showStatus);

    const auto count = std::make_shared<std::optional<std::uint64_t>>();
    const auto verb = line.addVerb(noun, "watch", "Show the units and every change, until Ctrl-C",
                                   [count](Session& session) { watch(session, *count); });
    addCountOption(verb, *count, "End after so many lines");
    verb.addExamples({"calibrations watch", "calibrations watch --count 10 --json"});
}

} // namespace

void FirstCalibrationsCommand::addTo(CommandLine& line)
{
    line.addNoun("calibrations", "The calibration units of the instrument and what they hold", &addVerbs);
}

void FirstCalibrationsCommand::tour(Tour& tour)
{
    showUnits(tour, registryKey);
}

void SecondCalibrationsCommand::tour(Tour& tour)
{
    showUnits(tour, registryKey);
}

} // namespace tarn::console
