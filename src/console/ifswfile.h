#pragma once

#include <console/sourcefile.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <QByteArray>

#include <string>
#include <vector>

namespace tarn::console {

/// What a factory calibration of the IF switches measured.
using IfswData = devices::service::SdkVellIfswCalibrationControl::IfswCalibrationData;

/// The data in the contents of a file: ascending frequencies, and ratios and linearities of every
/// receiver. Throws `Error` (`LocalFile`). `docs/calibration-files.md` describes the file.
[[nodiscard]] IfswData readIfswFile(const SourceFile& file, const QByteArray& bytes);

/// The contents of a file with `data`.
[[nodiscard]] std::string ifswFileText(const IfswData& data);

/// Plausible data at `frequencies`, different at every place.
[[nodiscard]] IfswData exampleIfswData(std::vector<double> frequencies);

} // namespace tarn::console
