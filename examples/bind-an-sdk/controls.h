#pragma once

#include "observers.h"

#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>

#include <vendorvna.h>

#include <memory>
#include <string>
#include <vector>

namespace binding {

/// The vendor's handle. The device closes it; it is given back when the last control that somebody still holds is gone.
/// Any thread may be the one, the vendor's too: `vv_free` waits for nobody.
using Handle = std::shared_ptr<vv_device>;

class FileMemory final : public sdk::service::IFileMemoryControl {
public:
    explicit FileMemory(Handle handle);

    bool isAvailable() override;
    void fileList(sdk::Completion<std::vector<FileInfo>> completion) override;
    void spaceInfo(sdk::Completion<SpaceInfo> completion) override;
    void readFile(const FileInfo& file, sdk::Completion<std::vector<std::uint8_t>> completion) override;
    void writeFile(std::string name, std::vector<std::uint8_t> contents, sdk::Completion<> completion) override;
    void deleteFile(const FileInfo& file, sdk::Completion<> completion) override;

private:
    const Handle m_handle;
};

class SerialNumber final : public sdk::service::IMemorySerialNumberControl {
public:
    explicit SerialNumber(Handle handle);

    bool isAvailable() override;
    void serialNumber(sdk::Completion<unsigned int> completion) override;
    void writeSerialNumber(unsigned int serialNumber, sdk::Completion<> completion) override;
    void addObserver(Observer* observer) override;
    void removeObserver(Observer* observer) override;

    /// Passes on what the vendor's library says of a write. On the vendor's thread.
    void notifyProgress(unsigned int done, unsigned int total);

private:
    const Handle m_handle;
    Observers<Observer> m_observers;
};

class LoLeakage final : public sdk::service::ILoLeakageControl {
public:
    explicit LoLeakage(Handle handle);

    bool isEnabled() override;
    void setEnabled(bool enabled) override;

private:
    const Handle m_handle;
};

} // namespace binding
