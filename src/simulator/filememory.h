#pragma once

#include <sdk/service/ifilememorycontrol.h>
#include <simulator/bench.h>
#include <simulator/export.h>
#include <utils/mutex.h>

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace tarn::simulator {

/// The file store of the instrument: files under unique names, in ascending byte order of the
/// names, in a memory of fixed size. Thread-safe.
///
/// A name is UTF-8 text of 1 to 255 bytes without a null character; anything else is
/// `Error::BadName`. Besides its contents each file takes one record of 256 bytes.
class TARN_DEVICE_SIMULATOR_EXPORT FileStore {
public:
    using FileInfo = sdk::service::IFileMemoryControl::FileInfo;
    using SpaceInfo = sdk::service::IFileMemoryControl::SpaceInfo;
    using Contents = std::vector<std::uint8_t>;
    using Files = std::map<std::string, std::shared_ptr<const Contents>, std::less<>>;

    /// Makes the files durable before they are taken over; an error leaves the store as it was.
    using Keep = std::function<std::error_code(const Files&)>;

    static constexpr std::uint64_t capacity = 1'048'576; ///< bytes
    static constexpr std::uint64_t recordSize = 256; ///< bytes taken by each file besides its contents
    static constexpr std::size_t maximumNameLength = 255; ///< bytes

    explicit FileStore(Files files = {}, Keep keep = {});

    [[nodiscard]] static bool isValidName(const std::string& name);
    [[nodiscard]] static std::uint64_t used(const Files& files);

    [[nodiscard]] std::vector<FileInfo> list() const;
    [[nodiscard]] SpaceInfo space() const;

    /// `Error::NotFound` for a name that the store does not hold.
    [[nodiscard]] std::expected<Contents, std::error_code> read(const std::string& name) const;
    [[nodiscard]] std::error_code remove(const std::string& name);

    /// Adds the file or replaces its contents. `Error::Full` when it does not fit; what the file
    /// takes now counts as free.
    [[nodiscard]] std::error_code write(const std::string& name, Contents contents);

private:
    [[nodiscard]] std::error_code take(Files files) TARN_REQUIRES(m_mutex);

    const Keep m_keep;
    mutable utils::Mutex m_mutex;
    Files m_files TARN_GUARDED_BY(m_mutex);
};

/// Puts the file store into an instrument, with the files that its storage holds. Throws
/// `StateError` if they cannot be used.
[[nodiscard]] MakeControl installFileMemory(const std::shared_ptr<Bench>& bench);

} // namespace tarn::simulator
