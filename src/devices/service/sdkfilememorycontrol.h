#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <devices/service/ifilememorycontrol.h>
#include <sdk/service/ifilememorycontrol.h>

namespace tarn::devices::service {

/// `IFileMemoryControl` over the SDK's control of the same name. See there.
class TARN_DEVICES_SERVICE_EXPORT SdkFileMemoryControl final : public IFileMemoryControl {
public:
    /// Threads: reentrant; at once.
    explicit SdkFileMemoryControl(ReacquiringControl<sdk::service::IFileMemoryControl> control);

    [[nodiscard]] std::expected<QList<FileInfo>, QString> fileList() override;
    [[nodiscard]] std::expected<SpaceInfo, QString> spaceInfo() override;
    [[nodiscard]] std::expected<QByteArray, QString> readFile(const FileInfo& file) override;
    [[nodiscard]] std::expected<void, QString> writeFile(const QString& name, const QByteArray& contents) override;
    [[nodiscard]] std::expected<void, QString> deleteFile(const FileInfo& file) override;

private:
    template <class T, auto convert, class Request>
    [[nodiscard]] std::expected<T, QString> request(Request request) const;

    ReacquiringControl<sdk::service::IFileMemoryControl> m_control;
};

} // namespace tarn::devices::service
