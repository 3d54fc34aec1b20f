#pragma once

#include <sdk/completion.h>
#include <sdk/key.h>
#include <sdk/visibility.h>

#include <cstdint>
#include <string>
#include <vector>

namespace sdk::service {

/// The small file store in the instrument's non-volatile memory.
///
/// Threads: thread-safe; at once, but an operation whose request is completed before it returns takes as
/// long as the request. A request reports its end through the completion; see `Completion` for what a
/// binding guarantees. Requests may be outstanding in any number and complete in any order.
///
/// Errors are reported as error codes whose `message()` is fit to be shown to an engineer. A request
/// that ends with an error has left the files as they were: whoever implements this guarantees it.
class SDK_API IFileMemoryControl {
public:
    static constexpr Key key{0xf667df356df31ce4}; ///< the device is asked for the control by it

    /// One entry of the store.
    struct FileInfo {
        std::string name; ///< UTF-8, unique within the store
        std::uint64_t size; ///< length of the contents in bytes

        friend bool operator==(const FileInfo&, const FileInfo&) = default;
    };

    /// How much the store holds, in bytes.
    struct SpaceInfo {
        std::uint64_t total; ///< capacity of the store
        std::uint64_t used; ///< taken by contents and by the store's own records
        std::uint64_t free; ///< left for new files

        friend bool operator==(const SpaceInfo&, const SpaceInfo&) = default;
    };

    IFileMemoryControl() = default;
    IFileMemoryControl(const IFileMemoryControl&) = delete;
    IFileMemoryControl& operator=(const IFileMemoryControl&) = delete;
    virtual ~IFileMemoryControl() = default;

    /// Whether the instrument's file memory can be used now. A control whose memory is not fitted
    /// or not formatted exists and says no.
    [[nodiscard]] virtual bool isAvailable() = 0;

    /// Lists the files, in the store's own order.
    virtual void fileList(Completion<std::vector<FileInfo>> completion) = 0;

    /// Queries the space.
    virtual void spaceInfo(Completion<SpaceInfo> completion) = 0;

    /// Reads the whole contents of `file`, an entry as the list gave it; the name alone decides.
    virtual void readFile(const FileInfo& file, Completion<std::vector<std::uint8_t>> completion) = 0;

    /// Writes a file, replacing the contents of one that has the same name. The store holds the
    /// old or the new contents, never a mixture.
    virtual void writeFile(std::string name, std::vector<std::uint8_t> contents, Completion<> completion) = 0;

    /// Deletes `file`, an entry as the list gave it; the name alone decides.
    virtual void deleteFile(const FileInfo& file, Completion<> completion) = 0;
};

} // namespace sdk::service
