#include <QObject>
#include <QtPlugin>

#include <cstdlib>

namespace {

/// Its code must never run: it was made for an interface of another version.
[[maybe_unused]] const bool loaded = (std::abort(), true);

} // namespace

class WrongInterfaceProvider final : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "tarn.DeviceProvider/999")
};

#include "wronginterfaceprovider.moc"
