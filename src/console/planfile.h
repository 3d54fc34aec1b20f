#pragma once

#include <console/sourcefile.h>
#include <vna/frequencysegment.h>

#include <QByteArray>
#include <QJsonObject>

#include <span>
#include <string>
#include <vector>

namespace tarn::console {

/// A frequency plan. `docs/calibration-files.md` describes the file.
using FrequencyPlan = std::vector<vna::FrequencySegment>;

/// The plan in the contents of a file, with at least one segment. Throws `Error` (`LocalFile`).
[[nodiscard]] FrequencyPlan readPlanFile(const SourceFile& file, const QByteArray& bytes);

/// The contents of a file with `plan`.
[[nodiscard]] std::string planFileText(std::span<const vna::FrequencySegment> plan);

/// What such a file holds, as the result of a command.
[[nodiscard]] QJsonObject planJson(std::span<const vna::FrequencySegment> plan);

/// The frequencies of the points of `plan`, in hertz: spaced evenly in each segment, both ends
/// included.
[[nodiscard]] std::vector<double> pointsOf(std::span<const vna::FrequencySegment> plan);

/// A plan for examples.
[[nodiscard]] const FrequencyPlan& examplePlan();

} // namespace tarn::console
