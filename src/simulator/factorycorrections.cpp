#include <simulator/factorycorrections.h>

#include <sdk/ifactorycorrectioncontrol.h>
#include <simulator/correctionmodel.h>
#include <simulator/observers.h>

#include <initializer_list>
#include <utility>

namespace tarn::simulator {

namespace {

using Control = sdk::IFactoryCorrectionControl;
using Flag = sdk::CorrectionFlag;

/// The corrections as a part of the instrument.
class FactoryCorrections {
public:
    explicit FactoryCorrections(Bench& bench)
        : model{*bench.storage, bench.calibrations}
    {
    }

    /// Tells what has changed since the last time. On the instrument's thread.
    void tellChanges()
    {
        if (std::exchange(m_supported, model.supported()) != model.supported())
            observers.notify(&Control::Observer::onSupportedChanged);
        if (std::exchange(m_valid, model.valid()) != model.valid())
            observers.notify(&Control::Observer::onValidChanged);
    }

    CorrectionModel model;
    Observers<Control::Observer> observers;

private:
    Flag m_supported{};
    Flag m_valid{};
};

class FactoryCorrectionControl final : public Control {
public:
    FactoryCorrectionControl(std::shared_ptr<Bench> bench, std::shared_ptr<FactoryCorrections> corrections)
        : m_bench{std::move(bench)}
        , m_corrections{std::move(corrections)}
    {
    }

    Flag supportedCorrections() override { return query(&CorrectionModel::supported); }
    Flag validCorrections() override { return query(&CorrectionModel::valid); }
    Flag enabledCorrections() override { return query(&CorrectionModel::enabled); }
    Flag modifiableCorrections() override { return query(&CorrectionModel::modifiable); }

    void setEnabled(Flag correction, bool enabled) override
    {
        m_bench->operations.call(
            [&] { m_corrections->model.setEnabled(correction, enabled, [&] { tellLater(correction, enabled); }); });
    }

    void addObserver(Observer* observer) override { m_corrections->observers.add(observer); }
    void removeObserver(Observer* observer) override { m_corrections->observers.remove(observer); }

private:
    [[nodiscard]] Flag query(Flag (CorrectionModel::*set)() const) const
    {
        return m_bench->operations.call([&] { return (m_corrections->model.*set)(); });
    }

    void tellLater(Flag correction, bool enabled)
    {
        const auto tell = [corrections = m_corrections, correction, enabled] {
            corrections->observers.notify(&Observer::onEnabledChanged, correction, enabled);
        };
        m_bench->executor.post({}, tell, Executor::AtStop::Discard);
    }

    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<FactoryCorrections> m_corrections;
};

} // namespace

MakeControl installFactoryCorrections(const std::shared_ptr<Bench>& bench)
{
    auto corrections = std::make_shared<FactoryCorrections>(*bench);
    bench->endRegistrations.emplace_back([corrections] { corrections->observers.close(); });
    for (CalibrationSlot* const slot : std::initializer_list<CalibrationSlot*>{
             &bench->calibrations.systemTerms, &bench->calibrations.ifsw, &bench->calibrations.power})
        slot->changed.emplace_back([corrections] { corrections->tellChanges(); });
    return [bench, corrections]() -> std::shared_ptr<Control> {
        bench->atOffer.emplace_back([corrections] { corrections->tellChanges(); });
        corrections->observers.open();
        return std::make_shared<FactoryCorrectionControl>(bench, corrections);
    };
}

} // namespace tarn::simulator
