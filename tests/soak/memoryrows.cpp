#include "memoryrows.h"

#include <cstddef>
#include <cstring>
#include <vector>

namespace tarn::soak {

namespace {

/// A number as the first bytes of something.
template <class Bytes>
Bytes bytesOf(std::uint64_t number, int size)
{
    Bytes bytes(static_cast<typename Bytes::size_type>(size), typename Bytes::value_type{});
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

constexpr auto numberIn = [](const auto& bytes) {
    std::uint64_t number = 0;
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
};

devices::service::IFileMemoryControl::FileInfo fileOf(std::size_t thread)
{
    return {QStringLiteral("Messung %1 \u00b5").arg(thread), 0};
}

/// The identity of the Vell 801, 802 and so on; with these no limit changes.
devices::service::IUsbIdControl::UsbId vell(std::uint64_t number)
{
    return {.vendorId = 0xF3A7,
            .productId = static_cast<std::uint16_t>(0x0801 + number % UsbIdentity::place.range),
            .deviceRelease = 0x0100};
}

/// An answer that counts only if the place of the control is filled.
Answer ifFilled(const Use& use, const Answer& answer)
{
    return use.isFilled ? answer : Answer{};
}

} // namespace

/// Each asks first whether the file memory is available.
Operations<FileMemory::Control> FileMemory::operations()
{
    return {
        {"fileList", Way::Request, Role::Neither,
         [](Control& control, const Use&) { return resultOf(control.fileList()); }, 1, 2},
        {"spaceInfo", Way::Request, Role::Neither,
         [](Control& control, const Use&) { return resultOf(control.spaceInfo()); }, 1, 2},
        {"readFile", Way::Request, Role::Reads,
         [](Control& control, const Use& use) {
             return ifFilled(use, readingOf(control.readFile(fileOf(use.thread)), numberIn));
         },
         1, 2},
        {"writeFile", Way::Request, Role::Writes,
         [](Control& control, const Use& use) {
             return resultOf(control.writeFile(fileOf(use.thread).name, bytesOf<QByteArray>(use.number, 100)));
         },
         1, 2},
        {"deleteFile", Way::Request, Role::Wipes,
         [](Control& control, const Use& use) {
             return ifFilled(use, resultOf(control.deleteFile(fileOf(use.thread))));
         },
         1, 2},
    };
}

Operations<Potentiometers::Control> Potentiometers::operations()
{
    return {
        {"readFromEeprom", Way::Request, Role::Reads,
         [](Control& control, const Use&) {
             return readingOf(control.readFromEeprom(0), [](int value) { return static_cast<std::uint64_t>(value); });
         }},
        {"writeToEeprom", Way::Request, Role::Writes,
         [](Control& control, const Use& use) {
             return resultOf(control.writeToEeprom(0, static_cast<int>(use.number % place.range)));
         }},
        {"writeToRam", Way::Request, Role::Neither,
         [](Control& control, const Use&) { return resultOf(control.writeToRam(1, 1)); }},
        {"potentiometers", Way::Call, Role::Neither,
         [](Control& control, const Use&) {
             static_cast<void>(control.potentiometers());
             return Answer{};
         }},
    };
}

/// What was written counts from the next offer on, so the one that is current says nothing.
Operations<UsbIdentity::Control> UsbIdentity::operations()
{
    return {
        {"currentDeviceProperties", Way::Call, Role::Neither,
         [](Control& control, const Use&) {
             static_cast<void>(control.currentDeviceProperties());
             return Answer{};
         }},
        {"writeUsbId", Way::Request, Role::Writes,
         [](Control& control, const Use& use) {
             return Answer{.isSuccess = control.writeUsbId(vell(use.number)), .number = {}};
         }},
        {"supportedDevices", Way::Call, Role::Neither,
         [](Control& control, const Use&) {
             static_cast<void>(control.supportedDevices());
             return Answer{};
         }},
    };
}

std::uint64_t UsbIdentity::stored(simulator::SimulatedVna& vna)
{
    const auto product = vna.control<Sdk>(Sdk::key)->currentDevice().usbId.productId;
    return std::uint64_t{product} - vell(0).productId;
}

Operations<SerialNumber::Control> SerialNumber::operations()
{
    return {
        {"serialNumber", Way::Request, Role::Reads,
         [](Control& control, const Use&) {
             return readingOf(control.serialNumber(), [](unsigned number) { return std::uint64_t{number}; });
         }},
        {"writeSerialNumber", Way::LongRequest, Role::Writes,
         [](Control& control, const Use& use) {
             return resultOf(control.writeSerialNumber(static_cast<unsigned>(use.number)));
         }},
    };
}

Operations<MemoryOperations::Control> MemoryOperations::operations()
{
    return {
        {"read", Way::LongRequest, Role::Reads,
         [](Control& control, const Use&) { return readingOf(control.read(), numberIn); }},
        {"write", Way::LongRequest, Role::Writes,
         [](Control& control, const Use& use) {
             return resultOf(control.write(bytesOf<std::vector<std::byte>>(use.number, 1024)));
         }},
        {"integrityCheck", Way::LongRequest, Role::Neither,
         [](Control& control, const Use&) { return resultOf(control.integrityCheck()); }},
        {"erase", Way::LongRequest, Role::Wipes,
         [](Control& control, const Use&) { return resultOf(control.erase()); }},
    };
}

} // namespace tarn::soak
