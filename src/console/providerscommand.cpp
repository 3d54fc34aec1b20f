#include <console/providerscommand.h>

#include <console/commandline.h>
#include <console/text.h>

#include <QJsonArray>
#include <QJsonObject>

namespace tarn::console {

namespace {

using Loaded = ProviderCatalogue::Loaded;

using Addresses = QList<provider::Address>;

/// What the provider can reach now.
Addresses addressesOf(const Loaded& loaded)
{
    const DeviceCall call;
    return loaded.provider->addresses();
}

QJsonObject described(const Loaded& loaded, const Addresses& reached)
{
    QJsonArray addresses;
    for (const auto& address : reached)
        addresses.append(QJsonObject{{QStringLiteral("address"), address.address},
                                     {QStringLiteral("description"), address.description}});
    QJsonArray options;
    for (const auto& option : loaded.addressOptions)
        options.append(QJsonObject{{QStringLiteral("name"), option.name},
                                   {QStringLiteral("value"), option.value},
                                   {QStringLiteral("default"), option.defaultValue},
                                   {QStringLiteral("description"), option.description}});
    return {{QStringLiteral("name"), loaded.name},    {QStringLiteral("description"), loaded.description},
            {QStringLiteral("file"), loaded.file},    {QStringLiteral("addressSyntax"), loaded.addressSyntax},
            {QStringLiteral("addresses"), addresses}, {QStringLiteral("addressOptions"), options}};
}

std::string text(const Output& output, const Loaded& loaded, const Addresses& reached)
{
    auto text = fmt::format("{}  {}\n  from {}\n\n", output.paint(Output::Style::Heading, escaped(loaded.name)),
                            escaped(loaded.description), escaped(loaded.file));
    text += "  Instruments (the first is the default):\n";
    for (const auto& address : reached)
        text += fmt::format("    {} {}\n", padded(escaped(address.address), 24), escaped(address.description));
    text += fmt::format("\n  Address: {}\n", escaped(loaded.addressSyntax));
    for (const auto& option : loaded.addressOptions) {
        const auto usual = option.defaultValue.isEmpty() ? QString{} : QStringLiteral(" [%1]").arg(option.defaultValue);
        const auto form = escaped(option.name + u'=' + option.value);
        const auto* const separator = characters(form) > 24 ? "\n                             " : " ";
        text += fmt::format("    {}{}{}{}\n", padded(form, 24), separator, escaped(option.description), escaped(usual));
    }
    return text;
}

void run(Session& session)
{
    const auto& output = session.output();
    const auto& catalogue = session.providers();
    QJsonArray providers;
    std::string lines;
    for (const auto& loaded : catalogue.loaded()) {
        const auto reached = addressesOf(loaded);
        providers.append(described(loaded, reached));
        lines += (lines.empty() ? "" : "\n") + text(output, loaded, reached);
    }
    QJsonArray refused;
    for (const auto& file : catalogue.refused()) {
        refused.append(QJsonObject{{QStringLiteral("file"), file.file}, {QStringLiteral("reason"), file.reason}});
        output.message(fmt::format("not used: {}: {}", file.file, file.reason));
    }
    if (providers.isEmpty())
        output.message(fmt::format("no provider was found in {}; TARN_SERVICE_PROVIDERS names other folders",
                                   catalogue.folders().join(QStringLiteral(", "))));
    output.result(QJsonObject{{QStringLiteral("providers"), providers}, {QStringLiteral("refused"), refused}}, lines);
}

} // namespace

void ProvidersCommand::addTo(CommandLine& line)
{
    line.addVerb("providers", "List the providers of instruments and how to address them", &run);
}

} // namespace tarn::console
