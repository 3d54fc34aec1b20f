#include <sdk/service/idornsynthesiscontrol.h>
#include <simulator/modulecontrol.h>
#include <simulator/modulecontrols.h>

#include <array>

namespace tarn::simulator {

namespace {

constexpr std::array frequencies{5e6, 10e6, 12.8e6, 25e6}; // Hz

struct DornSynthesis {
    static constexpr const char* section = "dornSynthesis";

    double referenceFrequency = 10e6; // Hz
};

void fields(auto& archive, Is<DornSynthesis> auto& record)
{
    archive("reference frequency", record.referenceFrequency, OneOf{frequencies});
}

class DornSynthesisControl final : public ModuleControl<sdk::service::IDORNSynthesisControl, DornSynthesis> {
public:
    using ModuleControl::ModuleControl;

    Frequencies availableReferenceFrequencies() override
    {
        return constant(Frequencies(frequencies.begin(), frequencies.end()));
    }

    double currentReferenceFrequency() override { return get(&Record::referenceFrequency); }
    void setReferenceFrequency(double frequency) override { set(&Record::referenceFrequency, frequency); }
};

} // namespace

MakeControl installDornSynthesis(const std::shared_ptr<Bench>& bench)
{
    return installModule<DornSynthesisControl>(bench);
}

} // namespace tarn::simulator
