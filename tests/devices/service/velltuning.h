#pragma once

#include <devices/service/sdkvellsynthesiscontrol.h>

#include <support/recordedvellcontrols.h>
#include <support/tuningcontract.h>

namespace tarn::tests {

struct VellSynthesis : Tuning<sdk::service::IVellSynthesisControl, devices::service::SdkVellSynthesisControl,
                              RecordedVellSynthesisControl> {
    static constexpr auto name = "VellSynthesis";

    static Operations operations()
    {
        using A = Adapter;
        return Operations{}
            .value("manualIfEnabled", &A::manualIfEnabled, &A::enableManualIf, {true, false})
            .value("selectedIf", &A::selectedIf, &A::setSelectedIf, anyIntegers())
            .reads("supportedIfs()", &A::supportedIfs, frequencyLists());
    }
};

} // namespace tarn::tests
