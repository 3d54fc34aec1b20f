#pragma once

#include <devices/service/export.h>

#include <QByteArray>
#include <QLatin1StringView>
#include <QList>
#include <QString>

#include <cstdint>
#include <expected>

namespace tarn::devices::service {

/// The small file store in the instrument's non-volatile memory.
///
/// Threads: thread-safe; blocks until the instrument has answered. Never call an operation from inside
/// a completion or a notification of the device.
///
/// Errors are texts for an engineer: the instrument's own words, or `unavailableMessage` when the
/// instrument does not offer the control or its file memory cannot be used; then no request was
/// made. Exceptions of the device pass through.
class TARN_DEVICES_SERVICE_EXPORT IFileMemoryControl {
public:
    static constexpr std::uint64_t registryKey = 0xe85f16739b17b339; ///< of its entry in the host's registry

    /// The error of every operation when the file memory is unavailable.
    static constexpr QLatin1StringView unavailableMessage{"File memory control is unavailable"};

    /// One entry of the store.
    struct FileInfo {
        QString name; ///< unique within the store
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

    /// The files, in the instrument's order; an empty list is a success.
    [[nodiscard]] virtual std::expected<QList<FileInfo>, QString> fileList() = 0;

    /// The space of the store.
    [[nodiscard]] virtual std::expected<SpaceInfo, QString> spaceInfo() = 0;

    /// The whole contents of `file`, an entry as `fileList()` gave it.
    [[nodiscard]] virtual std::expected<QByteArray, QString> readFile(const FileInfo& file) = 0;

    /// Writes a file under `name`, replacing one that has this name already.
    [[nodiscard]] virtual std::expected<void, QString> writeFile(const QString& name, const QByteArray& contents) = 0;

    /// Deletes `file`, an entry as `fileList()` gave it.
    [[nodiscard]] virtual std::expected<void, QString> deleteFile(const FileInfo& file) = 0;
};

} // namespace tarn::devices::service
