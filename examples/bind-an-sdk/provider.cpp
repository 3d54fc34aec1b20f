// The plug-in: how a host gets to the instruments.

#include "device.h"

#include <provider/ideviceprovider.h>

#include <QObject>

namespace binding {

class VendorProvider final : public QObject, public tarn::provider::IDeviceProvider {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TARN_DEVICE_PROVIDER_IID)
    Q_INTERFACES(tarn::provider::IDeviceProvider)

public:
    [[nodiscard]] QString name() const override { return QStringLiteral("vendor"); }
    [[nodiscard]] QString description() const override { return QStringLiteral("instruments at a USB port"); }

    /// A host asks its user before it changes anything.
    [[nodiscard]] bool isSimulated() const override { return false; }

    [[nodiscard]] QString addressSyntax() const override { return QStringLiteral("usb:N, the number of the port"); }
    [[nodiscard]] QList<tarn::provider::AddressOption> addressOptions() const override { return {}; }

    [[nodiscard]] QList<tarn::provider::Address> addresses() const override
    {
        return {{QStringLiteral("usb:1"), QStringLiteral("the instrument at the first port")}};
    }

    [[nodiscard]] std::expected<std::shared_ptr<sdk::IVna>, tarn::provider::OpenError>
    open(const tarn::provider::OpenRequest& request) override
    {
        const auto address = request.address.isEmpty() ? addresses().first().address : request.address;
        if (auto* const device = vv_open(address.toUtf8().constData()))
            return std::make_shared<Device>(device);
        return std::unexpected{tarn::provider::OpenError{tarn::provider::OpenError::Code::NotFound,
                                                         QStringLiteral("there is no instrument at %1").arg(address),
                                                         QStringLiteral("connect it and switch it on")}};
    }
};

} // namespace binding

#include "provider.moc"
