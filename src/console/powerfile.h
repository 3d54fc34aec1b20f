#pragma once

#include <console/sourcefile.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>

#include <QByteArray>

#include <span>
#include <string>
#include <vector>

namespace tarn::console {

/// One measurement of a factory power calibration.
using PowerPoint = devices::service::SdkVellFactoryPowerCalibrationControl::PowerCalPoint;

/// The points in the contents of a file: at least one, at frequencies that never fall. Throws
/// `Error` (`LocalFile`). `docs/calibration-files.md` describes the file.
[[nodiscard]] std::vector<PowerPoint> readPowerFile(const SourceFile& file, const QByteArray& bytes);

/// The contents of a file with `points`.
[[nodiscard]] std::string powerFileText(std::span<const PowerPoint> points);

/// Plausible points: two levels at each of `frequencies`.
[[nodiscard]] std::vector<PowerPoint> examplePowerPoints(std::span<const double> frequencies);

} // namespace tarn::console
