#include "controls.h"

#include "request.h"

#include <utility>

namespace binding {

FileMemory::FileMemory(Handle handle)
    : m_handle{std::move(handle)}
{
}

/// This maker's instruments all have one.
bool FileMemory::isAvailable()
{
    return true;
}

void FileMemory::fileList(sdk::Completion<std::vector<FileInfo>> completion)
{
    request<std::vector<FileInfo>>(std::move(completion), [this](vv_answer answer, void* context) {
        return vv_list_files(m_handle.get(), answer, context);
    });
}

void FileMemory::spaceInfo(sdk::Completion<SpaceInfo> completion)
{
    request<SpaceInfo>(std::move(completion), [this](vv_answer answer, void* context) {
        return vv_file_space(m_handle.get(), answer, context);
    });
}

void FileMemory::readFile(const FileInfo& file, sdk::Completion<std::vector<std::uint8_t>> completion)
{
    request<std::vector<std::uint8_t>>(std::move(completion), [&](vv_answer answer, void* context) {
        return vv_read_file(m_handle.get(), file.name.c_str(), answer, context);
    });
}

/// GUARANTEE, files: a write that fails has left the file as it was. This maker's library says so of itself; otherwise
/// a binding writes a second file and renames it.
void FileMemory::writeFile(std::string name, std::vector<std::uint8_t> contents, sdk::Completion<> completion)
{
    request<>(std::move(completion), [&](vv_answer answer, void* context) {
        return vv_write_file(m_handle.get(), name.c_str(), contents.data(), contents.size(), answer, context);
    });
}

void FileMemory::deleteFile(const FileInfo& file, sdk::Completion<> completion)
{
    request<>(std::move(completion), [&](vv_answer answer, void* context) {
        return vv_delete_file(m_handle.get(), file.name.c_str(), answer, context);
    });
}

SerialNumber::SerialNumber(Handle handle)
    : m_handle{std::move(handle)}
{
}

bool SerialNumber::isAvailable()
{
    return true;
}

void SerialNumber::serialNumber(sdk::Completion<unsigned int> completion)
{
    request<unsigned int>(std::move(completion), [this](vv_answer answer, void* context) {
        return vv_read_serial(m_handle.get(), answer, context);
    });
}

void SerialNumber::writeSerialNumber(unsigned int serialNumber, sdk::Completion<> completion)
{
    request<>(std::move(completion), [&](vv_answer answer, void* context) {
        return vv_write_serial(m_handle.get(), serialNumber, answer, context);
    });
}

void SerialNumber::addObserver(Observer* observer)
{
    m_observers.add(observer);
}

void SerialNumber::removeObserver(Observer* observer)
{
    m_observers.remove(observer);
}

/// GUARANTEE, order: the progress of a write comes before its completion, as the vendor's thread brings both in order.
void SerialNumber::notifyProgress(unsigned int done, unsigned int total)
{
    m_observers.notify(&Observer::onWriteProgressChanged, done, total);
}

LoLeakage::LoLeakage(Handle handle)
    : m_handle{std::move(handle)}
{
}

/// GUARANTEE, neutral values: a getter has no way to fail. What cannot be read is off, 0 or empty, as it is for the
/// application while the instrument is away.
bool LoLeakage::isEnabled()
{
    unsigned value = 0;
    return vv_get_register(m_handle.get(), VV_REGISTER_LO_LEAKAGE, &value) == VV_OK && value != 0;
}

/// GUARANTEE, neutral values: what cannot be set is dropped. A value that the instrument refuses is an exception
/// (`std::out_of_range`); a switch has none.
void LoLeakage::setEnabled(bool enabled)
{
    static_cast<void>(vv_set_register(m_handle.get(), VV_REGISTER_LO_LEAKAGE, enabled ? 1 : 0));
}

} // namespace binding
