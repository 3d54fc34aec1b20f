#pragma once

#include <support/recordedcontrol.h>

#include <sdk/service/ivellsynthesiscontrol.h>

namespace tarn::tests {

class RecordedVellSynthesisControl final : public sdk::service::IVellSynthesisControl, public RecordedControl {
public:
    void setManualIfEnabled(bool enabled) override { called("setManualIfEnabled", enabled); }
    bool manualIfEnabled() override { return answered<bool>("manualIfEnabled"); }
    void setSelectedIf(int index) override { called("setSelectedIf", index); }
    int selectedIf() override { return answered<int>("selectedIf"); }
    std::span<const double> supportedIfs() override { return answered<std::span<const double>>("supportedIfs"); }
};

} // namespace tarn::tests
