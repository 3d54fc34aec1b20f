#include <provider/ideviceprovider.h>

#include <QObject>

/// Nobody has it.
std::shared_ptr<sdk::IVna> openWithAFunctionThatIsMissing();

/// Calls something that no library has, as soon as an instrument is opened.
class MissingFunctionProvider final : public QObject, public tarn::provider::IDeviceProvider {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TARN_DEVICE_PROVIDER_IID)
    Q_INTERFACES(tarn::provider::IDeviceProvider)

public:
    [[nodiscard]] QString name() const override { return QStringLiteral("missing"); }
    [[nodiscard]] QString description() const override { return {}; }
    [[nodiscard]] bool isSimulated() const override { return true; }
    [[nodiscard]] QString addressSyntax() const override { return {}; }
    [[nodiscard]] QList<tarn::provider::AddressOption> addressOptions() const override { return {}; }
    [[nodiscard]] QList<tarn::provider::Address> addresses() const override { return {}; }
    std::expected<std::shared_ptr<sdk::IVna>, tarn::provider::OpenError>
    open(const tarn::provider::OpenRequest& /*request*/) override
    {
        return openWithAFunctionThatIsMissing();
    }
};

#include "missingfunctionprovider.moc"
