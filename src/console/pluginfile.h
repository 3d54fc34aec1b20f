#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QIODevice;
class QObject;
class QPluginLoader;

namespace tarn::console {

/// Why the plug-in in `file` must not be loaded: it has been cut off, or it does not agree with the checksum in
/// `file`.sha256; if there is none, loading it ends the process that does so, or does not come to an end in about
/// ten seconds. Nothing if it can be loaded.
[[nodiscard]] std::optional<QString> damageOf(const QString& file);

/// The root object of a plug-in, which is loaded with all that it needs: a function that is missing is noticed now, and
/// not by the end of the program when it is called. Null if it cannot be loaded.
[[nodiscard]] QObject* rootOf(QPluginLoader& loader);

/// Whether the library that `contents` holds ends before its table of sections, the last thing that a linker writes.
/// Reads from the beginning.
[[nodiscard]] bool isCutOff(QIODevice& contents);

/// Whether `contents` is what `checksum` says, a line as `sha256sum` writes it. Reads from the beginning.
[[nodiscard]] bool agreesWith(const QByteArray& checksum, QIODevice& contents);

} // namespace tarn::console
