#include <sdk/service/iquillsynthesiscontrol.h>
#include <simulator/modulecontrol.h>
#include <simulator/modulecontrols.h>

#include <QJsonObject>

#include <array>
#include <span>

namespace tarn::simulator {

namespace {

constexpr std::array ifs{2.5e6, 5e6, 7.5e6, 10e6}; // Hz
constexpr std::array references{10e6, 20e6, 100e6}; // Hz

struct QuillSynthesis {
    static constexpr const char* section = "quillSynthesis";

    bool isIfManual = false;
    int selectedIf = 1;
    double filter1Frequency = 100e6; // Hz
    bool isReferenceManual = false;
    int selectedReference = 0;
};

void fields(auto& archive, Is<QuillSynthesis> auto& record)
{
    archive("manual IF", record.isIfManual);
    archive("selected IF", record.selectedIf, indexOf(ifs));
    archive("frequency of filter 1", record.filter1Frequency, Within{1e6, 3e9});
    archive("manual reference", record.isReferenceManual);
    archive("selected reference", record.selectedReference, indexOf(references));
}

class QuillSynthesisControl final : public ModuleControl<sdk::service::IQuillSynthesisControl, QuillSynthesis> {
public:
    using ModuleControl::ModuleControl;

    void setLoLeakageMode(bool enabled) override
    {
        call([this, enabled] { bench().loLeakage.setEnabled(enabled); });
    }

    bool loLeakageMode() override
    {
        return call([this] { return bench().loLeakage.isEnabled(); });
    }

    void setManualIfEnabled(bool enabled) override { set(&Record::isIfManual, enabled); }
    bool manualIfEnabled() override { return get(&Record::isIfManual); }
    void setSelectedIf(int index) override { set(&Record::selectedIf, index); }
    int selectedIf() override { return get(&Record::selectedIf); }
    std::span<const double> supportedIfs() override { return constant(std::span<const double>{ifs}); }
    void setFilter1Frequency(double frequency) override { set(&Record::filter1Frequency, frequency); }
    double filter1Frequency() override { return get(&Record::filter1Frequency); }
    void setManualRefEnabled(bool enabled) override { set(&Record::isReferenceManual, enabled); }
    bool manualRefEnabled() override { return get(&Record::isReferenceManual); }
    void setSelectedRef(int index) override { set(&Record::selectedReference, index); }
    int selectedRef() override { return get(&Record::selectedReference); }
    std::span<const double> supportedRefs() override { return constant(std::span<const double>{references}); }

    void reset() override
    {
        restoreDefaults([this](const QJsonObject& sections) { bench().loLeakage.setEnabled(false, sections); });
    }
};

} // namespace

MakeControl installQuillSynthesis(const std::shared_ptr<Bench>& bench)
{
    return installModule<QuillSynthesisControl>(bench);
}

} // namespace tarn::simulator
