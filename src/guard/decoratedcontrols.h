#pragma once

#include <guard/progress.h>
#include <guard/request.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::guard {

/// A control whose requests go through a `Request`. It does not own the device's control: who uses it does.
template <class Interface>
class Decorated : public Interface {
public:
    Decorated(Interface& control, std::shared_ptr<Host> host)
        : m_control{control}
        , m_host{std::move(host)}
    {
    }

    bool isAvailable() final { return m_control.isAvailable(); }

protected:
    [[nodiscard]] Interface& control() const { return m_control; }
    [[nodiscard]] const std::shared_ptr<Host>& host() const { return m_host; }

    template <class Done, class Operation, class... Arguments>
    void request(std::string_view name, Done& done, Operation operation, Arguments&&... arguments)
    {
        Request<Done>::make(m_host, Interface::key, name, done, [&](auto completer) {
            (m_control.*operation)(std::forward<Arguments>(arguments)..., Done{std::move(completer)});
        });
    }

private:
    Interface& m_control;
    const std::shared_ptr<Host> m_host;
};

class FileMemory final : public Decorated<sdk::service::IFileMemoryControl> {
public:
    using Interface = sdk::service::IFileMemoryControl;
    using Decorated::Decorated;

    void fileList(sdk::Completion<std::vector<FileInfo>> done) override
    {
        request("fileList", done, &Interface::fileList);
    }

    void spaceInfo(sdk::Completion<SpaceInfo> done) override { request("spaceInfo", done, &Interface::spaceInfo); }

    void readFile(const FileInfo& file, sdk::Completion<std::vector<std::uint8_t>> done) override
    {
        request("readFile", done, &Interface::readFile, file);
    }

    void writeFile(std::string name, std::vector<std::uint8_t> contents, sdk::Completion<> done) override
    {
        request("writeFile", done, &Interface::writeFile, std::move(name), std::move(contents));
    }

    void deleteFile(const FileInfo& file, sdk::Completion<> done) override
    {
        request("deleteFile", done, &Interface::deleteFile, file);
    }
};

class MemoryOperations final : public Decorated<sdk::service::IMemoryOperationsControl> {
public:
    using Interface = sdk::service::IMemoryOperationsControl;
    using Decorated::Decorated;

    void read(sdk::Completion<std::vector<std::byte>> done) override { observed("read", done, &Interface::read); }

    void write(std::vector<std::byte> image, sdk::Completion<> done) override
    {
        observed("write", done, &Interface::write, std::move(image));
    }

    void erase(sdk::Completion<> done) override { observed("erase", done, &Interface::erase); }

    void integrityCheck(sdk::Completion<> done) override
    {
        observed("integrityCheck", done, &Interface::integrityCheck);
    }

    /// The host learns of the device's progress from now on.
    void observe() { m_progress.observe(control()); }
    void onDrop() { m_progress.onDrop(); }
    void onOffer()
    {
        m_progress.onOffer();
        observe();
    }

    void addObserver(IObserver* observer) override { control().addObserver(observer); }
    void removeObserver(IObserver* observer) override { control().removeObserver(observer); }

private:
    /// Makes a request that the device tells the progress of.
    template <class Done, class Operation, class... Arguments>
    void observed(std::string_view name, Done& done, Operation operation, Arguments&&... arguments)
    {
        observe();
        request(name, done, operation, std::forward<Arguments>(arguments)...);
    }

    Progress<MemoryListener> m_progress{host()};
};

class Potentiometers final : public Decorated<sdk::service::IPotentiometersControl> {
public:
    using Interface = sdk::service::IPotentiometersControl;
    using Decorated::Decorated;

    std::vector<Potentiometer> potentiometers() override { return control().potentiometers(); }

    void readFromEeprom(unsigned long index, sdk::Completion<int> done) override
    {
        request("readFromEeprom", done, &Interface::readFromEeprom, index);
    }

    void writeToRam(unsigned long index, int value, sdk::Completion<> done) override
    {
        request("writeToRam", done, &Interface::writeToRam, index, value);
    }

    void writeToEeprom(unsigned long index, int value, sdk::Completion<> done) override
    {
        request("writeToEeprom", done, &Interface::writeToEeprom, index, value);
    }
};

class SerialNumber final : public Decorated<sdk::service::IMemorySerialNumberControl> {
public:
    using Interface = sdk::service::IMemorySerialNumberControl;
    using Decorated::Decorated;

    void serialNumber(sdk::Completion<unsigned int> done) override
    {
        request("serialNumber", done, &Interface::serialNumber);
    }

    void writeSerialNumber(unsigned int serialNumber, sdk::Completion<> done) override
    {
        observe();
        request("writeSerialNumber", done, &Interface::writeSerialNumber, serialNumber);
    }

    /// The host learns of the device's progress from now on.
    void observe() { m_progress.observe(control()); }
    void onDrop() { m_progress.onDrop(); }
    void onOffer()
    {
        m_progress.onOffer();
        observe();
    }

    void addObserver(Observer* observer) override { control().addObserver(observer); }
    void removeObserver(Observer* observer) override { control().removeObserver(observer); }

private:
    Progress<SerialNumberListener> m_progress{host()};
};

class UsbIdentity final : public Decorated<sdk::service::IMemoryUsbIdControl> {
public:
    using Interface = sdk::service::IMemoryUsbIdControl;
    using Decorated::Decorated;

    DeviceRecord currentDevice() override { return control().currentDevice(); }
    std::vector<DeviceRecord> supportedDevices() override { return control().supportedDevices(); }

    void writeUsbId(const Interface::UsbId& usbId, sdk::Completion<> done) override
    {
        request("writeUsbId", done, &Interface::writeUsbId, usbId);
    }
};

} // namespace tarn::guard
