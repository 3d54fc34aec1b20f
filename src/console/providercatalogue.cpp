#include <console/providercatalogue.h>

#include <console/devicecall.h>
#include <console/error.h>
#include <console/pluginfile.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>

#include <algorithm>
#include <utility>

namespace tarn::console {

namespace {

QStringList searchFolders()
{
    constexpr auto variable = "TARN_SERVICE_PROVIDERS";
    if (qEnvironmentVariableIsSet(variable))
        return qEnvironmentVariable(variable).split(QDir::listSeparator(), Qt::SkipEmptyParts);
    return {QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/tarn-service/providers"))};
}

std::expected<ProviderCatalogue::Loaded, QString> asked(const QString& file, provider::IDeviceProvider& provider)
{
    try {
        return ProviderCatalogue::Loaded{file, provider};
    } catch (...) {
        return std::unexpected{QStringLiteral("it fails when it is asked what it is: %1")
                                   .arg(QString::fromStdString(caughtError().message()))};
    }
}

} // namespace

ProviderCatalogue::Loaded::Loaded(QString libraryFile, provider::IDeviceProvider& itsProvider)
    : file{std::move(libraryFile)}
    , provider{&itsProvider}
    , name{itsProvider.name()}
    , description{itsProvider.description()}
    , addressSyntax{itsProvider.addressSyntax()}
    , addressOptions{itsProvider.addressOptions()}
    , isSimulated{itsProvider.isSimulated()}
{
}

ProviderCatalogue::ProviderCatalogue()
    : m_folders{searchFolders()}
{
    for (const QDir folder : std::as_const(m_folders)) {
        for (const auto& entry : folder.entryInfoList(QDir::AllEntries | QDir::System, QDir::Name)) {
            const auto file = entry.absoluteFilePath();
            if (!QLibrary::isLibrary(file))
                continue;
            if (auto loaded = load(file))
                m_loaded.push_back(*std::move(loaded));
            else
                m_refused.push_back({file, loaded.error()});
        }
    }
}

const ProviderCatalogue::Loaded* ProviderCatalogue::find(const QString& name) const
{
    const auto found = std::ranges::find(m_loaded, name, &Loaded::name);
    return found == m_loaded.end() ? nullptr : &*found;
}

std::expected<ProviderCatalogue::Loaded, QString> ProviderCatalogue::load(const QString& file) const
{
    if (!QFileInfo{file}.isFile())
        return std::unexpected{QStringLiteral("it is not a file")};
    QPluginLoader loader{file};
    const auto expected = QStringLiteral(TARN_DEVICE_PROVIDER_IID);
    const auto interface = loader.metaData().value(QLatin1StringView{"IID"}).toString();
    if (interface.isEmpty())
        return std::unexpected{QStringLiteral("it is not a Qt plug-in")};
    if (interface != expected)
        return std::unexpected{QStringLiteral("it is a plug-in for '%1', not for '%2'").arg(interface, expected)};
    if (const auto damage = damageOf(file))
        return std::unexpected{*damage};
    const DeviceCall call;
    auto* const root = rootOf(loader);
    if (!root)
        return std::unexpected{QStringLiteral("it cannot be loaded: %1").arg(loader.errorString())};
    auto* const provider = qobject_cast<provider::IDeviceProvider*>(root);
    if (!provider)
        return std::unexpected{QStringLiteral("its root object is a %1, which is not a device provider")
                                   .arg(QLatin1StringView{root->metaObject()->className()})};
    auto loaded = asked(file, *provider);
    if (loaded && find(loaded->name))
        return std::unexpected{QStringLiteral("there is a provider named '%1' already").arg(loaded->name)};
    return loaded;
}

} // namespace tarn::console
