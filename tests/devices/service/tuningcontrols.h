#pragma once

#include "dorntuning.h"
#include "quilltuning.h"
#include "sabletuning.h"
#include "velltuning.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn::tests {

/// All adapters that only get and set.
using TuningControls
    = testing::Types<QuillPower, QuillSynthesis, DornPower, DornSynthesis, SablePower, SableSynthesis, VellSynthesis>;

struct TuningName {
    template <class Tuning>
    static std::string GetName(int /*index*/)
    {
        return Tuning::name;
    }
};

} // namespace tarn::tests
