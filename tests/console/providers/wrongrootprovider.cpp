#include <provider/ideviceprovider.h>

#include <QObject>

/// Says that it is a provider, and is none.
class WrongRootProvider final : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TARN_DEVICE_PROVIDER_IID)
};

#include "wrongrootprovider.moc"
