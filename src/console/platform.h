#pragma once

#include <QByteArrayView>

#include <optional>
#include <string>
#include <string_view>
#include <system_error>

/// What the program needs of the operating system beyond Qt. Everything POSIX stands behind this
/// header and `interruptguard.h`.
namespace tarn::console::platform {

enum class Stream { Input, Output, Error };

/// To be called before anything else. Makes a reader who went away an
/// ordinary write error, and sees to it that no file opened later takes the place of a standard
/// stream that came closed.
void prepare();

[[nodiscard]] bool isTerminal(Stream stream);

/// The columns of a terminal; 80 for one that does not tell.
[[nodiscard]] int columns(Stream stream);

/// Whether nobody will read what is written to standard output any more.
[[nodiscard]] bool isOutputClosed();

/// Writes all of `bytes` at once, unbuffered.
[[nodiscard]] std::error_code write(Stream stream, std::string_view bytes);

/// The same if it needs no waiting; `bytes` are a few lines at most.
void tryWrite(Stream stream, std::string_view bytes);

/// The same on standard output, with more to come: once it is written, there is room for last words again.
[[nodiscard]] std::error_code writePart(std::string_view bytes);

/// Writes what the program says as it ends, on another thread than that of its command. On standard output the command
/// writes nothing more from then on. There the words wait for the end of a part that is being written, five seconds at
/// most, and are left out if it has not come by then, or after a result.
void writeLastWords(Stream stream, std::string_view words);

/// A line of standard input without its end, empty at the end of the input; nothing when the file
/// descriptor `cancel` becomes readable first.
[[nodiscard]] std::optional<std::string> readLine(int cancel);

enum class Existing { Keep, Replace };

/// Writes a file whole or not at all: to a temporary name in the same folder, synced, then
/// renamed. A link at `path` is never followed. With `Existing::Keep` anything at `path` is
/// `std::errc::file_exists`.
[[nodiscard]] std::error_code writeFile(const std::string& path, QByteArrayView contents, Existing existing);

} // namespace tarn::console::platform
