// Files and images of the memory, 64 KiB to 256 MiB: through the adapters, against memcpy into the same kind of buffer.

#include "ways.h"

#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
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
        benchmark::DoNotOptimize(written.data());
        benchmark::ClobberMemory();
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
        benchmark::DoNotOptimize(written.data());
        benchmark::ClobberMemory();
        done({});
    }
    void erase(sdk::Completion<> done) override { done({}); }
    void integrityCheck(sdk::Completion<> done) override { done({}); }
    void addObserver(IObserver* /*observer*/) override { }
    void removeObserver(IObserver* /*observer*/) override { }

    std::vector<std::byte> image;
};

template <class Adapter, class Interface, class Control>
std::shared_ptr<Adapter> adapterOf(const std::shared_ptr<Control>& control)
{
    return std::make_shared<Adapter>(devices::ReacquiringControl<Interface>{
        [control] { return sdk::ControlHandle<Interface>{std::shared_ptr<Interface>{control}}; }});
}

/// Uses the bytes that `buffer` has, and lets it go.
template <class Buffer>
void use(Buffer buffer)
{
    benchmark::DoNotOptimize(buffer.data());
    benchmark::ClobberMemory();
}

template <class Byte>
void copyInto(std::vector<Byte>& to, const void* from, std::size_t size)
{
    to.resize(size);
    std::memcpy(to.data(), from, size);
}

void addFiles(std::size_t size, const std::string& of)
{
    const auto files = std::make_shared<Files>();
    const auto adapter = adapterOf<SdkFileMemoryControl, SdkFiles>(files);
    const auto prepare = [size] { return std::vector<std::uint8_t>(size, 0xa5); };
    add("read a file" + of, "library", prepare, [adapter, files](auto contents) {
        files->contents = std::move(contents);
        use(*adapter->readFile({QStringLiteral("file"), 0}));
    });
    add("read a file" + of, "memcpy", prepare, [](auto contents) {
        QByteArray bytes{static_cast<qsizetype>(contents.size()), Qt::Uninitialized};
        std::memcpy(bytes.data(), contents.data(), contents.size());
        use(std::move(bytes));
    });

    const QByteArray bytes{static_cast<qsizetype>(size), 'x'};
    add("write a file" + of, "library",
        [adapter, bytes] { benchmark::DoNotOptimize(adapter->writeFile(QStringLiteral("file"), bytes)); });
    add("write a file" + of, "memcpy", [bytes] {
        const auto* const begin = reinterpret_cast<const std::uint8_t*>(bytes.constData());
        use(std::vector<std::uint8_t>{begin, begin + bytes.size()});
    });
}

void addImages(std::size_t size, const std::string& of)
{
    const auto memory = std::make_shared<Memory>();
    const auto adapter = adapterOf<SdkMemoryOperationsControl, SdkMemory>(memory);
    const auto prepare = [size] { return std::vector<std::byte>(size, std::byte{0xa5}); };
    add("read an image" + of, "library", prepare, [adapter, memory](auto image) {
        memory->image = std::move(image);
        use(*adapter->read());
    });
    add("read an image" + of, "memcpy", prepare, [](auto image) {
        std::vector<std::byte> copy;
        copyInto(copy, image.data(), image.size());
        use(std::move(copy));
    });

    const auto image = std::make_shared<const std::vector<std::byte>>(size, std::byte{0xa5});
    add("write an image" + of, "library", [adapter, image] { benchmark::DoNotOptimize(adapter->write(*image)); });
    add("write an image" + of, "memcpy", [image] { use(std::vector<std::byte>{image->begin(), image->end()}); });
}

void addAll()
{
    constexpr std::size_t kib = 1024;
    for (const auto size : std::initializer_list<std::size_t>{64, 1024, 16 * kib, 256 * kib}) {
        const auto of = " of " + std::to_string(size) + " KiB";
        addFiles(size * kib, of);
        addImages(size * kib, of);
    }
}

} // namespace
} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    return tarn::benchmarks::runAll(argc, argv, &tarn::benchmarks::addAll);
}
