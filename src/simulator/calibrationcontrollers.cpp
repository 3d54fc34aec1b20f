#include <simulator/calibrationcontrollers.h>

#include <sdk/service/calibrations/icalibrationcontroller.h>
#include <simulator/observers.h>

#include <string>
#include <utility>
#include <vector>

namespace tarn::simulator {

namespace {

using sdk::service::calibrations::ICalibrationController;
using sdk::service::calibrations::ICalibrationUnit;

class Unit final : public ICalibrationUnit {
public:
    Unit(Operations& operations, std::string name, const CalibrationSlot& slot)
        : m_operations{operations}
        , m_name{std::move(name)}
        , m_slot{slot}
    {
    }

    std::string name() override
    {
        return m_operations.call([this] { return m_name; });
    }

    Status status() override
    {
        return m_operations.call([this] { return m_slot.status(); });
    }

private:
    Operations& m_operations;
    const std::string m_name;
    const CalibrationSlot& m_slot;
};

/// A group of units as a part of the instrument. They outlive every control.
struct Units {
    std::vector<std::unique_ptr<Unit>> units;
    Observers<ICalibrationController::Observer> observers;
};

void addUnit(const std::shared_ptr<Units>& units, Bench& bench, std::string name, CalibrationSlot& slot)
{
    auto* const unit = units->units.emplace_back(std::make_unique<Unit>(bench.operations, std::move(name), slot)).get();
    slot.changed.emplace_back(
        [units, unit] { units->observers.notify(&ICalibrationController::Observer::onUnitStatusChanged, unit); });
    slot.progressed.emplace_back([units, unit](auto progress) {
        units->observers.notify(&ICalibrationController::Observer::onSaveProgress, unit, progress);
    });
}

class CalibrationController final : public ICalibrationController {
public:
    CalibrationController(std::shared_ptr<Bench> bench, std::shared_ptr<Units> units)
        : m_bench{std::move(bench)}
        , m_units{std::move(units)}
    {
    }

    void addObserver(Observer* observer) override { m_units->observers.add(observer); }
    void removeObserver(Observer* observer) override { m_units->observers.remove(observer); }

    std::vector<ICalibrationUnit*> units() override
    {
        return m_bench->operations.call([this] {
            std::vector<ICalibrationUnit*> units;
            for (const auto& unit : m_units->units)
                units.push_back(unit.get());
            return units;
        });
    }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<Units> m_units;
};

MakeControl install(const std::shared_ptr<Bench>& bench, std::shared_ptr<Units> units)
{
    bench->endRegistrations.emplace_back([units] { units->observers.close(); });
    return [bench, units = std::move(units)]() -> std::shared_ptr<ICalibrationController> {
        units->observers.open();
        return std::make_shared<CalibrationController>(bench, units);
    };
}

} // namespace

MakeControl installSystemCalibrations(const std::shared_ptr<Bench>& bench)
{
    const auto units = std::make_shared<Units>();
    addUnit(units, *bench, "System terms", bench->calibrations.systemTerms);
    return install(bench, units);
}

MakeControl installFactoryCalibrations(const std::shared_ptr<Bench>& bench)
{
    const auto units = std::make_shared<Units>();
    addUnit(units, *bench, "IF switches", bench->calibrations.ifsw);
    addUnit(units, *bench, "Power", bench->calibrations.power);
    return install(bench, units);
}

} // namespace tarn::simulator
