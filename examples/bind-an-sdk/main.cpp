// A host: loads the plug-in, opens its instrument and uses what the instrument offers.

#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>
#include <devices/service/ifilememorycontrol.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/servicecontrols.h>
#include <provider/ideviceprovider.h>

#include <QPluginLoader>

#include <cstdio>

using namespace tarn::devices::service;
using tarn::devices::ControlTypes;
using tarn::devices::InstrumentControls;

namespace {

/// Called on the vendor's thread, before the write returns.
class ProgressPrinter final : public ISerialNumberControl::IObserver {
    void onWriteProgressChanged(const Progress& progress) override
    {
        std::printf("  %u of %u\n", progress.done, progress.total);
    }
};

int use(const InstrumentControls& controls)
{
    const auto files = controls.control<IFileMemoryControl>();
    const auto serial = controls.control<ISerialNumberControl>();
    const auto loLeakage = controls.control<SdkLoLeakageControl>();
    if (!files || !serial || !loLeakage)
        return 1;

    if (const auto list = files->fileList(); !list || !list->isEmpty())
        return 1;
    const auto missing = files->readFile({.name = QStringLiteral("notes.txt"), .size = 0});
    std::printf("reading notes.txt: %s\n", missing ? "done" : qUtf8Printable(missing.error()));
    const auto written = files->writeFile(QStringLiteral("notes.txt"), "bound in November");
    const auto contents = files->readFile({.name = QStringLiteral("notes.txt"), .size = 0});
    std::printf("writing and reading it: %s\n", written && contents ? contents->constData() : "failed");

    const auto refused = files->writeFile(QString{40, u'x'}, "the library refuses the name");
    std::printf("writing a file with a long name: %s\n", refused ? "done" : qUtf8Printable(refused.error()));

    ProgressPrinter printer;
    serial->addObserver(printer);
    std::printf("writing the serial number\n");
    const auto isWritten = serial->writeSerialNumber(4712).has_value(); // the instrument restarts meanwhile
    serial->removeObserver(printer);
    std::printf("serial number %u\n", isWritten ? serial->serialNumber().value_or(0) : 0);

    loLeakage->setEnabled(true);
    std::printf("LO leakage %s\n", loLeakage->isEnabled() ? "on" : "off");
    return 0;
}

} // namespace

int main()
{
    QPluginLoader loader{QStringLiteral(PROVIDER_FILE)};
    auto* const provider = qobject_cast<tarn::provider::IDeviceProvider*>(loader.instance());
    if (!provider) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(loader.errorString()));
        return 1;
    }
    auto device = provider->open({.address = {}, .stateFolder = QStringLiteral("none")});
    if (!device) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(device.error().message));
        return 1;
    }
    std::printf("a %s\n", (*device)->model().name().data());

    // All controls that there are, and the types of those that this instrument offers.
    tarn::devices::ControlRegistry registry;
    servicecontrols::registrate(&registry);
    const InstrumentControls controls{*std::move(device), registry,
                                      ControlTypes<IFileMemoryControl, ISerialNumberControl, SdkLoLeakageControl>{}};
    return use(controls);
}
