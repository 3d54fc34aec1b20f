#include <simulator/powercalibration.h>

#include <sdk/service/ivellfactorypowercalibrationcontrol.h>
#include <simulator/calibrationpart.h>

#include <chrono>

namespace tarn::simulator {

namespace {

struct PowerKind {
    using Control = sdk::service::IVellFactoryPowerCalibrationControl;
    using Data = PowerCalibration;

    static constexpr Duration timePerPiece = std::chrono::milliseconds{20};
    static constexpr auto onError = &Control::Observer::onError;
    static auto& slot(Calibrations& calibrations) { return calibrations.power; }
    static sdk::FrequencyPlan plan() { return powerPlan(); }
    static std::size_t count(const Data& data) { return data.points.size(); }
};

class PowerCalibrationControl final : public CalibrationControl<PowerKind> {
public:
    using CalibrationControl::CalibrationControl;

    void saveCalibrationData(std::int64_t time, std::vector<PowerCalPoint> points, double temperature) override
    {
        write({.time = time, .points = std::move(points), .temperature = temperature});
    }
};

} // namespace

MakeControl installPowerCalibration(const std::shared_ptr<Bench>& bench)
{
    return installCalibration<PowerKind, PowerCalibrationControl>(bench);
}

} // namespace tarn::simulator
