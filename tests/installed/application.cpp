// Reads the serial number of a simulated instrument.

#include <devices/controlregistry.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/servicecontrols.h>
#include <guard/guard.h>
#include <simulator/open.h>

#include <any>
#include <iostream>
#include <memory>

int main()
{
    using tarn::devices::service::ISerialNumberControl;

    const auto device = tarn::simulator::open({.address = {}, .stateFolder = QStringLiteral("none")});
    if (!device) {
        std::cerr << device.error().message.toStdString() << '\n';
        return 1;
    }
    const auto guarded = tarn::guard::guarded(*device, {});

    tarn::devices::ControlRegistry registry;
    tarn::devices::service::servicecontrols::registrate(&registry);
    const auto created = registry.find(ISerialNumberControl::registryKey)->create(guarded.get());
    const auto control = std::any_cast<std::shared_ptr<ISerialNumberControl>>(created);
    const auto number = control->serialNumber();
    if (!number) {
        std::cerr << "The serial number cannot be read.\n";
        return 1;
    }
    std::cout << *number << '\n';
}
