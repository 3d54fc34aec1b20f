#include <devices/service/sdkfilememorycontrol.h>

#include <devices/service/bridge.h>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace tarn::devices::service {

namespace {

using Sdk = sdk::service::IFileMemoryControl;
using FileInfo = IFileMemoryControl::FileInfo;
using SpaceInfo = IFileMemoryControl::SpaceInfo;

Sdk::FileInfo toSdk(const FileInfo& file)
{
    return {file.name.toStdString(), file.size};
}

std::vector<std::uint8_t> toSdk(const QByteArray& contents)
{
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(contents.constData());
    return {bytes, bytes + contents.size()};
}

FileInfo toFileInfo(const Sdk::FileInfo& file)
{
    return {QString::fromUtf8(file.name), file.size};
}

QList<FileInfo> toFileList(const std::vector<Sdk::FileInfo>& files)
{
    QList<FileInfo> list;
    list.reserve(static_cast<qsizetype>(files.size()));
    for (const auto& file : files)
        list.append(toFileInfo(file));
    return list;
}

SpaceInfo toSpaceInfo(const Sdk::SpaceInfo& space)
{
    static_assert(sizeof(SpaceInfo) == 24 && sizeof(Sdk::SpaceInfo) == 24);
    return {space.total, space.used, space.free};
}

QByteArray toByteArray(const std::vector<std::uint8_t>& contents)
{
    return {reinterpret_cast<const char*>(contents.data()), static_cast<qsizetype>(contents.size())};
}

} // namespace

SdkFileMemoryControl::SdkFileMemoryControl(ReacquiringControl<sdk::service::IFileMemoryControl> control)
    : m_control{std::move(control)}
{
}

std::expected<QList<FileInfo>, QString> SdkFileMemoryControl::fileList()
{
    return request<QList<FileInfo>, toFileList>([](Sdk& sdk, auto done) { sdk.fileList(done); });
}

std::expected<SpaceInfo, QString> SdkFileMemoryControl::spaceInfo()
{
    return request<SpaceInfo, toSpaceInfo>([](Sdk& sdk, auto done) { sdk.spaceInfo(done); });
}

std::expected<QByteArray, QString> SdkFileMemoryControl::readFile(const FileInfo& file)
{
    return request<QByteArray, toByteArray>([&](Sdk& sdk, auto done) { sdk.readFile(toSdk(file), done); });
}

std::expected<void, QString> SdkFileMemoryControl::writeFile(const QString& name, const QByteArray& contents)
{
    return request<void, std::identity{}>(
        [&](Sdk& sdk, auto done) { sdk.writeFile(name.toStdString(), toSdk(contents), done); });
}

std::expected<void, QString> SdkFileMemoryControl::deleteFile(const FileInfo& file)
{
    return request<void, std::identity{}>([&](Sdk& sdk, auto done) { sdk.deleteFile(toSdk(file), done); });
}

// One bridged call; the control must be there and say that its memory is available.
template <class T, auto convert, class Request>
std::expected<T, QString> SdkFileMemoryControl::request(Request request) const
{
    const auto control = m_control.lock();
    if (!control || !control->isAvailable())
        return std::unexpected{QString{unavailableMessage}};
    return awaitOrMessage<T, convert>([&](auto done) { request(*control, done); });
}

} // namespace tarn::devices::service
