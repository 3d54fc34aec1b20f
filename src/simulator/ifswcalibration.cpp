#include <simulator/ifswcalibration.h>

#include <sdk/service/ivellifswcalibrationcontrol.h>
#include <simulator/calibrationpart.h>

#include <chrono>

namespace tarn::simulator {

namespace {

struct IfswKind {
    using Control = sdk::service::IVellIfswCalibrationControl;
    using Data = IfswCalibration;

    static constexpr Duration timePerPiece = std::chrono::milliseconds{10};
    static constexpr auto onError = &Control::Observer::onError;
    static auto& slot(Calibrations& calibrations) { return calibrations.ifsw; }
    static sdk::FrequencyPlan plan() { return ifswPlan(); }

    static std::size_t count(const Data& data)
    {
        auto count = data.frequencies.size();
        for (const auto* const receiver : {&data.reference, &data.reflection, &data.transmission})
            count += receiver->ratios.size() + receiver->linearities.size();
        return count;
    }
};

class IfswCalibrationControl final : public CalibrationControl<IfswKind> {
public:
    using CalibrationControl::CalibrationControl;

    void saveCalibrationData(IfswCalibrationData data) override { write(std::move(data)); }
};

} // namespace

MakeControl installIfswCalibration(const std::shared_ptr<Bench>& bench)
{
    return installCalibration<IfswKind, IfswCalibrationControl>(bench);
}

} // namespace tarn::simulator
