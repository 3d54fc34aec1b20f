#include <fuzz/fuzz.h>

#include <console/pluginfile.h>

#include <QBuffer>
#include <QCryptographicHash>

#include <cstring>

#include <elf.h>

using namespace tarn::console;
using tarn::fuzz::require;

namespace {

bool endsAfterItsSections(const QByteArray& library)
{
    Elf64_Ehdr header{};
    if (library.size() < static_cast<qsizetype>(sizeof(header)))
        return false;
    std::memcpy(&header, library.data(), sizeof(header));
    const auto size = static_cast<std::uint64_t>(library.size());
    return header.e_shoff <= size && std::uint64_t{header.e_shnum} * header.e_shentsize <= size - header.e_shoff;
}

void readLibrary(QByteArray library)
{
    QBuffer contents{&library};
    require(contents.open(QIODevice::ReadOnly), "bytes can be read");
    require(isCutOff(contents) != endsAfterItsSections(library), "a library that holds its sections is not cut off");
}

void readChecksum(const QByteArray& checksum, QByteArray library)
{
    QBuffer contents{&library};
    require(contents.open(QIODevice::ReadOnly), "bytes can be read");
    const auto own = QCryptographicHash::hash(library, QCryptographicHash::Sha256).toHex();
    require(agreesWith(own + checksum, contents), "a file agrees with its checksum, whatever stands after it");
    require(agreesWith(checksum, contents) == (checksum.size() >= 64 && checksum.first(64) == own),
            "a file agrees with no other checksum");
}

} // namespace

/// A library, and the same bytes as a checksum and the library that it is of.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray library{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    readLibrary(library);
    const auto endOfLine = library.indexOf('\n') + 1;
    readChecksum(library.first(endOfLine), library.sliced(endOfLine));
    return 0;
}
