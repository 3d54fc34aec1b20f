#include <console/change.h>
#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/confirmation.h>
#include <console/text.h>
#include <console/tourcommand.h>
#include <console/usbidentity.h>

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <memory>
#include <optional>

namespace tarn::console {

namespace {

using Control = UsbCommand::Control;
using UsbId = Control::UsbId;
using Properties = Control::DeviceProperties;

constexpr auto advice = "'tarn-service usb show' tells what the identity is now; write it again if it is not as it "
                        "should be";

/// What a query gives. It cannot fail, but while the control is away its answer is an empty one, as
/// of an absent instrument; so an empty answer counts only if the control was there all the while.
template <class Query>
auto query(const Instrument& instrument, Query query)
{
    const auto control = instrument.control<Control>();
    for (int attempt = 1;; ++attempt) {
        const LossWatch watch{instrument, Control::registryKey};
        auto answer = [&] {
            const DeviceCall call;
            return query(*control);
        }();
        if (answer != decltype(answer){} || !watch.isLost())
            return answer;
        if (attempt == attempts)
            throw lostEachTime("show its USB identity");
    }
}

Properties current(const Instrument& instrument)
{
    return query(instrument, [](const Control& control) { return control.currentDeviceProperties(); });
}

std::vector<Properties> supported(const Instrument& instrument)
{
    return query(instrument, [](const Control& control) { return control.supportedDevices(); });
}

std::string text(const UsbId& id)
{
    return fmt::format("{:04x}:{:04x}", id.vendorId, id.productId);
}

/// Binary-coded decimal: 0x0210 is release 2.10.
std::string releaseText(std::uint16_t release)
{
    return fmt::format("{:x}.{:02x}", release >> 8U, release & 0xFFU);
}

std::string guidText(const Properties& properties)
{
    std::string text;
    for (std::size_t i = 0; i < properties.deviceInterfaceGuid.size(); ++i)
        text += fmt::format("{}{:02x}", i == 4 || i == 6 || i == 8 || i == 10 ? "-" : "",
                            std::to_integer<unsigned int>(properties.deviceInterfaceGuid[i]));
    return text;
}

QJsonObject json(const Properties& properties)
{
    return {{QStringLiteral("usbId"), toJson(text(properties.usbId))},
            {QStringLiteral("deviceRelease"), toJson(releaseText(properties.usbId.deviceRelease))},
            {QStringLiteral("model"), toJson(properties.modelName)},
            {QStringLiteral("hardwareRevision"), toJson(std::uint64_t{properties.hardwareRevision})},
            {QStringLiteral("deviceInterfaceGuid"), toJson(guidText(properties))}};
}

std::string text(const Properties& properties)
{
    return fmt::format("{}  release {}  {} revision {}  {}", text(properties.usbId),
                       releaseText(properties.usbId.deviceRelease), padded(escaped(properties.modelName), 16),
                       properties.hardwareRevision, guidText(properties));
}

/// Whether `identity` names `device`: by its display name, or as VENDOR:PRODUCT.
bool names(std::string_view identity, const Properties& device)
{
    return identity == device.modelName
        || parseUsbIdentity(identity) == UsbIdentity{device.usbId.vendorId, device.usbId.productId};
}

Properties find(const Instrument& instrument, const std::string& identity)
{
    const auto devices = supported(instrument);
    const auto isNamed = [&](const Properties& device) { return names(identity, device); };
    const auto found = std::ranges::find_if(devices, isNamed);
    if (found == devices.end())
        throw Error{ErrorCode::NotFound, fmt::format("the instrument cannot be given the identity '{}'", identity),
                    "'tarn-service usb list' shows those that it can be given"};
    if (std::any_of(found + 1, devices.end(), isNamed))
        throw Error{ErrorCode::Usage, fmt::format("'{}' names several identities", identity),
                    "name one as VENDOR:PRODUCT; 'tarn-service usb list' shows them"};
    return *found;
}

void show(Session& session)
{
    const auto properties = current(session.instrument());
    session.output().result(json(properties), text(properties));
}

void list(Session& session)
{
    const auto& instrument = session.instrument();
    const auto now = current(instrument);
    QJsonArray all;
    std::string lines;
    for (const auto& device : supported(instrument)) {
        const bool isCurrent = device.usbId == now.usbId;
        auto object = json(device);
        object.insert(QStringLiteral("current"), isCurrent);
        all.append(object);
        lines += fmt::format("{} {}\n", isCurrent ? '*' : ' ', text(device));
    }
    session.output().result(all, lines);
}

/// The instrument drops its controls when it takes a new identity, and comes back with it.
void write(Session& session, const Properties& device)
{
    InterruptWarning warning{session.output()};
    const Change change{.doing = "writing the USB identity",
                        .target = "the USB identity",
                        .leftBehind = "the USB identity may be left neither the old nor the new one",
                        .advice = advice};
    make<Control>(change, session.instrument(), session.output(), warning,
                  [&](Control& control, const LongRequest&) { return control.writeUsbId(device.usbId); });
    confirm(change, session.output(), warning, fmt::format("the USB identity {} was written", text(device.usbId)),
            [&] { return current(session.instrument()).usbId == device.usbId; });
}

struct WriteOptions {
    std::string identity;
    Confirmation confirmation;
};

void writeIdentity(Session& session, const WriteOptions& options)
{
    const auto& output = session.output();
    const auto device = find(session.instrument(), options.identity);
    const auto old = current(session.instrument());
    const bool identical = old.usbId == device.usbId;
    if (!identical) {
        options.confirmation.obtain(
            output, "writing the USB identity",
            fmt::format("Change the instrument's USB identity from {} ({}) to {} ({})? It disconnects and comes back "
                        "as the new model.",
                        text(old.usbId), old.modelName, text(device.usbId), device.modelName));
        write(session, device);
    }
    auto result = json(device);
    result.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    output.done(result,
                fmt::format("{} {} ({}){}", identical ? "the USB identity is already" : "wrote the USB identity",
                            text(device.usbId), device.modelName, identical ? "" : ", read back and compared"));
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"usb show", "usb list", "usb write 'Pell 102'"});
    line.addVerb(noun, "show", "Show the identity", &show);
    line.addVerb(noun, "list", "List the identities that the instrument can be given; '*' is the present one", &list);

    const auto write = std::make_shared<WriteOptions>();
    const auto verb = line.addVerb(noun, "write", "Write another identity, after asking; read it back and compare",
                                   [write](Session& session) { writeIdentity(session, *write); });
    verb.addWord("IDENTITY", write->identity, "VENDOR:PRODUCT in hexadecimal, or the model's name; one of 'usb list'");
    write->confirmation.addTo(verb);
    verb.addExamples({"usb write 'Pell 102'", "usb write 'Pell 102' --yes"});
}

} // namespace

void UsbCommand::addTo(CommandLine& line)
{
    line.addNoun("usb", "The identity that the instrument shows on the USB", &addVerbs);
}

void UsbCommand::tour(Tour& tour)
{
    const auto now = current(tour.instrument());
    tour.show("identity", fmt::format("{} ({})", text(now.usbId), escaped(now.modelName)), json(now));
    const auto count = supported(tour.instrument()).size();
    tour.show("possible", fmt::format("{} identities", count), toJson(std::uint64_t{count}));
}

} // namespace tarn::console
