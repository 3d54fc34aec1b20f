#include <console/session.h>

#include <console/devicecall.h>
#include <console/text.h>

#include <QDir>

#include <utility>

namespace tarn::console {

namespace {

/// `bytes`, which the command line or the environment gives for `what`, as text.
QString textOf(std::string_view what, const std::string& bytes)
{
    const auto text = decoded(bytes);
    if (!text)
        throw Error{ErrorCode::Usage, fmt::format("the {} '{}' {}", what, bytes, text.error()),
                    "name one that is spelled in UTF-8"};
    return *text;
}

/// Where a provider may keep what must last.
QString stateFolder(const std::optional<std::string>& option)
{
    auto chosen = textOf("state folder", option.value_or(qgetenv("TARN_SERVICE_STATE").toStdString()));
    if (option && chosen.isEmpty())
        throw Error{ErrorCode::Usage, "--state needs a folder", "name one, or 'none' to keep nothing"};
    if (chosen == QLatin1StringView{"none"})
        return chosen;
    if (!chosen.isEmpty())
        return QDir::cleanPath(QDir::current().absoluteFilePath(chosen));
    const auto base = qEnvironmentVariable("XDG_STATE_HOME");
    const auto standard = QDir::isAbsolutePath(base) ? base : QDir::homePath() + QStringLiteral("/.local/state");
    return QDir::cleanPath(standard + QStringLiteral("/tarn-service"));
}

ErrorCode errorCode(provider::OpenError::Code code)
{
    using Code = provider::OpenError::Code;
    switch (code) {
    case Code::NotFound:
        return ErrorCode::NotFound;
    case Code::InvalidAddress:
        return ErrorCode::Usage;
    case Code::Busy:
        return ErrorCode::Busy;
    case Code::State:
        return ErrorCode::LocalFile;
    case Code::Failed:
        break;
    }
    return ErrorCode::Failed;
}

} // namespace

Session::Session(GlobalOptions options, const Output& output)
    : m_options{std::move(options)}
    , m_output{output}
{
    limitDeviceCalls(m_options.timeout, [output = m_output] { output.endUnanswered(); });
}

const ProviderCatalogue& Session::providers()
{
    if (!m_providers) {
        m_providers.emplace();
        for (const auto& loaded : m_providers->loaded())
            m_output.detail(fmt::format("provider '{}' from {}", loaded.name, loaded.file));
        for (const auto& refused : m_providers->refused())
            m_output.detail(fmt::format("not used: {}: {}", refused.file, refused.reason));
    }
    return *m_providers;
}

const ProviderCatalogue::Loaded& Session::provider()
{
    const auto& catalogue = providers();
    if (const auto* const found = catalogue.find(textOf("provider", m_options.provider)))
        return *found;
    QStringList names;
    for (const auto& loaded : catalogue.loaded())
        names.append(loaded.name);
    auto hint = names.isEmpty()
        ? fmt::format("no provider was found in {}; TARN_SERVICE_PROVIDERS names other folders",
                      catalogue.folders().join(QStringLiteral(", ")))
        : fmt::format("there are: {}; 'tarn-service providers' describes them", names.join(QStringLiteral(", ")));
    for (const auto& refused : catalogue.refused())
        hint += fmt::format("; not used: {}: {}", refused.file, refused.reason);
    throw Error{ErrorCode::NotFound, fmt::format("there is no provider '{}'", m_options.provider), hint};
}

Instrument& Session::instrument()
{
    if (!m_instrument) {
        const DeviceCall call;
        m_instrument = std::make_unique<Instrument>(openDevice(), m_output, m_options.timeout);
    }
    return *m_instrument;
}

QString Session::address() const
{
    return textOf("address", m_options.address.value_or(std::string{}));
}

std::shared_ptr<sdk::IVna> Session::openDevice()
{
    const provider::OpenRequest request{address(), stateFolder(m_options.state)};
    const auto& source = provider();
    const DeviceCall call;
    auto device = source.provider->open(request);
    if (!device)
        throw Error{errorCode(device.error().code), device.error().message.toStdString(),
                    device.error().hint.toStdString()};
    if (!*device)
        throw Error{ErrorCode::Failed, fmt::format("provider '{}' opened nothing", m_options.provider),
                    "report this to whoever made the provider"};
    const auto which = request.address.isEmpty() ? fmt::format("the default instrument of '{}'", m_options.provider)
                                                 : fmt::format("'{}'", request.address);
    m_output.detail(
        fmt::format("opened {} (model {}), state in {}", which, (*device)->model().name(), request.stateFolder));
    return *std::move(device);
}

void Session::close(int code)
{
    limitDeviceCalls(m_options.timeout, [output = m_output, code] { output.endUnclosed(code); });
    // Never over: plug-ins go after `main`, and may not come back from that.
    [[maybe_unused]] static const auto* const untilTheEnd = new DeviceCall; // NOLINT(*-owning-memory)
    m_instrument.reset();
}

} // namespace tarn::console
