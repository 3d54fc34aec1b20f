#include <provider/ideviceprovider.h>
#include <simulator/address.h>
#include <simulator/open.h>

#include <QObject>

namespace tarn::simulator {

/// The plug-in's root object.
class SimulatorProvider final : public QObject, public provider::IDeviceProvider {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TARN_DEVICE_PROVIDER_IID)
    Q_INTERFACES(tarn::provider::IDeviceProvider)

public:
    [[nodiscard]] QString name() const override { return QStringLiteral("simulator"); }
    [[nodiscard]] QString description() const override { return QStringLiteral("simulated instruments"); }
    [[nodiscard]] bool isSimulated() const override { return true; }
    [[nodiscard]] QString addressSyntax() const override { return simulator::addressSyntax(); }

    [[nodiscard]] QList<provider::AddressOption> addressOptions() const override { return simulator::addressOptions(); }

    [[nodiscard]] QList<provider::Address> addresses() const override
    {
        return {{QString::fromLatin1(defaultInstrument), QStringLiteral("the default simulated instrument")}};
    }

    [[nodiscard]] std::expected<std::shared_ptr<sdk::IVna>, provider::OpenError>
    open(const provider::OpenRequest& request) override
    {
        return simulator::open(request);
    }
};

} // namespace tarn::simulator

#include "simulatorprovider.moc"
