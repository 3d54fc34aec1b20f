#pragma once

#include <console/commandtable.h>
#include <console/instrument.h>

#include <optional>

/// The requests that the program makes of the instrument's file memory. A request that finds the
/// control dropped waits a little while for its return.
///
/// All throw `Error`: `NotOffered` and `InstrumentLost` when the control is not there, `Failed`
/// with the instrument's own words when it refuses.
namespace tarn::console::filerequests {

using FileInfo = FilesCommand::Control::FileInfo;
using SpaceInfo = FilesCommand::Control::SpaceInfo;

[[nodiscard]] QList<FileInfo> list(const Instrument& instrument);
[[nodiscard]] SpaceInfo space(const Instrument& instrument);

/// The entry of that name, if there is one.
[[nodiscard]] std::optional<FileInfo> find(const Instrument& instrument, const QString& name);

/// The entry of that name; throws `Error` (`NotFound`) when there is none.
[[nodiscard]] FileInfo findOrThrow(const Instrument& instrument, const QString& name);

[[nodiscard]] QByteArray contentsOf(const Instrument& instrument, const FileInfo& file);

/// Writes a file, replacing one of that name, reads it back and compares.
void write(const Instrument& instrument, const QString& name, const QByteArray& contents);

/// Deletes a file and sees to it that it is gone.
void remove(const Instrument& instrument, const FileInfo& file);

} // namespace tarn::console::filerequests
