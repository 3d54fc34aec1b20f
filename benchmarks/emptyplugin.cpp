// A plug-in with nothing in it.

#include <QObject>
#include <QtPlugin>

namespace tarn::benchmarks {

class EmptyPlugin final : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "tarn.EmptyPlugin")
};

} // namespace tarn::benchmarks

#include "emptyplugin.moc"
