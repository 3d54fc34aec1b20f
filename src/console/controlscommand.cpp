#include <console/controlscommand.h>

#include <console/commandline.h>
#include <console/controltable.h>
#include <console/text.h>

#include <QJsonArray>
#include <QJsonObject>

namespace tarn::console {

namespace {

void run(Session& session)
{
    const auto& instrument = session.instrument();
    const auto& output = session.output();
    QJsonArray list;
    auto text
        = output.paint(Output::Style::Heading, fmt::format("{:<20} {:<18} {}", "CONTROL", "REGISTRY KEY", "OFFERED"));
    for (const auto& entry : instrument.registry().entries()) {
        const auto name = controlName(entry.key);
        const auto key = devices::ControlRegistry::keyText(entry.key);
        const bool available = instrument.isOffered(entry.key);
        list.append(QJsonObject{{QStringLiteral("name"), toJson(name)},
                                {QStringLiteral("registryKey"), toJson(key)},
                                {QStringLiteral("available"), available}});
        text += fmt::format("\n{} {} {}", padded(name, 20), key,
                            available ? output.paint(Output::Style::Good, "yes") : "no");
    }
    output.result(list, text);
}

} // namespace

void ControlsCommand::addTo(CommandLine& line)
{
    line.addVerb("controls", "List the controls and which of them the instrument offers", &run);
}

} // namespace tarn::console
