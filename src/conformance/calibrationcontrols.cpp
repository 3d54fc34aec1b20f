#include <conformance/controls.h>

#include <sdk/ifactorycorrectioncontrol.h>
#include <sdk/itemperaturecontrol.h>
#include <sdk/service/calibrations/icalibrationcontroller.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/isystemtermscontrol.h>
#include <sdk/service/ivellfactorypowercalibrationcontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>

#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace tarn::conformance {

namespace {

using sdk::CorrectionFlag;
using Calibrations = sdk::service::calibrations::ICalibrationController;
using Corrections = sdk::IFactoryCorrectionControl;
using IfswCalibration = sdk::service::IVellIfswCalibrationControl;
using LoLeakage = sdk::service::ILoLeakageControl;
using PowerCalibration = sdk::service::IVellFactoryPowerCalibrationControl;
using SystemTerms = sdk::service::ISystemTermsControl;
using Temperature = sdk::ITemperatureControl;
using Unit = sdk::service::calibrations::ICalibrationUnit;

constexpr double absoluteZero = -273.15;

std::string wrongPlan(const sdk::FrequencyPlan& plan)
{
    for (const auto& segment : plan.segments) {
        if (!std::isfinite(segment.startFrequency) || !std::isfinite(segment.stopFrequency)
            || segment.startFrequency < 0.0 || segment.stopFrequency < segment.startFrequency)
            return "has a segment whose frequencies do not ascend from 0 Hz on";
        if (segment.pointCount < 1)
            return "has a segment without points";
    }
    return {};
}

bool isTemperature(float value)
{
    return std::isfinite(value) && value > absoluteZero;
}

/// Whether all corrections of `some` are among `all`.
bool areAmong(CorrectionFlag some, CorrectionFlag all)
{
    return (some & all) == some;
}

class WriteObserver {
public:
    explicit WriteObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

protected:
    void hear(const char* what) const { m_ear->hear(what); }
    void hearProgress(unsigned int percent) const { m_ear->hear("progress", Ear::Progress{percent, 100}); }
    template <class Error>
    void hearError(Error error) const
    {
        m_ear->hear("error " + std::to_string(static_cast<int>(error)));
    }

private:
    const std::shared_ptr<Ear> m_ear;
};

class SystemTermsObserver final : public SystemTerms::Observer, private WriteObserver {
public:
    using WriteObserver::WriteObserver;

    void onWriteStarted() override { hear("start"); }
    void onWriteProgressChanged(unsigned int progress) override { hearProgress(progress); }
    void onWriteFinished() override { hear("finish"); }
    void onErrorOccurred(SystemTerms::Error error) override { hearError(error); }
};

/// Of the two calibration controls.
template <class Control>
class CalibrationObserver final : public Control::Observer, private WriteObserver {
public:
    using WriteObserver::WriteObserver;

    void onWriteStarted() override { hear("start"); }
    void onWriteProgressChanged(unsigned int progress) override { hearProgress(progress); }
    void onWriteFinished() override { hear("finish"); }
    void onError(typename Control::Error error) override { hearError(error); }
};

class CorrectionsObserver final : public Corrections::Observer {
public:
    explicit CorrectionsObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

    void onSupportedChanged() override { m_ear->hear("supported"); }
    void onValidChanged() override { m_ear->hear("valid"); }
    void onEnabledChanged(CorrectionFlag /*correction*/, bool enabled) override
    {
        m_ear->hear(enabled ? "enabled" : "disabled");
    }

private:
    const std::shared_ptr<Ear> m_ear;
};

class TemperatureObserver final : public Temperature::Observer {
public:
    explicit TemperatureObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

    void onTemperatureChanged() override { m_ear->hear("temperature"); }

private:
    const std::shared_ptr<Ear> m_ear;
};

class CalibrationsObserver final : public Calibrations::Observer {
public:
    explicit CalibrationsObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

    void onUnitStatusChanged(Unit* /*unit*/) override { m_ear->hear("status"); }
    void onSaveProgress(Unit* /*unit*/, sdk::service::calibrations::Progress /*progress*/) override
    {
        m_ear->hear("saving");
    }
    void onConfigurationChanged() override { m_ear->hear("configuration"); }

private:
    const std::shared_ptr<Ear> m_ear;
};

/// A write without data, which has to be refused.
template <class Observer, class Interface, class Write>
void addRefusal(const Describe<Interface>& describe, const char* operation, Write write)
{
    Question question{describe.where(operation),
                      [control = describe.control(), write](Done done) {
                          write(*control);
                          done({}, {});
                      },
                      true, false};
    describe.refusal(describe.template observed<Observer>("Observer", std::move(question)));
}

/// The first correction that can be switched.
CorrectionFlag switchable(Corrections& control)
{
    const auto all = static_cast<unsigned>(control.validCorrections() & control.modifiableCorrections());
    return static_cast<CorrectionFlag>(all & (~all + 1U));
}

std::string wrongModules(const Temperature::ModuleTemperatures& modules)
{
    for (const auto& [name, value] : modules) {
        if (name.empty() || !isTemperature(value))
            return "gives '" + name + "' a temperature of " + std::to_string(value);
    }
    return {};
}

std::string wrongUnits(Calibrations& control)
{
    std::set<std::string> names;
    for (auto* const unit : control.units()) {
        if (!unit)
            return "gives a null unit";
        if (!names.insert(unit->name()).second)
            return "gives two units of the name '" + unit->name() + "'";
        const auto status = static_cast<int>(unit->status());
        if (status < static_cast<int>(Unit::Status::Empty) || status > static_cast<int>(Unit::Status::Invalid))
            return "gives a unit of a status that there is not";
    }
    return {};
}

} // namespace

void describeSystemTerms(Description& description, std::shared_ptr<void> control)
{
    const Describe<SystemTerms> describe{description, std::static_pointer_cast<SystemTerms>(std::move(control))};
    describe.reading("frequencyPlan", [](SystemTerms& terms) { return wrongPlan(terms.frequencyPlan()); })
        .reading("portCount", [](SystemTerms& terms) { return wrongIf(terms.portCount() == 0, "is 0"); })
        .reading("maximumPointCount",
                 [](SystemTerms& terms) {
                     std::uint64_t points = 0;
                     for (const auto& segment : terms.frequencyPlan().segments)
                         points += static_cast<std::uint64_t>(segment.pointCount);
                     return wrongIf(terms.maximumPointCount() < points, "is less than the points of its own plan");
                 })
        .reading("isFrequencyOverrideSupported", &SystemTerms::isFrequencyOverrideSupported);
    addRefusal<SystemTermsObserver>(describe, "writeTerms of nothing",
                                    [](SystemTerms& terms) { terms.writeTerms(0, {}, 23.0); });
}

void describeIfswCalibration(Description& description, std::shared_ptr<void> control)
{
    const Describe<IfswCalibration> describe{description,
                                             std::static_pointer_cast<IfswCalibration>(std::move(control))};
    describe.reading("frequencyPlan", [](IfswCalibration& ifsw) { return wrongPlan(ifsw.frequencyPlan()); });
    addRefusal<CalibrationObserver<IfswCalibration>>(describe, "saveCalibrationData of nothing",
                                                     [](IfswCalibration& ifsw) { ifsw.saveCalibrationData({}); });
}

void describePowerCalibration(Description& description, std::shared_ptr<void> control)
{
    const Describe<PowerCalibration> describe{description,
                                              std::static_pointer_cast<PowerCalibration>(std::move(control))};
    describe.reading("frequencyPlan", [](PowerCalibration& power) { return wrongPlan(power.frequencyPlan()); });
    addRefusal<CalibrationObserver<PowerCalibration>>(
        describe, "saveCalibrationData of nothing",
        [](PowerCalibration& power) { power.saveCalibrationData(0, {}, 23.0); });
}

void describeFactoryCorrections(Description& description, std::shared_ptr<void> control)
{
    const Describe<Corrections> describe{description, std::static_pointer_cast<Corrections>(std::move(control))};
    static constexpr auto notKnown = "has one that is not among supportedCorrections";
    describe.reading("supportedCorrections", &Corrections::supportedCorrections)
        .reading("validCorrections",
                 [](Corrections& all) {
                     return wrongIf(!areAmong(all.validCorrections(), all.supportedCorrections()), notKnown);
                 })
        .reading("enabledCorrections",
                 [](Corrections& all) {
                     return wrongIf(!areAmong(all.enabledCorrections(), all.supportedCorrections()), notKnown);
                 })
        .reading("modifiableCorrections", [](Corrections& all) {
            return wrongIf(!areAmong(all.modifiableCorrections(), all.supportedCorrections()), notKnown);
        });
    const auto correction = switchable(*describe.control());
    const auto isOn
        = [correction](Corrections& all) { return (all.enabledCorrections() & correction) != CorrectionFlag::None; };
    Question provocation{describe.where("setEnabled there and back"),
                         [all = describe.control(), correction, isOn](Done done) {
                             const bool before = isOn(*all);
                             all->setEnabled(correction, !before);
                             all->setEnabled(correction, before);
                             done({}, {});
                         },
                         true, false};
    describe.template source<CorrectionsObserver>("Observer", std::move(provocation));
    if (correction != CorrectionFlag::None)
        describe.setting(
            "enabledCorrections", [isOn](Corrections& all) { return toValue(isOn(all)); },
            [correction](Corrections& all, double value) { all.setEnabled(correction, value != 0.0); }, onOff());
}

void describeTemperature(Description& description, std::shared_ptr<void> control)
{
    const Describe<Temperature> describe{description, std::static_pointer_cast<Temperature>(std::move(control))};
    describe
        .reading("temperature",
                 [](Temperature& one) {
                     const auto value = one.temperature();
                     return wrongIf(!isTemperature(value), "is " + std::to_string(value));
                 })
        .reading("moduleTemperatures", [](Temperature& one) { return wrongModules(one.moduleTemperatures()); })
        .template source<TemperatureObserver>("Observer");
}

void describeCalibrations(Description& description, std::shared_ptr<void> control)
{
    const Describe<Calibrations> describe{description, std::static_pointer_cast<Calibrations>(std::move(control))};
    describe.reading("units", [](Calibrations& all) { return wrongUnits(all); })
        .template source<CalibrationsObserver>("Observer");
}

void describeLoLeakage(Description& description, std::shared_ptr<void> control)
{
    const Describe<LoLeakage> describe{description, std::static_pointer_cast<LoLeakage>(std::move(control))};
    describe.setting("isEnabled", &LoLeakage::isEnabled, &LoLeakage::setEnabled, onOff());
}

} // namespace tarn::conformance
