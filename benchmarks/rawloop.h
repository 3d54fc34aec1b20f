#pragma once

#include <devices/service/iserialnumbercontrol.h>

#include <vector>

namespace tarn::benchmarks {

/// Tells all of them, by nothing but a loop. It stands in a library of its own, as the loop that it is held against
/// does: a call from one binary into another takes a fifth longer than one within a program.
void tellAllFromAfar(const std::vector<devices::service::ISerialNumberControl::IObserver*>& observers,
                     const devices::service::Progress& progress);

} // namespace tarn::benchmarks
