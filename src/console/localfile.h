#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::console {

/// More bytes than any instrument holds in a file or in its memory: keeps an endless file from
/// filling this computer's memory.
inline constexpr std::size_t largestFile = 256 << 20;

/// The contents of a file of this computer; `-` is standard input. Throws `Error` (`LocalFile`),
/// also when there are more than `limit` bytes.
[[nodiscard]] QByteArray readLocalFile(const std::string& path, std::size_t limit = largestFile);

/// The same for the image of a memory.
[[nodiscard]] std::vector<std::byte> readLocalImage(const std::string& path, std::size_t limit = largestFile);

enum class LocalWrite {
    Written,
    Identical, ///< the file was there already, with these contents
};

/// Throws as `writeLocalFile` for what no contents could be written to.
void checkDestination(const std::string& path);

/// Writes a file of this computer, whole or not at all. Throws `Error`: `Refused` for a link,
/// for anything else that is not a regular file, and for a file with other contents unless
/// `overwrite` is given; `LocalFile` when it cannot be written.
LocalWrite writeLocalFile(const std::string& path, QByteArrayView contents, bool overwrite);

} // namespace tarn::console
