#pragma once

#include <console/sourcefile.h>
#include <vna/errorterms.h>

#include <QByteArray>

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::console {

/// The error terms in the contents of a file: of at least one port, at ascending frequencies. Throws
/// `Error` (`LocalFile`). `docs/calibration-files.md` describes the file.
[[nodiscard]] vna::ErrorTerms readTermsFile(const SourceFile& file, const QByteArray& bytes);

/// The contents of a file with `terms`.
[[nodiscard]] std::string termsFileText(const vna::ErrorTerms& terms);

/// The most ports that a file may have: keeps the number of pairs within reason.
inline constexpr std::uint32_t mostPorts = 64;

/// Plausible terms of `portCount` ports, different at every place.
[[nodiscard]] vna::ErrorTerms exampleTerms(std::size_t portCount, std::vector<double> frequencies);

} // namespace tarn::console
