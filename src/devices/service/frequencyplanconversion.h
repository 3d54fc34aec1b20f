#pragma once

#include <devices/service/export.h>
#include <sdk/frequencyplan.h>
#include <vna/frequencysegment.h>

#include <vector>

namespace tarn::devices::service {

/// The SDK's form of a frequency plan: the same segments in the same order, field by field and bit by
/// bit. Nothing is checked, sorted or merged; a point count above 2^31 - 1 keeps its bits.
///
/// Threads: reentrant; at once.
[[nodiscard]] TARN_DEVICES_SERVICE_EXPORT sdk::FrequencyPlan
toSdkFrequencyPlan(const std::vector<vna::FrequencySegment>& plan);

/// The application's form of a frequency plan, in the same manner.
///
/// Threads: reentrant; at once.
[[nodiscard]] TARN_DEVICES_SERVICE_EXPORT std::vector<vna::FrequencySegment>
fromSdkFrequencyPlan(const sdk::FrequencyPlan& plan);

} // namespace tarn::devices::service
