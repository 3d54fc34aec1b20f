// Files and images of the memory, 64 KiB to 256 MiB: through the adapters, against memcpy into the same kind of buffer.

#include "fakes.h"
#include "ways.h"

#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::benchmarks {
namespace {

using SdkFiles = sdk::service::IFileMemoryControl;
using SdkMemory = sdk::service::IMemoryOperationsControl;
using devices::service::SdkFileMemoryControl;
using devices::service::SdkMemoryOperationsControl;

/// Gives what was put into it, and forgets what it is given.
class Files final : public SdkFiles {
public:
    bool isAvailable() override { return true; }
    void fileList(sdk::Completion<std::vector<FileInfo>> done) override { done({}, {}); }
    void spaceInfo(sdk::Completion<SpaceInfo> done) override { done({}, {}); }
    void readFile(const FileInfo& /*file*/, sdk::Completion<std::vector<std::uint8_t>> done) override
    {
        done(std::move(contents), {});
    }
    void writeFile(std::string /*name*/, std::vector<std::uint8_t> written, sdk::Completion<> done) override
    {
        consume(written);
        done({});
    }
    void deleteFile(const FileInfo& /*file*/, sdk::Completion<> done) override { done({}); }

    std::vector<std::uint8_t> contents;
};

class Memory final : public SdkMemory {
public:
    bool isAvailable() override { return true; }
    void read(sdk::Completion<std::vector<std::byte>> done) override { done(std::move(image), {}); }
    void write(std::vector<std::byte> written, sdk::Completion<> done) override
    {
        consume(written);
        done({});
    }
    void erase(sdk::Completion<> done) override { done({}); }
    void integrityCheck(sdk::Completion<> done) override { done({}); }
    void addObserver(IObserver* /*observer*/) override { }
    void removeObserver(IObserver* /*observer*/) override { }

    std::vector<std::byte> image;
};

/// How often a buffer of that size is made at a time.
std::uint64_t timesOf(std::size_t size)
{
    constexpr std::size_t altogether = std::size_t{1} << 30U;
    return std::clamp<std::size_t>(altogether / size, 2, 2'000);
}

std::vector<Way> files(std::size_t kib)
{
    const auto size = kib * 1024;
    const auto of = " of " + std::to_string(kib) + " KiB";
    const auto times = timesOf(size);
    const auto files = std::make_shared<Files>();
    const auto adapter = adapterOf<SdkFileMemoryControl, SdkFiles>(files);
    const auto contents = [size] { return std::vector<std::uint8_t>(size, 0xa5); };
    const QByteArray bytes{static_cast<qsizetype>(size), 'x'};
    return {
        prepared("read a file" + of, "library", times, contents,
                 [adapter, files](auto file) {
                     files->contents = std::move(file);
                     return adapter->readFile({QStringLiteral("file"), 0});
                 }),
        prepared("read a file" + of, "memcpy", times, contents,
                 [](auto file) {
                     QByteArray copy{static_cast<qsizetype>(file.size()), Qt::Uninitialized};
                     std::memcpy(copy.data(), file.data(), file.size());
                     return copy;
                 }),
        repeated("write a file" + of, "library",
                 [adapter, bytes] { return adapter->writeFile(QStringLiteral("file"), bytes); }),
        repeated("read a file" + of, "an empty one",
                 [adapter] { return adapter->readFile({QStringLiteral("file"), 0}); }),
        repeated("write a file" + of, "an empty one",
                 [adapter] { return adapter->writeFile(QStringLiteral("file"), {}); }),
        repeated("write a file" + of, "memcpy",
                 [bytes] {
                     const auto* const begin = reinterpret_cast<const std::uint8_t*>(bytes.constData());
                     return std::vector<std::uint8_t>{begin, begin + bytes.size()};
                 }),
    };
}

std::vector<Way> images(std::size_t kib)
{
    const auto size = kib * 1024;
    const auto of = " of " + std::to_string(kib) + " KiB";
    const auto times = timesOf(size);
    const auto memory = std::make_shared<Memory>();
    const auto adapter = adapterOf<SdkMemoryOperationsControl, SdkMemory>(memory);
    const auto contents = [size] { return std::vector<std::byte>(size, std::byte{0xa5}); };
    const auto image = std::make_shared<const std::vector<std::byte>>(contents());
    return {
        prepared("read an image" + of, "library", times, contents,
                 [adapter, memory](auto stored) {
                     memory->image = std::move(stored);
                     return adapter->read();
                 }),
        prepared("read an image" + of, "memcpy", times, contents,
                 [](auto stored) { return std::vector<std::byte>(stored); }),
        repeated("write an image" + of, "library", [adapter, image] { return adapter->write(*image); }),
        repeated("read an image" + of, "an empty one", [adapter] { return adapter->read(); }),
        repeated("write an image" + of, "an empty one", [adapter] { return adapter->write({}); }),
        repeated("write an image" + of, "memcpy",
                 [image] { return std::vector<std::byte>{image->begin(), image->end()}; }),
    };
}

} // namespace

std::vector<Way> allWays()
{
    return forEach(isCounted ? Sizes{64} : Sizes{64, 1024, 16'384, 262'144}, &files, &images);
}

} // namespace tarn::benchmarks
