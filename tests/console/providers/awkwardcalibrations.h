#pragma once

#include "awkwardobserved.h"
#include "awkwardstuck.h"

#include <sdk/ifactorycorrectioncontrol.h>
#include <sdk/service/calibrations/icalibrationcontroller.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>

#include <atomic>
#include <string>
#include <vector>

/// The controls of an instrument that somebody else is busy with all the time.
namespace awkward {

/// Refuses somebody else's write as soon as it is observed; another one fails while ours waits.
class IfswCalibration final : public Observed<sdk::service::IVellIfswCalibrationControl> {
public:
    void addObserver(Observer* observer) override
    {
        Observed::addObserver(observer);
        observer->onError(Error::NoData);
    }

    void removeObserver(Observer* observer) override
    {
        enter("ifsw-end");
        Observed::removeObserver(observer);
    }

    sdk::FrequencyPlan frequencyPlan() override
    {
        enter("ifsw-plan");
        return {};
    }

    void saveCalibrationData(IfswCalibrationData /*data*/) override
    {
        enter("ifsw-save");
        if (stuckIn == "ifsw-write") {
            notify(&Observer::onWriteStarted);
            return notify(&Observer::onWriteProgressChanged, 40U);
        }
        notify(&Observer::onWriteProgressChanged, 90U);
        notify(&Observer::onError, Error::WriteFailed);
        notify(&Observer::onWriteStarted);
        notify(&Observer::onWriteProgressChanged, 50U);
        notify(&Observer::onWriteFinished);
    }
};

/// Has a unit that is being saved again and again, in four steps.
class Calibrations final : public Observed<sdk::service::calibrations::ICalibrationController> {
public:
    void addObserver(Observer* observer) override
    {
        Observed::addObserver(observer);
        if (m_isObserved.exchange(true))
            enter("calibrations-again");
    }

    std::vector<sdk::service::calibrations::ICalibrationUnit*> units() override
    {
        enter("calibrations");
        return {&m_unit};
    }

    [[nodiscard]] bool isObserved() const { return m_isObserved; }

    void live()
    {
        using sdk::service::calibrations::Progress;
        m_done = m_done % 4 + 1;
        notify(&Observer::onSaveProgress, static_cast<sdk::service::calibrations::ICalibrationUnit*>(&m_unit),
               Progress{m_done, 4});
    }

private:
    class Unit final : public sdk::service::calibrations::ICalibrationUnit {
    public:
        std::string name() override { return "terms \x1b[31m"; }
        Status status() override { return Status::Saving; }
    };

    Unit m_unit;
    std::atomic<bool> m_isObserved{false};
    unsigned int m_done = 0;
};

/// Has one correction, which is switched on and off again and again unless the instrument gets stuck.
class Corrections final : public Observed<sdk::IFactoryCorrectionControl> {
public:
    sdk::CorrectionFlag supportedCorrections() override { return correction; }
    sdk::CorrectionFlag validCorrections() override
    {
        enter("corrections");
        return correction;
    }
    sdk::CorrectionFlag modifiableCorrections() override { return correction; }
    sdk::CorrectionFlag enabledCorrections() override { return m_enabled ? correction : sdk::CorrectionFlag::None; }
    void setEnabled(sdk::CorrectionFlag /*correction*/, bool enabled) override
    {
        enter("corrections-set");
        m_enabled = enabled;
    }

    void live()
    {
        if (!stuckIn.empty())
            return;
        m_enabled = !m_enabled;
        notify(&Observer::onEnabledChanged, correction, m_enabled.load());
    }

private:
    static constexpr auto correction = sdk::CorrectionFlag::Crosstalk;

    std::atomic<bool> m_enabled{true};
};

} // namespace awkward
