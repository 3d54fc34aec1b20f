// Creates two controls of an instrument by hand and uses them: writes a file, reads it back, and reads the serial
// number.

#include <devices/controlregistry.h>
#include <devices/service/ifilememorycontrol.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/servicecontrols.h>
#include <simulator/open.h>

#include <any>
#include <cstdio>
#include <memory>

using namespace tarn::devices::service;

namespace {

/// The control of type `Control`, or null when the device does not offer it.
template <class Control>
std::shared_ptr<Control> create(const tarn::devices::ControlRegistry& registry, sdk::IVna* device)
{
    // The entry takes a std::any that holds exactly an sdk::IVna*, and returns one that holds the shared pointer.
    const auto control = registry.find(Control::registryKey)->create(device);
    return control.has_value() ? std::any_cast<std::shared_ptr<Control>>(control) : nullptr;
}

int fail(const QString& reason)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(reason));
    return 1;
}

int readFirstFile(IFileMemoryControl& files)
{
    const auto list = files.fileList();
    if (!list)
        return fail(list.error()); // the instrument's own words
    if (list->isEmpty())
        return fail(QStringLiteral("there is no file"));
    const auto contents = files.readFile(list->first());
    if (!contents)
        return fail(contents.error());
    std::printf("%s (%d bytes): %s\n", qUtf8Printable(list->first().name), static_cast<int>(contents->size()),
                contents->constData());
    return 0;
}

} // namespace

int main()
{
    // Once in the life of the program: what can be created.
    tarn::devices::ControlRegistry registry;
    servicecontrols::registrate(&registry);

    const auto device = tarn::simulator::open({.address = {}, .stateFolder = QStringLiteral("none")});
    if (!device)
        return fail(device.error().message + QStringLiteral("; ") + device.error().hint);

    // The controls go before their device: in this order of declaration they do.
    const auto files = create<IFileMemoryControl>(registry, device->get());
    const auto serial = create<ISerialNumberControl>(registry, device->get());
    if (!files || !serial)
        return fail(QStringLiteral("this instrument lacks a control that the program needs"));

    if (const auto number = serial->serialNumber())
        std::printf("serial number %u\n", *number);
    else
        return fail(QStringLiteral("the serial number cannot be read"));

    if (const auto written = files->writeFile(QStringLiteral("notes.txt"), "checked in November"); !written)
        return fail(written.error());
    return readFirstFile(*files);
}
