#include <simulator/flashmemory.h>

#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include <libdeflate.h>

namespace tarn::simulator {

namespace {

const QString sectionName = QStringLiteral("memory");
const QString capacityKey = QStringLiteral("capacity");
constexpr char erased = '\xFF';

/// The checksum of `bytes` followed by `erasedCount` erased bytes.
std::uint32_t checksumOf(std::span<const char> bytes, std::uint32_t erasedCount)
{
    static const std::vector<char> erasedBlock(FlashMemory::blockSize, erased);
    static const auto ofErasedBlock = ::libdeflate_crc32(0, erasedBlock.data(), erasedBlock.size());
    if (bytes.empty() && erasedCount == erasedBlock.size())
        return ofErasedBlock;
    const auto checksum = ::libdeflate_crc32(0, bytes.data(), bytes.size());
    return ::libdeflate_crc32(checksum, erasedBlock.data(), erasedCount);
}

std::uint32_t checkedLength(const Storage& storage, const QJsonValue& value, std::uint32_t most)
{
    const auto length = value.toDouble(-1.0);
    if (length < 0.0 || length != std::floor(length))
        storage.refuse(QStringLiteral("the length of the memory's image is not a number of bytes"));
    if (length > most)
        storage.refuse(QStringLiteral("its image of %1 bytes is larger than the memory of %2 bytes; give a larger "
                                      "memory-size")
                           .arg(length, 0, 'f', 0)
                           .arg(most));
    return static_cast<std::uint32_t>(length);
}

std::uint32_t checkedCapacity(const Storage& storage, const QJsonValue& value)
{
    const auto capacity = value.toDouble(FlashMemory::defaultCapacity);
    if ((!value.isUndefined() && !value.isDouble()) || capacity < FlashMemory::sectorSize
        || capacity > FlashMemory::largestCapacity || std::fmod(capacity, FlashMemory::sectorSize) != 0.0)
        storage.refuse(QStringLiteral("the capacity of the memory is not whole sectors up to 256 MiB"));
    return static_cast<std::uint32_t>(capacity);
}

QJsonObject checkedSection(const Storage& storage)
{
    const auto section = storage.section(sectionName);
    if (!section.isUndefined() && !section.isObject())
        storage.refuse(QStringLiteral("\"memory\" is not an object"));
    return section.toObject();
}

std::vector<std::uint32_t> checkedChecksums(const Storage& storage, const QJsonValue& value)
{
    constexpr int digits = 8;
    const auto text = value.toString();
    bool isValid = value.isString() && text.size() % digits == 0;
    std::vector<std::uint32_t> checksums;
    for (qsizetype at = 0; isValid && at < text.size(); at += digits)
        checksums.push_back(text.mid(at, digits).toUInt(&isValid, 16));
    if (!isValid)
        storage.refuse(QStringLiteral("the checksums of the memory are not hexadecimal numbers"));
    return checksums;
}

} // namespace

FlashMemory::FlashMemory(std::optional<std::uint32_t> capacity, const Storage& storage)
    : FlashMemory{capacity, storage, checkedSection(storage)}
{
}

FlashMemory::FlashMemory(std::optional<std::uint32_t> capacity, const Storage& storage, const QJsonObject& section)
    : m_capacity{capacity.value_or(checkedCapacity(storage, section[capacityKey]))}
    , m_length{m_capacity}
{
    if (section.isEmpty() || section.keys() == QStringList{capacityKey})
        noteChecksums(0, m_capacity);
    else
        load(storage, section);
}

void FlashMemory::load(const Storage& storage, const QJsonObject& section)
{
    m_length = checkedLength(storage, section[QStringLiteral("length")], m_capacity);
    m_checksums = checkedChecksums(storage, section[QStringLiteral("checksums")]);
    const auto size = checkedLength(storage, section[QStringLiteral("size")], m_capacity);
    const auto digest = section[QStringLiteral("sha256")];
    if (!digest.isString())
        storage.refuse(QStringLiteral("the memory's image has no digest"));
    m_written = storage.block(digest.toString());
    if (m_written.size() != size || size > m_length || m_length == 0)
        storage.refuse(QStringLiteral("the size of the memory's image is wrong"));
    if (m_checksums.size() > blocksUpTo(m_length))
        storage.refuse(QStringLiteral("the memory has more checksums than its image has blocks"));
}

std::error_code FlashMemory::save(Storage& storage) const
{
    const auto savedCapacity = static_cast<double>(m_capacity);
    if (isBlank())
        return storage.save(sectionName, QJsonObject{{capacityKey, savedCapacity}}, {});
    QString checksums;
    for (const auto checksum : m_checksums)
        checksums += QStringLiteral("%1").arg(checksum, 8, 16, QLatin1Char{'0'});
    const auto digest = storage.nameOf(m_written);
    const QJsonObject section{{capacityKey, savedCapacity},
                              {QStringLiteral("length"), static_cast<double>(m_length)},
                              {QStringLiteral("checksums"), checksums},
                              {QStringLiteral("size"), m_written.size()},
                              {QStringLiteral("sha256"), digest}};
    return storage.save(sectionName, section, {{digest, m_written}});
}

void FlashMemory::startWriting(std::uint32_t length)
{
    m_written.truncate(length); // what lies behind the image cannot be seen again
    m_written.reserve(length);
    m_length = length;
    m_checksums.clear();
}

void FlashMemory::write(std::span<const std::byte> image, std::uint32_t from, std::uint32_t to)
{
    for (auto at = from; at < to;) {
        const auto sectorEnd = std::min((at / sectorSize + 1) * sectorSize, m_length);
        const auto end = std::min(to, sectorEnd);
        if (m_written.size() < sectorEnd)
            m_written.resize(sectorEnd);
        if (at % sectorSize == 0)
            std::fill(m_written.data() + end, m_written.data() + sectorEnd, erased);
        std::memcpy(m_written.data() + at, image.data() + at, end - at);
        noteChecksums(at, end); // while the block is in the processor's cache
        at = end;
    }
}

void FlashMemory::startErasing()
{
    m_length = m_capacity;
    m_checksums.clear();
}

void FlashMemory::erase(std::uint32_t from, std::uint32_t to)
{
    const auto end = std::min<qsizetype>(to, m_written.size());
    if (from < end)
        std::fill(m_written.data() + from, m_written.data() + end, erased);
    if (to == m_capacity)
        m_written = {};
    noteChecksums(from, to);
}

void FlashMemory::read(std::uint32_t from, std::uint32_t to, std::vector<std::byte>& bytes) const
{
    const auto written = std::clamp<qsizetype>(m_written.size(), from, to);
    const auto* const data = reinterpret_cast<const std::byte*>(m_written.constData());
    bytes.insert(bytes.end(), data + from, data + written);
    bytes.insert(bytes.end(), static_cast<std::size_t>(to - written), std::byte{0xFF});
}

bool FlashMemory::verify(std::uint32_t from, std::uint32_t to) const
{
    for (auto block = blocksUpTo(from); block < blocksUpTo(to); ++block) {
        if (block >= m_checksums.size() || m_checksums[block] != checksum(block))
            return false;
    }
    return true;
}

void FlashMemory::corrupt(std::uint64_t seed)
{
    constexpr int flips = 3;
    std::mt19937_64 random{seed};
    for (int i = 0; i < flips && !m_written.isEmpty(); ++i) {
        const auto at = static_cast<qsizetype>(random() % static_cast<std::uint64_t>(m_written.size()));
        m_written[at] = static_cast<char>(m_written[at] ^ 0x10);
    }
}

bool FlashMemory::isBlank() const
{
    return m_written.isEmpty() && m_length == m_capacity && m_checksums.size() == blocksUpTo(m_length);
}

void FlashMemory::noteChecksums(std::uint32_t from, std::uint32_t to)
{
    for (auto block = blocksUpTo(from); block < blocksUpTo(to); ++block)
        m_checksums.push_back(checksum(block));
}

std::uint32_t FlashMemory::checksum(std::uint32_t block) const
{
    const auto from = block * blockSize;
    const auto to = std::min(from + blockSize, m_length);
    const auto written = static_cast<std::uint32_t>(std::clamp<qsizetype>(m_written.size(), from, to));
    return checksumOf({m_written.constData() + from, written - from}, to - written);
}

/// The number of blocks that end there or before.
std::uint32_t FlashMemory::blocksUpTo(std::uint32_t position) const
{
    return position == m_length ? (m_length + blockSize - 1) / blockSize : position / blockSize;
}

} // namespace tarn::simulator
