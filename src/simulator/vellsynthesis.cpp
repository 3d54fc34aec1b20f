#include <sdk/service/ivellsynthesiscontrol.h>
#include <simulator/modulecontrol.h>
#include <simulator/modulecontrols.h>

#include <array>
#include <span>

namespace tarn::simulator {

namespace {

constexpr std::array ifs{1e6, 3e6, 7.5e6, 15e6, 30e6}; // Hz

struct VellSynthesis {
    static constexpr const char* section = "vellSynthesis";

    bool isIfManual = false;
    int selectedIf = 2;
};

void fields(auto& archive, Is<VellSynthesis> auto& record)
{
    archive("manual IF", record.isIfManual);
    archive("selected IF", record.selectedIf, indexOf(ifs));
}

class VellSynthesisControl final : public ModuleControl<sdk::service::IVellSynthesisControl, VellSynthesis> {
public:
    using ModuleControl::ModuleControl;

    void setManualIfEnabled(bool enabled) override { set(&Record::isIfManual, enabled); }
    bool manualIfEnabled() override { return get(&Record::isIfManual); }
    void setSelectedIf(int index) override { set(&Record::selectedIf, index); }
    int selectedIf() override { return get(&Record::selectedIf); }
    std::span<const double> supportedIfs() override { return constant(std::span<const double>{ifs}); }
};

} // namespace

MakeControl installVellSynthesis(const std::shared_ptr<Bench>& bench)
{
    return installModule<VellSynthesisControl>(bench);
}

} // namespace tarn::simulator
