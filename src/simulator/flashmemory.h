#pragma once

#include <simulator/clock.h>
#include <simulator/export.h>
#include <simulator/storage.h>

#include <QByteArray>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <system_error>
#include <vector>

namespace tarn::simulator {

/// The contents of the memory device: serial NOR flash, programmed in pages and erased in sectors
/// to 0xFF, with the length of the image that was written last and a CRC-32 (the one of IEEE 802.3)
/// of each of its blocks beside it. While nothing is written the image is the whole memory.
///
/// An image is written from front to back; the length is set at the beginning and the checksum of
/// a block as soon as the block is complete. An image that was not completed therefore lacks
/// checksums and cannot be verified. Erasing is the same with an image of 0xFF.
///
/// | operation       | time    |
/// |-----------------|---------|
/// | read a page     | 0.02 ms |
/// | program a page  | 0.7 ms  |
/// | erase a sector  | 45 ms   |
///
/// Positions and lengths are bytes. Holds the image once. Not thread-safe.
class TARN_DEVICE_SIMULATOR_EXPORT FlashMemory {
public:
    static constexpr std::uint32_t pageSize = 256;
    static constexpr std::uint32_t sectorSize = 4096;
    static constexpr std::uint32_t blockSize = 65536; ///< what one checksum covers
    static constexpr std::uint32_t defaultCapacity = 4U << 20U;
    static constexpr std::uint32_t largestCapacity = 256U << 20U;
    static constexpr Duration pageReadTime = std::chrono::microseconds{20};
    static constexpr Duration pageProgramTime = std::chrono::microseconds{700};
    static constexpr Duration sectorEraseTime = std::chrono::milliseconds{45};

    /// The memory that `storage` holds, or one of `capacity` bytes with its image. A new one has the
    /// default capacity. Throws `StateError` if what is held cannot be used.
    FlashMemory(std::optional<std::uint32_t> capacity, const Storage& storage);

    [[nodiscard]] std::uint32_t capacity() const { return m_capacity; }
    [[nodiscard]] std::uint32_t imageLength() const { return m_length; }

    /// Makes the image one of `length` bytes, of which none is written yet.
    void startWriting(std::uint32_t length);

    /// Writes the bytes from `from` to `to` of `image`, in ascending order without gaps. A sector
    /// is erased when its first byte is written.
    void write(std::span<const std::byte> image, std::uint32_t from, std::uint32_t to);

    /// The same for erasing the memory.
    void startErasing();
    void erase(std::uint32_t from, std::uint32_t to);

    /// Appends the bytes from `from` to `to` to `bytes`.
    void read(std::uint32_t from, std::uint32_t to, std::vector<std::byte>& bytes) const;

    /// Whether the checksums of the blocks that end after `from` and not after `to` are right.
    [[nodiscard]] bool verify(std::uint32_t from, std::uint32_t to) const;

    /// Flips some bits of what was written last, the same with the same seed.
    void corrupt(std::uint64_t seed);

    /// Makes the contents durable.
    [[nodiscard]] std::error_code save(Storage& storage) const;

private:
    FlashMemory(std::optional<std::uint32_t> capacity, const Storage& storage, const QJsonObject& section);
    void load(const Storage& storage, const QJsonObject& section);
    /// Whether the memory is as it was when it was new.
    [[nodiscard]] bool isBlank() const;
    void noteChecksums(std::uint32_t from, std::uint32_t to);
    [[nodiscard]] std::uint32_t checksum(std::uint32_t block) const;
    [[nodiscard]] std::uint32_t blocksUpTo(std::uint32_t position) const;

    const std::uint32_t m_capacity;
    std::uint32_t m_length; ///< of the image
    QByteArray m_written; ///< the memory from its first byte; what comes after it is erased
    std::vector<std::uint32_t> m_checksums; ///< of the blocks that are complete
};

} // namespace tarn::simulator
