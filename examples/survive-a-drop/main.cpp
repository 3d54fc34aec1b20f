// The instrument drops its controls in the middle of every other request and offers new ones. The program goes on using
// the control that it got at the beginning, and looks at the device only to count.

#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>
#include <devices/service/ifilememorycontrol.h>
#include <devices/service/servicecontrols.h>
#include <simulator/open.h>

#include <atomic>
#include <cstdio>

using tarn::devices::ControlRegistry;
using tarn::devices::ControlTypes;
using tarn::devices::InstrumentControls;
using tarn::devices::service::IFileMemoryControl;

namespace {

/// Of all the controls that there are, the entry of the one that this program uses.
ControlRegistry registryOfFileMemory()
{
    ControlRegistry all;
    tarn::devices::service::servicecontrols::registrate(&all);
    ControlRegistry registry;
    registry.addEntry(*all.find(IFileMemoryControl::registryKey));
    return registry;
}

/// Called on a thread of the device.
class Drops final : public sdk::IVna::Observer {
public:
    [[nodiscard]] int count() const { return m_count; }

private:
    void onControlsAboutToBeReleased() override { ++m_count; }
    void onControlsAvailable() override { }

    std::atomic<int> m_count = 0;
};

} // namespace

int main()
{
    const auto device
        = tarn::simulator::open({.address = QStringLiteral("drop-every=2"), .stateFolder = QStringLiteral("none")});
    if (!device) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(device.error().message));
        return 1;
    }

    Drops drops;
    (*device)->addObserver(&drops);

    // The owner of an instrument's controls passes on to them what the device says of coming and going.
    const auto registry = registryOfFileMemory();
    const InstrumentControls controls{*device, registry, ControlTypes<IFileMemoryControl>{}};
    const auto files = controls.control<IFileMemoryControl>();
    if (!files) {
        std::fprintf(stderr, "this instrument has no file memory\n");
        return 1;
    }

    int failed = 0;
    for (int number = 1; number <= 10; ++number) {
        const auto name = QStringLiteral("file%1").arg(number);
        if (const auto written = files->writeFile(name, name.toUtf8()); !written) {
            std::printf("%s: %s\n", qUtf8Printable(name), qUtf8Printable(written.error()));
            ++failed;
        }
    }
    const auto list = files->fileList();

    std::printf("wrote 10 files, %d failed\n", failed);
    std::printf("the instrument has %d files\n", list ? static_cast<int>(list->size()) : 0);
    std::printf("it dropped its controls %s\n", drops.count() > 0 ? "meanwhile" : "never");

    (*device)->removeObserver(&drops); // observers are not owned: before it goes
    return failed == 0 ? 0 : 1;
}
