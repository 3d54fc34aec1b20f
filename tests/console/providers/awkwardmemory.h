#pragma once

#include "awkwardstuck.h"

#include <sdk/models.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// The controls of a device memory that may be forgetful: then they accept every change and make
/// none. They report no progress.
namespace awkward {

class MemoryOperations final : public sdk::service::IMemoryOperationsControl {
public:
    explicit MemoryOperations(const std::string& behaviour)
        : m_forgetful{behaviour == "forgetful"}
    {
    }

    bool isAvailable() override { return true; }
    void read(sdk::Completion<std::vector<std::byte>> completion) override { completion(m_image, {}); }

    void write(std::vector<std::byte> image, sdk::Completion<> completion) override
    {
        enter("memory-write");
        if (!m_forgetful)
            m_image = std::move(image);
        completion({});
    }

    void erase(sdk::Completion<> completion) override
    {
        if (!m_forgetful)
            m_image.assign(m_image.size(), std::byte{0xFF});
        completion({});
    }

    void integrityCheck(sdk::Completion<> completion) override { completion({}); }
    void addObserver(IObserver* /*observer*/) override { }
    void removeObserver(IObserver* /*observer*/) override { }

private:
    const bool m_forgetful;
    std::vector<std::byte> m_image{16};
};

class SerialNumber final : public sdk::service::IMemorySerialNumberControl {
public:
    explicit SerialNumber(const std::string& behaviour)
        : m_forgetful{behaviour == "forgetful"}
    {
    }

    bool isAvailable() override { return true; }
    void serialNumber(sdk::Completion<unsigned int> completion) override { completion(m_number, {}); }

    void writeSerialNumber(unsigned int serialNumber, sdk::Completion<> completion) override
    {
        if (!m_forgetful)
            m_number = serialNumber;
        completion({});
    }

    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }

private:
    const bool m_forgetful;
    unsigned int m_number = 0;
};

/// Has two potentiometers of one name, and one called like the index of another.
class Potentiometers final : public sdk::service::IPotentiometersControl {
public:
    explicit Potentiometers(const std::string& behaviour)
        : m_forgetful{behaviour == "forgetful"}
    {
    }

    bool isAvailable() override { return true; }

    std::vector<Potentiometer> potentiometers() override
    {
        enter("potentiometers");
        return {{"twin", 0, 9}, {"twin", 0, 9}, {"0", -9, 9}, {"\x1b[2Jclear", 0, 9}};
    }

    void readFromEeprom(unsigned long index, sdk::Completion<int> completion) override
    {
        completion(m_values.at(index), {});
    }

    void writeToRam(unsigned long /*index*/, int /*value*/, sdk::Completion<> completion) override { completion({}); }

    void writeToEeprom(unsigned long index, int value, sdk::Completion<> completion) override
    {
        if (!m_forgetful)
            m_values.at(index) = value;
        completion({});
    }

private:
    const bool m_forgetful;
    std::array<int, 4> m_values{1, 2, 3, 4};
};

/// Two of its identities have the same name; those of a hostile one must not be trusted.
class UsbId final : public sdk::service::IMemoryUsbIdControl {
public:
    explicit UsbId(const std::string& behaviour)
        : m_forgetful{behaviour == "forgetful"}
        , m_hostile{behaviour == "hostile"}
    {
    }

    bool isAvailable() override { return true; }
    DeviceRecord currentDevice() override
    {
        enter("usb");
        return supportedDevices().at(m_current);
    }

    std::vector<DeviceRecord> supportedDevices() override
    {
        const auto first = m_hostile ? sdk::Model{"One \x1b[2J"} : sdk::models::pell::pell101;
        const auto second = m_hostile ? sdk::Model{"Two \x1b[2J\u202e"} : sdk::models::pell::pell102;
        return {{{0x1234, 1, 0x100}, first, 1, {}},
                {{0x1234, 2, 0x100}, second, 1, {}},
                {{0x1234, 3, 0x100}, second, 2, {}}};
    }

    void writeUsbId(const IMemoryUsbIdControl::UsbId& usbId, sdk::Completion<> completion) override
    {
        if (!m_forgetful)
            m_current = usbId.productId - 1U;
        completion({});
    }

private:
    const bool m_forgetful;
    const bool m_hostile;
    std::size_t m_current = 0;
};

} // namespace awkward
