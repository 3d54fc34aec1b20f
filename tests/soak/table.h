#pragma once

#include "exercise.h"

#include <memory>
#include <vector>

namespace tarn::soak {

/// The instrument with all of its controls.
[[nodiscard]] std::unique_ptr<Instrument> makeInstrument(Ledger& ledger);

/// One exercise for each control.
[[nodiscard]] std::vector<std::unique_ptr<Exercise>> makeExercises(Instrument& instrument, std::size_t threads);

} // namespace tarn::soak
