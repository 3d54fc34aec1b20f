// A provider of the simulated instrument, under a name of its own.

#include <provider/ideviceprovider.h>
#include <simulator/open.h>

#include <QObject>

class OutsideProvider final : public QObject, public tarn::provider::IDeviceProvider {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TARN_DEVICE_PROVIDER_IID)
    Q_INTERFACES(tarn::provider::IDeviceProvider)

public:
    QString name() const override { return QStringLiteral("outside"); }
    QString description() const override { return QStringLiteral("the simulated instrument, from outside"); }
    bool isSimulated() const override { return true; }
    QString addressSyntax() const override { return {}; }
    QList<tarn::provider::AddressOption> addressOptions() const override { return {}; }
    QList<tarn::provider::Address> addresses() const override { return {}; }

    std::expected<std::shared_ptr<sdk::IVna>, tarn::provider::OpenError>
    open(const tarn::provider::OpenRequest& request) override
    {
        return tarn::simulator::open(request);
    }
};

#include "provider.moc"
